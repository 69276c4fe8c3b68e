#include "script/values/LocalObjects.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <unordered_set>

#include "kit/value/EventErrors.h"
#include "script/lex/Numbers.h"
#include "script/values/Dates.h"
#include "script/values/Display.h"
#include "script/values/Failure.h"
#include "script/values/TextOperations.h"

namespace quorin::script {
namespace {

constexpr FourCharCode typeItem = fourCharCode("cobj");
constexpr FourCharCode typeText = fourCharCode("ctxt");
constexpr FourCharCode typeInteger = fourCharCode("long");
constexpr FourCharCode typeReal = fourCharCode("doub");

[[noreturn]] void failNoPart(const Value& container, const Selector& selector) {
  std::string what = displaySelector(selector);
  if (!container.as<ScriptSelf>()) what += " of " + displayText(container);
  failCannotGet(what);
}

// Positions of the elements that a selector picks out of `count`, both inclusive and 0-based.
struct Positions {
  std::size_t first = 0, last = 0;
  bool many = false;
};

class Picker {
 public:
  Picker(const Value& container, const Selector& selector, std::size_t count)
      : container_(container), selector_(selector), count_(count) {}

  // Nothing when every element is meant and there is none.
  std::optional<Positions> positions() const {
    switch (selector_.form) {
      case Form::index:
        return one(at(selector_.key));
      case Form::first:
        return one(checked(1));
      case Form::last:
        return one(checked(static_cast<double>(count_)));
      case Form::middle:
        return one(checked(std::floor((static_cast<double>(count_) + 1) / 2)));
      case Form::any:
        return one(checked(static_cast<double>(chance() + 1)));
      case Form::all:
        if (count_ == 0) return std::nullopt;
        return Positions{0, count_ - 1, true};
      case Form::range: {
        const std::size_t from = at(selector_.key), to = at(selector_.upper);
        return Positions{std::min(from, to), std::max(from, to), true};
      }
      default:
        failNoPart(container_, selector_);
    }
  }

 private:
  static Positions one(std::size_t position) { return {position, position, false}; }

  std::size_t chance() const { return count_ == 0 ? 0 : std::random_device()() % count_; }

  std::size_t at(const Value& key) const {
    const Value index = dereference(key);
    if (!index.isNumber()) failNoPart(container_, selector_);
    const double wanted = roundToEven(index.number());
    return checked(wanted < 0 ? wanted + static_cast<double>(count_) + 1 : wanted);
  }
  std::size_t checked(double position) const {
    if (!(position >= 1 && position <= static_cast<double>(count_))) {
      failNoPart(container_, selector_);
    }
    return static_cast<std::size_t>(position) - 1;
  }

