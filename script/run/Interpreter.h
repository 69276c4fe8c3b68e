// Runs a Program: evaluates its tree, keeps its properties and globals, sends its events. Belongs
// to one Script and one thread at a time.
#pragma once

#include <atomic>
#include <optional>
#include <utility>
#include <vector>

#include "script/parse/Ast.h"
#include "script/run/EventSender.h"
#include "script/run/ScriptOutcome.h"
#include "script/terms/Application.h"
#include "script/values/Failure.h"
#include "script/values/TextRules.h"
#include "script/values/Value.h"

namespace quorin::script {

class Interpreter {
 public:
  Interpreter(Program program, Applications& applications);
  ~Interpreter();
  Interpreter(const Interpreter&) = delete;
  Interpreter& operator=(const Interpreter&) = delete;

  ScriptOutcome call(const AppleEvent& event);
  void setLimits(const ScriptLimits& limits);
  void cancel() { cancelled_ = true; }
  const Program& program() const { return program_; }

 private:
  enum class Flow { next, exitRepeat, returned };

  // One running handler.
  struct Frame {
    const Handler* handler = nullptr;
    std::vector<Value> locals;
    Value result;            // of the last statement
    Value target;            // of the innermost tell
    bool examining = false;  // inside a filter: what has no container is of the examined object
  };

  // An expression's meaning before it is fetched: `pending` when it is an application's object that
  // was just named, which a value needs to be got and a parameter does not.
  struct Resolved {
    Value value;
    bool pending = false;
  };

  // Keeps a place as it was while a construct runs.
  template <typename T>
  class Restoring {
   public:
    Restoring(T& place, T value) : place_(place), old_(std::exchange(place, std::move(value))) {}
    ~Restoring() { place_ = std::move(old_); }
    Restoring(const Restoring&) = delete;
    Restoring& operator=(const Restoring&) = delete;

   private:
    T& place_;
    T old_;
  };

  // Handlers
  Value perform(const AppleEvent& event);
  void initialize();
  std::optional<Value> callHandler(const Handler& handler, std::vector<Value> arguments);
  void bindParameters(const Handler& handler, std::vector<Value>& arguments);
  std::optional<Value> callByName(const HandlerCall& call);
  [[noreturn]] void failNoHandler(const std::string& name);
  void checkBudgets();
  void breakCycles(bool all);
  void rememberCycle(const Value& container, const Value& value);

  // Statements
  Flow execute(const Block& block);
  Flow run(const ExpressionStatement& statement);
  Flow run(const Assignment& statement);
  Flow run(const If& statement);
  Flow run(const Repeat& statement);
  Flow run(const RepeatCounting& statement);
  Flow run(const RepeatItems& statement);
  Flow run(const ExitRepeat& statement);
  Flow run(const Return& statement);
  Flow run(const Try& statement);
  Flow run(const Raise& statement);
  Flow run(const Tell& statement);
  Flow run(const WithTimeout& statement);
  Flow run(const Considering& statement);
  Flow handleFailure(const Try& statement, const Failure& failure);
  bool isTrue(const Expression& condition);
  Flow repeatObjects(const RepeatItems& statement, const Value& objects);

  // Assignment
  void assign(const Pattern& pattern, Value value);
  void assignParts(const Pattern::Parts& parts, const Value& value);
  void assignTo(const Expression& target, Value value);
  void assignVariable(const Variable& variable, Value value);
  void assignPart(const Part& part, Value value);
  void assignThrough(const Value& reference, Value value);
  void insert(const Insertion& insertion, Value value);
  void setDelimiters(const Value& value);
  Value deepCopy(const Value& value, WorkBudget& budget, int depth = 0);
  Value& variable(const Variable& variable);
  Value* globalNamed(std::string_view name);

  // Expressions
  Value evaluate(const Expression& expression);  // throws -2763 when there is no value
  std::optional<Value> evaluateAny(const Expression& expression);
  Resolved resolve(const Expression& expression);
  std::optional<Value> compute(const Expression& expression);
  Value computeBinary(const Binary& binary);
  Value computeCoercion(const Coercion& coercion);
  Value computeReference(const ReferenceTo& reference);
  Value computeList(const ListExpression& list);
  Value computeRecord(const RecordExpression& record);
  Value applicationByName(const ApplicationByName& application);

  // Objects
  Resolved resolvePart(const Part& part);
  Resolved resolveIn(const Part& part, const Resolved& container);
  Resolved resolveInsertion(const Insertion& insertion);
  std::optional<Value> specialPart(const Selector& selector, const Value& container);
  Resolved containerOf(const Part& part);
  Selector selectorOf(const Part& part, const Value& container);
  Selector filteredSelector(const Part& part, Selector selector, AppleEventDescriptor& container);
  AppleEventDescriptor testOf(const Expression& condition);
  AppleEventDescriptor testOperand(const Expression& operand);
  Value fetchObject(const Value& object);
  static AppleEventDescriptor containerDescriptor(const Value& container);

  // Commands
  std::optional<Value> runCommand(const Command& command);
  std::optional<Value> localCommand(const Command& command, const Value& direct);
  Value countLocal(const Command& command, const Value& direct);
  std::optional<Value> send(Application& application, AppleEvent event);

  Program program_;
  Applications& applications_;
  std::vector<std::shared_ptr<Value>> globals_;
  bool initialized_ = false;
  TextRules rules_;
  Value delimiters_ = Value("");
  EventSender sender_;
  ScriptLimits limits_;
  std::uint64_t steps_ = 0;
  const char* stackBase_ = nullptr;
  std::atomic<bool> cancelled_ = false;
  Frame* frame_ = nullptr;
  std::vector<std::weak_ptr<ListData>> cyclicLists_;
  std::vector<std::weak_ptr<RecordData>> cyclicRecords_;
};

}  // namespace quorin::script
