// Applications, references, places between elements and raw codes.
#include "kit/value/EventErrors.h"
#include "script/parse/Parser.h"

namespace quorin::script {

ExpressionPointer Parser::parseApplication() {
  const Position start = take().position;
  if (atWord("id")) {
    take();
    if (peek().kind == Token::Kind::string) {
      const Token& name = take();
      Application* application = applications_.identified(name.text);
      if (!application) {
        fail(name.position, "Can't get application id \"" + name.text + "\".",
             eventErrors::noSuchObject);
      }
      return make(Literal{ApplicationObject{application}}, since(start));
    }
    return make(ApplicationByName{parseKey(), true}, since(start));
  }
  if (peek().kind == Token::Kind::string) {
    const Token& name = take();
    Application* application = applications_.named(name.text);
    if (!application)
      fail(name.position, "Can't get application \"" + name.text + "\".",
           eventErrors::noSuchObject);
    return make(Literal{ApplicationObject{application}}, since(start));
  }
  if (atSymbol("(") || atIdentifier()) {
    return make(ApplicationByName{parseKey(), false}, since(start));
  }
  return make(Literal{Value::type(fourCharCode("capp"))}, since(start));
}

ExpressionPointer Parser::parseReferenceTo() {
  const Position start = peek().position;
  if (atWord("a")) take();
  at_ += 2;
  skipArticle();
  ExpressionPointer object = parseObject();
  if (const auto* variable = std::get_if<Variable>(&object->data)) {
    scope_->referenced.emplace_back(variable->symbol, object->position);
  } else if (!std::holds_alternative<Part>(object->data)) {
    fail(object->position, "Expected a reference but found a value.");
  }
  return make(ReferenceTo{std::move(object)}, since(start));
}

ExpressionPointer Parser::parseInsertion(FourCharCode position, bool relative) {
  const Position start = take().position;
  Insertion insertion;
  insertion.position = position;
  if (relative || takeWord("of") || takeWord("in")) insertion.object = parseObject();
  return make(std::move(insertion), since(start));
}

ExpressionPointer Parser::parseRawCode() {
  const Token& token = take();
  if (token.text == "property") {
    Part part;
    part.selector.code = token.code;
    return make(std::move(part), token.position);
  }
  if (token.text == "constant") {
    return make(Literal{Constant{Constant::Kind::enumerator, token.secondCode}}, token.position);
  }
  if (token.text == "event") {
    return parseCommand(rawCommand(token), token.position);
  }
  Part part;
  part.selector.code = token.code;
  if (parseKeyForm(part)) return make(std::move(part), since(token.position));
  if ((atWord("whose") || atWord("where")) && !atLabel()) {
    part.selector.form = Form::all;
    return make(std::move(part), since(token.position));
  }
  return make(Literal{Value::type(token.code)}, token.position);
}

}  // namespace quorin::script
