// The contract of the port Spreadsheet on format conditions. Used as SpreadsheetContract.h is, but
// over ruledWorkbook().
#pragma once

#include "tests/host/SpreadsheetContract.h"

namespace quorin::fakes {

class ConditionsContract : public SpreadsheetContract {
 protected:
  static constexpr const char* sentinel = "=\"QXZ\"=\"QXZ\"";

  void TearDown() override {
    for (const auto& each : ours("A1:Z99"))
      sheets().deleteCondition(on(rules(), "A1:Z99"), each.id);
  }

  host::SheetRef rules() const { return {book_, "Rules"}; }
  std::vector<host::FormatCondition> all(const char* address) {
    return sheets().formatConditions(on(rules(), address));
  }
  std::vector<host::FormatCondition> ours(const char* address) {
    std::vector<host::FormatCondition> found = all(address);
    std::erase_if(found, [](const auto& each) { return each.formula != sentinel; });
    return found;
  }
  std::string add(const char* address) {
    return sheets().addFormatCondition(on(rules(), address), sentinel);
  }
  // The cells of the sentinels that touch the range.
  std::set<std::string> marked(const char* address) {
    host::RangeRef range{rules(), {}};
    for (const auto& each : ours(address))
      range.areas.insert(range.areas.end(), each.areas.begin(), each.areas.end());
    return cellsOf(range);
  }
};

TEST_P(ConditionsContract, ListsTheUsersRulesThatTouchARange) {
  ASSERT_EQ(all("B2").size(), 1U);
  EXPECT_EQ(all("B2").front().kind, host::ConditionKind::expression);
  EXPECT_EQ(all("B2").front().formula, "=$B2>1");
  EXPECT_EQ(all("B2").front().areas, host::parseA1("B2:B5"));
  EXPECT_EQ(all("A1:C5").size(), 2U);
  EXPECT_EQ(all("D2:D3").front().kind, host::ConditionKind::cellValue);
  EXPECT_TRUE(all("F9").empty());
}

TEST_P(ConditionsContract, AddsAConditionAfterTheUsers) {
  const std::string id = add("B4:C5,E7");
  ASSERT_EQ(all("B4").size(), 2U);
  EXPECT_EQ(all("B4").back().id, id);
  EXPECT_EQ(all("B4").back().formula, sentinel);
  EXPECT_EQ(all("B4").back().kind, host::ConditionKind::expression);
  EXPECT_EQ(all("B4").back().fill, std::nullopt);
  EXPECT_EQ(marked("E7"), (std::set<std::string>{"B4", "B5", "C4", "C5", "E7"}));
  EXPECT_TRUE(ours("B3").empty());
}

TEST_P(ConditionsContract, FillsIt) {
  const std::string id = add("E7");
  sheets().setConditionFill(rules(), id, host::Color{255, 128, 3});
  EXPECT_EQ(all("E7").front().fill, (host::Color{255, 128, 3}));
}

TEST_P(ConditionsContract, KeepsSeveralApart) {
  const std::string first = add("E7"), second = add("E7:E8");
  EXPECT_NE(first, second);
  EXPECT_EQ(ours("E7").size(), 2U);
  sheets().deleteCondition(on(rules(), "E7"), first);
  ASSERT_EQ(ours("E7").size(), 1U);
  EXPECT_EQ(ours("E7").front().id, second);
}

TEST_P(ConditionsContract, MovesItElsewhere) {
  const std::string id = add("E7:E8");
  sheets().setConditionFill(rules(), id, host::Color{1, 2, 3});
  sheets().setConditionRange(on(rules(), "F9,G1:G2"), id);
  EXPECT_TRUE(ours("E7:E8").empty());
  EXPECT_EQ(marked("F9"), (std::set<std::string>{"F9", "G1", "G2"}));
  EXPECT_EQ(ours("F9").front().id, id);
  EXPECT_EQ(ours("F9").front().fill, (host::Color{1, 2, 3}));
}

TEST_P(ConditionsContract, TakesItOffAPartOfItsCells) {
  const std::string id = add("E7:F9");
  sheets().deleteCondition(on(rules(), "F8"), id);
  EXPECT_TRUE(ours("F8").empty());
  EXPECT_EQ(marked("E7"), (std::set<std::string>{"E7", "E8", "E9", "F7", "F9"}));
  sheets().deleteCondition(on(rules(), "A1:Z20"), id);
  EXPECT_TRUE(ours("A1:Z99").empty());
}

TEST_P(ConditionsContract, LeavesTheUsersRulesAlone) {
  const auto before = all("A1:Z99");
  const std::string id = add("B3:D4");
  sheets().setConditionPriority(rules(), id, 1);
  sheets().deleteCondition(on(rules(), "B3:D4"), id);
  EXPECT_EQ(all("A1:Z99"), before);
}

TEST_P(ConditionsContract, RefusesWhatIsNotThere) {
  const host::SheetRef nowhere{book_, "Nowhere"};
  EXPECT_EQ(errorOf([&] { sheets().formatConditions(on(nowhere, "A1")); }), -1728);
  EXPECT_EQ(errorOf([&] { sheets().addFormatCondition(on(nowhere, "A1"), sentinel); }), -1728);
  const std::string id = add("E7");
  sheets().deleteCondition(on(rules(), "E7"), id);
  EXPECT_EQ(errorOf([&] { sheets().setConditionFill(rules(), id, host::Color{}); }), -1728);
  EXPECT_EQ(errorOf([&] { sheets().setConditionRange(on(rules(), "A1"), id); }), -1728);
  EXPECT_EQ(errorOf([&] { sheets().deleteCondition(on(rules(), "A1"), id); }), -1728);
}

}  // namespace quorin::fakes
