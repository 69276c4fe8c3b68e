// The verb "reveal".
#include "tests/fakes/Files.h"
#include "tests/kit/bridge/MarksFixture.h"

namespace quorin {
namespace {

using std::chrono::seconds;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class Reveal : public MarksFixture {
 protected:
  Reveal() {
    bridge_.setOnActivatedCell([this](const BridgeShapes::CellPlace& cell) {
      heard_.push_back(cell.book + "|" + cell.sheet + "|" + cell.address);
    });
    excel_.returns("qx_revealscroll", Array{"Plan.xlsx", "Q2", "$B$2"});
    excel_.returns("qx_unhide", 1);
  }

  // The target's place and size on the active sheet Q1, the window showing A1:J40.
  void target(int row, int col, int rows, int cols, JSONValue rowsHidden = false,
              JSONValue colsHidden = false, JSONValue seen = "") {
    excel_.returns("qx_revealread",
                   Array{row, col, rows, cols, "Q1", 1, 1, 40, 10, std::move(rowsHidden),
                         std::move(colsHidden), std::move(seen)});
  }
  static JSONValue revealed(bool activated) {
    return Object{{"revealed", true}, {"activated", activated}};
  }
  static JSONValue inView() { return Object{{"revealed", false}}; }
  static JSONValue with(JSONValue reply, const std::string& unhid) {
    (*reply.object())["unhid"] = unhid;
    return reply;
  }

  std::vector<std::string> heard_;
};

TEST_F(Reveal, LeavesAloneWhatIsInView) {
  target(2, 2, 1, 1);
  EXPECT_EQ(bridge_.dispatch("reveal", {list({"B2"}), 0}), (Bridge::Reply{true, inView()}));
  EXPECT_THAT(handlers(), ElementsAre("qx_pollcell", "qx_revealread"));
  EXPECT_EQ(argumentsOf(excel_.calls()[1]), (Array{"B2", "Q1", "Plan.xlsx"}));
  EXPECT_THAT(clock_.waits(), ElementsAre(seconds(3), seconds(3)));
  EXPECT_THAT(log_.lines(), ElementsAre("REVEAL visible sheet=Q1 addr=B2"));
  EXPECT_EQ(bridge_.lastProgrammaticNav(), Bridge::distantPast);
}

TEST_F(Reveal, ScrollsToWhatIsNot) {
  target(20, 11, 1, 1);
  EXPECT_EQ(bridge_.reveal({"K20", "Z99"}), revealed(false));
  EXPECT_EQ(argumentsOf(callsOf("qx_revealread")[0])[0], JSONValue("K20")) << "the first alone";
  EXPECT_EQ(argumentsOf(callsOf("qx_revealscroll")[0]), (Array{17, 9, "Q1", "Plan.xlsx", false}));
  EXPECT_THAT(clock_.waits(), ElementsAre(seconds(3), seconds(3), seconds(3)));
  EXPECT_THAT(log_.lines(), ElementsAre("REVEAL sheet=Q1 addr=K20 row=17 col=9 activate=false"));
  EXPECT_EQ(bridge_.lastProgrammaticNav(), now_);
  EXPECT_THAT(heard_, IsEmpty());
}

TEST_F(Reveal, ActivatesTheSheetAndTellsWhereItLanded) {
  target(1, 1, 1, 1);
  EXPECT_EQ(bridge_.reveal({"Q2!A1"}), revealed(true));
  EXPECT_EQ(argumentsOf(callsOf("qx_revealscroll")[0]), (Array{1, 1, "Q2", "Plan.xlsx", true}));
  EXPECT_THAT(heard_, ElementsAre("Plan.xlsx|Q2|$B$2"));
  EXPECT_THAT(log_.lines(), ElementsAre("REVEAL sheet=Q2 addr=A1 row=1 col=1 activate=true"));
}

TEST_F(Reveal, StampsTheTimeBeforeAndAfterScrolling) {
  target(1, 1, 1, 1);
  const Bridge::Date before = now_;
  std::optional<Bridge::Date> during;
  excel_.answer("qx_revealscroll", [&](const AppleEvent&) {
    during = bridge_.lastProgrammaticNav();
    now_ += seconds(2);
    return ScriptReply{std::nullopt, ScriptErrorInfo{-50, "no"}};
  });
  bridge_.reveal({"Q2!A1"});
  EXPECT_EQ(bridge_.lastProgrammaticNav(), before);
  EXPECT_EQ(messageOf([&] { bridge_.reveal({"Q2!A1"}); }), "no");
  EXPECT_EQ(during, before);
}

TEST_F(Reveal, SkipsAddressesOnSeveralSheets) {
  const JSONValue refusal = Object{{"revealed", false}, {"reason", "multi-sheet"}};
  EXPECT_EQ(bridge_.reveal({"Q1!A1", "Q2!A1", "A3"}), refusal);
  EXPECT_EQ(bridge_.reveal({}), refusal);
  EXPECT_THAT(handlers(), ElementsAre("qx_pollcell", "qx_pollcell"));
  EXPECT_THAT(log_.lines(), ElementsAre("REVEAL skipped reason=multi-sheet n=3",
                                        "REVEAL skipped reason=multi-sheet n=0"));
}

TEST_F(Reveal, SkipsWhatDoesNotBind) {
  excel_.fails("qx_revealread", -1728, "range does not exist: Nope");
  EXPECT_EQ(bridge_.dispatch("reveal", {list({"Nope"}), 0}),
            (Bridge::Reply{true, Object{{"revealed", false}, {"reason", "unbound"}}}));
  EXPECT_THAT(log_.lines(), ElementsAre("REVEAL skipped reason=unbound sheet=Q1 addr=Nope"));
}

TEST_F(Reveal, PassesOtherErrorsOn) {
  excel_.fails("qx_revealread", -50, "no");
  EXPECT_EQ(bridge_.dispatch("reveal", {list({"A1"}), 0}),
            (Bridge::Reply{false, error("transport", "no")}));
  excel_.returns("qx_revealread", Array{1, 1});
  bridge_.dispatch("reveal", {list({"A1"}), 0});
  EXPECT_THAT(log_.lines(), Contains("ERROR reveal: no"));
}

TEST_F(Reveal, UnhidesNothingWhenTheTargetIsUnreadable) {
  excel_.returns("qx_revealread", Array{1, 1, 0, 1, "Q1", 1, 1, 40, 10, true, true, ""});
  EXPECT_EQ(bridge_.dispatch("reveal", {list({"A1"}), 0}),
            (Bridge::Reply{false, error("transport", "revealread rect unreadable")}));
  EXPECT_THAT(handlers(), ElementsAre("qx_pollcell", "qx_revealread"));
}

TEST_F(Reveal, UnhidesWhatHidesTheTarget) {
  target(12, 3, 3, 1, true, true);
  EXPECT_EQ(bridge_.reveal({"C12:C14"}), with(inView(), "rows 12\u201314, column C"));
  EXPECT_THAT(handlers(), ElementsAre("qx_pollcell", "qx_revealread", "qx_unhide"));
  Array rows, cols;
  rows.emplace_back(Array{12, 14});
  cols.emplace_back(Array{3, 3});
  EXPECT_EQ(argumentsOf(excel_.calls()[2]), (Array{"Q1", "Plan.xlsx", rows, cols, false}));
  EXPECT_THAT(clock_.waits(), ElementsAre(seconds(3), seconds(3), seconds(8)));
  EXPECT_THAT(unhide_.load(), ElementsAre(Hidden{"Plan.xlsx", "Q1", {{12, 14}}, {{3, 3}}}));
  EXPECT_THAT(log_.lines(), ElementsAre("REVEAL unhide sheet=Q1 rows=1 cols=1",
                                        "REVEAL visible sheet=Q1 addr=C12:C14"));
  EXPECT_EQ(bridge_.lastProgrammaticNav(), now_);
}

TEST_F(Reveal, UnhidesTheRowsBetweenThoseInView) {
  target(1, 1, 9, 1, nullptr, false, "$A$1:$A$2,$A$5,$A$8:$A$9");
  EXPECT_EQ(bridge_.reveal({"A1:A9"}), with(inView(), "rows 3\u20134, rows 6\u20137"));
  EXPECT_THAT(unhide_.load(), ElementsAre(Hidden{"Plan.xlsx", "Q1", {{3, 4}, {6, 7}}, {}}));
}

TEST_F(Reveal, RecordsBeforeItUnhides) {
  target(12, 1, 1, 1, true);
  files_.failEvery("create", ENOSPC);
  EXPECT_FALSE(bridge_.dispatch("reveal", {list({"A12"}), 0}).ok);
  EXPECT_THAT(handlers(), ElementsAre("qx_pollcell", "qx_revealread"));
}

TEST_F(Reveal, KeepsTheRecordWhenUnhidingFails) {
  target(12, 1, 1, 1, true);
  bridge_.reveal({"A12"});
  unhide_.clear();
  excel_.fails("qx_unhide", -10000, "protected");
  bridge_.reveal({"A12"});  // the answer of the fixture
  unhide_.clear();
  EXPECT_EQ(messageOf([&] { bridge_.reveal({"A12"}); }), "protected");
  EXPECT_THAT(unhide_.load(), ElementsAre(Hidden{"Plan.xlsx", "Q1", {{12, 12}}, {}}));
}

TEST_F(Reveal, UnhidesNoMoreThan200RowsOrColumns) {
  target(1, 1, 201, 2, true, true);
  EXPECT_EQ(bridge_.reveal({"A1:B201"}), revealed(false));
  EXPECT_THAT(callsOf("qx_unhide"), IsEmpty());
  EXPECT_FALSE(hasFile("unhidden.json"));
  EXPECT_THAT(log_.lines(), ElementsAre("REVEAL unhide skipped reason=cap rows=201 cols=2",
                                        "REVEAL sheet=Q1 addr=A1:B201 row=1 col=1 activate=false"));
}

TEST_F(Reveal, Unhides200) {
  target(1, 1, 200, 200, true, true);
  bridge_.reveal({"A1:GR200"});
  EXPECT_THAT(unhide_.load(), ElementsAre(Hidden{"Plan.xlsx", "Q1", {{1, 200}}, {{1, 200}}}));
}

TEST_F(Reveal, CountsColumnsForTheLimitToo) {
  target(1, 1, 1, 201, true, true);
  bridge_.reveal({"A1:GS1"});
  EXPECT_THAT(log_.lines(), Contains("REVEAL unhide skipped reason=cap rows=1 cols=201"));
}

TEST_F(Reveal, HidesAgainWhatEarlierRevealsUnhid) {
  unhide_.record(
      {{"Plan.xlsx", "Q1", {{5, 7}, {30, 31}}, {{4, 4}}}, {"Other.xlsx", "S", {{2, 2}}, {}}});
  target(30, 3, 1, 1);
  EXPECT_EQ(bridge_.reveal({"C30"}), inView());
  ASSERT_THAT(callsOf("qx_unhide"), SizeIs(2));
  EXPECT_EQ(argumentsOf(callsOf("qx_unhide")[0]),
            (Array{"Q1", "Plan.xlsx", list({list({5, 7})}), list({list({4, 4})}), true}));
  EXPECT_EQ(argumentsOf(callsOf("qx_unhide")[1])[1], JSONValue("Other.xlsx"));
  EXPECT_THAT(unhide_.load(), ElementsAre(Hidden{"Plan.xlsx", "Q1", {{30, 31}}, {}}))
      << "what shows the target stays";
  EXPECT_EQ(bridge_.lastProgrammaticNav(), now_);
}

TEST_F(Reveal, LeavesTheActiveCellInView) {
  unhide_.record({{"Plan.xlsx", "Q1", {{1, 1}, {5, 7}}, {}}});
  target(30, 3, 1, 1);
  bridge_.reveal({"C30"});
  EXPECT_THAT(unhide_.load(), ElementsAre(Hidden{"Plan.xlsx", "Q1", {{1, 1}}, {}}));
}

TEST_F(Reveal, DoesNotUnhideWhatIsRecordedAlready) {
  unhide_.record({{"Plan.xlsx", "Q1", {{12, 14}}, {}}});
  target(12, 1, 3, 1, true);
  EXPECT_EQ(bridge_.reveal({"A12:A14"}), with(inView(), "rows 12\u201314"));
  EXPECT_THAT(callsOf("qx_unhide"), IsEmpty());
  EXPECT_THAT(unhide_.load(), ElementsAre(Hidden{"Plan.xlsx", "Q1", {{12, 14}}, {}}));
}

TEST_F(Reveal, AddsToTheRecordOfTheSheet) {
  unhide_.record({{"Plan.xlsx", "Q1", {{12, 14}}, {}}});
  target(13, 1, 4, 1, true);
  bridge_.reveal({"A13:A16"});
  EXPECT_EQ(argumentsOf(callsOf("qx_unhide")[0])[2], list({list({13, 16})}));
  EXPECT_THAT(unhide_.load(), ElementsAre(Hidden{"Plan.xlsx", "Q1", {{12, 16}}, {}}));
}

TEST_F(Reveal, KeepsWhatItCouldNotHideAgain) {
  excel_.fails("qx_unhide", -50, "no");
  target(30, 3, 1, 1);
  unhide_.record({{"Plan.xlsx", "Q2", {{5, 7}}, {}}});
  EXPECT_EQ(bridge_.reveal({"C30"}), inView());
  EXPECT_FALSE(hasFile("unhidden.json"));
  unhide_.record({{"Plan.xlsx", "Q2", {{5, 7}}, {}}});
  EXPECT_EQ(bridge_.reveal({"C30"}), inView());
  EXPECT_THAT(unhide_.load(), ElementsAre(Hidden{"Plan.xlsx", "Q2", {{5, 7}}, {}}));
}

}  // namespace
}  // namespace quorin
