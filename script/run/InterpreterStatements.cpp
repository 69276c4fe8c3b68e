// Running statements.
#include <cmath>

#include "kit/value/EventErrors.h"
#include "script/run/Interpreter.h"
#include "script/run/SpecifierBuilder.h"
#include "script/values/Coercion.h"
#include "script/values/Display.h"
#include "script/values/LocalObjects.h"
#include "script/values/ValueDescriptors.h"

namespace quorin::script {

Interpreter::Flow Interpreter::execute(const Block& block) {
  for (const Statement& statement : block) {
    checkBudgets();
    const Flow flow = std::visit([this](const auto& data) { return run(data); }, statement.data);
    if (flow != Flow::next) return flow;
  }
  return Flow::next;
}

Interpreter::Flow Interpreter::run(const ExpressionStatement& statement) {
  frame_->result = evaluateAny(*statement.expression).value_or(Value());
  return Flow::next;
}

Interpreter::Flow Interpreter::run(const Assignment& statement) {
  Value value = evaluate(*statement.value);
  if (statement.copies) {
    WorkBudget budget;
    value = deepCopy(value, budget);
  }
  assign(statement.target, value);
  frame_->result = std::move(value);
  return Flow::next;
}

bool Interpreter::isTrue(const Expression& condition) {
  return toBoolean(evaluate(condition));
}

Interpreter::Flow Interpreter::run(const If& statement) {
  for (const If::Branch& branch : statement.branches) {
    if (isTrue(*branch.condition)) return execute(branch.body);
  }
  return execute(statement.otherwise);
}

Interpreter::Flow Interpreter::run(const Repeat& statement) {
  double times = 0;
  if (statement.kind == Repeat::Kind::times) times = toInteger(evaluate(*statement.condition));
  for (double count = 0;; ++count) {
    checkBudgets();
    switch (statement.kind) {
      case Repeat::Kind::forever:
        break;
      case Repeat::Kind::times:
        if (count >= times) return Flow::next;
        break;
      case Repeat::Kind::whileTrue:
        if (!isTrue(*statement.condition)) return Flow::next;
        break;
      case Repeat::Kind::untilTrue:
        if (isTrue(*statement.condition)) return Flow::next;
        break;
    }
    const Flow flow = execute(statement.body);
    if (flow == Flow::returned) return flow;
    if (flow == Flow::exitRepeat) return Flow::next;
  }
}

Interpreter::Flow Interpreter::run(const RepeatCounting& statement) {
  const Value first = toNumber(evaluate(*statement.from));
  const Value step = statement.by ? toNumber(evaluate(*statement.by)) : Value(1);
  const double from = first.number();
  const double to = toReal(evaluate(*statement.to));
  const double by = step.number();
  const bool integers = first.as<std::int32_t>() && step.as<std::int32_t>();
  if (by == 0) throw Failure{eventErrors::badParameter, "The step of a repeat can't be 0."};
  for (double at = from; by > 0 ? at <= to : at >= to; at += by) {
    checkBudgets();
    assignTo(*statement.variable, at == from ? first : integers ? Value::number(at) : Value(at));
    const Flow flow = execute(statement.body);
    if (flow == Flow::returned) return flow;
    if (flow == Flow::exitRepeat) return Flow::next;
    if (at + by == at) failStackOverflow();  // a step too small to count with
  }
  return Flow::next;
}

Interpreter::Flow Interpreter::run(const RepeatItems& statement) {
  const Resolved source = resolve(*statement.items);
  Value items = dereference(source.value);
  if (items.specifier()) return repeatObjects(statement, items);
  if (items.record()) items = Value::makeList(toListItems(items));
  if (!items.list() && !items.text()) items = Value::makeList({items});
  const auto countOf = [&] {
    Selector length;
    length.code = fourCharCode("leng");
    return getPart(items, length, rules_).number();
  };
  const double count = countOf();
  for (std::int32_t i = 1; i <= count; ++i) {
    checkBudgets();
    Selector selector;
    selector.form = Form::index;
    selector.code = items.text() ? fourCharCode("cha ") : fourCharCode("cobj");
    selector.key = i;
    assignTo(*statement.variable,
             std::make_shared<const Reference>(Reference{items, std::move(selector), nullptr}));
    const Flow flow = execute(statement.body);
    if (flow == Flow::returned) return flow;
    if (flow == Flow::exitRepeat) return Flow::next;
  }
  return Flow::next;
}

// Over an application's objects each pass means `item k of` them, which the application resolves.
Interpreter::Flow Interpreter::repeatObjects(const RepeatItems& statement, const Value& objects) {
  const Specifier& specifier = *objects.specifier();
  AppleEvent event;
  event.eventClass = fourCharCode("core");
  event.eventID = fourCharCode("cnte");
  event.parameters.push_back({keyDirectObject, specifier.descriptor});
  const std::optional<Value> answer = send(*specifier.application, std::move(event));
  if (!answer) throw Failure{eventErrors::noResult, "No result was returned from counting."};
  const double count = toInteger(*answer);
  for (std::int32_t i = 1; i <= count; ++i) {
    checkBudgets();
    Selector selector;
    selector.form = Form::index;
    selector.code = fourCharCode("cobj");
    selector.key = i;
    assignTo(*statement.variable,
             std::make_shared<const Specifier>(
                 Specifier{buildSpecifier(selector, specifier.descriptor), specifier.application}));
    const Flow flow = execute(statement.body);
    if (flow == Flow::returned) return flow;
    if (flow == Flow::exitRepeat) return Flow::next;
  }
  return Flow::next;
}

Interpreter::Flow Interpreter::run(const ExitRepeat&) {
  return Flow::exitRepeat;
}

Interpreter::Flow Interpreter::run(const Return& statement) {
  frame_->result = statement.value ? evaluateAny(*statement.value).value_or(Value()) : Value();
  return Flow::returned;
}

Interpreter::Flow Interpreter::run(const Try& statement) {
  // Handled outside of the catch, so that nested errors do not pile up exceptions.
  std::optional<Failure> caught;
  try {
    return execute(statement.body);
  } catch (const Failure& failure) {
    if (statement.onlyNumber && *statement.onlyNumber != failure.number) throw;
    caught = failure;
  }
  return handleFailure(statement, *caught);
}

Interpreter::Flow Interpreter::handleFailure(const Try& statement, const Failure& failure) {
  const auto set = [&](const ExpressionPointer& variable, Value value) {
    if (variable) assignTo(*variable, std::move(value));
  };
  set(statement.message, failure.message);
  set(statement.number, failure.number);
  set(statement.offender, failure.offender.isNothing() ? Value::missing() : failure.offender);
  set(statement.partial, failure.partial.isNothing() ? Value::makeList() : failure.partial);
  set(statement.expected, failure.expected.isNothing() ? Value::missing() : failure.expected);
  return execute(statement.handler);
}

Interpreter::Flow Interpreter::run(const Raise& statement) {
  Failure failure{eventErrors::general, ""};
  if (statement.message)
    failure.message = toText(dereference(evaluate(*statement.message)), rules_);
  if (statement.number) failure.number = toInteger(evaluate(*statement.number));
  if (statement.offender) failure.offender = resolve(*statement.offender).value;
  if (statement.partial) failure.partial = evaluate(*statement.partial);
  if (statement.expected) failure.expected = evaluate(*statement.expected);
  throw Failure(std::move(failure));
}

Interpreter::Flow Interpreter::run(const Tell& statement) {
  const Value target = dereference(resolve(*statement.target).value);
  const Restoring<Value> tell(frame_->target, target);
  return execute(statement.body);
}

Interpreter::Flow Interpreter::run(const WithTimeout& statement) {
  const double seconds = toReal(evaluate(*statement.seconds));
  constexpr double longest = 86400.0 * 365;
  if (!(seconds > 0 && seconds <= longest)) {
    throw Failure{eventErrors::badParameter, "The timeout must be a positive number of seconds."};
  }
  const Restoring<std::chrono::milliseconds> timeout(
      sender_.timeout, std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1000)));
  return execute(statement.body);
}

Interpreter::Flow Interpreter::run(const Considering& statement) {
  const auto changed = [](const std::optional<bool>& wanted, bool current) {
    return wanted.value_or(current);
  };
  const Restoring<bool> letters(rules_.ignoreCase,
                                changed(statement.ignoreCase, rules_.ignoreCase));
  const Restoring<bool> marks(rules_.ignoreDiacriticals,
                              changed(statement.ignoreDiacriticals, rules_.ignoreDiacriticals));
  const Restoring<bool> hyphens(rules_.ignoreHyphens,
                                changed(statement.ignoreHyphens, rules_.ignoreHyphens));
  const Restoring<bool> punctuation(rules_.ignorePunctuation,
                                    changed(statement.ignorePunctuation, rules_.ignorePunctuation));
  const Restoring<bool> blanks(rules_.ignoreWhiteSpace,
                               changed(statement.ignoreWhiteSpace, rules_.ignoreWhiteSpace));
  const Restoring<bool> numbers(rules_.numericStrings,
                                changed(statement.numericStrings, rules_.numericStrings));
  const Restoring<bool> responses(sender_.ignoresResponses,
                                  changed(statement.ignoreResponses, sender_.ignoresResponses));
  return execute(statement.body);
}

}  // namespace quorin::script
