// The parser: tokens to a Program, with every name resolved and every term turned into its code.
// One use per script. Throws SyntaxError at the first thing that cannot be understood; language
// that is not supported is an error that says so.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "script/lex/Token.h"
#include "script/parse/Ast.h"
#include "script/terms/Application.h"
#include "script/terms/Terminology.h"

namespace quorin::script {

class Parser {
 public:
  Parser(std::vector<Token> tokens, Applications& applications);
  Program parse();

 private:
  // Everything that the longest term at a place means, in the application's words and the
  // language's own.
  struct Meaning {
    std::size_t words = 0;  // 0: no term
    std::optional<FourCharCode> type, plural, property, enumerator;
    const CommandTerm* command = nullptr;
    bool fromApplication = false;
    std::string_view spelling;
  };
  struct OperatorMatch {
    int level = 0;  // 0: no operator
    std::size_t tokens = 0;
    Operator operation = Operator::add;
  };
  // The names of one handler while it is parsed.
  struct Scope {
    Handler* handler = nullptr;
    bool isTop = false;  // the script's own statements: what they set outlives the run
    std::map<std::string, std::size_t> symbols;
    std::map<std::string, bool> declared;  // true: local, false: global
    std::size_t loops = 0;
    std::vector<std::pair<std::size_t, Position>> referenced;  // symbols that must not be local
  };

  // Tokens
  const Token& peek(std::size_t ahead = 0) const;
  const Token& take();
  bool atSymbol(std::string_view text, std::size_t ahead = 0) const;
  bool atWord(std::string_view text, std::size_t ahead = 0) const;
  bool atWords(std::string_view phrase, std::size_t ahead = 0) const;
  bool takeSymbol(std::string_view text);
  bool takeWord(std::string_view text);
  bool takeWords(std::string_view phrase);
  void expectSymbol(std::string_view text);
  void expectWord(std::string_view text);
  bool atLineEnd() const;
  void expectLineEnd();
  void skipLineEnds();
  std::string describe(std::size_t ahead = 0) const;
  [[noreturn]] void failExpected(std::string_view what) const;
  [[noreturn]] void failUnsupported(std::string_view what) const;

  // Terms
  std::vector<std::string_view> wordsAt(std::size_t ahead) const;
  Meaning meaningAt(std::size_t ahead = 0) const;
  const ParameterTerm* labelAt(const CommandTerm& command, std::size_t ahead = 0) const;
  bool atLabel() const;
  bool atIdentifier(std::size_t ahead = 0) const;
  void skipArticle();

  // Expressions
  ExpressionPointer parseExpression(int level = 1);
  ExpressionPointer parseUnary();
  OperatorMatch operatorAt() const;
  ExpressionPointer parseParenthesised();
  ExpressionPointer makeBinary(const OperatorMatch& match, ExpressionPointer left,
                               ExpressionPointer right, const Position& position);
  ExpressionPointer parseOperand();
  ExpressionPointer parseObject();
  ExpressionPointer parseObjectAfter(ExpressionPointer object);
  bool attach(ExpressionPointer& object, ExpressionPointer container);
  ExpressionPointer parsePossessed(ExpressionPointer container);
  ExpressionPointer parseFilter(ExpressionPointer object);
  ExpressionPointer parsePrimary(bool asMember = false);
  ExpressionPointer parseLiteral();
  ExpressionPointer parseKeyword();
  ExpressionPointer parseOrdinal();
  ExpressionPointer parseElementOf(Form form);
  ExpressionPointer parseTerm(const Meaning& meaning, bool asMember);
  ExpressionPointer parseElement(const Meaning& meaning, bool asMember);
  bool parseKeyForm(Part& part);
  bool atKey() const;
  ExpressionPointer parseKey();
  ExpressionPointer parseIdentifier();
  ExpressionPointer parseApplication();
  ExpressionPointer parseReferenceTo();
  ExpressionPointer parseInsertion(FourCharCode position, bool relative);
  ExpressionPointer parseRawCode();
  ExpressionPointer parseBraces();
  bool atRecordLabel(std::size_t& tokens, RecordKey& key) const;
  std::vector<ExpressionPointer> parseArguments();
  ExpressionPointer parseConstant(const Meaning& meaning);

