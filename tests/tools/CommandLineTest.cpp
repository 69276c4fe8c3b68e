#include <gmock/gmock.h>

#include "tools/quorinctl/CommandLine.h"

namespace quorin::ctl {
namespace {

using Arguments = std::vector<std::string>;

TEST(CommandLine, ServesAPrivateCalcByDefault) {
  EXPECT_EQ(parseCommandLine({}), Command(ServeCommand{}));
}

TEST(CommandLine, TakesAWorkbookAFolderAndTiming) {
  EXPECT_EQ(parseCommandLine({"--workbook", "a b.xlsx", "--data", "/tmp/d", "--timing"}),
            Command(ServeCommand{"a b.xlsx", false, "/tmp/d", true}));
}

TEST(CommandLine, Attaches) {
  EXPECT_EQ(parseCommandLine({"--attach", "--timing"}),
            Command(ServeCommand{std::nullopt, true, std::nullopt, true}));
}

TEST(CommandLine, Lints) {
  EXPECT_EQ(parseCommandLine({"lint", "core.applescript"}),
            Command(LintCommand{"core.applescript"}));
}

TEST(CommandLine, Audits) {
  AuditCommand plain;
  plain.files = {"a.xlsx", "folder"};
  EXPECT_EQ(parseCommandLine({"audit", "a.xlsx", "folder"}), Command(plain));
  AuditCommand whole;
  whole.files = {"a.xlsx"};
  whole.format = "sarif";
  whole.output = "out.sarif";
  whole.top = 7;
  whole.failOn = "doubt";
  whole.jobs = 3;
  whole.giveUp = 60;
  EXPECT_EQ(
      parseCommandLine({"audit", "a.xlsx", "--format", "sarif", "--output", "out.sarif", "--top",
                        "7", "--fail-on", "doubt", "--jobs", "3", "--give-up", "60"}),
      Command(whole));
  AuditCommand goingOn;
  goingOn.files = {"a.xlsx"};
  goingOn.format = "jsonl";
  goingOn.output = "out.jsonl";
  goingOn.resume = true;
  EXPECT_EQ(parseCommandLine(
                {"audit", "a.xlsx", "--format", "jsonl", "--output", "out.jsonl", "--resume"}),
            Command(goingOn));
  AuditCommand page;
  page.files = {"a.xlsx"};
  page.format = "html";
  EXPECT_EQ(parseCommandLine({"audit", "a.xlsx", "--format", "html"}), Command(page));
}

TEST(CommandLine, HelpsWithStatusZero) {
  const Command command = parseCommandLine({"--help"});
  ASSERT_TRUE(std::holds_alternative<Notice>(command));
  EXPECT_EQ(std::get<Notice>(command).status, 0);
  EXPECT_THAT(std::get<Notice>(command).text, testing::HasSubstr("--workbook FILE"));
}

TEST(CommandLine, TellsItsVersionWithStatusZero) {
  const Command command = parseCommandLine({"--version"});
  ASSERT_TRUE(std::holds_alternative<Notice>(command));
  EXPECT_EQ(std::get<Notice>(command).status, 0);
  EXPECT_THAT(std::get<Notice>(command).text, testing::MatchesRegex("[0-9]+\\.[0-9]+\\.[0-9]+"));
}

TEST(CommandLine, RefusesBadCallsInOneLine) {
  for (const Arguments& arguments : {Arguments{"--workbook"},
                                     Arguments{"--attach", "--workbook", "a.xlsx"},
                                     Arguments{"--attach", "--data", "/tmp/d"},
                                     Arguments{"--nonsense"},
                                     Arguments{"a.xlsx"},
                                     Arguments{"two\nlines"},
                                     Arguments{"lint"},
                                     Arguments{"lint", "a", "b"},
                                     Arguments{"--timing", "lint", "a"},
                                     Arguments{"--data"},
                                     Arguments{"audit"},
                                     Arguments{"audit", "a.xlsx", "--format", "pdf"},
                                     Arguments{"audit", "a.xlsx", "--top", "0"},
                                     Arguments{"audit", "a.xlsx", "--fail-on", "high"},
                                     Arguments{"audit", "a", "--jobs", "0"},
                                     Arguments{"audit", "a", "--give-up", "0"},
                                     Arguments{"audit", "a", "--resume"},
                                     Arguments{"audit", "a", "--resume", "--format", "jsonl"},
                                     Arguments{"audit", "a", "--resume", "--output", "b"},
                                     Arguments{"--workbook", "b.xlsx", "audit", "a.xlsx"}}) {
    const Command command = parseCommandLine(arguments);
    ASSERT_TRUE(std::holds_alternative<Notice>(command)) << testing::PrintToString(arguments);
    const Notice& notice = std::get<Notice>(command);
    EXPECT_EQ(notice.status, 2) << testing::PrintToString(arguments);
    EXPECT_THAT(notice.text, testing::StartsWith("quorinctl: "));
    EXPECT_THAT(notice.text, testing::Not(testing::HasSubstr("\n")));
  }
}

}  // namespace
}  // namespace quorin::ctl
