// Evaluating expressions that are no objects.
#include "kit/value/EventErrors.h"
#include "script/run/Interpreter.h"
#include "script/values/Coercion.h"
#include "script/values/Display.h"
#include "script/values/LocalObjects.h"

namespace quorin::script {

Value Interpreter::evaluate(const Expression& expression) {
  std::optional<Value> value = evaluateAny(expression);
  if (!value || value->isNothing()) {
    throw Failure{eventErrors::noResult,
                  "No result was returned from some part of this expression."};
  }
  return std::move(*value);
}

// The expression as a value: an application's object that was just named is got.
std::optional<Value> Interpreter::evaluateAny(const Expression& expression) {
  checkBudgets();
  if (!std::holds_alternative<Part>(expression.data)) return compute(expression);
  Resolved resolved = resolvePart(std::get<Part>(expression.data));
  return resolved.pending ? fetchObject(resolved.value) : std::move(resolved.value);
}

// The expression as a parameter or container: such an object stays as it was named.
Interpreter::Resolved Interpreter::resolve(const Expression& expression) {
  if (const auto* part = std::get_if<Part>(&expression.data)) {
    checkBudgets();
    return resolvePart(*part);
  }
  if (const auto* insertion = std::get_if<Insertion>(&expression.data)) {
    checkBudgets();
    return resolveInsertion(*insertion);
  }
  return {evaluate(expression), false};
}

std::optional<Value> Interpreter::compute(const Expression& expression) {
  struct Visitor {
    Interpreter& self;
    const Expression& expression;
    std::optional<Value> operator()(const Literal& literal) const { return literal.value; }
    std::optional<Value> operator()(const Variable& name) const {
      const Value& value = self.variable(name);
      if (!value.isNothing()) return value;
      const std::string& spelling = self.frame_->handler->symbols[name.symbol].name;
      throw Failure{eventErrors::undefinedVariable,
                    "The variable " + spelling + " is not defined."};
    }
    std::optional<Value> operator()(const ListExpression& list) const {
      return self.computeList(list);
    }
    std::optional<Value> operator()(const RecordExpression& record) const {
      return self.computeRecord(record);
    }
    std::optional<Value> operator()(const Negation& negation) const {
      return negate(dereference(self.evaluate(*negation.operand)));
    }
    std::optional<Value> operator()(const Not& negation) const {
      return !toBoolean(self.evaluate(*negation.operand));
    }
    std::optional<Value> operator()(const Logical& logical) const {
      const bool left = toBoolean(self.evaluate(*logical.left));
      if (left != logical.isAnd) return left;
      return toBoolean(self.evaluate(*logical.right));
    }
    std::optional<Value> operator()(const Binary& binary) const {
      return self.computeBinary(binary);
    }
    std::optional<Value> operator()(const Coercion& coercion) const {
      return self.computeCoercion(coercion);
    }
    std::optional<Value> operator()(const Part& part) const { return self.resolvePart(part).value; }
    std::optional<Value> operator()(const Insertion& insertion) const {
      return self.resolveInsertion(insertion).value;
    }
    std::optional<Value> operator()(const Command& command) const {
      return self.runCommand(command);
    }
    std::optional<Value> operator()(const HandlerCall& call) const { return self.callByName(call); }
    std::optional<Value> operator()(const It&) const { return self.frame_->target; }
    std::optional<Value> operator()(const Me&) const { return Value(ScriptSelf{}); }
    std::optional<Value> operator()(const Language&) const { return Value(LanguageSelf{}); }
    std::optional<Value> operator()(const Result&) const {
      if (!self.frame_->result.isNothing()) return self.frame_->result;
      throw Failure{eventErrors::undefinedVariable, "The variable result is not defined."};
    }
    std::optional<Value> operator()(const ApplicationByName& application) const {
      return self.applicationByName(application);
    }
    std::optional<Value> operator()(const ReferenceTo& reference) const {
      return self.computeReference(reference);
    }
    std::optional<Value> operator()(const IsRunning& running) const {
      const Value application = self.evaluate(*running.application);
      return application.application()->isRunning();
    }
  };
  return std::visit(Visitor{*this, expression}, expression.data);
}

Value Interpreter::computeBinary(const Binary& binary) {
  const Value left = evaluate(*binary.left);
  const Value right = evaluate(*binary.right);
  return apply(binary.operation, left, right, rules_);
}

Value Interpreter::computeCoercion(const Coercion& coercion) {
  const Value value = evaluate(*coercion.operand);
  const Value type = dereference(evaluate(*coercion.type));
  // All of them before the first is tried: "3 as text & \"a\"" asks for no class.
  std::vector<FourCharCode> classes;
  for (const Value& each : toListItems(type)) {
    const auto* constant = each.as<Constant>();
    if (!constant || constant->kind != Constant::Kind::type) {
      throw Failure{eventErrors::cannotCoerce,
                    "Can't make " + displayText(each) + " into type class.", each};
    }
    classes.push_back(constant->code);
  }
  std::optional<Failure> first;
  for (const FourCharCode each : classes) {
    try {
      return coerce(value, each, rules_);
    } catch (const Failure& failure) {
      if (failure.number != eventErrors::cannotCoerce) throw;
      if (!first) first = failure;
    }
  }
  if (!first) first = Failure{eventErrors::cannotCoerce, "Can't make a value into no type."};
  throw Failure(*first);
}

Value Interpreter::computeList(const ListExpression& list) {
  std::vector<Value> items;
  items.reserve(list.items.size());
  for (const ExpressionPointer& item : list.items) items.push_back(evaluate(*item));
  return Value::makeList(std::move(items));
}

Value Interpreter::computeRecord(const RecordExpression& record) {
  std::vector<RecordData::Field> fields;
  fields.reserve(record.fields.size());
  for (const auto& [key, value] : record.fields) fields.emplace_back(key, evaluate(*value));
  return std::make_shared<RecordData>(std::move(fields));
}

Value Interpreter::computeReference(const ReferenceTo& reference) {
  if (const auto* name = std::get_if<Variable>(&reference.object->data)) {
    const Symbol& symbol = frame_->handler->symbols[name->symbol];
    return std::make_shared<const Reference>(Reference{{}, {}, globals_[symbol.slot]});
  }
  const Part& part = std::get<Part>(reference.object->data);
  const Resolved holder = containerOf(part);
  const Value container = dereference(holder.value);
  if (container.application()) return resolveIn(part, holder).value;
  Selector selector = selectorOf(part, container);
  if (container.as<ScriptSelf>() && selector.form == Form::label) {
    for (std::size_t i = 0; i < program_.globals.size(); ++i) {
      if (globalNamed(selector.label) == globals_[i].get()) {
        return std::make_shared<const Reference>(Reference{{}, {}, globals_[i]});
      }
    }
  }
  return std::make_shared<const Reference>(Reference{container, std::move(selector), nullptr});
}

Value Interpreter::applicationByName(const ApplicationByName& application) {
  const std::string name = toText(dereference(evaluate(*application.name)), rules_);
  Application* found =
      application.isIdentifier ? applications_.identified(name) : applications_.named(name);
  if (!found) failCannotGet("application " + inQuotes(name));
  return ApplicationObject{found};
}

}  // namespace quorin::script
