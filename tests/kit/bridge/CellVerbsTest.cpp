#include "tests/kit/bridge/BridgeFixture.h"

namespace quorin {
namespace {

using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;

using CellVerbs = BridgeFixture;

TEST_F(CellVerbs, ProbeGivesTheWindow) {
  excel_.returns("qx_probe", Array{"ok", 0, 25, 1440, 875});
  EXPECT_EQ(
      bridge_.probe(),
      JSONValue(Object{{"state", "ok"},
                       {"excelWindow", Object{{"x1", 0}, {"y1", 25}, {"x2", 1440}, {"y2", 875}}}}));
  EXPECT_THAT(clock_.waits(), ElementsAre(seconds(3)));
}

TEST_F(CellVerbs, ProbeKnowsThatNoWorkbookIsOpen) {
  excel_.returns("qx_probe", Array{"noWorkbook", 0, 0, 0, 0});
  EXPECT_EQ(bridge_.probe(), JSONValue(Object{{"state", "noWorkbook"}}));
}

TEST_F(CellVerbs, ProbeKnowsThatExcelIsNotRunningWithoutAskingIt) {
  target_.running = false;
  EXPECT_EQ(bridge_.probe(), JSONValue(Object{{"state", "notRunning"}}));
  EXPECT_THAT(excel_.calls(), IsEmpty());
}

TEST_F(CellVerbs, ProbeIsDeniedWhenThePermissionIsRefused) {
  excel_.fails("qx_probe", -1743, "Not authorized to send Apple events to Microsoft Excel.");
  EXPECT_EQ(bridge_.probe(), JSONValue(Object{{"state", "denied"}}));
  EXPECT_THAT(
      log_.lines(),
      ElementsAre("ERROR probe: -1743: Not authorized to send Apple events to Microsoft Excel."));
}

TEST_F(CellVerbs, ProbeIsBusyWhenExcelDoesNotAnswer) {
  timesOut("qx_probe");
  EXPECT_EQ(bridge_.probe(), JSONValue(Object{{"state", "busy"}}));
  EXPECT_THAT(log_.lines(), ElementsAre("PERF qx_probe 3000ms",
                                        "ERROR probe: -9990: Excel did not respond within 3s"));
}

TEST_F(CellVerbs, ProbeIsBusyForEveryOtherError) {
  excel_.fails("qx_probe", -609, "Connection is invalid.");
  EXPECT_EQ(bridge_.dispatch("probe", {}), (Bridge::Reply{true, Object{{"state", "busy"}}}));
}

TEST_F(CellVerbs, ReadCellShapesTheAnswer) {
  excel_.returns("qx_readcell",
                 Array{"Book1", "Sheet1", "$B$2", 2, 2, 5, "5", 5, "$B$2", "$A$1:$B$9"});
  EXPECT_EQ(bridge_.readCell(), JSONValue(Object{{"book", "Book1"},
                                                 {"sheet", "Sheet1"},
                                                 {"addr", "B2"},
                                                 {"row", 2},
                                                 {"col", 2},
                                                 {"formula", ""},
                                                 {"formulaLocal", ""},
                                                 {"value", 5},
                                                 {"selection", "$B$2"},
                                                 {"region", "$A$1:$B$9"}}));
  EXPECT_THAT(clock_.waits(), ElementsAre(seconds(10)));
}

TEST_F(CellVerbs, PollCellHasThreeSeconds) {
  excel_.returns("qx_pollcell", Array{"Book1", "Sheet1", "$B$2"});
  EXPECT_EQ(bridge_.pollCell(),
            JSONValue(Object{{"book", "Book1"}, {"sheet", "Sheet1"}, {"addr", "$B$2"}}));
  EXPECT_THAT(clock_.waits(), ElementsAre(seconds(3)));
}

}  // namespace
}  // namespace quorin
