// Objects and their parts: what binds tighter than every operator.
#include "script/parse/Parser.h"
#include "script/terms/Words.h"

namespace quorin::script {
namespace {

bool canBeFiltered(const Expression& expression) {
  const auto* part = std::get_if<Part>(&expression.data);
  if (!part || part->filter) return false;
  switch (part->selector.form) {
    case Form::all:
    case Form::first:
    case Form::middle:
    case Form::last:
    case Form::any:
      return true;
    default:
      return false;
  }
}

}  // namespace

// An object, or whether it exists.
ExpressionPointer Parser::parseOperand() {
  const Position start = peek().position;
  ExpressionPointer object = parseObject();
  const bool negated = atWords("does not exist") || atWords("doesn't exist");
  if (atLabel() || (!negated && !atWord("exists"))) return object;
  if (!takeWords("does not exist") && !takeWords("doesn't exist")) take();
  const CommandTerm* exists =
      languageTerminology().command(fourCharCode("core"), fourCharCode("doex"));
  object = make(Command{exists, std::move(object), {}}, since(start));
  return negated ? make(Not{std::move(object)}, since(start)) : std::move(object);
}

ExpressionPointer Parser::parseObject() {
  const Nesting nesting(*this);
  return parseObjectAfter(parsePrimary());
}

// What may follow an object: 's, a filter, its container.
ExpressionPointer Parser::parseObjectAfter(ExpressionPointer object) {
  for (;;) {
    if (takeSymbol("'s")) {
      object = parsePossessed(std::move(object));
    } else if ((atWord("whose") || atWord("where")) && !atLabel() && canBeFiltered(*object)) {
      object = parseFilter(std::move(object));
    } else if ((atWord("of") || atWord("in")) && !atLabel()) {
      const std::size_t before = at_;
      take();
      if (!attach(object, nullptr)) {
        at_ = before;
        return object;
      }
      attach(object, parseObject());
    } else {
      return object;
    }
  }
}

// Gives the object its container; with none, only tells whether the object can take one.
bool Parser::attach(ExpressionPointer& object, ExpressionPointer container) {
  if (auto* part = std::get_if<Part>(&object->data)) {
    if (part->container) return false;
    if (!container) return true;
    Part taken = std::move(*part);
    taken.container = std::move(container);
    object = make(std::move(taken), since(object->position));
    return true;
  }
  if (auto* call = std::get_if<HandlerCall>(&object->data)) {
    if (call->target) return false;
    if (!container) return true;
    HandlerCall taken = std::move(*call);
    taken.target = std::move(container);
    object = make(std::move(taken), since(object->position));
    return true;
  }
  if (const auto* variable = std::get_if<Variable>(&object->data)) {
    if (!container) return true;
    Part label;
    label.selector.form = Form::label;
    label.selector.label = scope_->handler->symbols[variable->symbol].name;
    label.container = std::move(container);
    object = make(std::move(label), since(object->position));
    return true;
  }
  if (const auto* literal = std::get_if<Literal>(&object->data)) {
    // A class after which a container follows names the part of that class: text of x.
    const auto* constant = literal->value.as<Constant>();
    if (!constant || constant->kind != Constant::Kind::type ||
        constant->code == fourCharCode("msng")) {
      return false;
    }
    if (!container) return true;
    Part part;
    part.selector.code = constant->code;
    part.selector.origin = constant->origin;
    part.container = std::move(container);
    object = make(std::move(part), since(object->position));
    return true;
  }
  return false;
}

ExpressionPointer Parser::parsePossessed(ExpressionPointer container) {
  const Nesting nesting(*this);
  const Position start = container->position;
  ExpressionPointer member = parsePrimary(true);
  if (!attach(member, nullptr)) failExpected("property or element");
  attach(member, std::move(container));
  member->position = since(start);
  return member;
}

ExpressionPointer Parser::parseFilter(ExpressionPointer object) {
  const Nesting nesting(*this);
  take();
  Part part = std::move(std::get<Part>(object->data));
  const Restoring<bool> inside(inFilter_, true);
  const Restoring<const CommandTerm*> labels(command_, nullptr);
  part.filter = parseExpression();
  return make(std::move(part), since(object->position));
}

ExpressionPointer Parser::parsePrimary(bool asMember) {
  const Nesting nesting(*this);
  skipArticle();
  switch (peek().kind) {
    case Token::Kind::integer:
    case Token::Kind::real:
    case Token::Kind::string:
      if (!asMember) return parseLiteral();
      break;
    case Token::Kind::ordinal:
      return parseOrdinal();
    case Token::Kind::rawCode:
      return parseRawCode();
    case Token::Kind::escaped:
      return parseIdentifier();
    case Token::Kind::symbol:
      if (asMember) break;
      if (atSymbol("(")) return parseParenthesised();
      if (atSymbol("{")) return parseBraces();
      break;
    case Token::Kind::word: {
      const Meaning meaning = meaningAt();
      if (meaning.words > 1) return parseTerm(meaning, asMember);
      if (ExpressionPointer found = parseKeyword()) return found;
      if (meaning.words == 1) return parseTerm(meaning, asMember);
      if (atIdentifier()) return parseIdentifier();
      break;
    }
    default:
      break;
  }
  failExpected(asMember ? "property or element" : "expression");
}

ExpressionPointer Parser::parseLiteral() {
  const Token& token = take();
  if (token.kind == Token::Kind::string) return make(Literal{token.text}, token.position);
  if (token.kind == Token::Kind::real) return make(Literal{token.number}, token.position);
  return make(Literal{static_cast<std::int32_t>(token.number)}, token.position);
}

ExpressionPointer Parser::parseParenthesised() {
  const Position start = take().position;
  const Restoring<const CommandTerm*> labels(command_, nullptr);
  ExpressionPointer inner = parseExpression();
  expectSymbol(")");
  inner->position = since(start);
  return inner;
}

ExpressionPointer Parser::parseIdentifier() {
  const Token& name = take();
  if (atSymbol("(") && !atLineEnd()) {
    HandlerCall call;
    call.name = name.kind == Token::Kind::escaped ? name.text : std::string(name.spelling);
    call.arguments = parseArguments();
    return make(std::move(call), since(name.position));
  }
  if (name.kind == Token::Kind::word && name.text == "offset" && atWord("of")) {
    failUnsupported("The scripting addition's command \"offset\"");
  }
  return make(Variable{symbol(name)}, name.position);
}

std::vector<ExpressionPointer> Parser::parseArguments() {
  const Nesting nesting(*this);
  const Restoring<const CommandTerm*> labels(command_, nullptr);
  std::vector<ExpressionPointer> arguments;
  expectSymbol("(");
  if (takeSymbol(")")) return arguments;
  do {
    arguments.push_back(parseExpression());
  } while (takeSymbol(","));
  expectSymbol(")");
  return arguments;
}

bool Parser::atRecordLabel(std::size_t& tokens, RecordKey& key) const {
  const Meaning meaning = meaningAt();
  if (meaning.words > 0 && atSymbol(":", meaning.words)) {
    tokens = meaning.words;
    const std::optional<FourCharCode> code = meaning.property ? meaning.property
                                             : meaning.type   ? meaning.type
                                                              : meaning.enumerator;
    key = code ? RecordKey{*code, {}} : RecordKey{0, std::string(meaning.spelling)};
    return true;
  }
  if (peek().kind == Token::Kind::rawCode && peek().text == "property" && atSymbol(":", 1)) {
    tokens = 1;
    key = {peek().code, {}};
    return true;
  }
  if (!atIdentifier() || !atSymbol(":", 1)) return false;
  tokens = 1;
  key = {0, peek().kind == Token::Kind::escaped ? peek().text : std::string(peek().spelling)};
  return true;
}

ExpressionPointer Parser::parseBraces() {
  const Position start = take().position;
  const Restoring<const CommandTerm*> labels(command_, nullptr);
  std::size_t tokens = 0;
  RecordKey key;
  if (!atRecordLabel(tokens, key)) {
    ListExpression list;
    if (!takeSymbol("}")) {
      do {
        list.items.push_back(parseExpression());
      } while (takeSymbol(","));
      expectSymbol("}");
    }
    return make(std::move(list), since(start));
  }
  RecordExpression record;
  do {
    if (!atRecordLabel(tokens, key)) failExpected("label");
    at_ += tokens + 1;
    record.fields.emplace_back(key, parseExpression());
  } while (takeSymbol(","));
  expectSymbol("}");
  return make(std::move(record), since(start));
}

}  // namespace quorin::script
