// The verb "clearMarks", hiding again what was unhidden, and the sweep of an earlier run's marks.
#include "tests/fakes/Files.h"
#include "tests/kit/bridge/MarksFixture.h"

namespace quorin {
namespace {

using std::chrono::seconds;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class ClearMarks : public MarksFixture {
 protected:
  static JSONValue removed(int count) { return Object{{"removed", count}}; }
  Record record(const std::string& sheet, const Texts& addrs) const {
    return {"Plan.xlsx", sheet, addrs, red_};
  }
};

TEST_F(ClearMarks, HasNothingToDoWithoutRecords) {
  EXPECT_EQ(bridge_.dispatch("clearMarks", {}), (Bridge::Reply{true, removed(0)}));
  EXPECT_THAT(excel_.calls(), IsEmpty());
  EXPECT_THAT(log_.lines(), IsEmpty());
  EXPECT_THAT(filesIn(folder_.path()), IsEmpty());
}

TEST_F(ClearMarks, ClearsEveryRecordInPiecesOf40) {
  store_.recordApplied({record("Q1", cells(1, 41)), record("Q2", {"B2"})});
  excel_.returns("qx_cf_clear", 40);
  excel_.returns("qx_cf_clear", 1);
  EXPECT_EQ(bridge_.clearMarks(), removed(42));
  ASSERT_THAT(callsOf("qx_cf_clear"), SizeIs(3));
  EXPECT_EQ(argumentsOf(excel_.calls()[0]), (Array{addresses(cells(1, 40)), "Plan.xlsx", "Q1"}));
  EXPECT_EQ(argumentsOf(excel_.calls()[1]), (Array{addresses({"$A$41"}), "Plan.xlsx", "Q1"}));
  EXPECT_EQ(argumentsOf(excel_.calls()[2]), (Array{addresses({"B2"}), "Plan.xlsx", "Q2"}));
  EXPECT_THAT(clock_.waits(), ElementsAre(seconds(25), seconds(25), seconds(25)));
  EXPECT_FALSE(hasFile("highlights.json"));
  EXPECT_THAT(log_.lines(), ElementsAre("HIGHLIGHT clear sheet=Q1 addrs=40 deleted=40",
                                        "HIGHLIGHT clear sheet=Q1 addrs=1 deleted=1",
                                        "HIGHLIGHT clear sheet=Q2 addrs=1 deleted=1"));
}

TEST_F(ClearMarks, TakesAnAddressThatBindsNoMoreForCleared) {
  store_.recordApplied({record("Q1", {"Gone", "A1"})});
  excel_.returns("qx_cf_clear", 1);
  EXPECT_EQ(bridge_.clearMarks(), removed(2));
  EXPECT_FALSE(hasFile("highlights.json"));
}

// Rows came or went, and nothing tells where they have carried it.
TEST_F(ClearMarks, LooksOnTheWholeSheetWhereNoRecordedCellHasAMark) {
  store_.recordApplied({record("Q1", cells(1, 41)), record("Q2", {"B2"}), record("Q3", {"C3"})});
  excel_.returns("qx_cf_clear", 0);
  excel_.returns("qx_cf_clear", 0);
  excel_.returns("qx_cf_moved", 2);
  excel_.returns("qx_cf_clear", 1);
  excel_.fails("qx_cf_clear", -1728, "sheet not found: Q3");
  EXPECT_EQ(bridge_.clearMarks(), removed(42));
  ASSERT_THAT(callsOf("qx_cf_moved"), SizeIs(1));
  EXPECT_EQ(argumentsOf(callsOf("qx_cf_moved")[0]), (Array{"Plan.xlsx", "Q1"}));
  EXPECT_FALSE(hasFile("highlights.json"));
  EXPECT_THAT(
      log_.lines(),
      Contains("HIGHLIGHT clear found none of addrs=41 sheet=Q1; on the whole sheet deleted=2"));
}

TEST_F(ClearMarks, KeepsWhatItCouldNotLookFor) {
  store_.recordApplied({record("Q1", {"A1"})});
  excel_.returns("qx_cf_clear", 0);
  timesOut("qx_cf_moved");
  EXPECT_FALSE(bridge_.dispatch("clearMarks", {}).ok);
  EXPECT_THAT(store_.load(), ElementsAre(record("Q1", {"A1"})));
}

TEST_F(ClearMarks, DropsWhatIsInAClosedWorkbook) {
  store_.recordApplied({record("Q1", {"A1"})});
  excel_.fails("qx_cf_clear", -1728, "workbook not open: Plan.xlsx");
  EXPECT_EQ(bridge_.clearMarks(), removed(0));
  EXPECT_FALSE(hasFile("highlights.json"));
  EXPECT_THAT(log_.lines(), ElementsAre("HIGHLIGHT clear stale book=Plan.xlsx sheet=Q1 addrs=1: "
                                        "workbook not open: Plan.xlsx"));
}

TEST_F(ClearMarks, KeepsWhatItCouldNotClear) {
  Record whole = record("Q1", cells(1, 90));
  whole.single = true;
  store_.recordApplied({record("Q0", {"A1"}), whole});
  excel_.returns("qx_cf_clear", 1);
  excel_.returns("qx_cf_clear", 40);
  excel_.fails("qx_cf_clear", -50, "the first");
  excel_.fails("qx_cf_clear", -10000, "the second");
  EXPECT_EQ(bridge_.dispatch("clearMarks", {}),
            (Bridge::Reply{false, error("transport", "the first")}));
  EXPECT_THAT(store_.load(), ElementsAre(record("Q1", cells(41, 90))));
}

TEST_F(ClearMarks, KeepsTheWholeRecordAfterATimeout) {
  Record whole = record("Q1", {"A1"});
  whole.single = true;
  store_.recordApplied({whole});
  timesOut("qx_cf_clear");
  EXPECT_EQ(bridge_.dispatch("clearMarks", {}),
            (Bridge::Reply{false, error("timeout", "Excel did not respond within 25s")}));
  EXPECT_THAT(store_.load(), ElementsAre(whole));
}

TEST_F(ClearMarks, SaysWhenTheRecordCannotBeWritten) {
  store_.recordApplied({record("Q1", {"A1"}), record("Q2", {"A1"})});
  excel_.returns("qx_cf_clear", 1);
  excel_.fails("qx_cf_clear", -50, "no");
  files_.failEvery("create", ENOSPC);
  EXPECT_EQ(messageOf([&] { bridge_.clearMarks(); }), "no");
  EXPECT_THAT(store_.load(), SizeIs(2));
  EXPECT_THAT(log_.lines(),
              Contains(testing::StartsWith("ERROR clearMarks: highlights.json write failed: ")));
}

TEST_F(ClearMarks, TakesAMalformedRecordForNone) {
  writeFile(folder_ / "highlights.json", "[{}]");
  EXPECT_EQ(bridge_.clearMarks(), removed(0));
  EXPECT_THAT(log_.lines(),
              ElementsAre("ERROR highlights.json malformed: a record lacks \"book\""));
  EXPECT_TRUE(hasFile("highlights.json"));
}

TEST_F(ClearMarks, KnowsStaleBooksByOneCodeAlone) {
  EXPECT_TRUE(Bridge::isStaleBookError(-1728));
  for (const int code : {-1727, -1729, 1728, -9990, -50, 0})
    EXPECT_FALSE(Bridge::isStaleBookError(code)) << code;
}

class RestoreUnhidden : public ClearMarks {
 protected:
  RestoreUnhidden() { unhide_.record({{"Plan.xlsx", "Q1", {{5, 7}, {9, 9}}, {{3, 3}}}}); }
};

TEST_F(RestoreUnhidden, HidesAgainWhenHighlightsAreCleared) {
  excel_.returns("qx_unhide", 5);
  EXPECT_EQ(bridge_.clearMarks(), removed(0));
  EXPECT_THAT(handlers(), ElementsAre("qx_pollcell", "qx_unhide"));
  Array rows, cols;
  rows.emplace_back(Array{5, 7});
  rows.emplace_back(Array{9, 9});
  cols.emplace_back(Array{3, 3});
  EXPECT_EQ(argumentsOf(excel_.calls()[1]), (Array{"Q1", "Plan.xlsx", rows, cols, true}));
  EXPECT_THAT(clock_.waits(), ElementsAre(seconds(3), seconds(8)));
  EXPECT_FALSE(hasFile("unhidden.json"));
  EXPECT_THAT(log_.lines(),
              ElementsAre("UNHIDE active row=1 col=1", "UNHIDE restore sheet=Q1 rows=2 cols=1",
                          "UNHIDE restore sheet=Q1 rows=2 cols=1 ok=true"));
}

TEST_F(RestoreUnhidden, LeavesTheActiveCellInView) {
  active("Plan.xlsx", "Q1", "$C$6");
  bridge_.pollCell();  // the place of the fixture
  excel_.returns("qx_unhide", 1);
  bridge_.clearMarks();
  const Array arguments = argumentsOf(callsOf("qx_unhide")[0]);
  EXPECT_EQ(arguments[2], list({list({9, 9})}));
  EXPECT_EQ(arguments[3], JSONValue(Array()));
  EXPECT_THAT(unhide_.load(), ElementsAre(Hidden{"Plan.xlsx", "Q1", {{5, 7}}, {{3, 3}}}));
  EXPECT_THAT(log_.lines(), Contains("UNHIDE active row=6 col=3"));
}

TEST_F(RestoreUnhidden, LooksForTheActiveCellOnItsOwnSheetAlone) {
  active("Plan.xlsx", "Q2", "$C$6");
  active("Other.xlsx", "Q1", "$C$6");
  bridge_.pollCell();
  excel_.returns("qx_unhide", 5);
  bridge_.clearMarks();
  EXPECT_FALSE(hasFile("unhidden.json"));
  unhide_.record({{"Plan.xlsx", "Q1", {{5, 7}}, {}}});
  bridge_.clearMarks();
  EXPECT_FALSE(hasFile("unhidden.json"));
}

TEST_F(RestoreUnhidden, GoesOnWithoutAnActiveCell) {
  excel_.returns("qx_pollcell", Array{nullptr, nullptr, nullptr});
  bridge_.pollCell();
  excel_.returns("qx_unhide", 5);
  bridge_.clearMarks();
  EXPECT_FALSE(hasFile("unhidden.json"));
  EXPECT_THAT(log_.lines(), Contains("UNHIDE active none"));
}

TEST_F(RestoreUnhidden, KeepsWhatItCouldNotHide) {
  unhide_.record({{"Plan.xlsx", "Q1", {{5, 7}}, {}}, {"Plan.xlsx", "Q2", {}, {{2, 3}}}});
  excel_.fails("qx_unhide", -10000, "protected");
  excel_.returns("qx_unhide", 2);
  EXPECT_EQ(bridge_.clearMarks(), removed(0)) << "which is no failure of the clearing";
  EXPECT_THAT(unhide_.load(), ElementsAre(Hidden{"Plan.xlsx", "Q1", {{5, 7}}, {}}));
  EXPECT_THAT(log_.lines(), Contains("UNHIDE restore sheet=Q1 rows=1 cols=0 ok=false: protected"));
}

TEST_F(RestoreUnhidden, DropsWhatIsInAClosedWorkbook) {
  excel_.fails("qx_unhide", -1728, "workbook not open: Plan.xlsx");
  bridge_.clearMarks();
  EXPECT_FALSE(hasFile("unhidden.json"));
  EXPECT_THAT(log_.lines(), Contains("UNHIDE restore stale book=Plan.xlsx sheet=Q1"));
}

TEST_F(RestoreUnhidden, SaysWhenTheRecordCannotBeWritten) {
  active("Plan.xlsx", "Q1", "$C$6");
  bridge_.pollCell();
  excel_.returns("qx_unhide", 5);
  files_.failEvery("create", ENOSPC);
  EXPECT_EQ(bridge_.clearMarks(), removed(0));
  EXPECT_THAT(log_.lines(),
              Contains(testing::MatchesRegex("ERROR unhidden.json write failed: [a-zA-Z].*")));
  EXPECT_TRUE(hasFile("unhidden.json"));
}

TEST_F(RestoreUnhidden, LeavesAMalformedRecordAlone) {
  writeFile(folder_ / "unhidden.json", R"([{"book":"B","sheet":"S","rows":[]}])");
  EXPECT_EQ(bridge_.clearMarks(), removed(0));
  EXPECT_THAT(excel_.calls(), IsEmpty());
  EXPECT_THAT(log_.lines(), ElementsAre("ERROR unhidden.json malformed: a record lacks \"cols\""));
  EXPECT_TRUE(hasFile("unhidden.json"));
}

using RestoreStranded = ClearMarks;

TEST_F(RestoreStranded, HasNothingToDoWithoutRecords) {
  bridge_.restoreStranded();
  EXPECT_THAT(excel_.calls(), IsEmpty());
  EXPECT_THAT(log_.lines(), ElementsAre("RESTORE nothing recorded"));
}

TEST_F(RestoreStranded, WaitsForExcel) {
  store_.recordApplied({record("Q1", cells(1, 3)), record("Q2", {"B2"})});
  target_.running = false;
  bridge_.restoreStranded();
  EXPECT_THAT(excel_.calls(), IsEmpty());
  EXPECT_TRUE(hasFile("highlights.json"));
  EXPECT_THAT(log_.lines(), ElementsAre("RESTORE Excel not running; 4 addresses stay recorded"));
}

TEST_F(RestoreStranded, ClearsWhatIsRecorded) {
  store_.recordApplied({record("Q1", cells(1, 3))});
  excel_.returns("qx_cf_clear", 3);
  bridge_.restoreStranded();
  EXPECT_FALSE(hasFile("highlights.json"));
  EXPECT_THAT(log_.lines(), ElementsAre("HIGHLIGHT clear sheet=Q1 addrs=3 deleted=3",
                                        "RESTORE recorded=3 \u2192 {\"removed\":3}"));
}

TEST_F(RestoreStranded, HidesAgainWithoutAnyHighlight) {
  unhide_.record({{"Plan.xlsx", "Q1", {{5, 7}}, {}}});
  excel_.returns("qx_unhide", 3);
  bridge_.restoreStranded();
  EXPECT_FALSE(hasFile("unhidden.json"));
  EXPECT_THAT(log_.lines(), Contains("RESTORE recorded=0 \u2192 {\"removed\":0}"));
}

TEST_F(RestoreStranded, SaysWhatFailed) {
  store_.recordApplied({record("Q1", cells(1, 3))});
  excel_.fails("qx_cf_clear", -50, "no");
  bridge_.restoreStranded();
  EXPECT_TRUE(hasFile("highlights.json"));
  EXPECT_THAT(log_.lines(), ElementsAre("RESTORE recorded=3 failed: no"));
}

TEST_F(RestoreStranded, LetsNothingEscapeFromTheSystem) {
  store_.recordApplied({record("Q1", cells(1, 3))});
  target_.broken = true;
  bridge_.restoreStranded();
  EXPECT_THAT(log_.lines(), ElementsAre("ERROR restoreStranded: no list of processes"));
}

}  // namespace
}  // namespace quorin
