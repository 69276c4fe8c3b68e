// Statements that hold no others, assignments and the choice among all statements.
#include <algorithm>

#include "script/parse/Parser.h"
#include "script/terms/Words.h"

namespace quorin::script {

Block Parser::parseBlock(std::initializer_list<std::string_view> ends) {
  const Nesting nesting(*this);
  Block block;
  for (;;) {
    skipLineEnds();
    if (peek().kind == Token::Kind::end) {
      failExpected("\"end " + std::string(*ends.begin()) + "\"");
    }
    if (atEnd(ends)) return block;
    parseStatement(block);
  }
}

// At "end", or at "else" or "on error" where the block may go on with them.
bool Parser::atEnd(std::initializer_list<std::string_view> names) const {
  if (std::find(names.begin(), names.end(), "if") != names.end() && atWord("else")) return true;
  if (std::find(names.begin(), names.end(), "try") != names.end() && atWords("on error")) {
    return true;
  }
  return atWord("end") && meaningAt().words < 2;
}

void Parser::expectEnd(std::initializer_list<std::string_view> names) {
  expectWord("end");
  if (!atLineEnd()) {
    const bool known = std::any_of(names.begin(), names.end(),
                                   [&](std::string_view name) { return takeWords(name); });
    if (!known) failExpected("\"" + std::string(*names.begin()) + "\"");
  }
  expectLineEnd();
}

void Parser::parseStatement(Block& block) {
  lineApplication_ = lineApplication();
  const Position start = peek().position;
  const Meaning meaning = meaningAt();
  // A command of several words may begin like a statement of the language: set first priority.
  if (meaning.command) {
    at_ += meaning.words;
    ExpressionPointer expression = parseObjectAfter(parseCommand(*meaning.command, start));
    add(block, ExpressionStatement{std::move(expression)}, start);
    expectLineEnd();
    return;
  }
  if (meaning.words < 2 && parseKeywordStatement(block)) return;
  ExpressionPointer expression = parseExpression();
  add(block, ExpressionStatement{std::move(expression)}, start);
  expectLineEnd();
}

bool Parser::parseKeywordStatement(Block& block) {
  if (peek().kind != Token::Kind::word) return false;
  struct StatementForm {
    std::string_view word;
    void (Parser::*parse)(Block&);
  };
  static constexpr StatementForm forms[] = {{"set", &Parser::parseAssignment},
                                            {"copy", &Parser::parseCopy},
                                            {"if", &Parser::parseIf},
                                            {"repeat", &Parser::parseRepeat},
                                            {"try", &Parser::parseTry},
                                            {"error", &Parser::parseRaise},
                                            {"tell", &Parser::parseTell},
                                            {"return", &Parser::parseReturn},
                                            {"exit", &Parser::parseExit},
                                            {"considering", &Parser::parseConsidering},
                                            {"ignoring", &Parser::parseConsidering}};
  for (const StatementForm& form : forms) {
    if (!atWord(form.word)) continue;
    (this->*form.parse)(block);
    return true;
  }
  if (atWords("with timeout")) {
    parseTimeout(block);
  } else if (atWords("using terms from")) {
    parseUsingTerms(block);
  } else if (atWord("local") || atWord("global")) {
    parseDeclaration(take().text == "local");
  } else if (atWords("with transaction") || atWord("transaction") || atWord("continue") ||
             atWord("script") || atWord("put") || (atWord("use") && !atSymbol("'s", 1))) {
    failUnsupported("\"" + std::string(peek().spelling) + "\"");
  } else if (atWord("on")) {
    fail(peek().position, "A handler can't stand inside another statement.");
  } else {
    return false;
  }
  return true;
}

ExpressionPointer Parser::parseVariableName(std::string_view what) {
  skipArticle();
  if (!atIdentifier()) failExpected(what);
  const Token& name = take();
  return make(Variable{symbol(name)}, name.position);
}

Pattern Parser::patternFrom(ExpressionPointer expression) {
  Pattern pattern;
  if (auto* list = std::get_if<ListExpression>(&expression->data)) {
    Pattern::Parts parts;
    for (ExpressionPointer& item : list->items) {
      parts.items.push_back(patternFrom(std::move(item)));
    }
    pattern.data = std::move(parts);
    return pattern;
  }
  if (auto* record = std::get_if<RecordExpression>(&expression->data)) {
    Pattern::Parts parts;
    for (auto& [key, item] : record->fields) {
      parts.keys.push_back(key);
      parts.items.push_back(patternFrom(std::move(item)));
    }
    pattern.data = std::move(parts);
    return pattern;
  }
  const Expression::Data& data = expression->data;
  if (std::holds_alternative<Literal>(data)) {
    const bool classOrConstant = std::get<Literal>(data).value.as<Constant>();
    fail(expression->position,
         classOrConstant ? "Expected variable name or property but found class name."
                         : "Expected variable name or property but found a value.",
         misplacedNumber);
  }
  if (std::holds_alternative<Command>(data)) {
    fail(expression->position, "Expected variable name or property but found command name.",
         misplacedNumber);
  }
  if (!std::holds_alternative<Variable>(data) && !std::holds_alternative<Part>(data) &&
      !std::holds_alternative<Insertion>(data)) {
    fail(expression->position, "Expected variable name or property.", misplacedNumber);
  }
  pattern.data = Pattern::Place{std::move(expression)};
  return pattern;
}

Pattern Parser::parsePattern() {
  skipArticle();
  return patternFrom(parseObject());
}

void Parser::parseAssignment(Block& block) {
  const Position start = take().position;
  Assignment assignment;
  assignment.target = parsePattern();
  expectWord("to");
  assignment.value = parseExpression();
  add(block, std::move(assignment), start);
  expectLineEnd();
}

void Parser::parseCopy(Block& block) {
  const Position start = take().position;
  Assignment assignment;
  assignment.copies = true;
  assignment.value = parseExpression();
  expectWord("to");
  assignment.target = parsePattern();
  add(block, std::move(assignment), start);
  expectLineEnd();
}

void Parser::parseReturn(Block& block) {
  const Position start = take().position;
  Return statement;
  if (!atLineEnd()) statement.value = parseExpression();
  add(block, std::move(statement), start);
  expectLineEnd();
}

void Parser::parseExit(Block& block) {
  const Position start = take().position;
  takeWord("repeat");
  if (scope_->loops == 0) {
    fail(start, "\"exit repeat\" can only stand inside a repeat.", misplacedNumber);
  }
  add(block, ExitRepeat{}, start);
  expectLineEnd();
}

void Parser::parseDeclaration(bool local) {
  do {
    if (!atIdentifier()) failExpected("variable name");
    const Token& name = take();
    const std::string key = lowerCase(name.text);
    const auto [known, added] = scope_->declared.try_emplace(key, local);
    if (!added && known->second != local) {
      fail(name.position,
           "The variable " + std::string(name.spelling) + " is declared both local and global.");
    }
    symbol(name);
    if (!local) {
      globalSlot(std::string(name.spelling));
      if (scope_->isTop) declaredGlobals_[key] = true;
    }
  } while (takeSymbol(","));
  expectLineEnd();
}

void Parser::parseRaise(Block& block) {
  const Position start = take().position;
  Raise raise;
  if (!atLineEnd() && !atWord("number") && !atWord("from") && !atWord("to") && !atWord("partial")) {
    raise.message = parseExpression();
  }
  for (;;) {
    ExpressionPointer* part = nullptr;
    if (takeWord("number"))
      part = &raise.number;
    else if (takeWords("partial result"))
      part = &raise.partial;
    else if (takeWord("from"))
      part = &raise.offender;
    else if (takeWord("to"))
      part = &raise.expected;
    else
      break;
    if (*part) failExpected("end of line");
    *part = parseExpression();
  }
  add(block, std::move(raise), start);
  expectLineEnd();
}

}  // namespace quorin::script
