#include "tests/script/EngineFixture.h"

#include "script/values/Display.h"
#include "script/values/ValueDescriptors.h"

namespace quorin::script {
namespace {

bool isKind(const AppleEventDescriptor& descriptor, FourCharCode type) {
  return descriptor.type() == type;
}

std::string showFields(const AppleEventDescriptor::Fields& fields, const Application* application) {
  std::string text = "{";
  for (const auto& field : fields) {
    if (text.size() > 1) text += ", ";
    text += displayCode(field.keyword) + ":" + show(field.value, application);
  }
  return text + "}";
}

}  // namespace

// Objects show their real structure, so that a test sees every code.
std::string show(const AppleEventDescriptor& descriptor, const Application* application) {
  if (isKind(descriptor, fourCharCode("obj "))) {
    const auto* want = descriptor.field(fourCharCode("want"));
    const auto* form = descriptor.field(fourCharCode("form"));
    const auto* data = descriptor.field(fourCharCode("seld"));
    const auto* from = descriptor.field(fourCharCode("from"));
    std::string text = displayCode(want->codeValue().value_or(0)) + "[" +
                       displayCode(form->codeValue().value_or(0)) + " " + show(*data, application) +
                       "]";
    if (!isKind(*from, fourCharCode("null"))) text += " of " + show(*from, application);
    return text;
  }
  switch (descriptor.type()) {
    case fourCharCode("type"):
    case fourCharCode("enum"):
    case fourCharCode("prop"):
      if (descriptor.isMissingValue()) return "missing value";
      return displayCode(descriptor.type()).substr(0, 4) + "'" +
             displayCode(descriptor.codeValue().value_or(0)) + "'";
    case fourCharCode("abso"):
      return displayCode(static_cast<FourCharCode>(descriptor.integerValue().value_or(0)));
    case fourCharCode("null"):
      return "null";
    case fourCharCode("list"): {
      std::string text = "{";
      for (const auto& item : descriptor.items()) {
        if (text.size() > 1) text += ", ";
        text += show(item, application);
      }
      return text + "}";
    }
    case fourCharCode("reco"):
      return showFields(descriptor.fields(), application);
    case fourCharCode("rang"):
    case fourCharCode("cmpd"):
    case fourCharCode("logi"):
    case fourCharCode("insl"):
      return displayCode(descriptor.type()) + showFields(descriptor.fields(), application);
    case fourCharCode("exmn"):
    case fourCharCode("ccnt"):
      return displayCode(descriptor.type());
    default:
      return displayText(fromDescriptor(descriptor, nullptr));
  }
}

std::string show(const AppleEvent& event, const Application* application) {
  std::string text = displayCode(event.eventClass) + "/" + displayCode(event.eventID) +
                     showFields(event.parameters, application);
  if (!event.attributes.empty()) text += " " + showFields(event.attributes, application);
  return text;
}

std::string show(const ScriptOutcome& outcome, const Application* application) {
  if (outcome.error) {
    return "error " + std::to_string(outcome.error->number) + ": " + outcome.error->message;
  }
  return outcome.result ? show(*outcome.result, application) : "no value";
}

Script EngineFixture::compiled(std::string_view source) {
  auto result = compile(source, applications);
  if (const auto* error = std::get_if<CompileError>(&result)) {
    ADD_FAILURE() << "line " << error->line << ": " << error->message << "\n"
                  << source.substr(0, 200);
    result = compile("", applications);
  }
  return std::move(std::get<Script>(result));
}

CompileError EngineFixture::compileError(std::string_view source) {
  const auto result = compile(source, applications);
  const auto* error = std::get_if<CompileError>(&result);
  if (!error) {
    ADD_FAILURE() << "compiled: " << source.substr(0, 200);
    return {};
  }
  return *error;
}

std::string EngineFixture::run(std::string_view source) {
  auto result = compile(source, applications);
  if (const auto* error = std::get_if<CompileError>(&result)) {
    return "line " + std::to_string(error->line) + ": " + error->message + " (" +
           std::to_string(error->number) + ")";
  }
  return show(std::get<Script>(result).run(), &excel);
}

std::string EngineFixture::tell(const std::string& statements) {
  return run("tell application \"Microsoft Excel\"\n" + statements + "\nend tell");
}

std::string EngineFixture::sent(std::size_t index) const {
  return index < excel.events.size() ? show(excel.events[index], &excel) : "nothing";
}

}  // namespace quorin::script
