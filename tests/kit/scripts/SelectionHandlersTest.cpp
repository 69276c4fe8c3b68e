// qx_select, qx_activate, qx_dependents and qx_workbookcount.
#include "tests/kit/scripts/LibraryFixture.h"

namespace quorin {
namespace {

using SelectionHandlers = LibraryFixture;

TEST_F(SelectionHandlers, SelectGoesToOneRange) {
  EXPECT_EQ(run("qx_select", {texts({"'It''s a test'!B2"})}), "\"$B$2\"");
  EXPECT_EQ(run("qx_pollcell"), R"j(["Known.xlsx","It's a test","$B$2"])j");
}

TEST_F(SelectionHandlers, SelectJoinsSeveralRangesOfOneSheet) {
  EXPECT_EQ(run("qx_select", {texts({"Blank!A1", "Blank!C3:D4", "Blank!F6"})}),
            "\"$A$1,$C$3:$D$4,$F$6\"");
  EXPECT_EQ(memory_->activeSheet(), (host::SheetRef{"Known.xlsx", "Blank"}));
}

// Of the two "goto" alone changes to the sheet.
TEST_F(SelectionHandlers, SelectChangesToTheSheetWithGoto) {
  memory_->script.clear();
  run("qx_select", {texts({"Blank!A1"})});
  EXPECT_THAT(memory_->script.calls(), testing::Contains("goTo [Known.xlsx]Blank!$A$1"));
  EXPECT_THAT(memory_->script.calls(),
              testing::Not(testing::Contains(testing::StartsWith("select "))));
  run("qx_select", {texts({"Data!A1", "Data!C3"})});
  EXPECT_THAT(
      memory_->script.calls(),
      testing::IsSupersetOf({"goTo [Known.xlsx]Data!$A$1", "select [Known.xlsx]Data!$A$1,$C$3"}));
}

TEST_F(SelectionHandlers, SelectGivesTheWholeAddressOfManyAreas) {
  JSONValue::Array many;
  std::string expected;
  for (int row = 1; row <= 60; ++row) {
    const std::string address = "$A$" + std::to_string(2 * row);
    many.push_back(address);
    expected += (row > 1 ? "," : "") + address;
  }
  EXPECT_EQ(run("qx_select", {texts(many)}), "\"" + expected + "\"");
}

TEST_F(SelectionHandlers, SelectFailsForWhatIsNotThere) {
  EXPECT_EQ(run("qx_select", {texts({"Nowhere!A1"})}), "error -1728 sheet not found: Nowhere");
  EXPECT_THAT(run("qx_select", {texts({"Data!A1", "Blank!A1"})}),
              testing::StartsWith("error -50 "));
}

TEST_F(SelectionHandlers, SelectDoesNotDisturbACellBeingEdited) {
  memory_->program.editing = true;
  EXPECT_THAT(run("qx_select", {texts({"B2"})}), testing::StartsWith("error -10000 "));
}

TEST_F(SelectionHandlers, ActivateGoesThereAndComesForward) {
  EXPECT_EQ(run("qx_activate", {"Prices"}), "true");
  EXPECT_TRUE(memory_->program.frontmost);
  EXPECT_EQ(run("qx_pollcell"), R"j(["Known.xlsx","Data","$B$2"])j");
}

TEST_F(SelectionHandlers, ActivateChangesToTheSheetWithGoto) {
  memory_->script.clear();
  EXPECT_EQ(run("qx_activate", {"Blank!A1"}), "true");
  EXPECT_THAT(memory_->script.calls(), testing::Contains("goTo [Known.xlsx]Blank!$A$1"));
}

TEST_F(SelectionHandlers, ActivateWithoutAddressOnlyComesForward) {
  select("Data", "C3");
  EXPECT_EQ(run("qx_activate", {""}), "true");
  EXPECT_TRUE(memory_->program.frontmost);
  EXPECT_EQ(run("qx_pollcell"), R"j(["Known.xlsx","Data","$C$3"])j");
}

TEST_F(SelectionHandlers, DependentsAreTheDirectOnes) {
  EXPECT_EQ(run("qx_dependents", {"B2"}), "\"$C$2,$B$4,$E$8\"");
  EXPECT_EQ(run("qx_dependents", {"Data!B4"}), "\"$E$10\"");
}

TEST_F(SelectionHandlers, DependentsOfACellWithoutAnyAreTheEmptyText) {
  EXPECT_EQ(run("qx_dependents", {"A7"}), "\"\"");
}

TEST_F(SelectionHandlers, DependentsOfNothingIsAnError) {
  EXPECT_THAT(run("qx_dependents", {"junk"}), testing::StartsWith("error -1728 "));
  EXPECT_EQ(run("qx_dependents", {"Nowhere!A1"}), "error -1728 sheet not found: Nowhere");
}

TEST_F(SelectionHandlers, WorkbookCountCounts) {
  EXPECT_EQ(run("qx_workbookcount"), "1");
  memory_->close("Known.xlsx");
  EXPECT_EQ(run("qx_workbookcount"), "0");
}

}  // namespace
}  // namespace quorin
