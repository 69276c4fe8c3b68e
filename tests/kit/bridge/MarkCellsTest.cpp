// The verb "markCells": record first, paint second; move where that is enough.
#include "tests/fakes/Files.h"
#include "tests/kit/bridge/MarksFixture.h"

namespace quorin {
namespace {

using std::chrono::seconds;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

class MarkCells : public MarksFixture {
 protected:
  static JSONValue painted(int applied, bool shadowed) {
    return Object{{"applied", applied}, {"shadowed", shadowed}};
  }
  Record single(const Texts& addrs) const { return {"Plan.xlsx", "Q1", addrs, red_, true}; }
};

TEST_F(MarkCells, PaintsAndRecords) {
  excel_.returns("qx_cf_apply", Array{1, 0});
  EXPECT_EQ(bridge_.dispatch("markCells", {addresses({"$B$2", "C3"}), list({255, 0, 0})}),
            (Bridge::Reply{true, painted(2, false)}));
  EXPECT_THAT(handlers(), ElementsAre("qx_pollcell", "qx_cf_apply"));
  EXPECT_EQ(argumentsOf(excel_.calls()[1]),
            (Array{addresses({"$B$2", "C3"}), "Plan.xlsx", "Q1", 255, 0, 0}));
  EXPECT_THAT(clock_.waits(), ElementsAre(seconds(3), seconds(25)));
  EXPECT_THAT(store_.load(), ElementsAre(single({"$B$2", "C3"})));
  EXPECT_THAT(log_.lines(), ElementsAre("HIGHLIGHT apply sheet=Q1 addrs=2 result=[1,0]"));
}

TEST_F(MarkCells, RecordsBeforeItPaints) {
  Records during;
  excel_.answer("qx_cf_apply", [&](const AppleEvent&) {
    during = store_.load();
    return ScriptReply{std::nullopt, ScriptErrorInfo{-1728, "workbook not open: Plan.xlsx"}};
  });
  EXPECT_EQ(messageOf([&] { bridge_.markCells({"A1"}, red_); }), "workbook not open: Plan.xlsx");
  const Record record{"Plan.xlsx", "Q1", {"A1"}, red_};
  EXPECT_THAT(during, ElementsAre(record));
  EXPECT_THAT(store_.load(), ElementsAre(record));
}

TEST_F(MarkCells, TakesTheFirst200Addresses) {
  excel_.returns("qx_cf_apply", Array{1, 0});
  EXPECT_EQ(bridge_.markCells(cells(1, 250), red_), painted(200, false));
  EXPECT_THAT(callsOf("qx_cf_apply"), SizeIs(5));
  EXPECT_THAT(store_.load(), ElementsAre(Record{"Plan.xlsx", "Q1", cells(1, 200), red_}));
}

TEST_F(MarkCells, PaintsInMagentaWithoutThreeColourParts) {
  excel_.returns("qx_cf_apply", Array{1, 0});
  bridge_.markCells({"A1"}, {1, 2});
  EXPECT_EQ(argumentsOf(callsOf("qx_cf_apply")[0]),
            (Array{addresses({"A1"}), "Plan.xlsx", "Q1", 255, 0, 255}));
  EXPECT_EQ(store_.load()[0].rgb, (Colour{255, 0, 255}));
}

TEST_F(MarkCells, PassesColoursOutOfRangeOn) {
  excel_.returns("qx_cf_apply", Array{1, 0});
  bridge_.markCells({"A1"}, {-1, 256, 0});
  EXPECT_EQ(argumentsOf(callsOf("qx_cf_apply")[0]),
            (Array{addresses({"A1"}), "Plan.xlsx", "Q1", -1, 256, 0}));
}

TEST_F(MarkCells, GroupsTheAddressesBySheet) {
  excel_.returns("qx_cf_apply", Array{1, 0});
  bridge_.markCells({"Sheet2!A1", "B2", "'It''s'!C3"}, red_);
  EXPECT_EQ(argumentsOf(callsOf("qx_cf_apply")[0])[0], addresses({"A1", "B2"}));
  EXPECT_THAT(store_.load(), ElementsAre(Record{"Plan.xlsx", "Sheet2", {"A1", "B2"}, red_},
                                         Record{"Plan.xlsx", "It's", {"C3"}, red_}));
}

TEST_F(MarkCells, PaintsInPiecesOf40) {
  excel_.returns("qx_cf_apply", Array{1, 0});
  EXPECT_EQ(bridge_.markCells(cells(1, 41), red_), painted(41, false));
  ASSERT_THAT(callsOf("qx_cf_apply"), SizeIs(2));
  EXPECT_EQ(argumentsOf(callsOf("qx_cf_apply")[0])[0], addresses(cells(1, 40)));
  EXPECT_EQ(argumentsOf(callsOf("qx_cf_apply")[1])[0], addresses({"$A$41"}));
  EXPECT_THAT(store_.load(), ElementsAre(Record{"Plan.xlsx", "Q1", cells(1, 41), red_}));
}

TEST_F(MarkCells, RecordsAddressesOnce) {
  excel_.returns("qx_cf_apply", Array{1, 0});
  bridge_.markCells({"A1", "B1", "A1"}, red_);
  EXPECT_THAT(store_.load(), ElementsAre(Record{"Plan.xlsx", "Q1", {"A1", "B1"}, red_}));
}

TEST_F(MarkCells, IsNotSingleWithSeveralConditions) {
  excel_.returns("qx_cf_apply", Array{2, 0});
  bridge_.markCells({"A1", "B1"}, red_);
  EXPECT_EQ(store_.load()[0].single, std::nullopt);
}

TEST_F(MarkCells, IsNotSingleWhenTheAnswerIsStrange) {
  for (const JSONValue& answer :
       {JSONValue(nullptr), JSONValue(1), list({1}), list({1, "0"}), list({1, 0, 0})})
    excel_.returns("qx_cf_apply", answer);
  for (int i = 1; i <= 5; ++i) {
    EXPECT_EQ(bridge_.markCells({"A" + std::to_string(i)}, red_), painted(1, false));
    EXPECT_EQ(store_.load().back().single, std::nullopt) << i;
  }
  EXPECT_THAT(log_.lines(), Contains("HIGHLIGHT apply sheet=Q1 addrs=1 result=null"));
}

TEST_F(MarkCells, TellsThatRulesOfTheUsersWereThere) {
  excel_.returns("qx_cf_apply", Array{1, 0});
  excel_.returns("qx_cf_apply", Array{1, 2});
  EXPECT_EQ(bridge_.markCells(cells(1, 41), red_), painted(41, true));
}

TEST_F(MarkCells, NeedsAnActiveSheet) {
  excel_.returns("qx_cf_apply", Array{1, 0});
  EXPECT_EQ(bridge_.dispatch("markCells", {list({"A1"}), list({1, 2, 3})}).ok, true);
  active("", "", "");
  bridge_.pollCell();
  excel_.returns("qx_pollcell", Array{nullptr, nullptr, nullptr});
  bridge_.pollCell();
  EXPECT_EQ(bridge_.dispatch("markCells", {list({"A1"}), list({1, 2, 3})}),
            (Bridge::Reply{false, error("transport", "pollCell payload has an unexpected shape")}));
}

TEST_F(MarkCells, ClearsTheHighlightBefore) {
  store_.recordApplied({{"Old.xlsx", "S", {"Z9"}, red_}});
  excel_.returns("qx_cf_clear", 1);
  excel_.returns("qx_cf_apply", Array{1, 0});
  bridge_.markCells({"A1"}, red_);
  EXPECT_THAT(handlers(), ElementsAre("qx_pollcell", "qx_cf_clear", "qx_cf_apply"));
  EXPECT_THAT(store_.load(), ElementsAre(single({"A1"})));
}

TEST_F(MarkCells, PaintsTheSameSetAgainWithoutClearing) {
  store_.recordApplied({{"Plan.xlsx", "Q1", {"A1", "B2"}, red_}});
  excel_.returns("qx_cf_apply", Array{1, 0});
  bridge_.markCells({"A1", "B2"}, red_);
  EXPECT_THAT(handlers(), ElementsAre("qx_pollcell", "qx_cf_apply"));
  EXPECT_THAT(store_.load(), ElementsAre(Record{"Plan.xlsx", "Q1", {"A1", "B2"}, red_}));
}

TEST_F(MarkCells, IsNoLongerSingleOncePaintedTwice) {
  excel_.returns("qx_cf_apply", Array{1, 0});
  bridge_.markCells({"A1"}, red_);
  EXPECT_EQ(store_.load()[0].single, true);
  bridge_.markCells({"A1"}, red_);
  EXPECT_THAT(callsOf("qx_cf_clear"), IsEmpty());
  EXPECT_EQ(store_.load()[0].single, std::nullopt);
}

TEST_F(MarkCells, CarriesForwardWhatItCouldNotClear) {
  store_.recordApplied({{"Plan.xlsx", "Q1", {"Z9"}, Colour{0, 0, 1}}});
  excel_.fails("qx_cf_clear", -50, "no");
  excel_.returns("qx_cf_apply", Array{1, 0});
  EXPECT_EQ(bridge_.markCells({"A1"}, red_), painted(1, false));
  EXPECT_THAT(store_.load(), ElementsAre(Record{"Plan.xlsx", "Q1", {"Z9", "A1"}, Colour{0, 0, 1}}));
  EXPECT_THAT(log_.lines(), Contains("ERROR markCells: prior clear failed, carrying forward: no"));
}

// The sheets have one name; what is known of the other one stays.
TEST_F(MarkCells, ChangesNoRecordOfAnotherWorkbooksSheet) {
  const Record other{"Other.xlsx", "Q1", {"Z9"}, red_, true};
  store_.recordApplied({other});
  excel_.fails("qx_cf_clear", -50, "no");
  excel_.returns("qx_cf_apply", Array{1, 0});
  bridge_.markCells({"A1"}, red_);
  EXPECT_THAT(store_.load(), UnorderedElementsAre(other, Record{"Plan.xlsx", "Q1", {"A1"}, red_}));
}

TEST_F(MarkCells, PaintsNothingThatItCannotRecord) {
  files_.failEvery("create", ENOSPC);
  excel_.returns("qx_cf_apply", Array{1, 0});
  const Bridge::Reply reply = bridge_.dispatch("markCells", {list({"A1"}), list({1, 2, 3})});
  EXPECT_FALSE(reply.ok);
  EXPECT_THAT(handlers(), ElementsAre("qx_pollcell"));
  const std::string& message = *reply.payload.member("message")->string();
  EXPECT_THAT(log_.lines(),
              ElementsAre("ERROR markCells: highlights.json write failed, not painting: " + message,
                          "ERROR markCells: " + message));
}

TEST_F(MarkCells, KeepsWhatWasPaintedBeforeTheDiskWasFull) {
  excel_.answer("qx_cf_apply", [this](const AppleEvent&) {
    files_.failEvery("create", ENOSPC);
    return ScriptReply{std::nullopt, std::nullopt};
  });
  EXPECT_FALSE(bridge_.dispatch("markCells", {addresses(cells(1, 80)), list({255, 0, 0})}).ok);
  EXPECT_THAT(callsOf("qx_cf_apply"), SizeIs(1));
  EXPECT_THAT(store_.load(), ElementsAre(Record{"Plan.xlsx", "Q1", cells(1, 40), red_}));
}

TEST_F(MarkCells, TakesAMalformedRecordForNone) {
  writeFile(folder_ / "highlights.json", "{}");
  excel_.returns("qx_cf_apply", Array{1, 0});
  bridge_.markCells({"A1"}, red_);
  EXPECT_THAT(store_.load(), ElementsAre(single({"A1"})));
  EXPECT_THAT(log_.lines(), Contains(testing::HasSubstr("ERROR highlights.json malformed: ")));
}

class MoveMarks : public MarkCells {
 protected:
  MoveMarks() { store_.recordApplied({single({"A1", "A2"})}); }
};

TEST_F(MoveMarks, PointsTheHighlightAtOtherCells) {
  Records during;
  excel_.answer("qx_cf_move", [&](const AppleEvent&) {
    during = store_.load();
    return ScriptReply{AppleEventDescriptor::list(
                           {AppleEventDescriptor::integer(1), AppleEventDescriptor::integer(0)}),
                       std::nullopt};
  });
  EXPECT_EQ(bridge_.markCells({"B1", "A2", "B3"}, red_),
            JSONValue(Object{{"applied", 3}, {"shadowed", false}, {"moved", true}}));
  EXPECT_THAT(handlers(), ElementsAre("qx_pollcell", "qx_cf_move"));
  EXPECT_EQ(argumentsOf(excel_.calls()[1]),
            (Array{addresses({"A1", "A2"}), addresses({"B1", "A2", "B3"}), "Plan.xlsx", "Q1"}));
  EXPECT_THAT(clock_.waits(), ElementsAre(seconds(3), seconds(25)));
  EXPECT_THAT(during, ElementsAre(Record{"Plan.xlsx", "Q1", {"A1", "A2", "B1", "B3"}, red_}))
      << "both are recorded before the move";
  EXPECT_THAT(store_.load(), ElementsAre(single({"B1", "A2", "B3"})));
  EXPECT_THAT(log_.lines(), ElementsAre("HIGHLIGHT move sheet=Q1 from=2 to=3"));
}

TEST_F(MoveMarks, IsDeclinedOverRulesOfTheUsers) {
  excel_.returns("qx_cf_move", Array{0, 1});
  excel_.returns("qx_cf_clear", 1);
  excel_.returns("qx_cf_apply", Array{1, 1});
  EXPECT_EQ(bridge_.markCells({"B1"}, red_), painted(1, true));
  EXPECT_THAT(handlers(), ElementsAre("qx_pollcell", "qx_cf_move", "qx_cf_clear", "qx_cf_apply"));
  EXPECT_EQ(argumentsOf(excel_.calls()[2])[0], addresses({"A1", "A2", "B1"}));
  EXPECT_THAT(store_.load(), ElementsAre(single({"B1"})));
  EXPECT_THAT(log_.lines(), Contains("HIGHLIGHT move declined result=[0,1]; clear+apply"));
}

TEST_F(MoveMarks, IsDeclinedUnlessOneConditionMoved) {
  excel_.returns("qx_cf_move", Array{2, 0});
  excel_.returns("qx_cf_clear", 1);
  excel_.returns("qx_cf_apply", Array{1, 0});
  bridge_.markCells({"B1"}, red_);
  EXPECT_THAT(log_.lines(), Contains("HIGHLIGHT move declined result=[2,0]; clear+apply"));
}

TEST_F(MoveMarks, GivesWayToClearingAndPaintingWhenItFails) {
  excel_.fails("qx_cf_move", -1728, "sheet not found: Q1");
  excel_.returns("qx_cf_clear", 1);
  excel_.returns("qx_cf_apply", Array{1, 0});
  EXPECT_EQ(bridge_.markCells({"B1"}, red_), painted(1, false));
  EXPECT_THAT(handlers(), ElementsAre("qx_pollcell", "qx_cf_move", "qx_cf_clear", "qx_cf_apply"));
  EXPECT_THAT(log_.lines(),
              Contains("ERROR markCells: move failed, clear+apply: sheet not found: Q1"));
}

TEST_F(MoveMarks, KeepsTheWiderRecordWhenItCannotBeNarrowed) {
  excel_.answer("qx_cf_move", [this](const AppleEvent&) {
    files_.failEvery("create", ENOSPC);
    return ScriptReply{AppleEventDescriptor::list(
                           {AppleEventDescriptor::integer(1), AppleEventDescriptor::integer(0)}),
                       std::nullopt};
  });
  EXPECT_EQ(*bridge_.markCells({"B1"}, red_).member("moved"), JSONValue(true));
  EXPECT_THAT(store_.load(), ElementsAre(Record{"Plan.xlsx", "Q1", {"A1", "A2", "B1"}, red_}));
  EXPECT_THAT(
      log_.lines(),
      ElementsAre(testing::StartsWith("ERROR markCells: move landed, record narrow failed: "),
                  "HIGHLIGHT move sheet=Q1 from=2 to=1"));
}

TEST_F(MoveMarks, DoesNotBeginWithoutARecord) {
  files_.failEvery("create", ENOSPC);
  EXPECT_FALSE(bridge_.dispatch("markCells", {list({"B1"}), list({255, 0, 0})}).ok);
  EXPECT_THAT(handlers(), ElementsAre("qx_pollcell"));
  EXPECT_THAT(store_.load(), ElementsAre(single({"A1", "A2"})));
}

TEST_F(MoveMarks, IsNotForOtherColours) {
  excel_.returns("qx_cf_clear", 1);
  excel_.returns("qx_cf_apply", Array{1, 0});
  bridge_.markCells({"B1"}, {0, 0, 1});
  EXPECT_THAT(handlers(), ElementsAre("qx_pollcell", "qx_cf_clear", "qx_cf_apply"));
}

TEST_F(MoveMarks, IsNotForSeveralSheets) {
  excel_.returns("qx_cf_clear", 1);
  excel_.returns("qx_cf_apply", Array{1, 0});
  bridge_.markCells({"Q1!B1", "Q2!B1"}, red_);
  EXPECT_THAT(callsOf("qx_cf_move"), IsEmpty());
}

}  // namespace
}  // namespace quorin
