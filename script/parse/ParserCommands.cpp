// Commands with their direct parameter, labelled parameters and flags.
#include <algorithm>

#include "script/parse/Parser.h"

namespace quorin::script {

const CommandTerm& Parser::rawCommand(const Token& event) {
  auto command = std::make_unique<CommandTerm>();
  command->term = std::string(event.spelling);
  command->eventClass = event.code;
  command->eventID = event.secondCode;
  command->takesDirect = true;
  program_.rawCommands.push_back(std::move(command));
  return *program_.rawCommands.back();
}

// True if a comparison stands here whose words could be names too.
bool Parser::atOperatorPhrase() const {
  static constexpr std::string_view phrases[] = {"starts with",  "begins with", "ends with",
                                                 "comes before", "comes after", "less than",
                                                 "greater than"};
  return std::any_of(std::begin(phrases), std::end(phrases),
                     [&](std::string_view each) { return atWords(each); });
}

// True if the next word can begin an expression; keywords that cannot end the command.
bool Parser::atExpressionWord() const {
  static constexpr std::string_view ends[] = {
      "of",    "in",    "to",       "then",    "and",    "or",    "is",        "isn't",   "as",
      "div",   "mod",   "with",     "without", "given",  "from",  "by",        "thru",    "through",
      "times", "else",  "contains", "contain", "equals", "equal", "does",      "doesn't", "whose",
      "where", "while", "until",    "seconds", "on",     "for",   "returning", "exists",  "named"};
  const bool ended = std::find(std::begin(ends), std::end(ends), peek().text) != std::end(ends);
  // A term of several words may begin like one of them: named item.
  if (ended) return meaningAt().words > 1;
  return !atOperatorPhrase();
}

bool Parser::atExpression() const {
  switch (peek().kind) {
    case Token::Kind::lineEnd:
    case Token::Kind::end:
      return false;
    case Token::Kind::symbol:
      return atSymbol("(") || atSymbol("{") || (atSymbol("-") && peek(1).glued);
    case Token::Kind::word:
      return atExpressionWord();
    default:
      return true;
  }
}

ExpressionPointer Parser::parseCommand(const CommandTerm& term, const Position& position) {
  const Nesting nesting(*this);
  const Restoring<const CommandTerm*> labels(command_, &term);
  Command command;
  command.term = &term;
  if (!atLabel()) {
    if (atWord("of") || atWord("in")) take();
    if (atExpression()) command.direct = parseExpression();
  }
  parseParameters(command);
  return make(std::move(command), since(position));
}

void Parser::parseParameters(Command& command) {
  for (;;) {
    if (peek().kind != Token::Kind::word) return;
    if (const ParameterTerm* label = labelAt(*command.term)) {
      at_ += label->words.size();
      addParameter(command, *label, parseExpression());
    } else if (atWord("given")) {
      parseRawParameters(command);
    } else if ((atWord("with") || atWord("without")) && !atWords("with timeout")) {
      const bool value = take().text == "with";
      parseFlags(command, value);
    } else {
      return;
    }
  }
}

void Parser::parseFlags(Command& command, bool value) {
  for (;;) {
    const ParameterTerm* label =
        peek().kind == Token::Kind::word ? labelAt(*command.term) : nullptr;
    if (!label) failExpected("parameter name");
    const Position position = peek().position;
    at_ += label->words.size();
    addParameter(command, *label, make(Literal{value}, since(position)));
    // "and" goes on with the flags only where a flag follows.
    const bool more = (atSymbol(",") || atWord("and")) && peek(1).kind == Token::Kind::word &&
                      labelAt(*command.term, 1);
    if (!more) return;
    take();
  }
}

void Parser::parseRawParameters(Command& command) {
  take();
  do {
    if (peek().kind != Token::Kind::rawCode || peek().text != "class") {
      failUnsupported("A labelled parameter after \"given\" other than a raw class code");
    }
    const FourCharCode code = take().code;
    expectSymbol(":");
    command.parameters.emplace_back(code, parseExpression());
  } while (takeSymbol(","));
}

void Parser::addParameter(Command& command, const ParameterTerm& label, ExpressionPointer value) {
  for (const auto& [code, given] : command.parameters) {
    if (code == label.code) {
      fail(value->position, "The parameter \"" + label.label + "\" is given more than once.");
    }
  }
  command.parameters.emplace_back(label.code, std::move(value));
}

}  // namespace quorin::script
