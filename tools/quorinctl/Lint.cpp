#include "tools/quorinctl/Lint.h"

#include <cstdio>
#include <fstream>
#include <iterator>

#include "host/dictionary/ExcelTerminology.h"
#include "script/lint/Linter.h"

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

}  // namespace

std::vector<Finding> findingsOf(std::string_view source) {
  std::vector<Finding> findings;
  WordsOnly excel;
  for (script::LintFinding& each : script::lint(source, excel, host::excelTerminology()))
    findings.push_back({each.line, std::move(each.message)});
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
