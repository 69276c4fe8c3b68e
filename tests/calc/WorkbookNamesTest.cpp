#include <gtest/gtest.h>

#include "host/calc/workbook/WorkbookNames.h"

namespace quorin::host::calc {
namespace {

using Names = std::vector<std::string>;

OpenWorkbook file(const std::string& url, const std::string& called = {}) {
  return {.uid = {}, .url = url, .title = {}, .called = called};
}

OpenWorkbook unsaved(const std::string& title, const std::string& called = {}) {
  return {.uid = {}, .url = {}, .title = title, .called = called};
}

TEST(WorkbookNames, AreFileNamesWithSuffixAndTitlesOfUnsavedOnes) {
  EXPECT_EQ(workbookNames({file("file:///home/a/My%20Plan.xlsx"), unsaved("Untitled 1")}),
            (Names{"My Plan.xlsx", "Untitled 1"}));
}

TEST(WorkbookNames, CarryAsManyFoldersAsTellThemApart) {
  EXPECT_EQ(
      workbookNames({file("file:///x/2024/Plan.xlsx"), file("file:///x/Other.xlsx"),
                     file("file:///x/2025/Plan.xlsx"), file("file:///y/2025/Plan.xlsx"),
                     file("file:///2025/Plan.xlsx")}),
      (Names{"Plan.xlsx", "Other.xlsx", "2025/Plan.xlsx", "y/2025/Plan.xlsx", "/2025/Plan.xlsx"}));
}

TEST(WorkbookNames, DifferInMoreThanTheCaseOfLetters) {
  EXPECT_EQ(workbookNames({file("file:///x/Plan.xlsx"), file("file:///x/PLAN.xlsx")}),
            (Names{"Plan.xlsx", "x/PLAN.xlsx"}));
}

TEST(WorkbookNames, AreNumberedWhereNothingTellsThemApart) {
  EXPECT_EQ(
      workbookNames({unsaved("Plan.xlsx"), unsaved("Plan.xlsx"), file("file:///Plan.xlsx"),
                     file("file:///Plan.xlsx"), file("file:///Plan.xlsx")}),
      (Names{"Plan.xlsx", "Plan.xlsx (2)", "/Plan.xlsx", "/Plan.xlsx (2)", "/Plan.xlsx (3)"}));
}

TEST(WorkbookNames, StayWhatTheyAreWhenOthersCome) {
  EXPECT_EQ(workbookNames({file("file:///x/2024/Plan.xlsx"),
                           file("file:///x/2025/Plan.xlsx", "Plan.xlsx"),
                           file("file:///x/2026/Plan.xlsx", "2026/Plan.xlsx"),
                           unsaved("Untitled 1", "Untitled 1 (2)")}),
            (Names{"2024/Plan.xlsx", "Plan.xlsx", "2026/Plan.xlsx", "Untitled 1 (2)"}));
}

TEST(WorkbookNames, AreNewForAFileSavedUnderAnotherName) {
  EXPECT_EQ(workbookNames({file("file:///x/2025/Saved.xlsx", "Plan.xlsx"),
                           file("file:///x/2026/Plan.xlsx", "2025/Plan.xlsx"),
                           file("file:///x/Plan.xlsx", "Untitled 1")}),
            (Names{"Saved.xlsx", "Plan.xlsx", "x/Plan.xlsx"}));
}

TEST(WorkbookNames, AreTheLastPartOfOtherAddresses) {
  EXPECT_EQ(workbookNames({file("https://example.org/files/Plan.ods")}), (Names{"Plan.ods"}));
}

}  // namespace
}  // namespace quorin::host::calc
