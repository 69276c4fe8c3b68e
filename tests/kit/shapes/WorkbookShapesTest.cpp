#include <gtest/gtest.h>

#include "kit/shapes/WorkbookShapes.h"
#include "kit/value/Marshal.h"
#include "tests/kit/shapes/ShapeMessages.h"

namespace quorin::BridgeShapes {
namespace {

using Array = JSONValue::Array;
using Object = JSONValue::Object;

JSONValue list(Array items) {
  return items;
}

Array answerOf(Array sheets, Array used, Array names, Array references) {
  Array answer{"Book1.xlsx"};
  answer.emplace_back(std::move(sheets));
  answer.emplace_back(std::move(used));
  answer.emplace_back(std::move(names));
  answer.emplace_back(std::move(references));
  return answer;
}

Array sheetNames(int count) {
  Array names;
  for (int i = 1; i <= count; ++i) names.emplace_back("S" + std::to_string(i));
  return names;
}

TEST(WorkbookMapObject, ListsSheetsAndNames) {
  EXPECT_EQ(workbookMapObject(answerOf({"Data", "Empty"}, {"$A$1:$C$9", ""}, {"Rate", "Area"},
                                       {"=Data!$A$1", "=Data!$B$1:$B$9"})),
            JSONValue(Object{
                {"book", "Book1.xlsx"},
                {"sheets", list({Object{{"name", "Data"}, {"usedRange", "$A$1:$C$9"}},
                                 Object{{"name", "Empty"}, {"usedRange", nullptr}}})},
                {"sheetsTruncated", false},
                {"names", list({Object{{"name", "Rate"}, {"refersTo", "=Data!$A$1"}},
                                Object{{"name", "Area"}, {"refersTo", "=Data!$B$1:$B$9"}}})},
            }));
}

TEST(WorkbookMapObject, ListsEverySheetButTheUsedRangesOfFifty) {
  const JSONValue map = workbookMapObject(answerOf(sheetNames(51), Array(50, "$A$1"), {}, {}));
  EXPECT_EQ(*map.member("sheetsTruncated"), JSONValue(true));
  const Array& sheets = *map.member("sheets")->array();
  ASSERT_EQ(sheets.size(), 51u);
  EXPECT_EQ(sheets[49], JSONValue(Object{{"name", "S50"}, {"usedRange", "$A$1"}}));
  EXPECT_EQ(sheets[50], JSONValue(Object{{"name", "S51"}, {"usedRange", nullptr}}));

  const JSONValue fifty = workbookMapObject(answerOf(sheetNames(50), Array(50, "$A$1"), {}, {}));
  EXPECT_EQ(*fifty.member("sheetsTruncated"), JSONValue(false));
}

TEST(WorkbookMapObject, HasNoUsedRangeThatIsNotText) {
  const JSONValue map = workbookMapObject(answerOf({"A", "B"}, {5, nullptr}, {}, {}));
  for (const JSONValue& sheet : *map.member("sheets")->array())
    EXPECT_EQ(*sheet.member("usedRange"), JSONValue(nullptr));
}

TEST(WorkbookMapObject, LeavesExcelsOwnNamesOut) {
  const JSONValue map =
      workbookMapObject(answerOf({"Data"}, {""},
                                 {"_xlnm.Print_Area", "Rate", "_xlfn.LET", "_xlpm.x", "_xl",
                                  "Data!_xlnm.Print_Area", "_XLNM.Shout", nullptr},
                                 {1, 2, 3, 4, 5, 6, 7, 8}));
  EXPECT_EQ(*map.member("names"), list({Object{{"name", "Rate"}, {"refersTo", 2}},
                                        Object{{"name", "_xl"}, {"refersTo", 5}},
                                        Object{{"name", "Data!_xlnm.Print_Area"}, {"refersTo", 6}},
                                        Object{{"name", "_XLNM.Shout"}, {"refersTo", 7}},
                                        Object{{"name", nullptr}, {"refersTo", 8}}}));
}

TEST(WorkbookMapObject, HasNoNamesWithoutNames) {
  EXPECT_EQ(*workbookMapObject(answerOf({"Data"}, {""}, {}, {})).member("names"), list({}));
}

TEST(WorkbookMapObject, RefusesWhatCannotBePassedOn) {
  Array answer = answerOf({"Data"}, {""}, {"Rate"}, {Object{{"__unmarshalled", "obj "}}});
  EXPECT_EQ(shapeMessageOf([&] { workbookMapObject(answer); }),
            "workbookMap payload could not be marshalled");
}

TEST(WorkbookMapObject, RefusesAnyOtherShape) {
  const Array good = answerOf({"Data"}, {""}, {"Rate"}, {"=1"});
  std::vector<JSONValue> bad = {nullptr, "Book1.xlsx", Array{},
                                Array(good.begin(), good.end() - 1)};
  for (std::size_t i = 0; i < good.size(); ++i) {
    Array changed = good;
    changed[i] = 5;
    bad.emplace_back(changed);
  }
  Array longer = good;
  longer.emplace_back(5);
  bad.emplace_back(longer);
  bad.emplace_back(answerOf({"Data"}, {""}, {"Rate", "Other"}, {"=1"}));
  for (const JSONValue& answer : bad)
    EXPECT_EQ(shapeMessageOf([&] { workbookMapObject(answer); }),
              "workbookMap payload has an unexpected shape")
        << Marshal::encode(answer);
}

}  // namespace
}  // namespace quorin::BridgeShapes