  const Value& container_;
  const Selector& selector_;
  std::size_t count_;
};

Value listElements(const Value& container, const Selector& selector) {
  const Value::List& list = *container.list();
  const bool filtered = selector.code != typeItem;
  if (!filtered && selector.form == Form::index && list->size() > 0) {
    const auto position = Picker(container, selector, list->size()).positions();
    return list->items()[position->first];
  }
  std::vector<Value> items;
  for (const Value& item : list->items()) {
    if (!filtered || isOfClass(item, selector.code)) items.push_back(item);
  }
  const auto positions = Picker(container, selector, items.size()).positions();
  if (!positions) return Value::makeList();
  if (!positions->many) return items[positions->first];
  return Value::makeList({items.begin() + static_cast<std::ptrdiff_t>(positions->first),
                          items.begin() + static_cast<std::ptrdiff_t>(positions->last) + 1});
}

Value textPart(const std::string& text, const TextSpan& span) {
  return text.substr(span.begin, span.end - span.begin);
}

Value textElement(const Value& container, const Selector& selector, const TextRules& rules) {
  const std::string& text = *container.text();
  if (selector.code == typeText && selector.form == Form::all) return Value::makeList({container});
  const auto spans = textElements(text, selector.code, rules);
  if (!spans) failNoPart(container, selector);
  const auto positions = Picker(container, selector, spans->size()).positions();
  if (!positions) return Value::makeList();
  if (!positions->many) {
    if (selector.code == typeText) failNoPart(container, selector);
    return textPart(text, (*spans)[positions->first]);
  }
  if (selector.code == typeText) {
    return textPart(text, {(*spans)[positions->first].begin, (*spans)[positions->last].end});
  }
  std::vector<Value> items;
  for (std::size_t i = positions->first; i <= positions->last; ++i) {
    items.push_back(textPart(text, (*spans)[i]));
  }
  return Value::makeList(std::move(items));
}

std::optional<Value> listProperty(const Value& container, FourCharCode property) {
  const std::vector<Value>& items = (*container.list())->items();
  switch (property) {
    case fourCharCode("rest"):
      if (items.empty()) return std::nullopt;
      return Value::makeList({items.begin() + 1, items.end()});
    case fourCharCode("rvse"):
      return Value::makeList({items.rbegin(), items.rend()});
    default:
      return std::nullopt;
  }
}

std::optional<Value> textProperty(const Value& container, FourCharCode property) {
  const std::string& text = *container.text();
  if (property == typeText) return container;
  if (property != fourCharCode("ID  ")) return std::nullopt;
  std::vector<Value> points;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if (byte < 0x80)
      points.emplace_back(static_cast<std::int32_t>(byte));
    else if (byte >= 0xC0) {
      const int more = byte >= 0xF0 ? 3 : byte >= 0xE0 ? 2 : 1;
      std::int32_t point = byte & (0x3F >> more);
      for (int i = 0; i < more && at + 1 < text.size(); ++i) {
        point = (point << 6) | (static_cast<unsigned char>(text[++at]) & 0x3F);
      }
      points.emplace_back(point);
    }
  }
  return points.size() == 1 ? points.front() : Value::makeList(std::move(points));
}

std::optional<std::size_t> lengthOf(const Value& value) {
  if (const auto* list = value.list()) return (*list)->size();
  if (const auto* record = value.record()) return (*record)->fields().size();
  if (const auto* text = value.text()) return textLength(*text);
  return std::nullopt;
}

Value property(const Value& container, const Selector& selector) {
  if (const auto* record = container.record()) {
    if (const Value* field = (*record)->find({selector.code, selector.label})) return *field;
  }
  if (selector.form == Form::property) {
    const FourCharCode code = selector.code;
    if (code == fourCharCode("pcls")) return Value::type(classOf(container));
    if (code == fourCharCode("pcnt")) return container;
    if (code == fourCharCode("leng")) {
      if (const auto length = lengthOf(container)) return static_cast<std::int32_t>(*length);
    }
    std::optional<Value> found;
    if (container.list()) found = listProperty(container, code);
    if (container.text()) found = textProperty(container, code);
    if (const auto* date = container.as<Date>()) found = dateProperty(*date, code);
    if (found) return *found;
  }
  failNoPart(container, selector);
}

[[noreturn]] void failCannotSet(const Value& container, const Selector& selector,
                                const Value& value) {
  throw Failure{eventErrors::notModifiable,
                "Can't set " + displaySelector(selector) + " of " + displayText(container) +
                    " to " + displayText(value) + ".",
                container};
}

}  // namespace

Value getPart(const Value& holder, const Selector& selector, const TextRules& rules) {
  const Value container = dereference(holder);
  if (selector.form == Form::property || selector.form == Form::label) {
    return property(container, selector);
  }
  if (container.list()) return listElements(container, selector);
  if (container.text()) return textElement(container, selector, rules);
  if (container.record() && selector.code == typeItem) {
    return listElements(Value::makeList(toListItems(container)), selector);
  }
  failNoPart(container, selector);
}

