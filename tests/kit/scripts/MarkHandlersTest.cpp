// qx_cf_apply, qx_cf_move and qx_cf_clear among the user's own rules.
#include "tests/kit/scripts/LibraryFixture.h"

namespace quorin {
namespace {

class MarkHandlers : public LibraryFixture {
 protected:
  void SetUp() override {
    LibraryFixture::SetUp();
    memory_->open(fakes::ruledWorkbook());
    memory_->activateWorkbook("Known.xlsx");
  }

  static constexpr const char* sentinel = "=\"QXZ\"=\"QXZ\"";

  std::string apply(Array addresses) {
    return run("qx_cf_apply", {std::move(addresses), "Ruled.xlsx", "Rules", 255, 0, 128});
  }
  std::string clear(Array addresses) {
    return run("qx_cf_clear", {std::move(addresses), "Ruled.xlsx", "Rules"});
  }
  std::string move(Array from, Array to) {
    return run("qx_cf_move", {std::move(from), std::move(to), "Ruled.xlsx", "Rules"});
  }
  std::vector<host::FormatCondition> at(const char* address) {
    return memory_->formatConditions({{"Ruled.xlsx", "Rules"}, host::parseA1(address).value()});
  }
  std::vector<std::string> formulas(const char* address) {
    std::vector<std::string> found;
    for (const auto& each : at(address)) found.push_back(each.formula);
    return found;
  }
  long countOf(const std::string& call) const {
    const std::vector<std::string> calls = memory_->script.calls();
    return std::count_if(calls.begin(), calls.end(),
                         [&](const std::string& each) { return each.starts_with(call); });
  }
};

TEST_F(MarkHandlers, ApplyPaintsAllCellsWithOneCondition) {
  EXPECT_EQ(apply({"F1", "F3:G4"}), "[1,0]");
  ASSERT_EQ(at("F1").size(), 1U);
  EXPECT_EQ(at("F1").front().formula, sentinel);
  EXPECT_EQ(at("F1").front().fill, (host::Color{255, 0, 128}));
  EXPECT_EQ(at("F1").front().areas, host::parseA1("F1,F3:G4"));
}

TEST_F(MarkHandlers, ApplyWritesAPriorityOnlyWhereTheUserHasRules) {
  apply({"F1"});
  EXPECT_EQ(countOf("setConditionPriority"), 0);
  EXPECT_EQ(apply({"B2", "D2"}), "[1,2]");
  EXPECT_EQ(countOf("setConditionPriority"), 1);
  EXPECT_EQ(formulas("B2"), (std::vector<std::string>{sentinel, "=$B2>1"}));
  EXPECT_EQ(at("B2").front().fill, (host::Color{255, 0, 128}));
}

TEST_F(MarkHandlers, ApplyCountsNoSentinelAsTheUsers) {
  apply({"F1"});
  EXPECT_EQ(apply({"F1"}), "[1,0]");
  EXPECT_EQ(formulas("F1"), (std::vector<std::string>{sentinel, sentinel}));
  EXPECT_EQ(at("F1").back().fill, (host::Color{255, 0, 128}));
}

TEST_F(MarkHandlers, ApplyColoursTheNewOfSeveral) {
  apply({"F1"});
  run("qx_cf_apply", {Array{"F1"}, "Ruled.xlsx", "Rules", 1, 2, 3});
  EXPECT_EQ(at("F1").front().fill, (host::Color{255, 0, 128}));
  EXPECT_EQ(at("F1").back().fill, (host::Color{1, 2, 3}));
}

TEST_F(MarkHandlers, ApplyLeavesNoConditionWithoutItsColour) {
  memory_->script.atEvery("setConditionFill", {.number = -10006, .message = "Can't set."});
  EXPECT_THAT(apply({"F1", "F3"}), testing::StartsWith("error -10006 "));
  EXPECT_TRUE(at("A1:Z99").size() == 3U) << "the user's three";
}

TEST_F(MarkHandlers, MoveDeclinesCellsWithRulesOfTheUsers) {
  apply({"F1"});
  EXPECT_EQ(move({"F1"}, {"B2", "G7"}), "[0,1]");
  EXPECT_EQ(formulas("F1"), std::vector<std::string>{sentinel});
  EXPECT_TRUE(formulas("G7").empty());
}

TEST_F(MarkHandlers, MovePointsEverySentinelElsewhereAndNothingElse) {
  apply({"B2"});
  apply({"B2"});
  EXPECT_EQ(move({"B2"}, {"G7", "G9"}), "[2,0]");
  EXPECT_EQ(formulas("B2"), std::vector<std::string>{"=$B2>1"});
  EXPECT_EQ(formulas("G9"), (std::vector<std::string>{sentinel, sentinel}));
  EXPECT_EQ(countOf("addFormatCondition"), 2);
}

TEST_F(MarkHandlers, ClearTakesEverySentinelAndNoRuleOfTheUsers) {
  const auto before = at("A1:Z99");
  apply({"B2", "D2:D3", "F1"});
  apply({"B3"});
  EXPECT_EQ(clear({"B2", "D2:D3", "F1", "B3"}), "2");
  EXPECT_EQ(at("A1:Z99"), before);
  EXPECT_EQ(clear({"B2", "D2:D3", "F1", "B3"}), "0");
}

TEST_F(MarkHandlers, ClearTakesWhatAHighlightHasBeyondTheAddresses) {
  apply({"F1", "F3"});
  EXPECT_EQ(clear({"F3"}), "1");
  EXPECT_TRUE(formulas("F1:F3").empty());
}

TEST_F(MarkHandlers, ClearLeavesOtherHighlightsAlone) {
  apply({"F1", "F3"});
  apply({"G7"});
  EXPECT_EQ(clear({"G7"}), "1");
  EXPECT_EQ(formulas("F1:F3"), std::vector<std::string>{sentinel});
  EXPECT_EQ(clear({"F3", "F1"}), "1") << "in whichever order";
  EXPECT_TRUE(formulas("F1:F3").empty());
}

TEST_F(MarkHandlers, MovedTakesWhateverIsOnTheSheet) {
  const auto before = at("A1:Z99");
  apply({"F4", "F5"});
  apply({"B2"});
  EXPECT_EQ(clear({"H1", "H2"}), "0");
  EXPECT_EQ(run("qx_cf_moved", {"Ruled.xlsx", "Rules"}), "2");
  EXPECT_EQ(at("A1:Z99"), before) << "the user's";
  EXPECT_EQ(run("qx_cf_moved", {"Ruled.xlsx", "Rules"}), "0");
  EXPECT_THAT(run("qx_cf_moved", {"Ruled.xlsx", "Nowhere"}), testing::StartsWith("error -1728"));
}

TEST_F(MarkHandlers, ClearPassesOverAddressesThatNoLongerBind) {
  apply({"F1", "F3"});
  EXPECT_EQ(clear({"F1", "NoSuchName", "F3"}), "2");
  EXPECT_TRUE(formulas("F1:F3").empty());
}

TEST_F(MarkHandlers, ClearTellsABusyExcelFromAnAddressThatIsGone) {
  apply({"F1"});
  excel_->forget();
  EXPECT_EQ(clear({"F1"}), "1");
  const int events = static_cast<int>(excel_->events().size());
  for (const int number : {-1712, -600, -10000}) {
    for (int event = 1; event <= events; ++event) {
      apply({"F1"});
      excel_->forget();
      excel_->failAt(event, {number, "No answer.", {}});
      EXPECT_THAT(clear({"F1"}), testing::StartsWith("error " + std::to_string(number) + " "))
          << event;
    }
  }
}

TEST_F(MarkHandlers, MarkOnlyInTheWorkbookThatIsNamed) {
  memory_->open({.name = "Twin.xlsx", .sheets = {{"Rules", {}}}});
  EXPECT_EQ(apply({"F1"}), "[1,0]");
  EXPECT_TRUE(memory_->formatConditions({{"Twin.xlsx", "Rules"}, {{1, 6, 1, 6}}}).empty());
  EXPECT_EQ(memory_->activeWorkbook(), "Twin.xlsx");
}

}  // namespace
}  // namespace quorin
