#include "script/values/Display.h"

#include "script/lex/Numbers.h"
#include "script/terms/Application.h"
#include "script/values/ValueDescriptors.h"

namespace quorin::script {
namespace {

constexpr std::size_t maximumLength = 2000;
constexpr int maximumDepth = 40;

class Writer {
 public:
  explicit Writer(ApplicationName name) : name_(name) {}
  std::string text;

  void write(const Value& value, int depth) {
    if (full(depth)) return;
    depth_ = depth;
    std::visit([&](const auto& data) { put(data, depth); }, value.data());
  }

 private:
  bool full(int depth) {
    if (depth <= maximumDepth && text.size() < maximumLength) return false;
    if (!text.ends_with("...")) text += "...";
    return true;
  }

  void put(std::monostate, int) { text += "nothing"; }
  void put(bool value, int) { text += value ? "true" : "false"; }
  void put(std::int32_t value, int) { text += textOf(value); }
  void put(double value, int) { text += textOf(value); }
  void put(const std::string& value, int) { text += inQuotes(value); }
  void put(const Value::List& list, int depth) {
    text += "{";
    std::string_view separator;
    for (const Value& item : list->items()) {
      text += separator;
      if (full(depth)) break;
      write(item, depth + 1);
      separator = ", ";
    }
    text += "}";
  }
  void put(const Value::Record& record, int depth) {
    text += "{";
    std::string_view separator;
    for (const auto& [key, value] : record->fields()) {
      text += separator;
      if (full(depth)) break;
      text += key.code ? displayProperty(key.code, nullptr) : key.label;
      text += ":";
      write(value, depth + 1);
      separator = ", ";
    }
    text += "}";
  }
  void put(const Constant& constant, int) { text += displayConstant(constant); }
  void put(const Date& date, int) { text += "date " + std::to_string(date.seconds); }
  void put(const Value::SpecifierPointer& specifier, int) {
    text += displaySpecifier(specifier->descriptor, specifier->application);
    if (name_ == ApplicationName::shown) {
      text += " of application " + inQuotes(specifier->application->name());
    }
  }
  void put(const Value::ReferencePointer& reference, int depth) {
    text += displaySelector(reference->selector) + " of ";
    write(reference->container, depth + 1);
  }
  void put(const ApplicationObject& object, int) {
    text += "application " + inQuotes(object.application->name());
  }
  void put(const ScriptSelf&, int) { text += "\xC2\xABscript\xC2\xBB"; }
  void put(const LanguageSelf&, int) { text += "AppleScript"; }
  void put(const Value::OpaquePointer& opaque, int) {
    text +=
        "\xC2\xAB"
        "data " +
        displayCode(opaque->type()) + "\xC2\xBB";
  }

  ApplicationName name_;
  int depth_ = 0;
};

std::string displayKey(const AppleEventDescriptor& descriptor, const Application* application) {
  return displayText(fromDescriptor(descriptor, const_cast<Application*>(application)),
                     ApplicationName::omitted);
}

std::string ordinal(std::int64_t code, const std::string& element, const std::string& plural) {
  switch (static_cast<FourCharCode>(code)) {
    case fourCharCode("firs"):
      return "first " + element;
    case fourCharCode("last"):
      return "last " + element;
    case fourCharCode("midd"):
      return "middle " + element;
    case fourCharCode("any "):
      return "some " + element;
    default:
      return "every " + plural;
  }
}

std::string displayRange(const AppleEventDescriptor& range, const std::string& plural,
                         const Application* application) {
  const auto bound = [&](FourCharCode keyword) {
    const AppleEventDescriptor* object = range.field(keyword);
    const AppleEventDescriptor* key = object ? object->field(fourCharCode("seld")) : nullptr;
    return key ? displayKey(*key, application) : std::string("?");
  };
  return plural + " " + bound(fourCharCode("star")) + " thru " + bound(fourCharCode("stop"));
}

std::string displayElement(const AppleEventDescriptor& descriptor, const Application* application) {
  const auto code = [&](FourCharCode keyword) {
    const AppleEventDescriptor* field = descriptor.field(keyword);
    return field ? field->codeValue().value_or(0) : 0;
  };
  const AppleEventDescriptor* key = descriptor.field(fourCharCode("seld"));
  const std::string element = displayClass(code(fourCharCode("want")), application);
  const std::string plural = displayClass(code(fourCharCode("want")), application, true);
  if (!key) return element;
  switch (code(fourCharCode("form"))) {
    case fourCharCode("prop"):
      return displayProperty(key->codeValue().value_or(0), application);
    case fourCharCode("rang"):
      return displayRange(*key, plural, application);
    case fourCharCode("test"):
      return "every " + element + " whose \xE2\x80\xA6";
    case fourCharCode("ID  "):
      return element + " id " + displayKey(*key, application);
    case fourCharCode("rele"):
      return element + (key->codeValue() == fourCharCode("next") ? " after" : " before");
    default:
      if (key->type() == fourCharCode("abso")) {
        return ordinal(key->integerValue().value_or(0), element, element);
      }
      return element + " " + displayKey(*key, application);
  }
}

}  // namespace

std::string displayText(const Value& value, ApplicationName name) {
  Writer writer(name);
  writer.write(value, 0);
  return std::move(writer.text);
}

std::string displaySpecifier(const AppleEventDescriptor& descriptor,
                             const Application* application) {
  if (descriptor.type() == fourCharCode("insl")) {
    const AppleEventDescriptor* object = descriptor.field(fourCharCode("kobj"));
    return "insertion point of " + (object ? displaySpecifier(*object, application) : "it");
  }
  std::string text;
  const AppleEventDescriptor* at = &descriptor;
  for (int depth = 0; at && at->type() == fourCharCode("obj ") && depth < 100; ++depth) {
    if (!text.empty()) text += " of ";
    text += displayElement(*at, application);
    at = at->field(fourCharCode("from"));
  }
  if (at && at->type() == fourCharCode("exmn")) text += text.empty() ? "it" : " of it";
  return text;
}

std::string displaySelector(const Selector& selector) {
  const Application* application = selector.origin;
  const std::string element = displayClass(selector.code, application);
  const std::string plural = displayClass(selector.code, application, true);
  switch (selector.form) {
    case Form::property:
      return displayProperty(selector.code, application);
    case Form::label:
      return selector.label;
    case Form::index:
    case Form::name:
      return element + " " + displayText(selector.key);
    case Form::id:
      return element + " id " + displayText(selector.key);
    case Form::first:
      return "first " + element;
    case Form::middle:
      return "middle " + element;
    case Form::last:
      return "last " + element;
    case Form::any:
      return "some " + element;
    case Form::all:
      return "every " + element;
    case Form::range:
      return plural + " " + displayText(selector.key) + " thru " + displayText(selector.upper);
    case Form::next:
      return element + " after";
    case Form::previous:
      return element + " before";
    case Form::test:
      return "every " + element + " whose \xE2\x80\xA6";
  }
  return element;
}

}  // namespace quorin::script
