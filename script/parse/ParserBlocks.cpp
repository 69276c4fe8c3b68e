// Statements that hold others.
#include <algorithm>

#include "script/parse/Parser.h"

namespace quorin::script {

void Parser::parseIf(Block& block) {
  const Position start = take().position;
  If statement;
  ExpressionPointer condition = parseExpression();
  const bool then = takeWord("then");
  if (then && !atLineEnd()) {
    Block body;
    const Nesting nesting(*this);
    parseStatement(body);
    statement.branches.push_back({std::move(condition), std::move(body)});
    add(block, std::move(statement), start);
    return;
  }
  expectLineEnd();
  statement.branches.push_back({std::move(condition), parseBlock({"if"})});
  while (takeWord("else")) {
    if (takeWord("if")) {
      condition = parseExpression();
      takeWord("then");
      expectLineEnd();
      statement.branches.push_back({std::move(condition), parseBlock({"if"})});
      continue;
    }
    expectLineEnd();
    statement.otherwise = parseBlock({"if"});
    if (atWord("else")) failExpected("\"end if\"");
  }
  expectEnd({"if"});
  add(block, std::move(statement), start);
}

void Parser::parseRepeat(Block& block) {
  const Position start = take().position;
  if (atWord("with")) return parseRepeatWith(block, start);
  Repeat repeat;
  if (takeWord("while")) {
    repeat.kind = Repeat::Kind::whileTrue;
    repeat.condition = parseExpression();
  } else if (takeWord("until")) {
    repeat.kind = Repeat::Kind::untilTrue;
    repeat.condition = parseExpression();
  } else if (!atLineEnd()) {
    repeat.kind = Repeat::Kind::times;
    repeat.condition = parseExpression();
    expectWord("times");
  }
  expectLineEnd();
  ++scope_->loops;
  repeat.body = parseBlock({"repeat"});
  --scope_->loops;
  expectEnd({"repeat"});
  add(block, std::move(repeat), start);
}

void Parser::parseRepeatWith(Block& block, const Position& position) {
  take();
  ExpressionPointer variable = parseVariableName("variable name");
  const auto body = [&] {
    expectLineEnd();
    ++scope_->loops;
    Block statements = parseBlock({"repeat"});
    --scope_->loops;
    expectEnd({"repeat"});
    return statements;
  };
  if (takeWord("in")) {
    RepeatItems repeat;
    repeat.variable = std::move(variable);
    repeat.items = parseExpression();
    repeat.body = body();
    add(block, std::move(repeat), position);
    return;
  }
  if (!takeWord("from")) failExpected("\"from\" or \"in\"");
  RepeatCounting repeat;
  repeat.variable = std::move(variable);
  repeat.from = parseExpression();
  expectWord("to");
  repeat.to = parseExpression();
  if (takeWord("by")) repeat.by = parseExpression();
  repeat.body = body();
  add(block, std::move(repeat), position);
}

void Parser::parseTry(Block& block) {
  const Position start = take().position;
  expectLineEnd();
  Try attempt;
  attempt.body = parseBlock({"try"});
  if (takeWords("on error")) {
    parseErrorHandler(attempt);
    attempt.handler = parseBlock({"try"});
    if (atWords("on error")) failExpected("\"end try\"");
  }
  expectEnd({"try", "error"});
  add(block, std::move(attempt), start);
}

void Parser::parseErrorHandler(Try& attempt) {
  if (atIdentifier()) attempt.message = parseVariableName("variable name");
  for (;;) {
    if (atWord("number")) {
      take();
      const bool negative = takeSymbol("-");
      if (peek().kind == Token::Kind::integer) {
        const auto number = static_cast<std::int32_t>(take().number);
        attempt.onlyNumber = negative ? -number : number;
      } else {
        attempt.number = parseVariableName("variable name or number");
      }
    } else if (takeWords("partial result")) {
      attempt.partial = parseVariableName("variable name");
    } else if (takeWord("from")) {
      attempt.offender = parseVariableName("variable name");
    } else if (takeWord("to")) {
      attempt.expected = parseVariableName("variable name");
    } else {
      expectLineEnd();
      return;
    }
  }
}

namespace {

// The application that an object lies in, when the text names it.
Application* applicationOf(const Expression& expression) {
  const Expression* at = &expression;
  while (const auto* part = std::get_if<Part>(&at->data)) {
    if (!part->container) return nullptr;
    at = part->container.get();
  }
  const auto* literal = std::get_if<Literal>(&at->data);
  return literal ? literal->value.application() : nullptr;
}

}  // namespace

void Parser::parseTell(Block& block) {
  const Position start = take().position;
  Tell tell;
  tell.target = parseObject();
  Application* application = applicationOf(*tell.target);
  const Restoring<Application*> terms(application_, application ? application : application_);
  if (takeWord("to")) {
    const Nesting nesting(*this);
    parseStatement(tell.body);
    add(block, std::move(tell), start);
    return;
  }
  expectLineEnd();
  tell.body = parseBlock({"tell"});
  expectEnd({"tell"});
  add(block, std::move(tell), start);
}

void Parser::parseUsingTerms(Block& block) {
  at_ += 3;
  ExpressionPointer target = parseObject();
  Application* application = applicationOf(*target);
  if (!application) fail(target->position, "Expected application \"name\".");
  expectLineEnd();
  const Restoring<Application*> terms(application_, application);
  Block body = parseBlock({"using terms from"});
  expectEnd({"using terms from", "using"});
  std::move(body.begin(), body.end(), std::back_inserter(block));
}

void Parser::parseTimeout(Block& block) {
  const Position start = peek().position;
  at_ += 2;
  takeWord("of");
  WithTimeout timeout;
  timeout.seconds = parseExpression();
  if (!takeWord("seconds") && !takeWord("second")) failExpected("\"seconds\"");
  expectLineEnd();
  timeout.body = parseBlock({"timeout"});
  expectEnd({"timeout"});
  add(block, std::move(timeout), start);
}

void Parser::parseConsidering(Block& block) {
  const Position start = peek().position;
  const bool ignores = take().text == "ignoring";
  Considering considering;
  parseAttributes(considering, ignores);
  if (takeWord("but")) {
    if (!atWord("considering") && !atWord("ignoring")) failExpected("\"considering\"");
    parseAttributes(considering, take().text == "ignoring");
  }
  expectLineEnd();
  considering.body = parseBlock({ignores ? "ignoring" : "considering"});
  expectEnd({ignores ? "ignoring" : "considering"});
  add(block, std::move(considering), start);
}

void Parser::parseAttributes(Considering& considering, bool ignores) {
  do {
    if (takeWord("case"))
      considering.ignoreCase = ignores;
    else if (takeWord("diacriticals"))
      considering.ignoreDiacriticals = ignores;
    else if (takeWord("hyphens"))
      considering.ignoreHyphens = ignores;
    else if (takeWord("punctuation"))
      considering.ignorePunctuation = ignores;
    else if (takeWords("white space"))
      considering.ignoreWhiteSpace = ignores;
    else if (takeWords("numeric strings"))
      considering.numericStrings = !ignores;
    else if (takeWords("application responses"))
      considering.ignoreResponses = ignores;
    else
      failExpected("application constant or consideration");
  } while ((takeSymbol(",") && (takeWord("and") || true)) || takeWord("and"));
}

}  // namespace quorin::script
