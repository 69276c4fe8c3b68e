// Walks one handler and reports what its text alone shows to be wrong. It goes over the statements
// twice to learn what its variables hold, then once more to report.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "script/lint/Kind.h"
#include "script/lint/Linter.h"
#include "script/parse/Ast.h"

namespace quorin::script {

class HandlerCheck {
 public:
  HandlerCheck(const Handler& handler, const ClassModel& classes, std::string_view source,
               std::vector<LintFinding>& findings)
      : handler_(handler), classes_(classes), source_(source), findings_(findings) {}
  void run();

 private:
  // What surrounds a statement.
  struct Place {
    Kind target;  // of the tell; unknown outside of one, and where the script itself is told
    bool timed = false;
  };

  // Statements
  void walk(const Block& block, const Place& place);
  void walk(const Statement& statement, const Place& place);
  void walkAssignment(const Assignment& assignment, const Place& place);
  void walkRepeatItems(const RepeatItems& repeat, const Place& place);
  void walkTry(const Try& attempt, const Place& place);
  void assign(const Pattern& target, const Kind& kind, const Place& place);
  void introduce(const ExpressionPointer& variable, const Kind& kind);

  // Expressions
  void visit(const ExpressionPointer& expression, const Place& place);
  void visitPart(const Part& part, const Position& position, const Place& place);
  void visitCommand(const Command& command, const Position& position, const Place& place);
  Kind kindOf(const Expression& expression, const Place& place) const;
  Kind kindOf(const ExpressionPointer& expression, const Place& place) const;
  Kind kindOfPart(const Part& part, const Place& place) const;
  Kind kindOfBinary(const Binary& binary, const Place& place) const;
  Kind kindOfCommand(const Command& command, const Place& place) const;
  Kind ownerOf(const Part& part, const Place& place) const;

  // Rules
  void checkMember(const Part& part, const Kind& owner, const Position& position);
  void checkShadow(const Expression& variable);
  void checkStays(const ExpressionPointer& value, const Place& place);
  void checkTextOf(const ExpressionPointer& number, const Place& place);
  void checkTime(const Position& position, const Place& place);
  void checkRequired(const Command& command, const Position& position, const Place& place);
  void checkUse(const Variable& variable, const Position& position);
  static bool returns(const Block& block);

  void report(const Position& position, LintRule rule, std::string message);

  const Handler& handler_;
  const ClassModel& classes_;
  std::string_view source_;
  std::vector<LintFinding>& findings_;
  std::map<std::size_t, Kind> kinds_;  // of the handler's variables
  std::set<std::size_t> set_;          // variables that something is stored in
  bool reporting_ = false;
};

}  // namespace quorin::script
