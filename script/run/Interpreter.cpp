// Calls from outside, handlers and their frames, and the limits of a running script.
#include "script/run/Interpreter.h"

#include "kit/value/EventErrors.h"
#include "script/terms/Words.h"
#include "script/values/Coercion.h"
#include "script/values/Display.h"
#include "script/values/LocalObjects.h"
#include "script/values/ValueDescriptors.h"

namespace quorin::script {

Interpreter::Interpreter(Program program, Applications& applications)
    : program_(std::move(program)), applications_(applications) {
  globals_.reserve(program_.globals.size());
  for (std::size_t i = 0; i < program_.globals.size(); ++i) {
    globals_.push_back(std::make_shared<Value>());
  }
}

Interpreter::~Interpreter() {
  breakCycles(true);
  for (const auto& global : globals_) *global = Value();
}

void Interpreter::setLimits(const ScriptLimits& limits) {
  limits_ = limits;
  rules_.maximumText = limits.textBytes;
  rules_.maximumItems = limits.listItems;
}

ScriptOutcome Interpreter::call(const AppleEvent& event) {
  const char here = 0;
  stackBase_ = &here;
  steps_ = 0;
  cancelled_ = false;
  sender_.timeout = EventSender::defaultTimeout;
  ScriptOutcome outcome;
  try {
    Value value = perform(event);
    if (!value.isNothing()) outcome.result = takeDescriptor(std::move(value));
  } catch (const Failure& failure) {
    outcome.error = ScriptError{failure.number, failure.message};
  } catch (const Stopped&) {
    outcome.error = ScriptError{eventErrors::userCancelled, "User canceled."};
  } catch (const std::bad_alloc&) {
    outcome.error = ScriptError{eventErrors::outOfMemory, "Out of memory."};
  }
  frame_ = nullptr;
  breakCycles(false);
  return outcome;
}

Value Interpreter::perform(const AppleEvent& event) {
  initialize();
  const bool subroutine =
      event.eventClass == fourCharCode("ascr") && event.eventID == fourCharCode("psbr");
  const bool runs =
      event.eventClass == fourCharCode("aevt") && event.eventID == fourCharCode("oapp");
  if (!subroutine && !runs) failNoHandler("event");
  std::vector<Value> arguments;
  if (const AppleEventDescriptor* direct = event.parameter(keyDirectObject)) {
    if (direct->type() == fourCharCode("list")) {
      for (const AppleEventDescriptor& item : direct->items()) {
        arguments.push_back(fromDescriptor(item, nullptr));
      }
    } else {
      arguments.push_back(fromDescriptor(*direct, nullptr));
    }
  }
  if (runs) {
    if (!program_.run) return {};
    const Handler& handler = program_.handlers[*program_.run];
    if (handler.parameters.empty()) arguments.clear();
    return callHandler(handler, std::move(arguments)).value_or(Value());
  }
  const AppleEventDescriptor* name = event.parameter(fourCharCode("snam"));
  const std::string spelled(name ? name->stringValue().value_or("") : "");
  const Handler* handler = program_.find(spelled);
  if (!handler) failNoHandler(spelled);
  return callHandler(*handler, std::move(arguments)).value_or(Value());
}

// The properties take their first values before the first handler runs.
void Interpreter::initialize() {
  if (initialized_) return;
  Frame frame;
  frame.handler = &program_.initializer;
  frame.target = ScriptSelf{};
  const Restoring<Frame*> current(frame_, &frame);
  for (const Property& property : program_.properties) {
    *globals_[property.slot] = evaluate(*property.value);
  }
  initialized_ = true;
}

void Interpreter::failNoHandler(const std::string& name) {
  throw Failure{eventErrors::notUnderstood,
                "\xC2\xABscript\xC2\xBB doesn't understand the " + name + " message."};
}

std::optional<Value> Interpreter::callHandler(const Handler& handler,
                                              std::vector<Value> arguments) {
  checkBudgets();
  Frame frame;
  frame.handler = &handler;
  frame.locals.resize(handler.locals);
  frame.target = ScriptSelf{};
  const Restoring<Frame*> current(frame_, &frame);
  bindParameters(handler, arguments);
  execute(handler.body);
  if (frame.result.isNothing()) return std::nullopt;
  return std::move(frame.result);
}

void Interpreter::bindParameters(const Handler& handler, std::vector<Value>& arguments) {
  if (arguments.size() != handler.parameters.size()) {
    std::string names;
    for (const Pattern& parameter : handler.parameters) {
      const auto* place = std::get_if<Pattern::Place>(&parameter.data);
      const auto* variable = place ? std::get_if<Variable>(&place->target->data) : nullptr;
      names += names.empty() ? "" : ", ";
      names += variable ? handler.symbols[variable->symbol].name : "{...}";
    }
    throw Failure{eventErrors::wrongArguments, displayText(Value::makeList(std::move(arguments))) +
                                                   " doesn't match the parameters {" + names +
                                                   "} for " + handler.name + "."};
  }
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const Pattern& parameter = handler.parameters[i];
    Value& argument = arguments[i];
    if (parameter.type) argument = coerce(argument, *parameter.type, rules_);
    assign(parameter, std::move(argument));
  }
}

