#include "tests/kit/bridge/BridgeFixture.h"

namespace quorin {
namespace {

using std::chrono::seconds;
using testing::ElementsAre;
using Call = fakes::FakeExcel::Call;

class RangeVerbs : public BridgeFixture {
 protected:
  static JSONValue row(Array cells) {
    Array rows;
    rows.emplace_back(std::move(cells));
    return rows;
  }
};

TEST_F(RangeVerbs, ReadRangeAsksOnce) {
  excel_.returns("qx_readrange", Array{row({1, "a"}), 1, 2, row({"1", "a"}), 2});
  EXPECT_EQ(bridge_.dispatch("readRange", {"'My Sheet'!A1:B1"}),
            (Bridge::Reply{true, Object{{"values", row({1, "a"})}, {"rows", 1}, {"cols", 2}}}));
  EXPECT_THAT(excel_.calls(), ElementsAre(Call{"qx_readrange", list({"'My Sheet'!A1:B1"})}));
  EXPECT_THAT(clock_.waits(), ElementsAre(seconds(10)));
}

TEST_F(RangeVerbs, ReadRangeOfTooManyCellsIsNoError) {
  excel_.returns("qx_readrange", Array{"__TOOBIG", 20001, 1, 20001});
  EXPECT_EQ(bridge_.dispatch("readRange", {"A1:A20001"}),
            (Bridge::Reply{true, Object{{"tooBig", true}, {"rows", 20001}, {"cols", 1}}}));
}

TEST_F(RangeVerbs, ReadTextsAsksForAllAddressesAtOnce) {
  excel_.returns("qx_readtexts", Array{Array{"12%", 1, 1}, ""});
  EXPECT_EQ(bridge_.dispatch("readTexts", {list({"Data!B2", "Nowhere"})}),
            (Bridge::Reply{true, Object{{"texts", Array{row({"12%"}), nullptr}}}}));
  EXPECT_THAT(excel_.calls(),
              ElementsAre(Call{"qx_readtexts", list({list({"Data!B2", "Nowhere"})})}));
  EXPECT_THAT(clock_.waits(), ElementsAre(seconds(10)));
}

TEST_F(RangeVerbs, ReadFormulasOfTooManyCellsIs) {
  excel_.returns("qx_readformulas", Array{"__TOOBIG", 20001, 1, 20001});
  EXPECT_EQ(
      bridge_.dispatch("readFormulas", {"A1:A20001", "a1"}),
      (Bridge::Reply{false, error("transport", "readFormulas over 20000 cells - chunk the read")}));
}

TEST_F(RangeVerbs, TellWhichRangeTheyCouldNotRead) {
  excel_.returns("qx_readrange", Array{"__MULTI", 1, 2, 4});
  const std::string refusal =
      "multi-area 'A1:B1,A9:B9': 4 cells in a 1\u00d72 frame - Excel returns only the first area";
  EXPECT_EQ(bridge_.dispatch("readRange", {"A1:B1,A9:B9"}),
            (Bridge::Reply{false, error("transport", refusal)}));
  EXPECT_THAT(log_.lines(), ElementsAre("ERROR readRange: " + refusal));
}

TEST_F(RangeVerbs, PassExcelsErrorsOn) {
  excel_.fails("qx_readrange", -1728, "Can't get range \"Nope\".");
  EXPECT_EQ(bridge_.dispatch("readRange", {"Nope"}),
            (Bridge::Reply{false, error("transport", "Can't get range \"Nope\".")}));
  timesOut("qx_readformulas");
  EXPECT_EQ(bridge_.dispatch("readFormulas", {"A1", "a1"}),
            (Bridge::Reply{false, error("timeout", "Excel did not respond within 10s")}));
}

TEST_F(RangeVerbs, ReadFormulasPassesStyleAndWishOn) {
  excel_.returns("qx_readformulas", Array{"=A1", 5, 1, 1, "5", 1});
  const JSONValue both =
      Object{{"formulas", row({"=A1"})}, {"values", row({5})}, {"rows", 1}, {"cols", 1}};
  EXPECT_EQ(bridge_.dispatch("readFormulas", {"B1", "a1"}), (Bridge::Reply{true, both}));
  EXPECT_EQ(bridge_.dispatch("readFormulas", {"B1", "r1c1", false}), (Bridge::Reply{true, both}));
  EXPECT_THAT(excel_.calls(), ElementsAre(Call{"qx_readformulas", list({"B1", "a1", false})},
                                          Call{"qx_readformulas", list({"B1", "r1c1", false})}));
  EXPECT_THAT(clock_.waits(), ElementsAre(seconds(10), seconds(10)));
}

TEST_F(RangeVerbs, ReadFormulasAlone) {
  excel_.returns("qx_readformulas", Array{row({"=A1", "5"}), 1, 2});
  EXPECT_EQ(
      bridge_.dispatch("readFormulas", {"A1:B1", "r1c1", true}),
      (Bridge::Reply{
          true,
          Object{{"formulas", row({"=A1", ""})}, {"values", Array()}, {"rows", 1}, {"cols", 2}}}));
  EXPECT_THAT(excel_.calls(), ElementsAre(Call{"qx_readformulas", list({"A1:B1", "r1c1", true})}));
}

TEST_F(RangeVerbs, WorkbookMapAsksForEverythingAtOnce) {
  Array answer{"Book1"};
  for (Array items : {Array{"S"}, Array{"$A$1"}, Array{"N"}, Array{"=S!$A$1"}})
    answer.emplace_back(std::move(items));
  excel_.returns("qx_workbookmap", answer);
  EXPECT_EQ(bridge_.dispatch("workbookMap", {}),
            (Bridge::Reply{
                true, Object{{"book", "Book1"},
                             {"sheets", list({Object{{"name", "S"}, {"usedRange", "$A$1"}}})},
                             {"sheetsTruncated", false},
                             {"names", list({Object{{"name", "N"}, {"refersTo", "=S!$A$1"}}})}}}));
  EXPECT_THAT(excel_.calls(), ElementsAre(Call{"qx_workbookmap", list({})}));
  EXPECT_THAT(clock_.waits(), ElementsAre(seconds(10)));
}

TEST_F(RangeVerbs, WorkbookMapRefusesAStrangeAnswer) {
  excel_.returns("qx_workbookmap", nullptr);
  EXPECT_EQ(
      bridge_.dispatch("workbookMap", {}),
      (Bridge::Reply{false, error("transport", "workbookMap payload has an unexpected shape")}));
}

}  // namespace
}  // namespace quorin
