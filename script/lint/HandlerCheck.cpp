// Statements, and the rules about them.
#include "script/lint/HandlerCheck.h"

#include "script/terms/Words.h"

namespace quorin::script {
namespace {

// A tell to the script itself, or to something unknown, sends no events by itself.
Kind targetOf(const Kind& told) {
  return told.isForeign() ? told : Kind{};
}

bool isSelf(const Expression& expression) {
  return std::holds_alternative<Me>(expression.data);
}

}  // namespace

void HandlerCheck::run() {
  const Place outside;
  for (int pass = 0; pass < 3; ++pass) {
    reporting_ = pass == 2;
    for (const Pattern& parameter : handler_.parameters) assign(parameter, {}, outside);
    walk(handler_.body, outside);
  }
  const bool top = handler_.symbols.empty() ? false : !handler_.symbols.front().isLocal;
  if (!handler_.body.empty() && !top && !returns(handler_.body)) {
    report(handler_.body.back().position, LintRule::noReturn,
           "the handler " + handler_.name + " may end without \"return\"");
  }
}

void HandlerCheck::report(const Position& position, LintRule rule, std::string message) {
  if (reporting_ || rule == LintRule::noReturn) {
    findings_.push_back({position.line, rule, std::move(message)});
  }
}

void HandlerCheck::walk(const Block& block, const Place& place) {
  for (const Statement& statement : block) walk(statement, place);
}

void HandlerCheck::walk(const Statement& statement, const Place& place) {
  const auto& data = statement.data;
  if (const auto* expression = std::get_if<ExpressionStatement>(&data)) {
    visit(expression->expression, place);
  } else if (const auto* assignment = std::get_if<Assignment>(&data)) {
    walkAssignment(*assignment, place);
  } else if (const auto* choice = std::get_if<If>(&data)) {
    for (const If::Branch& branch : choice->branches) {
      visit(branch.condition, place);
      walk(branch.body, place);
    }
    walk(choice->otherwise, place);
  } else if (const auto* repeat = std::get_if<Repeat>(&data)) {
    visit(repeat->condition, place);
    walk(repeat->body, place);
  } else if (const auto* counting = std::get_if<RepeatCounting>(&data)) {
    visit(counting->from, place);
    visit(counting->to, place);
    visit(counting->by, place);
    Kind kind = kindOf(counting->from, place);
    if (counting->by) kind = joined(kind, kindOf(counting->by, place));
    introduce(counting->variable, kind);
    walk(counting->body, place);
  } else if (const auto* items = std::get_if<RepeatItems>(&data)) {
    walkRepeatItems(*items, place);
  } else if (const auto* leaving = std::get_if<Return>(&data)) {
    visit(leaving->value, place);
    checkStays(leaving->value, place);
  } else if (const auto* attempt = std::get_if<Try>(&data)) {
    walkTry(*attempt, place);
  } else if (const auto* raise = std::get_if<Raise>(&data)) {
    for (const auto* part : {&raise->message, &raise->number, &raise->offender, &raise->partial}) {
      visit(*part, place);
    }
  } else if (const auto* tell = std::get_if<Tell>(&data)) {
    visit(tell->target, place);
    const Kind told = isSelf(*tell->target) ? Kind{} : targetOf(kindOf(tell->target, place));
    // What is unknown inside a tell is an object of the same application.
    const bool stays = told == Kind{} && place.target.isForeign() && !isSelf(*tell->target);
    walk(tell->body, {stays ? Kind{Kind::Of::object, {}} : told, place.timed});
  } else if (const auto* timeout = std::get_if<WithTimeout>(&data)) {
    visit(timeout->seconds, place);
    walk(timeout->body, {place.target, true});
  } else if (const auto* considering = std::get_if<Considering>(&data)) {
    walk(considering->body, place);
  }
}

void HandlerCheck::walkAssignment(const Assignment& assignment, const Place& place) {
  visit(assignment.value, place);
  checkStays(assignment.value, place);
  assign(assignment.target, kindOf(assignment.value, place), place);
}

void HandlerCheck::assign(const Pattern& target, const Kind& kind, const Place& place) {
  if (const auto* parts = std::get_if<Pattern::Parts>(&target.data)) {
    for (const Pattern& item : parts->items) assign(item, {}, place);
    return;
  }
  const ExpressionPointer& expression = std::get<Pattern::Place>(target.data).target;
  if (std::holds_alternative<Variable>(expression->data)) {
    introduce(expression, kind);
  } else {
    visit(expression, place);
  }
}

void HandlerCheck::introduce(const ExpressionPointer& variable, const Kind& kind) {
  if (!variable) return;
  const auto* name = std::get_if<Variable>(&variable->data);
  if (!name) return;
  set_.insert(name->symbol);
  const auto [known, added] = kinds_.try_emplace(name->symbol, kind);
  if (!added) known->second = joined(known->second, kind);
  checkShadow(*variable);
}

void HandlerCheck::walkRepeatItems(const RepeatItems& repeat, const Place& place) {
  visit(repeat.items, place);
  const Kind kind = kindOf(repeat.items, place);
  const bool part = std::holds_alternative<Part>(repeat.items->data);
  if (part && (kind.of == Kind::Of::collection || kind.of == Kind::Of::list) &&
      ownerOf(std::get<Part>(repeat.items->data), place).isForeign()) {
    report(repeat.items->position, LintRule::valueForReference,
           "each pass asks the application for an item again: write (get ...)");
  }
  introduce(repeat.variable,
            kind.of == Kind::Of::collection ? Kind{Kind::Of::object, kind.className} : Kind{});
  walk(repeat.body, place);
}

void HandlerCheck::walkTry(const Try& attempt, const Place& place) {
  walk(attempt.body, place);
  introduce(attempt.message, {Kind::Of::text, {}});
  introduce(attempt.number, {Kind::Of::integer, {}});
  introduce(attempt.offender, {});
  introduce(attempt.partial, {});
  introduce(attempt.expected, {});
  walk(attempt.handler, place);
}

// True if every way through the block ends in a return or an error.
bool HandlerCheck::returns(const Block& block) {
  if (block.empty()) return false;
  const auto& data = block.back().data;
  if (std::holds_alternative<Return>(data) || std::holds_alternative<Raise>(data)) return true;
  if (const auto* tell = std::get_if<Tell>(&data)) return returns(tell->body);
  if (const auto* timeout = std::get_if<WithTimeout>(&data)) return returns(timeout->body);
  if (const auto* considering = std::get_if<Considering>(&data)) return returns(considering->body);
  if (const auto* attempt = std::get_if<Try>(&data)) {
    return returns(attempt->body) && returns(attempt->handler);
  }
  if (const auto* choice = std::get_if<If>(&data)) {
    for (const If::Branch& branch : choice->branches) {
      if (!returns(branch.body)) return false;
    }
    return returns(choice->otherwise);
  }
  return false;
}

void HandlerCheck::checkShadow(const Expression& variable) {
  const std::size_t offset = variable.position.offset;
  if (offset < source_.size() && source_[offset] == '|') return;  // never a term
  const std::string& name = handler_.symbols[std::get<Variable>(variable.data).symbol].name;
  const Term* term = classes_.terms().find(name);
  if (!term) return;
  if (term->type || term->plural || term->property || term->enumerator || term->command) {
    report(variable.position, LintRule::shadowedTerm,
           "the name " + name + " is a word of the application's dictionary");
  }
}

// An object that follows the user means another one as soon as the user goes elsewhere.
void HandlerCheck::checkStays(const ExpressionPointer& value, const Place& place) {
  if (!value) return;
  if (const auto* list = std::get_if<ListExpression>(&value->data)) {
    for (const ExpressionPointer& item : list->items) checkStays(item, place);
    return;
  }
  const auto* part = std::get_if<Part>(&value->data);
  if (!part || part->selector.form != Form::property) return;
  if (!ownerOf(*part, place).isForeign() || !classes_.followsUser(part->selector.code)) return;
  const auto name = classes_.terms().propertyName(part->selector.code);
  report(value->position, LintRule::valueForReference,
         std::string(name.value_or("it")) +
             " follows the user even when stored: keep its name or address");
}

}  // namespace quorin::script