std::optional<Value> Interpreter::callByName(const HandlerCall& call) {
  const Restoring<bool> outsideOfFilters(frame_->examining, false);
  std::vector<Value> arguments;
  arguments.reserve(call.arguments.size());
  for (const ExpressionPointer& argument : call.arguments) arguments.push_back(evaluate(*argument));
  const Value target = dereference(call.target ? resolve(*call.target).value : frame_->target);
  if (Application* application = target.application()) {
    AppleEvent event;
    event.eventClass = fourCharCode("ascr");
    event.eventID = fourCharCode("psbr");
    event.parameters.push_back(
        {keyDirectObject, toDescriptor(Value::makeList(std::move(arguments)))});
    event.parameters.push_back({fourCharCode("snam"), AppleEventDescriptor::text(call.name)});
    if (const Specifier* object = target.specifier()) {
      event.attributes.push_back({keySubject, object->descriptor});
    }
    return sender_.send(*application, event);
  }
  const Handler* handler = program_.find(call.name);
  if (!handler || (call.target && !target.as<ScriptSelf>())) {
    if (!call.target || target.as<ScriptSelf>()) failNoHandler(call.name);
    throw Failure{eventErrors::notUnderstood,
                  displayText(target) + " doesn't understand the " + call.name + " message.",
                  target};
  }
  return callHandler(*handler, std::move(arguments));
}

void Interpreter::checkBudgets() {
  ++steps_;
  if (cancelled_.load(std::memory_order_relaxed)) throw Stopped{};
  if (limits_.steps != 0 && steps_ > limits_.steps) throw Stopped{};
  const char here = 0;
  const auto used = stackBase_ > &here ? stackBase_ - &here : &here - stackBase_;
  if (static_cast<std::size_t>(used) > limits_.stackBytes) failStackOverflow();
}

void Interpreter::rememberCycle(const Value& container, const Value& value) {
  if (!value.list() && !value.record() && !value.reference()) return;
  if (!reaches(value, container)) return;
  if (const auto* list = container.list()) cyclicLists_.push_back(*list);
  if (const auto* record = container.record()) cyclicRecords_.push_back(*record);
}

// Lists and records that hold themselves would never be freed; those that no property or global
// leads to any more are emptied.
void Interpreter::breakCycles(bool all) {
  const auto isUsed = [&](const Value& value) {
    if (all) return false;
    for (const auto& global : globals_) {
      if (reaches(*global, value)) return true;
    }
    return false;
  };
  std::erase_if(cyclicLists_, [&](const std::weak_ptr<ListData>& each) {
    const Value::List list = each.lock();
    if (!list) return true;
    if (isUsed(list)) return false;
    list->items().clear();
    return true;
  });
  std::erase_if(cyclicRecords_, [&](const std::weak_ptr<RecordData>& each) {
    const Value::Record record = each.lock();
    if (!record) return true;
    if (isUsed(record)) return false;
    record->fields().clear();
    return true;
  });
}

}  // namespace quorin::script
