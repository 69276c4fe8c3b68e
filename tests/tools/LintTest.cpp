#include <gmock/gmock.h>

#include "kit/excel/ExcelScript.h"
#include "tests/kit/scripts/ExcelScratch.h"
#include "tools/quorinctl/Lint.h"

namespace quorin::ctl {

std::ostream& operator<<(std::ostream& out, const Finding& finding) {
  return out << finding.line << ": " << finding.message;
}

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<int> linesOf(std::string_view source) {
  std::vector<int> lines;
  for (const Finding& finding : findingsOf(source)) lines.push_back(finding.line);
  return lines;
}

TEST(Lint, FindsNothingInTheHandlerLibrary) {
  EXPECT_THAT(findingsOf(ExcelScript::source()), IsEmpty());
}

TEST(Lint, FindsNothingInTheScriptOfTheContractsWorkbook) {
  EXPECT_THAT(findingsOf(ExcelScratch::source()), IsEmpty());
}

TEST(Lint, FindsWhatDoesNotCompile) {
  EXPECT_THAT(linesOf("on f()\n  return 1\nend f\non g()\n  return (1\nend g\n"), ElementsAre(5));
}

TEST(Lint, KnowsExcelsWords) {
  EXPECT_THAT(findingsOf("on f(style)\n  return 1\nend f\n"),
              ElementsAre(Finding{1, "the name style is a word of the application's dictionary"}));
  EXPECT_THAT(findingsOf("on f(fmt)\n  return 1\nend f\n"), IsEmpty());
}

}  // namespace
}  // namespace quorin::ctl
