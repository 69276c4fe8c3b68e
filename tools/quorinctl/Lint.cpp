#include "tools/quorinctl/Lint.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <variant>

#include "host/dictionary/ExcelTerminology.h"
#include "script/Script.h"

namespace quorin::ctl {

namespace {

// An Excel that has its words and nothing else.
class WordsOnly : public script::Application, public script::Applications {
 public:
  std::string_view name() const override { return "Microsoft Excel"; }
  const script::Terminology& terminology() const override { return host::excelTerminology(); }
  bool isRunning() override { return false; }
  AppleEventReply send(const AppleEvent&, std::chrono::milliseconds) override {
    return {std::nullopt, AppleEventError{-600, "Application isn't running.", std::nullopt}};
  }
  Application* named(std::string_view wanted) override { return wanted == name() ? this : nullptr; }
  Application* identified(std::string_view id) override {
    return id == "com.microsoft.Excel" ? this : nullptr;
  }
};

// The names that a line introduces: handler parameters, assigned variables, loop variables.
std::vector<std::string> namesIntroducedBy(const std::string& line) {
  static const std::regex handler(R"(^\s*(?:on|to)\s+\w+\s*\(([^)]*)\))");
  static const std::regex variable(R"(\bset\s+(\w+)\s+to\b)");
  static const std::regex pattern(R"(\bset\s+\{([^}]*)\}\s+to\b)");
  static const std::regex loop(R"(\brepeat\s+with\s+(\w+)\b)");
  static const std::regex trap(R"(\bon\s+error\s+(\w+)(?:\s+number\s+(\w+))?)");
  static const std::regex word(R"(\w+)");
  std::vector<std::string> names;
  std::smatch match;
  for (const std::regex* introduction : {&handler, &variable, &pattern, &loop, &trap}) {
    if (!std::regex_search(line, match, *introduction)) continue;
    for (std::size_t group = 1; group < match.size(); ++group) {
      const std::string list = match[group];
      for (std::sregex_iterator it(list.begin(), list.end(), word), end; it != end; ++it)
        if (it->str() != "number") names.push_back(it->str());
    }
  }
  return names;
}

// Whether the word means something of Excel's where a variable might stand. A word that is only
// a parameter's label does not.
bool isExcelsWord(const std::string& name) {
  const script::Term* const term = host::excelTerminology().find(name);
  return term &&
         (term->type || term->plural || term->property || term->enumerator || term->command);
}

}  // namespace

std::vector<Finding> findingsOf(std::string_view source) {
  std::vector<Finding> findings;
  WordsOnly excel;
  const auto compiled = script::compile(source, excel);
  if (const auto* const error = std::get_if<script::CompileError>(&compiled))
    findings.push_back({error->line, error->message});

  std::istringstream lines{std::string(source)};
  int number = 0;
  for (std::string line; std::getline(lines, line);) {
    ++number;
    for (const std::string& name : namesIntroducedBy(line))
      if (isExcelsWord(name))
        findings.push_back({number, "the name " + name + " is a word of Excel's dictionary"});
  }
  std::stable_sort(findings.begin(), findings.end(),
                   [](const Finding& a, const Finding& b) { return a.line < b.line; });
  return findings;
}

int lint(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  const std::string source((std::istreambuf_iterator<char>(stream)), {});
  if (!stream.is_open() || stream.bad()) {
    std::fprintf(stderr, "quorinctl: %s cannot be read\n", file.c_str());
    return 2;
  }
  const std::vector<Finding> findings = findingsOf(source);
  for (const Finding& finding : findings)
    std::printf("%s:%d: %s\n", file.c_str(), finding.line, finding.message.c_str());
  return findings.empty() ? 0 : 1;
}

}  // namespace quorin::ctl