  // Commands
  ExpressionPointer parseCommand(const CommandTerm& term, const Position& position);
  const CommandTerm& rawCommand(const Token& event);
  void parseParameters(Command& command);
  void parseRawParameters(Command& command);
  void parseFlags(Command& command, bool value);
  void addParameter(Command& command, const ParameterTerm& label, ExpressionPointer value);
  bool atExpression() const;
  bool atExpressionWord() const;
  bool atOperatorPhrase() const;

  // Statements
  Block parseBlock(std::initializer_list<std::string_view> ends);
  void parseStatement(Block& block);
  bool parseKeywordStatement(Block& block);
  void parseAssignment(Block& block);
  void parseCopy(Block& block);
  void parseIf(Block& block);
  void parseRepeat(Block& block);
  void parseRepeatWith(Block& block, const Position& position);
  void parseTry(Block& block);
  void parseErrorHandler(Try& attempt);
  void parseRaise(Block& block);
  void parseTell(Block& block);
  void parseTimeout(Block& block);
  void parseConsidering(Block& block);
  void parseAttributes(Considering& considering, bool ignores);
  void parseUsingTerms(Block& block);
  void parseDeclaration(bool local);
  void parseReturn(Block& block);
  void parseExit(Block& block);
  void expectEnd(std::initializer_list<std::string_view> names);
  bool atEnd(std::initializer_list<std::string_view> names) const;
  Pattern parsePattern();
  Pattern patternFrom(ExpressionPointer expression);
  ExpressionPointer parseVariableName(std::string_view what);
  Application* lineApplication() const;
  Application* terms() const { return application_ ? application_ : lineApplication_; }

  // The script
  void parseTopLevel(Handler& top);
  bool atHandler() const;
  void parseHandler();
  void parseProperty();
  Pattern parseParameter();
  std::size_t symbol(const Token& name);
  void bindSymbols(Handler& handler, const Scope& scope);
  std::size_t globalSlot(const std::string& name);

  template <typename T>
  ExpressionPointer make(T data, const Position& position) const;
  template <typename T>
  void add(Block& block, T data, const Position& position) const;
  Position since(const Position& start) const;

  // Counts how deep the text nests while a construct is parsed.
  class Nesting {
   public:
    explicit Nesting(Parser& parser);
    ~Nesting();

   private:
    Parser& parser_;
  };
  // Puts a member back to what it was when a construct ends.
  template <typename T>
  class Restoring {
   public:
    Restoring(T& place, T value) : place_(place), old_(std::exchange(place, value)) {}
    ~Restoring() { place_ = old_; }
    Restoring(const Restoring&) = delete;
    Restoring& operator=(const Restoring&) = delete;

   private:
    T& place_;
    T old_;
  };

  std::vector<Token> tokens_;
  Applications& applications_;
  std::size_t at_ = 0;
  Application* application_ = nullptr;      // whose terms are in force
  Application* lineApplication_ = nullptr;  // whose terms the line at hand uses by itself
  const CommandTerm* command_ = nullptr;    // whose labels end an argument
  bool inFilter_ = false;
  unsigned nesting_ = 0;
  Program program_;
  Scope* scope_ = nullptr;
  std::map<std::string, std::size_t> globalSlots_;
  std::map<std::string, bool> declaredGlobals_;
  std::vector<std::pair<std::size_t, Scope>> scopes_;  // of handler i, bound at the end
};

constexpr unsigned maximumNesting = 200;          // of parentheses, blocks and containers
constexpr unsigned maximumExpressionDepth = 600;  // of one expression's tree

// The levels of the tree below an expression.
unsigned depthOf(const Expression::Data& data);

template <typename T>
ExpressionPointer Parser::make(T data, const Position& position) const {
  auto expression = std::make_unique<Expression>();
  expression->data = std::move(data);
  expression->position = position;
  expression->depth = 1 + depthOf(expression->data);
  if (expression->depth > maximumExpressionDepth) {
    fail(position, "The expression is nested too deeply.");
  }
  return expression;
}

template <typename T>
void Parser::add(Block& block, T data, const Position& position) const {
  Statement statement;
  statement.data = std::move(data);
  statement.position = since(position);
  block.push_back(std::move(statement));
}

}  // namespace quorin::script
