// The linter: finds in a library of handlers what compiles and still goes wrong when it runs
// against an application, as far as that shows in the text. What cannot be known from the text
// (what a handler's parameter holds, what an unknown value's properties are) is never a finding.
// Pure; any thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "script/terms/Application.h"

namespace quorin::script {

enum class LintRule {
  doesNotCompile,
  unknownTerm,        // a word that is neither a term nor a variable that is ever set
  notOfClass,         // a property or element that the class lacks
  missingParameter,   // a command without a parameter that it requires
  shadowedTerm,       // a variable spelled like a term, which would win inside tell
  callWithoutMy,      // a script's own handler, sent to the application
  valueForReference,  // a value where an object is meant, or an object that does not stay put
  numberAsText,       // a number in the user's way of writing numbers
  noTimeout,          // an event outside of "with timeout"
  noReturn            // a handler that may end without "return"
};

struct LintFinding {
  int line = 0;  // 1-based
  LintRule rule = LintRule::doesNotCompile;
  std::string message;
  bool operator==(const LintFinding&) const = default;
};

// By line; one finding of each rule a line. `terms` are the words of the application that the
// library talks to.
std::vector<LintFinding> lint(std::string_view source, Applications& applications,
                              const Terminology& terms);

}  // namespace quorin::script