void setPart(const Value& holder, const Selector& selector, Value value) {
  const Value container = dereference(holder);
  if (selector.form == Form::property || selector.form == Form::label) {
    const auto* record = container.record();
    Value* field = record ? (*record)->find({selector.code, selector.label}) : nullptr;
    if (!record) failCannotSet(container, selector, value);
    if (!field) failNoPart(container, selector);
    *field = std::move(value);
    return;
  }
  if (!container.list()) failCannotSet(container, selector, value);
  if (selector.code != typeItem || selector.form == Form::all || selector.form == Form::range) {
    failCannotSet(container, selector, value);
  }
  std::vector<Value>& items = (*container.list())->items();
  const auto position = Picker(container, selector, items.size()).positions();
  items[position->first] = std::move(value);
}

Value fetch(const Reference& reference) {
  if (reference.variable) return *reference.variable;
  return getPart(reference.container, reference.selector, TextRules());
}

Value dereference(const Value& value) {
  Value current = value;
  for (int depth = 0; const Reference* reference = current.reference(); ++depth) {
    if (depth > maximumValueDepth) failStackOverflow();
    current = fetch(*reference);
  }
  return current;
}

FourCharCode classOf(const Value& value) {
  struct {
    FourCharCode operator()(std::monostate) const { return fourCharCode("null"); }
    FourCharCode operator()(bool) const { return fourCharCode("bool"); }
    FourCharCode operator()(std::int32_t) const { return typeInteger; }
    FourCharCode operator()(double) const { return typeReal; }
    FourCharCode operator()(const std::string&) const { return typeText; }
    FourCharCode operator()(const Value::List&) const { return fourCharCode("list"); }
    FourCharCode operator()(const Value::Record&) const { return fourCharCode("reco"); }
    FourCharCode operator()(const Constant& constant) const {
      return constant.kind == Constant::Kind::type ? fourCharCode("pcls") : fourCharCode("enum");
    }
    FourCharCode operator()(const Date&) const { return fourCharCode("ldt "); }
    FourCharCode operator()(const Value::SpecifierPointer&) const { return fourCharCode("obj "); }
    FourCharCode operator()(const Value::ReferencePointer& reference) const {
      return classOf(fetch(*reference));
    }
    FourCharCode operator()(const ApplicationObject&) const { return fourCharCode("capp"); }
    FourCharCode operator()(const ScriptSelf&) const { return fourCharCode("scpt"); }
    FourCharCode operator()(const LanguageSelf&) const { return fourCharCode("scpt"); }
    FourCharCode operator()(const Value::OpaquePointer& opaque) const { return opaque->type(); }
  } visitor;
  return std::visit(visitor, value.data());
}

bool isOfClass(const Value& value, FourCharCode type) {
  const FourCharCode own = classOf(value);
  return own == type || (type == fourCharCode("nmbr") && (own == typeInteger || own == typeReal));
}

std::vector<Value> toListItems(const Value& value) {
  const Value plain = dereference(value);
  if (const auto* list = plain.list()) return (*list)->items();
  if (const auto* record = plain.record()) {
    std::vector<Value> items;
    for (const auto& field : (*record)->fields()) items.push_back(field.second);
    return items;
  }
  return {plain};
}

bool reaches(const Value& from, const Value& target) {
  const auto identity = [](const Value& value) -> const void* {
    if (value.list()) return value.list()->get();
    return value.record() ? static_cast<const void*>(value.record()->get()) : nullptr;
  };
  const void* sought = identity(target);
  std::unordered_set<const void*> seen;
  std::vector<Value> pending = {from};
  while (!pending.empty()) {
    const Value value = std::move(pending.back());
    pending.pop_back();
    if (const Reference* reference = value.reference()) {
      pending.push_back(reference->container);
      continue;
    }
    const void* own = identity(value);
    if (!own || !seen.insert(own).second) continue;
    if (own == sought) return true;
    const auto ownsOthers = [](const Value& each) {
      return each.list() || each.record() || each.reference();
    };
    if (const auto* list = value.list()) {
      if ((*list)->received()) continue;
      std::copy_if((*list)->items().begin(), (*list)->items().end(), std::back_inserter(pending),
                   ownsOthers);
    } else {
      for (const auto& field : (*value.record())->fields()) {
        if (ownsOthers(field.second)) pending.push_back(field.second);
      }
    }
  }
  return false;
}

}  // namespace quorin::script
