// Operators, by their precedence.
#include <algorithm>

#include "script/parse/Parser.h"

namespace quorin::script {
namespace {

constexpr int levelOr = 1;
constexpr int levelAnd = 2;
constexpr int levelNot = 3;
constexpr int levelEquality = 4;
constexpr int levelRelation = 5;
constexpr int levelAs = 6;
constexpr int levelConcatenation = 7;
constexpr int levelSum = 8;
constexpr int levelProduct = 9;
constexpr int levelPower = 10;

struct SymbolOperator {
  std::string_view text;
  int level;
  Operator operation;
};

constexpr SymbolOperator symbolOperators[] = {{"=", levelEquality, Operator::equal},
                                              {"!=", levelEquality, Operator::notEqual},
                                              {"<", levelRelation, Operator::less},
                                              {"<=", levelRelation, Operator::lessOrEqual},
                                              {">", levelRelation, Operator::greater},
                                              {">=", levelRelation, Operator::greaterOrEqual},
                                              {"&", levelConcatenation, Operator::concatenate},
                                              {"+", levelSum, Operator::add},
                                              {"-", levelSum, Operator::subtract},
                                              {"*", levelProduct, Operator::multiply},
                                              {"/", levelProduct, Operator::divide},
                                              {"^", levelPower, Operator::power}};

struct Phrase {
  std::string_view words;
  int level;
  Operator operation;
};

// Longer phrases stand before those that they begin with.
constexpr Phrase phrases[] = {
    {"is not less than or equal to", levelRelation, Operator::greater},
    {"is not less than or equal", levelRelation, Operator::greater},
    {"isn't less than or equal to", levelRelation, Operator::greater},
    {"isn't less than or equal", levelRelation, Operator::greater},
    {"is not greater than or equal to", levelRelation, Operator::less},
    {"is not greater than or equal", levelRelation, Operator::less},
    {"isn't greater than or equal to", levelRelation, Operator::less},
    {"isn't greater than or equal", levelRelation, Operator::less},
    {"is less than or equal to", levelRelation, Operator::lessOrEqual},
    {"is less than or equal", levelRelation, Operator::lessOrEqual},
    {"less than or equal to", levelRelation, Operator::lessOrEqual},
    {"less than or equal", levelRelation, Operator::lessOrEqual},
    {"is greater than or equal to", levelRelation, Operator::greaterOrEqual},
    {"is greater than or equal", levelRelation, Operator::greaterOrEqual},
    {"greater than or equal to", levelRelation, Operator::greaterOrEqual},
    {"greater than or equal", levelRelation, Operator::greaterOrEqual},
    {"is not less than", levelRelation, Operator::greaterOrEqual},
    {"isn't less than", levelRelation, Operator::greaterOrEqual},
    {"is not greater than", levelRelation, Operator::lessOrEqual},
    {"isn't greater than", levelRelation, Operator::lessOrEqual},
    {"is less than", levelRelation, Operator::less},
    {"less than", levelRelation, Operator::less},
    {"is greater than", levelRelation, Operator::greater},
    {"greater than", levelRelation, Operator::greater},
    {"does not come before", levelRelation, Operator::greaterOrEqual},
    {"doesn't come before", levelRelation, Operator::greaterOrEqual},
    {"does not come after", levelRelation, Operator::lessOrEqual},
    {"doesn't come after", levelRelation, Operator::lessOrEqual},
    {"comes before", levelRelation, Operator::less},
    {"comes after", levelRelation, Operator::greater},
    {"does not contain", levelRelation, Operator::notContains},
    {"doesn't contain", levelRelation, Operator::notContains},
    {"contains", levelRelation, Operator::contains},
    {"contain", levelRelation, Operator::contains},
    {"is not contained by", levelRelation, Operator::isNotIn},
    {"isn't contained by", levelRelation, Operator::isNotIn},
    {"is contained by", levelRelation, Operator::isIn},
    {"is not in", levelRelation, Operator::isNotIn},
    {"isn't in", levelRelation, Operator::isNotIn},
    {"is in", levelRelation, Operator::isIn},
    {"starts with", levelRelation, Operator::beginsWith},
    {"start with", levelRelation, Operator::beginsWith},
    {"begins with", levelRelation, Operator::beginsWith},
    {"begin with", levelRelation, Operator::beginsWith},
    {"ends with", levelRelation, Operator::endsWith},
    {"end with", levelRelation, Operator::endsWith},
    {"does not equal", levelEquality, Operator::notEqual},
    {"doesn't equal", levelEquality, Operator::notEqual},
    {"is not equal to", levelEquality, Operator::notEqual},
    {"is not equal", levelEquality, Operator::notEqual},
    {"isn't equal to", levelEquality, Operator::notEqual},
    {"isn't equal", levelEquality, Operator::notEqual},
    {"is equal to", levelEquality, Operator::equal},
    {"is equal", levelEquality, Operator::equal},
    {"is not", levelEquality, Operator::notEqual},
    {"isn't", levelEquality, Operator::notEqual},
    {"equals", levelEquality, Operator::equal},
    {"equal to", levelEquality, Operator::equal},
    {"equal", levelEquality, Operator::equal},
    {"is", levelEquality, Operator::equal},
    {"div", levelProduct, Operator::wholeDivide},
    {"mod", levelProduct, Operator::modulo}};

std::size_t wordCount(std::string_view phrase) {
  return static_cast<std::size_t>(std::count(phrase.begin(), phrase.end(), ' ')) + 1;
}

bool isApplication(const Expression& expression) {
  if (std::holds_alternative<ApplicationByName>(expression.data)) return true;
  const auto* literal = std::get_if<Literal>(&expression.data);
  return literal && literal->value.as<ApplicationObject>();
}

}  // namespace

Parser::OperatorMatch Parser::operatorAt() const {
  if (peek().kind == Token::Kind::symbol) {
    for (const SymbolOperator& each : symbolOperators) {
      if (peek().text == each.text) return {each.level, 1, each.operation};
    }
    return {};
  }
  if (peek().kind != Token::Kind::word || atLabel()) return {};
  if (atWord("or")) return {levelOr, 1, Operator::add};
  if (atWord("and")) return {levelAnd, 1, Operator::add};
  if (atWord("as")) return {levelAs, 1, Operator::add};
  for (const Phrase& phrase : phrases) {
    if (atWords(phrase.words)) return {phrase.level, wordCount(phrase.words), phrase.operation};
  }
  return {};
}

ExpressionPointer Parser::makeBinary(const OperatorMatch& match, ExpressionPointer left,
                                     ExpressionPointer right, const Position& position) {
  const Position span = since(position);
  switch (match.level) {
    case levelOr:
      return make(Logical{false, std::move(left), std::move(right)}, span);
    case levelAnd:
      return make(Logical{true, std::move(left), std::move(right)}, span);
    case levelAs:
      return make(Coercion{std::move(left), std::move(right)}, span);
    default:
      return make(Binary{match.operation, std::move(left), std::move(right)}, span);
  }
}

ExpressionPointer Parser::parseExpression(int level) {
  const Nesting nesting(*this);
  const Position start = peek().position;
  ExpressionPointer left;
  if (level <= levelNot && takeWord("not")) {
    left = make(Not{parseExpression(levelNot)}, since(start));
  } else {
    left = parseUnary();
  }
  for (;;) {
    const bool running = level <= levelEquality &&
                         (atWords("is running") || atWords("is not running")) &&
                         isApplication(*left);
    if (running) {
      const bool negated = atWord("not", 1);
      at_ += negated ? 3 : 2;
      left = make(IsRunning{std::move(left)}, since(start));
      if (negated) left = make(Not{std::move(left)}, since(start));
      continue;
    }
    const OperatorMatch match = operatorAt();
    if (match.level == 0 || match.level < level) return left;
    at_ += match.tokens;
    const bool fromRight = match.level == levelPower;
    ExpressionPointer right = parseExpression(fromRight ? match.level : match.level + 1);
    left = makeBinary(match, std::move(left), std::move(right), start);
    const bool single = match.level == levelEquality || match.level == levelRelation;
    if (single && operatorAt().level == match.level) {
      fail(peek().position, "A comparison can't go after this comparison.", misplacedNumber);
    }
  }
}

ExpressionPointer Parser::parseUnary() {
  const Position start = peek().position;
  if (takeSymbol("+")) {
    const Nesting nesting(*this);
    return parseUnary();
  }
  if (!takeSymbol("-")) return parseOperand();
  const Nesting nesting(*this);
  const bool literal = peek().kind == Token::Kind::integer || peek().kind == Token::Kind::real;
  ExpressionPointer operand = parseUnary();
  if (literal) {
    if (const auto* number = std::get_if<Literal>(&operand->data)) {
      return make(Literal{negate(number->value)}, since(start));
    }
  }
  return make(Negation{std::move(operand)}, since(start));
}

}  // namespace quorin::script
