#include <gtest/gtest.h>
#include <limits>

#include "kit/shapes/CellShapes.h"
#include "kit/shapes/ShapeError.h"

namespace quorin::BridgeShapes {
namespace {

using Array = JSONValue::Array;
using Object = JSONValue::Object;

constexpr double infinity = std::numeric_limits<double>::infinity();

std::string messageOf(JSONValue (*shape)(const JSONValue&), const JSONValue& answer) {
  try {
    shape(answer);
  } catch (const ShapeError& error) {
    return error.message();
  }
  return "(no error)";
}

TEST(ProbeObject, GivesTheWindowBounds) {
  EXPECT_EQ(
      probeObject(Array{"ok", 10, 20, 810, 620}),
      JSONValue(Object{{"state", "ok"},
                       {"excelWindow", Object{{"x1", 10}, {"y1", 20}, {"x2", 810}, {"y2", 620}}}}));
}

TEST(ProbeObject, LeavesBoundsOutUnlessAllFourAreFiniteNumbers) {
  const JSONValue bare(Object{{"state", "ok"}});
  EXPECT_EQ(probeObject(Array{"ok", 10, 20, 810, nullptr}), bare);
  EXPECT_EQ(probeObject(Array{"ok", 10, 20, 810, "620"}), bare);
  EXPECT_EQ(probeObject(Array{"ok", 10, infinity, 810, 620}), bare);
}

TEST(ProbeObject, PassesAnyOtherStateOn) {
  EXPECT_EQ(probeObject(Array{"noWorkbook", 0, 0, 0, 0}),
            JSONValue(Object{{"state", "noWorkbook"}}));
}

TEST(ProbeObject, IsBusyForAnyOtherShape) {
  const JSONValue busy(Object{{"state", "busy"}});
  EXPECT_EQ(probeObject(nullptr), busy);
  EXPECT_EQ(probeObject("ok"), busy);
  EXPECT_EQ(probeObject(Array{"ok", 1, 2, 3}), busy);
  EXPECT_EQ(probeObject(Array{"ok", 1, 2, 3, 4, 5}), busy);
  EXPECT_EQ(probeObject(Array{1, 1, 2, 3, 4}), busy);
}

TEST(ProbeState, IsDeniedOnlyWhenTheSystemRefused) {
  EXPECT_EQ(probeState(-1743), "denied");
  EXPECT_EQ(probeState(-1744), "denied");
  for (const int code : {-9990, -9991, -1712, -1728, -600, -1742, -1745, 0})
    EXPECT_EQ(probeState(code), "busy") << code;
}

Array cellAnswer() {
  return {"Book1.xlsx", "Sheet1", "$B$7", 7, 2, "=A1*2", "=A1*2", 10, "$B$7:$C$9", "$A$1:$D$20"};
}

TEST(ReadCellObject, NamesTheItems) {
  EXPECT_EQ(readCellObject(cellAnswer()), JSONValue(Object{{"book", "Book1.xlsx"},
                                                           {"sheet", "Sheet1"},
                                                           {"addr", "B7"},
                                                           {"row", 7},
                                                           {"col", 2},
                                                           {"formula", "=A1*2"},
                                                           {"formulaLocal", "=A1*2"},
                                                           {"value", 10},
                                                           {"selection", "$B$7:$C$9"},
                                                           {"region", "$A$1:$D$20"}}));
}

TEST(ReadCellObject, LeavesOutOnlyTheAddressThatIsMissing) {
  Array answer = cellAnswer();
  answer[9] = "";
  const JSONValue withoutRegion = readCellObject(answer);
  EXPECT_EQ(*withoutRegion.member("selection"), JSONValue("$B$7:$C$9"));
  EXPECT_EQ(withoutRegion.member("region"), nullptr);
  answer = cellAnswer();
  answer[8] = "";
  const JSONValue withoutSelection = readCellObject(answer);
  EXPECT_EQ(*withoutSelection.member("region"), JSONValue("$A$1:$D$20"));
  EXPECT_EQ(withoutSelection.member("selection"), nullptr);
}

TEST(ReadCellObject, HasNoFormulaForAConstant) {
  Array answer = cellAnswer();
  answer[5] = 5;
  answer[6] = "5";
  answer[7] = 5;
  const JSONValue cell = readCellObject(answer);
  EXPECT_EQ(*cell.member("formula"), JSONValue(""));
  EXPECT_EQ(*cell.member("formulaLocal"), JSONValue(""));
  EXPECT_EQ(*cell.member("value"), JSONValue(5));
}

TEST(ReadCellObject, LeavesOutWhatExcelDidNotGive) {
  Array answer = cellAnswer();
  answer[8] = "";
  answer[9] = nullptr;
  const JSONValue cell = readCellObject(answer);
  EXPECT_EQ(cell.member("selection"), nullptr);
  EXPECT_EQ(cell.member("region"), nullptr);
}

TEST(ReadCellObject, PassesTheValueAsItIs) {
  for (const JSONValue& value : {JSONValue(nullptr), JSONValue(""), JSONValue(true),
                                 JSONValue("text"), JSONValue(45000.5)}) {
    Array answer = cellAnswer();
    answer[7] = value;
    EXPECT_EQ(*readCellObject(answer).member("value"), value);
  }
}

TEST(ReadCellObject, RefusesWhatCouldNotBeMarshalled) {
  Array answer = cellAnswer();
  answer[7] = Object{{"__unmarshalled", "ldt "}};
  EXPECT_EQ(messageOf(readCellObject, answer), "readCell payload could not be marshalled");
}

TEST(ReadCellObject, RefusesAnyOtherShape) {
  const std::string unexpected = "readCell payload has an unexpected shape";
  EXPECT_EQ(messageOf(readCellObject, nullptr), unexpected);
  Array nine = cellAnswer();
  nine.pop_back();
  EXPECT_EQ(messageOf(readCellObject, nine), unexpected);
  Array eleven = cellAnswer();
  eleven.push_back("");
  EXPECT_EQ(messageOf(readCellObject, eleven), unexpected);
  for (const std::size_t position : {2u, 3u, 4u}) {
    Array answer = cellAnswer();
    answer[position] = nullptr;
    EXPECT_EQ(messageOf(readCellObject, answer), unexpected) << position;
  }
}

TEST(PollCellObject, NamesThreeTexts) {
  EXPECT_EQ(pollCellObject(Array{"Book1", "Sheet1", "$A$1"}),
            JSONValue(Object{{"book", "Book1"}, {"sheet", "Sheet1"}, {"addr", "$A$1"}}));
}

TEST(PollCellObject, RefusesAnyOtherShape) {
  const std::string unexpected = "pollCell payload has an unexpected shape";
  for (const JSONValue& answer :
       {JSONValue(nullptr), JSONValue(Array{"a", "b"}), JSONValue(Array{"a", "b", "c", "d"}),
        JSONValue(Array{nullptr, "b", "c"}), JSONValue(Array{"a", 1, "c"}),
        JSONValue(Array{"a", "b", nullptr})})
    EXPECT_EQ(messageOf(pollCellObject, answer), unexpected);
}

TEST(CellPlace, IsReadFromThreeTextsAndWrittenAsThem) {
  const CellPlace place{"b", "s", "$A$1"};
  const JSONValue payload = Object{{"book", "b"}, {"sheet", "s"}, {"addr", "$A$1"}};
  EXPECT_EQ(cellPlace(payload), place);
  EXPECT_EQ(payloadOf(place), payload);
  EXPECT_EQ(cellPlace(Object{{"book", "b"}, {"sheet", "s"}, {"addr", "$A$1"}, {"row", 1}}), place);
  for (const char* key : {"book", "sheet", "addr"}) {
    JSONValue other = payload;
    (*other.object())[key] = 1;
    EXPECT_EQ(cellPlace(other), std::nullopt) << key;
    other.object()->erase(key);
    EXPECT_EQ(cellPlace(other), std::nullopt) << key;
  }
  for (const JSONValue& other : {JSONValue(nullptr), JSONValue(Array{"b", "s", "$A$1"})})
    EXPECT_EQ(cellPlace(other), std::nullopt);
}

TEST(ActivePlace, WantsAPlace) {
  EXPECT_EQ(activePlace(Object{{"book", "b"}, {"sheet", "s"}, {"addr", "$A$1"}}),
            (CellPlace{"b", "s", "$A$1"}));
  const auto messageFor = [](const JSONValue& polled) {
    return messageOf([](const JSONValue& value) { return JSONValue(activePlace(value).book); },
                     polled);
  };
  for (const JSONValue& polled :
       {JSONValue(nullptr), JSONValue(Object{}), JSONValue(Object{{"book", "b"}}),
        JSONValue(Object{{"sheet", "s"}}), JSONValue(Object{{"book", 1}, {"sheet", "s"}}),
        JSONValue(Object{{"book", "b"}, {"sheet", nullptr}, {"addr", "$A$1"}})})
    EXPECT_EQ(messageFor(polled), "pollCell gave no active sheet");
}

}  // namespace
}  // namespace quorin::BridgeShapes
