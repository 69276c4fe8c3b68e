// Where values are stored: variables, parts of lists and records, objects of applications.
#include "kit/value/EventErrors.h"
#include "script/run/Interpreter.h"
#include "script/run/SpecifierBuilder.h"
#include "script/terms/Words.h"
#include "script/values/Coercion.h"
#include "script/values/Display.h"
#include "script/values/LocalObjects.h"
#include "script/values/ValueDescriptors.h"

namespace quorin::script {

Value& Interpreter::variable(const Variable& variable) {
  const Symbol& symbol = frame_->handler->symbols[variable.symbol];
  return symbol.isLocal ? frame_->locals[symbol.slot] : *globals_[symbol.slot];
}

Value* Interpreter::globalNamed(std::string_view name) {
  const std::string sought = lowerCase(name);
  for (std::size_t i = 0; i < program_.globals.size(); ++i) {
    if (lowerCase(program_.globals[i]) == sought) return globals_[i].get();
  }
  return nullptr;
}

void Interpreter::assign(const Pattern& pattern, Value value) {
  if (const auto* place = std::get_if<Pattern::Place>(&pattern.data)) {
    assignTo(*place->target, std::move(value));
  } else {
    assignParts(std::get<Pattern::Parts>(pattern.data), value);
  }
}

void Interpreter::assignParts(const Pattern::Parts& parts, const Value& value) {
  const Value whole = dereference(value);
  for (std::size_t i = 0; i < parts.items.size(); ++i) {
    Selector selector;
    if (!parts.keys.empty()) {
      selector.form = parts.keys[i].code ? Form::property : Form::label;
      selector.code = parts.keys[i].code;
      selector.label = parts.keys[i].label;
    } else {
      selector.form = Form::index;
      selector.code = fourCharCode("cobj");
      selector.key = static_cast<std::int32_t>(i + 1);
    }
    assign(parts.items[i], getPart(whole, selector, rules_));
  }
}

void Interpreter::assignTo(const Expression& target, Value value) {
  if (const auto* name = std::get_if<Variable>(&target.data)) {
    variable(*name) = std::move(value);
  } else if (const auto* part = std::get_if<Part>(&target.data)) {
    assignPart(*part, std::move(value));
  } else if (const auto* insertion = std::get_if<Insertion>(&target.data)) {
    insert(*insertion, std::move(value));
  }
}

void Interpreter::assignPart(const Part& part, Value value) {
  const Resolved holder = containerOf(part);
  const bool contents =
      part.selector.form == Form::property && part.selector.code == fourCharCode("pcnt");
  if (contents && holder.value.reference()) return assignThrough(holder.value, std::move(value));
  const Value container = dereference(holder.value);
  if (Application* application = container.application()) {
    const Value object = contents ? container : resolveIn(part, holder).value;
    AppleEvent event;
    event.eventClass = fourCharCode("core");
    event.eventID = fourCharCode("setd");
    event.parameters.push_back({keyDirectObject, toDescriptor(object)});
    event.parameters.push_back({fourCharCode("data"), toDescriptor(value)});
    send(*application, std::move(event));
    return;
  }
  const bool own = container.as<ScriptSelf>() || container.as<LanguageSelf>();
  if (own && part.selector.form == Form::property && part.selector.code == fourCharCode("txdl")) {
    return setDelimiters(value);
  }
  const Selector selector = selectorOf(part, container);
  if (container.as<ScriptSelf>() && selector.form == Form::label) {
    Value* global = globalNamed(selector.label);
    if (!global) failCannotGet(selector.label);
    *global = std::move(value);
    return;
  }
  rememberCycle(container, value);
  setPart(container, selector, std::move(value));
}

void Interpreter::assignThrough(const Value& reference, Value value) {
  const Reference& place = *reference.reference();
  if (place.variable) {
    *place.variable = std::move(value);
    return;
  }
  const Value container = dereference(place.container);
  rememberCycle(container, value);
  setPart(container, place.selector, std::move(value));
}

void Interpreter::insert(const Insertion& insertion, Value value) {
  const Value object =
      insertion.object ? dereference(resolve(*insertion.object).value) : frame_->target;
  if (Application* application = object.application()) {
    AppleEvent event;
    event.eventClass = fourCharCode("core");
    event.eventID = fourCharCode("setd");
    event.parameters.push_back(
        {keyDirectObject, buildInsertion(insertion.position, containerDescriptor(object))});
    event.parameters.push_back({fourCharCode("data"), toDescriptor(value)});
    send(*application, std::move(event));
    return;
  }
  const bool atEnd = insertion.position == fourCharCode("end ");
  const auto* list = object.list();
  if (!list || (!atEnd && insertion.position != fourCharCode("bgng"))) {
    throw Failure{eventErrors::notModifiable,
                  std::string("Can't set ") + (atEnd ? "end" : "beginning") + " of " +
                      displayText(object) + " to " + displayText(value) + ".",
                  object};
  }
  std::vector<Value>& items = (*list)->items();
  if (items.size() >= limits_.listItems) failOutOfMemory();
  rememberCycle(object, value);
  items.insert(atEnd ? items.end() : items.begin(), std::move(value));
}

void Interpreter::setDelimiters(const Value& value) {
  std::vector<std::string> texts;
  for (const Value& item : toListItems(value)) {
    texts.push_back(item.isMissing() ? std::string() : toText(item, rules_));
  }
  rules_.delimiters = std::move(texts);
  delimiters_ = dereference(value);
}

Value Interpreter::deepCopy(const Value& value, WorkBudget& budget, int depth) {
  if (depth > maximumValueDepth) failStackOverflow();
  budget.spend();
  if (const auto* list = value.list()) {
    if (const auto* received = (*list)->received()) {
      budget.spend(received->size());
      return std::make_shared<ListData>(*received, (*list)->origin());
    }
    std::vector<Value> items;
    items.reserve((*list)->size());
    for (const Value& item : (*list)->items()) items.push_back(deepCopy(item, budget, depth + 1));
    return Value::makeList(std::move(items));
  }
  if (const auto* record = value.record()) {
    std::vector<RecordData::Field> fields;
    for (const auto& [key, item] : (*record)->fields()) {
      fields.emplace_back(key, deepCopy(item, budget, depth + 1));
    }
    return std::make_shared<RecordData>(std::move(fields));
  }
  return value;
}

}  // namespace quorin::script
