// Expressions: what kind of value they give, and the rules about them.
#include <algorithm>

#include "script/lint/HandlerCheck.h"
#include "script/terms/Words.h"

namespace quorin::script {
namespace {

// Properties that every object has, and elements that values of the language have too.
constexpr FourCharCode universal[] = {fourCharCode("pcls"), fourCharCode("pALL"),
                                      fourCharCode("pcnt"), fourCharCode("ID  "),
                                      fourCharCode("pidx"), fourCharCode("cobj")};
constexpr FourCharCode ofText[] = {fourCharCode("cha "), fourCharCode("cwor"), fourCharCode("cpar"),
                                   fourCharCode("citm"), fourCharCode("ctxt")};

template <std::size_t N>
bool isAmong(FourCharCode code, const FourCharCode (&codes)[N]) {
  return std::find(std::begin(codes), std::end(codes), code) != std::end(codes);
}

bool isMany(Form form) {
  return form == Form::all || form == Form::range || form == Form::test;
}

bool isCore(const CommandTerm& term, std::string_view identifier) {
  return term.eventClass == fourCharCode("core") && term.eventID == codeOf(identifier);
}

FourCharCode classNamedBy(const ExpressionPointer& expression) {
  const auto* literal = expression ? std::get_if<Literal>(&expression->data) : nullptr;
  const auto* constant = literal ? literal->value.as<Constant>() : nullptr;
  return constant && constant->kind == Constant::Kind::type ? constant->code : 0;
}

}  // namespace

Kind HandlerCheck::kindOf(const ExpressionPointer& expression, const Place& place) const {
  return expression ? kindOf(*expression, place) : Kind{};
}

Kind HandlerCheck::kindOf(const Expression& expression, const Place& place) const {
  const auto& data = expression.data;
  if (const auto* literal = std::get_if<Literal>(&data)) {
    const Value& value = literal->value;
    if (value.isMissing()) return {Kind::Of::missing, {}};
    if (value.as<std::int32_t>()) return {Kind::Of::integer, {}};
    if (value.as<double>()) return {Kind::Of::real, {}};
    if (value.text()) return {Kind::Of::text, {}};
    if (value.as<bool>()) return {Kind::Of::boolean, {}};
    if (value.application()) return {Kind::Of::application, "application"};
    return {Kind::Of::constant, {}};
  }
  if (const auto* variable = std::get_if<Variable>(&data)) {
    const auto known = kinds_.find(variable->symbol);
    return known == kinds_.end() ? Kind{} : known->second;
  }
  if (const auto* part = std::get_if<Part>(&data)) return kindOfPart(*part, place);
  if (const auto* binary = std::get_if<Binary>(&data)) return kindOfBinary(*binary, place);
  if (const auto* command = std::get_if<Command>(&data)) return kindOfCommand(*command, place);
  if (const auto* coercion = std::get_if<Coercion>(&data)) {
    switch (classNamedBy(coercion->type)) {
      case fourCharCode("ctxt"):
        return {Kind::Of::text, {}};
      case fourCharCode("long"):
        return {Kind::Of::integer, {}};
      case fourCharCode("doub"):
        return {Kind::Of::real, {}};
      case fourCharCode("nmbr"):
        return {Kind::Of::number, {}};
      case fourCharCode("list"):
        return {Kind::Of::list, {}};
      default:
        return {};
    }
  }
  if (const auto* negation = std::get_if<Negation>(&data)) return kindOf(negation->operand, place);
  if (std::holds_alternative<It>(data)) return place.target;
  if (std::holds_alternative<ApplicationByName>(data)) {
    return {Kind::Of::application, "application"};
  }
  if (std::holds_alternative<ListExpression>(data)) return {Kind::Of::list, {}};
  if (std::holds_alternative<RecordExpression>(data)) return {Kind::Of::record, {}};
  if (std::holds_alternative<Not>(data) || std::holds_alternative<Logical>(data) ||
      std::holds_alternative<IsRunning>(data)) {
    return {Kind::Of::boolean, {}};
  }
  return {};
}

Kind HandlerCheck::kindOfBinary(const Binary& binary, const Place& place) const {
  const Kind left = kindOf(binary.left, place);
  const Kind right = kindOf(binary.right, place);
  const bool integers = left.of == Kind::Of::integer && right.of == Kind::Of::integer;
  switch (binary.operation) {
    case Operator::add:
    case Operator::subtract:
    case Operator::multiply:
    case Operator::modulo:
      return {integers ? Kind::Of::integer : Kind::Of::number, {}};
    case Operator::wholeDivide:
      return {Kind::Of::integer, {}};
    case Operator::divide:
    case Operator::power:
      return {Kind::Of::real, {}};
    case Operator::concatenate:
      return left.of == Kind::Of::text ? left : Kind{};
    default:
      return {Kind::Of::boolean, {}};
  }
}

Kind HandlerCheck::kindOfCommand(const Command& command, const Place& place) const {
  if (isCore(*command.term, "cnte")) return {Kind::Of::integer, {}};
  if (isCore(*command.term, "getd")) return kindOf(command.direct, place);
  if (isCore(*command.term, "crel")) {
    for (const auto& [code, value] : command.parameters) {
      if (code == fourCharCode("kocl")) {
        return classes_.objectOf(classNamedBy(value), Kind::Of::object);
      }
    }
  }
  return classes_.kindOfType(command.term->resultType);
}

// Of what a part is a part; inside a tell what stands alone belongs to the target.
Kind HandlerCheck::ownerOf(const Part& part, const Place& place) const {
  return part.container ? kindOf(part.container, place) : place.target;
}

Kind HandlerCheck::kindOfPart(const Part& part, const Place& place) const {
  const Kind owner = ownerOf(part, place);
  const Selector& selector = part.selector;
  if (selector.form == Form::label) return {};
  if (selector.form == Form::property) {
    if (selector.code == fourCharCode("leng")) return {Kind::Of::integer, {}};
    if (!owner.isForeign()) return {};
    const MemberTerm* member = classes_.member(owner.className, selector.code, false);
    const Kind kind = member ? classes_.kindOfType(member->type) : Kind{};
    if (owner.of != Kind::Of::collection) return kind;
    return kind.of == Kind::Of::object ? Kind{Kind::Of::collection, kind.className}
                                       : Kind{Kind::Of::list, {}};
  }
  if (isAmong(selector.code, ofText)) {
    return isMany(selector.form) && selector.code != fourCharCode("ctxt")
               ? Kind{Kind::Of::list, {}}
               : Kind{Kind::Of::text, {}};
  }
  const bool many = isMany(selector.form) || owner.of == Kind::Of::collection;
  if (selector.code == fourCharCode("cobj")) return {};
  return classes_.objectOf(selector.code, many ? Kind::Of::collection : Kind::Of::object);
}

void HandlerCheck::visit(const ExpressionPointer& expression, const Place& place) {
  if (!expression) return;
  const auto& data = expression->data;
  const auto all = [&](const std::vector<ExpressionPointer>& items) {
    for (const ExpressionPointer& item : items) visit(item, place);
  };
  if (const auto* variable = std::get_if<Variable>(&data)) {
    checkUse(*variable, expression->position);
  } else if (const auto* part = std::get_if<Part>(&data)) {
    visitPart(*part, expression->position, place);
  } else if (const auto* command = std::get_if<Command>(&data)) {
    visitCommand(*command, expression->position, place);
  } else if (const auto* call = std::get_if<HandlerCall>(&data)) {
    all(call->arguments);
    visit(call->target, place);
    if (!call->target && place.target.isForeign()) {
      report(expression->position, LintRule::callWithoutMy,
             "the call of " + call->name + " goes to the application: write my " + call->name);
    }
  } else if (const auto* list = std::get_if<ListExpression>(&data)) {
    all(list->items);
  } else if (const auto* record = std::get_if<RecordExpression>(&data)) {
    for (const auto& [key, value] : record->fields) visit(value, place);
  } else if (const auto* negation = std::get_if<Negation>(&data)) {
    visit(negation->operand, place);
  } else if (const auto* denial = std::get_if<Not>(&data)) {
    visit(denial->operand, place);
  } else if (const auto* logical = std::get_if<Logical>(&data)) {
    visit(logical->left, place);
    visit(logical->right, place);
  } else if (const auto* binary = std::get_if<Binary>(&data)) {
    visit(binary->left, place);
    visit(binary->right, place);
    if (binary->operation == Operator::concatenate) {
      if (kindOf(binary->left, place).of == Kind::Of::text) checkTextOf(binary->right, place);
    }
  } else if (const auto* coercion = std::get_if<Coercion>(&data)) {
    visit(coercion->operand, place);
    if (classNamedBy(coercion->type) == fourCharCode("ctxt")) checkTextOf(coercion->operand, place);
  } else if (const auto* insertion = std::get_if<Insertion>(&data)) {
    visit(insertion->object, place);
  } else if (const auto* reference = std::get_if<ReferenceTo>(&data)) {
    visit(reference->object, place);
  }
}

void HandlerCheck::visitPart(const Part& part, const Position& position, const Place& place) {
  visit(part.key, place);
  visit(part.upper, place);
  visit(part.container, place);
  const Kind owner = ownerOf(part, place);
  if (part.filter) {
    // What stands alone in a test belongs to each element.
    const Kind each = classes_.objectOf(part.selector.code, Kind::Of::object);
    visit(part.filter, {each.of == Kind::Of::object ? each : place.target, true});
  }
  checkMember(part, owner, position);
  if (owner.isForeign()) checkTime(position, place);
}

void HandlerCheck::visitCommand(const Command& command, const Position& position,
                                const Place& place) {
  visit(command.direct, place);
  for (const auto& [code, value] : command.parameters) visit(value, place);
  if (!place.target.isForeign()) return;
  const Kind direct = kindOf(command.direct, place);
  const bool local =
      command.direct && !direct.isForeign() && command.term->eventClass == fourCharCode("core");
  if (!local) checkTime(position, place);
  checkRequired(command, position, place);
  if (isCore(*command.term, "crel")) {
    const Kind made = kindOfCommand(command, place);
    for (const auto& [code, value] : command.parameters) {
      const auto* record = std::get_if<RecordExpression>(&value->data);
      if (code != fourCharCode("prdt") || !record || made.of != Kind::Of::object) continue;
      for (const auto& [key, field] : record->fields) {
        if (key.code && classes_.member(made.className, key.code, false)) continue;
        report(position, LintRule::notOfClass,
               "the class " + made.className + " has no property of that label");
      }
    }
  }
  const std::string_view wanted = command.term->directType;
  if (direct.isPlain() && classes_.kindOfType(wanted).of == Kind::Of::object) {
    report(position, LintRule::valueForReference,
           command.term->term + " needs an object and is given a value");
  }
}

void HandlerCheck::checkMember(const Part& part, const Kind& owner, const Position& position) {
  const Selector& selector = part.selector;
  if (isAmong(selector.code, universal)) return;
  const bool element = selector.form != Form::property && selector.form != Form::label;
  const auto name = element ? classes_.terms().className(selector.code)
                            : classes_.terms().propertyName(selector.code);
  const std::string word =
      selector.form == Form::label ? selector.label : std::string(name.value_or("that"));
  if (owner.isPlain() && selector.origin && !isAmong(selector.code, ofText)) {
    // What get answered was stored, not the object.
    report(position, LintRule::valueForReference, word + " is asked of a value, not of an object");
    return;
  }
  if (!owner.isForeign()) return;
  if (selector.form == Form::label) {
    report(position, LintRule::unknownTerm, word + " is no word of the application's dictionary");
    return;
  }
  if (owner.className.empty() || !classes_.describes(owner.className)) return;
  if (element && owner.of == Kind::Of::application) return;
  if (classes_.member(owner.className, selector.code, element)) return;
  report(position, LintRule::notOfClass,
         "the class " + owner.className + " has no " + (element ? "element " : "property ") + word);
}

void HandlerCheck::checkTextOf(const ExpressionPointer& number, const Place& place) {
  if (!kindOf(number, place).mayBeReal()) return;
  report(number->position, LintRule::numberAsText,
         "a number as text follows the user's separators and exponents");
}

void HandlerCheck::checkTime(const Position& position, const Place& place) {
  if (place.timed) return;
  report(position, LintRule::noTimeout, "an event is sent outside of \"with timeout\"");
}

void HandlerCheck::checkRequired(const Command& command, const Position& position,
                                 const Place& place) {
  for (const ParameterTerm& label : command.term->parameters) {
    const bool given = std::any_of(command.parameters.begin(), command.parameters.end(),
                                   [&](const auto& each) { return each.first == label.code; });
    if (!label.required || given) continue;
    report(position, LintRule::missingParameter,
           command.term->term + " lacks its parameter " + label.label);
  }
  const bool target = place.target.of != Kind::Of::application;
  if (command.term->directRequired && !command.direct && !target) {
    report(position, LintRule::missingParameter, command.term->term + " lacks its object");
  }
}

void HandlerCheck::checkUse(const Variable& variable, const Position& position) {
  const Symbol& symbol = handler_.symbols[variable.symbol];
  if (!symbol.isLocal || set_.contains(variable.symbol)) return;
  report(position, LintRule::unknownTerm,
         symbol.name + " is neither a word of the dictionary nor a variable that is ever set");
}

}  // namespace quorin::script
