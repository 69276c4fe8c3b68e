#include <gtest/gtest.h>

#include "host/calc/CalcWorkbooks.h"

namespace quorin::host::calc {
namespace {

using Names = std::vector<std::string>;

TEST(WorkbookNames, AreFileNamesWithSuffixAndTitlesOfUnsavedOnes) {
  EXPECT_EQ(workbookNames({"file:///home/a/My%20Plan.xlsx", ""}, {"", "Untitled 1"}),
            (Names{"My Plan.xlsx", "Untitled 1"}));
}

TEST(WorkbookNames, CarryTheirFoldersWhereTheyAreEqual) {
  EXPECT_EQ(workbookNames(
                {"file:///a/2024/Plan.xlsx", "file:///a/Other.xlsx", "file:///a/2025/Plan.xlsx"},
                {"", "", ""}),
            (Names{"2024/Plan.xlsx", "Other.xlsx", "2025/Plan.xlsx"}));
}

TEST(WorkbookNames, AreTheLastPartOfOtherAddresses) {
  EXPECT_EQ(workbookNames({"https://example.org/files/Plan.ods"}, {""}), (Names{"Plan.ods"}));
}

}  // namespace
}  // namespace quorin::host::calc
