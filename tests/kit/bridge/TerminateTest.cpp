// Taking the marks back at the end: two seconds for everything, and nothing is marked after that.
#include <thread>

#include "tests/fakes/Files.h"
#include "tests/kit/bridge/MarksFixture.h"

namespace quorin {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class Terminate : public MarksFixture {
 protected:
  Record record(const std::string& sheet, const Texts& addrs) const {
    return {"Plan.xlsx", sheet, addrs, red_};
  }
};

TEST_F(Terminate, TakesEveryMarkBack) {
  store_.recordApplied({record("Q1", {"A1", "A2", "A3"}), record("Q2", {"B2"})});
  unhide_.record({{"Plan.xlsx", "Q1", {{1, 1}, {5, 7}}, {}}});
  excel_.returns("qx_cf_clear", 1);
  excel_.returns("qx_unhide", 3);
  bridge_.clearMarksForTerminate();
  EXPECT_THAT(handlers(), ElementsAre("qx_cf_clear", "qx_cf_clear", "qx_unhide"))
      << "nobody asks for the active cell: all rows are hidden again";
  EXPECT_EQ(argumentsOf(excel_.calls()[0]),
            (Array{addresses({"A1", "A2", "A3"}), "Plan.xlsx", "Q1"}));
  Array rows;
  rows.emplace_back(Array{1, 1});
  rows.emplace_back(Array{5, 7});
  EXPECT_EQ(argumentsOf(excel_.calls()[2]), (Array{"Q1", "Plan.xlsx", rows, Array(), true}));
  EXPECT_THAT(filesIn(folder_.path()), IsEmpty());
  EXPECT_THAT(log_.lines(), ElementsAre("TERMINATE 1 of 3 recorded addresses",
                                        "TERMINATE 1 of 1 recorded addresses",
                                        "UNHIDE restore sheet=Q1 rows=2 cols=0 ok=true"));
}

TEST_F(Terminate, TouchesNothingWithoutExcel) {
  store_.recordApplied({record("Q1", {"A1"})});
  unhide_.record({{"Plan.xlsx", "Q1", {{5, 7}}, {}}});
  target_.running = false;
  bridge_.clearMarksForTerminate();
  EXPECT_THAT(excel_.calls(), IsEmpty());
  EXPECT_THAT(store_.load(), SizeIs(1));
  EXPECT_THAT(unhide_.load(), SizeIs(1));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(Terminate, HasNothingToDoWithoutRecords) {
  bridge_.clearMarksForTerminate();
  EXPECT_THAT(excel_.calls(), IsEmpty());
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(Terminate, KeepsTheRecordsOfWhatFailed) {
  store_.recordApplied({record("Q1", {"A1"}), record("Q2", {"B2"})});
  unhide_.record({{"Plan.xlsx", "Q1", {{5, 7}}, {}}, {"Plan.xlsx", "Q2", {}, {{2, 2}}}});
  excel_.fails("qx_cf_clear", -1728, "workbook not open: Plan.xlsx");
  excel_.returns("qx_cf_clear", 1);
  excel_.fails("qx_unhide", -50, "no");
  excel_.returns("qx_unhide", 1);
  bridge_.clearMarksForTerminate();
  EXPECT_THAT(store_.load(), ElementsAre(record("Q1", {"A1"})));
  EXPECT_THAT(unhide_.load(), ElementsAre(Hidden{"Plan.xlsx", "Q1", {{5, 7}}, {}}));
  EXPECT_THAT(
      log_.lines(),
      ElementsAre("ERROR terminate clear failed: workbook not open: Plan.xlsx",
                  "TERMINATE 1 of 1 recorded addresses", "ERROR terminate restore failed: no",
                  "UNHIDE restore sheet=Q2 rows=0 cols=1 ok=true"));
}

TEST_F(Terminate, KeepsThePiecesThatFailed) {
  Record whole = record("Q1", cells(1, 90));
  whole.single = true;
  store_.recordApplied({whole});
  excel_.returns("qx_cf_clear", 2);
  excel_.fails("qx_cf_clear", -50, "no");
  excel_.returns("qx_cf_clear", 1);
  bridge_.clearMarksForTerminate();
  EXPECT_THAT(store_.load(), ElementsAre(record("Q1", cells(41, 80))));
  EXPECT_THAT(log_.lines(), ElementsAre("ERROR terminate clear failed: no",
                                        "TERMINATE 3 of 90 recorded addresses"));
}

TEST_F(Terminate, SharesTwoSecondsBetweenAllCalls) {
  store_.recordApplied({record("Q1", cells(1, 80)), record("Q2", {"B2"})});
  excel_.returns("qx_cf_clear", 1);
  clock_.signalled(milliseconds(1500));
  clock_.timesOut();
  bridge_.clearMarksForTerminate();
  EXPECT_THAT(clock_.waits(), ElementsAre(seconds(2), milliseconds(500)))
      << "no third call once the time is up";
  EXPECT_THAT(store_.load(), ElementsAre(record("Q1", cells(41, 80)), record("Q2", {"B2"})));
  EXPECT_THAT(log_.lines(),
              ElementsAre("PERF qx_cf_clear 1500ms", "PERF qx_cf_clear 500ms",
                          "ERROR terminate clear failed: Excel did not respond within 0s",
                          "TERMINATE 1 of 80 recorded addresses"));
}

TEST_F(Terminate, DoesNotHideAgainOnceTheTimeIsUp) {
  store_.recordApplied({record("Q1", {"A1"})});
  unhide_.record({{"Plan.xlsx", "Q1", {{5, 7}}, {}}});
  timesOut("qx_cf_clear");
  bridge_.clearMarksForTerminate();
  EXPECT_THAT(callsOf("qx_unhide"), IsEmpty());
  EXPECT_THAT(unhide_.load(), SizeIs(1));
}

TEST_F(Terminate, SaysWhenTheRecordsCannotBeWritten) {
  store_.recordApplied({record("Q1", {"A1"}), record("Q2", {"A1"})});
  unhide_.record({{"Plan.xlsx", "Q1", {{5, 7}}, {}}, {"Plan.xlsx", "Q2", {{5, 7}}, {}}});
  excel_.returns("qx_cf_clear", 1);
  excel_.fails("qx_cf_clear", -50, "no");
  excel_.returns("qx_unhide", 1);
  excel_.fails("qx_unhide", -50, "no");
  files_.failEvery("create", ENOSPC);
  bridge_.clearMarksForTerminate();
  EXPECT_THAT(log_.lines(),
              Contains(testing::StartsWith("ERROR terminate: highlights.json write failed: ")));
  EXPECT_THAT(log_.lines(),
              Contains(testing::StartsWith("ERROR terminate: unhidden.json write failed: ")));
}

TEST_F(Terminate, LetsNothingEscapeFromTheSystem) {
  store_.recordApplied({record("Q1", {"A1"})});
  target_.broken = true;
  bridge_.clearMarksForTerminate();
  EXPECT_THAT(log_.lines(), ElementsAre("ERROR terminate clear failed: no list of processes"));
  EXPECT_THAT(store_.load(), SizeIs(1));
}

TEST_F(Terminate, TellsBeforeByTheRecordsAloneWhatThereIsToTakeBack) {
  EXPECT_TRUE(bridge_.leftToTakeBack().isEmpty());
  store_.recordApplied({record("Q1", {"$A$1:$B$3", "B3:C3", "TAX"}), record("Q2", {"A1", "C:C"})});
  unhide_.record({{"Plan.xlsx", "Q1", {{1, 1}, {5, 7}}, {}}, {"Plan.xlsx", "Q2", {}, {{2, 3}}}});
  EXPECT_EQ(bridge_.leftToTakeBack(), (Bridge::Recorded{7 + 1 + 1048576, 1, 4, 2}));
  EXPECT_THAT(excel_.calls(), IsEmpty());
  EXPECT_THAT(store_.load(), SizeIs(2));
  EXPECT_THAT(unhide_.load(), SizeIs(2));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(Terminate, TellsOfNothingWhereNothingCanBeTakenBack) {
  store_.recordApplied({record("Q1", {"A1"})});
  target_.running = false;
  EXPECT_TRUE(bridge_.leftToTakeBack().isEmpty());
  target_.broken = true;
  EXPECT_TRUE(bridge_.leftToTakeBack().isEmpty()) << "nothing escapes";
}

TEST_F(Terminate, MarksNothingAfterwards) {
  bridge_.clearMarksForTerminate();
  excel_.returns("qx_cf_apply", Array{1, 0});
  EXPECT_EQ(bridge_.dispatch("markCells", {list({"A1"}), list({1, 2, 3})}),
            (Bridge::Reply{false, error("transport", "Quorin is quitting")}));
  EXPECT_EQ(bridge_.dispatch("reveal", {list({"A1"}), 0}),
            (Bridge::Reply{false, error("transport", "Quorin is quitting")}));
  EXPECT_THAT(excel_.calls(), IsEmpty());
  EXPECT_FALSE(hasFile("highlights.json"));
}

// A request that paints in pieces, and termination that comes in the middle of the first.
class TerminateDuringPainting : public Terminate {
 protected:
  // Paints 80 cells on another thread; `during` runs in the middle of the first piece.
  std::thread painting(std::function<void()> during) {
    excel_.answer("qx_cf_apply", [during = std::move(during)](const AppleEvent&) {
      during();
      return ScriptReply{AppleEventDescriptor::list(
                             {AppleEventDescriptor::integer(1), AppleEventDescriptor::integer(0)}),
                         std::nullopt};
    });
    return std::thread([this] {
      reply_ = bridge_.dispatch("markCells", {addresses(cells(1, 80)), list({255, 0, 0})});
    });
  }

  Bridge::Reply reply_;
};

TEST_F(TerminateDuringPainting, LetsThePieceEndAndNoOtherBegin) {
  Semaphore began, mayEnd;
  std::thread page = painting([&] {
    began.signal();
    mayEnd.wait();
  });
  began.wait();
  excel_.returns("qx_cf_clear", 1);
  // The wait for the turn: when it has begun the piece may end.
  clock_.signalledOutside(milliseconds(300), [&] { mayEnd.signal(); });
  bridge_.clearMarksForTerminate();
  page.join();
  EXPECT_EQ(reply_, (Bridge::Reply{false, error("transport", "Quorin is quitting")}));
  EXPECT_THAT(handlers(), ElementsAre("qx_pollcell", "qx_cf_apply", "qx_cf_clear", "qx_cf_clear"));
  EXPECT_THAT(clock_.waits(), Contains(milliseconds(1700))) << "the rest of the two seconds";
  EXPECT_THAT(store_.load(), IsEmpty());
}

TEST_F(TerminateDuringPainting, DoesNotWaitLongerThanTwoSecondsForIt) {
  Semaphore began, mayEnd;
  std::thread page = painting([&] {
    began.signal();
    mayEnd.wait();
  });
  began.wait();
  clock_.timesOutOutside();
  bridge_.clearMarksForTerminate();
  EXPECT_EQ(clock_.waitsOutside().back(), seconds(2));
  EXPECT_THAT(handlers(), ElementsAre("qx_pollcell", "qx_cf_apply"));
  EXPECT_THAT(log_.lines(),
              ElementsAre("ERROR terminate clear failed: a request is still waiting for Excel"));
  mayEnd.signal();
  page.join();
  EXPECT_THAT(callsOf("qx_cf_apply"), SizeIs(1));
  EXPECT_THAT(store_.load(), SizeIs(1)) << "for the next start";
}

}  // namespace
}  // namespace quorin
