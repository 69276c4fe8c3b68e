// A compiled script as a tree. Built by the parser, run by the interpreter, never changed after.
// Names are resolved to slots; terms to codes.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "script/lex/Token.h"
#include "script/terms/Terminology.h"
#include "script/values/Operations.h"
#include "script/values/Value.h"

namespace quorin::script {

struct Expression;
using ExpressionPointer = std::unique_ptr<Expression>;
struct Statement;
using Block = std::vector<Statement>;

struct Literal {
  Value value;  // text, numbers, booleans, constants: nothing that can be changed
};
struct Variable {
  std::size_t symbol = 0;  // in the handler's symbols
};
struct ListExpression {
  std::vector<ExpressionPointer> items;
};
struct RecordExpression {
  std::vector<std::pair<RecordKey, ExpressionPointer>> fields;
};
struct Negation {  // of a number
  ExpressionPointer operand;
};
struct Not {
  ExpressionPointer operand;
};
struct Logical {
  bool isAnd = false;
  ExpressionPointer left, right;
};
struct Binary {
  Operator operation = Operator::add;
  ExpressionPointer left, right;
};
struct Coercion {
  ExpressionPointer operand, type;  // a class or a list of classes
};
// An element or property of a container; of the target of the tell when there is no container.
struct Part {
  Selector selector;  // its key and upper are empty here
  ExpressionPointer key, upper;
  ExpressionPointer filter;
  ExpressionPointer container;
};
struct Insertion {  // a place between elements: end of x, before x
  FourCharCode position = 0;
  ExpressionPointer object;
};
struct Command {
  const CommandTerm* term = nullptr;
  ExpressionPointer direct;
  std::vector<std::pair<FourCharCode, ExpressionPointer>> parameters;
};
struct HandlerCall {
  std::string name;  // as spelled at the call
  std::vector<ExpressionPointer> arguments;
  ExpressionPointer target;  // none: the target of the tell
};
struct It {};
struct Me {};
struct Language {};  // AppleScript
struct Result {};    // of the last statement
struct ApplicationByName {
  ExpressionPointer name;
  bool isIdentifier = false;  // a bundle identifier
};
struct ReferenceTo {
  ExpressionPointer object;
};
struct IsRunning {
  ExpressionPointer application;
};

struct Expression {
  using Data = std::variant<Literal, Variable, ListExpression, RecordExpression, Negation, Not,
                            Logical, Binary, Coercion, Part, Insertion, Command, HandlerCall, It,
                            Me, Language, Result, ApplicationByName, ReferenceTo, IsRunning>;
  Data data;
  Position position;
  unsigned depth = 1;  // levels of the tree below and including this one
};

// What a value is taken apart into: one place, or the parts of a list or record.
struct Pattern {
  struct Place {
    ExpressionPointer target;  // a Variable, Part or Insertion
  };
  struct Parts {
    std::vector<Pattern> items;
    std::vector<RecordKey> keys;  // as many as items for a record, none for a list
  };
  std::variant<Place, Parts> data;
  std::optional<FourCharCode> type;  // of a handler's parameter
};

struct ExpressionStatement {
  ExpressionPointer expression;
};
struct Assignment {
  Pattern target;
  ExpressionPointer value;
  bool copies = false;  // copy, not set
};
struct If {
  struct Branch {
    ExpressionPointer condition;
    Block body;
  };
  std::vector<Branch> branches;
  Block otherwise;
};
struct Repeat {
  enum class Kind { forever, times, whileTrue, untilTrue };
  Kind kind = Kind::forever;
  ExpressionPointer condition;  // or the number of times
  Block body;
};
struct RepeatCounting {
  ExpressionPointer variable;
  ExpressionPointer from, to, by;
  Block body;
};
struct RepeatItems {
  ExpressionPointer variable;
  ExpressionPointer items;
  Block body;
};
struct ExitRepeat {};
struct Return {
  ExpressionPointer value;
};
struct Try {
  Block body;
  std::optional<std::int32_t> onlyNumber;                          // handles this error alone
  ExpressionPointer message, number, offender, partial, expected;  // variables, or none
  Block handler;
};
struct Raise {
  ExpressionPointer message, number, offender, partial, expected;
};
struct Tell {
  ExpressionPointer target;
  Block body;
};
struct WithTimeout {
  ExpressionPointer seconds;
  Block body;
};
// Changes of the rules for comparing text; none: as outside.
struct Considering {
  std::optional<bool> ignoreCase, ignoreDiacriticals, ignoreHyphens, ignorePunctuation,
      ignoreWhiteSpace, numericStrings, ignoreResponses;
  Block body;
};

struct Statement {
  using Data =
      std::variant<ExpressionStatement, Assignment, If, Repeat, RepeatCounting, RepeatItems,
                   ExitRepeat, Return, Try, Raise, Tell, WithTimeout, Considering>;
  Data data;
  Position position;
};

// One name in one handler, and where its value lives.
struct Symbol {
  std::string name;  // as first spelled
  bool isLocal = true;
  std::size_t slot = 0;  // among the handler's locals or the script's globals
};

struct Handler {
  std::string name;
  std::vector<Pattern> parameters;
  Block body;
  std::vector<Symbol> symbols;
  std::size_t locals = 0;
};

struct Property {
  std::size_t slot = 0;
  ExpressionPointer value;
};

class Program {
 public:
  std::vector<Handler> handlers;     // in the order of the source
  std::optional<std::size_t> run;    // the run handler: `on run`, or the statements at the top
  std::vector<std::string> globals;  // names of the properties and globals by slot
  std::vector<Property> properties;
  std::vector<std::unique_ptr<CommandTerm>> rawCommands;  // those written by their code
  Handler initializer;  // owns the symbols that property values use

  const Handler* find(std::string_view name) const;  // without regard to case
};

}  // namespace quorin::script
