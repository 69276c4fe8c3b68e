#include "script/lint/Linter.h"

#include <algorithm>
#include <tuple>

#include "script/lex/Lexer.h"
#include "script/lint/HandlerCheck.h"
#include "script/parse/Parser.h"

namespace quorin::script {

std::vector<LintFinding> lint(std::string_view source, Applications& applications,
                              const Terminology& terms) {
  std::vector<LintFinding> findings;
  try {
    const Program program = Parser(tokenize(source), applications).parse();
    const ClassModel classes(terms);
    for (const Handler& handler : program.handlers) {
      HandlerCheck(handler, classes, source, findings).run();
    }
  } catch (const SyntaxError& failure) {
    findings.push_back(
        {failure.error.line, LintRule::doesNotCompile, std::move(failure.error.message)});
  }
  const auto order = [](const LintFinding& a, const LintFinding& b) {
    return std::tie(a.line, a.rule) < std::tie(b.line, b.rule);
  };
  const auto same = [](const LintFinding& a, const LintFinding& b) {
    return a.line == b.line && a.rule == b.rule;
  };
  std::stable_sort(findings.begin(), findings.end(), order);
  findings.erase(std::unique(findings.begin(), findings.end(), same), findings.end());
  return findings;
}

}  // namespace quorin::script
