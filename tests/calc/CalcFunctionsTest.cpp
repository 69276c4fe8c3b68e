// Every function of the office: how its calls are shown, and what they give when they are asked for
// again as they are shown.
#include <algorithm>
#include <map>
#include <set>

#include "tests/calc/CalcReads.h"
#include "tests/calc/ExcelCalls.h"

namespace quorin::host::calc {
namespace {

class CalcFunctions : public CalcReads {
 protected:
  static void SetUpTestSuite() {
    CalcReads::SetUpTestSuite();
    for (const std::string& name : hands->functions("Edges.xlsx")) {
      const bool isNew = name.starts_with("_xlfn.");
      if (name.empty() || name.starts_with("COM.SUN.STAR.")) continue;  // a second name
      // Excel's BINOM.DIST.RANGE, which the office neither reads nor writes by that name.
      inFiles[name == "B" ? "BINOM.DIST.RANGE" : isNew ? name.substr(6) : name] = name;
    }
    fakes::SheetDescription sheet = cellsOfExcelCalls();
    for (std::size_t i = 0; i < excelCalls.size(); ++i) {
      const std::string call(excelCalls[i]), name = nameOf(call);
      const auto known = inFiles.find(name);
      sheet.cells.push_back(
          {"P" + std::to_string(firstRow + i), Blank(),
           "=" + (known == inFiles.end() ? name : known->second) + call.substr(name.size())});
    }
    open({.name = "Calls.xlsx", .sheets = {sheet}});
  }
  void SetUp() override {
    road->use([](CalcSpreadsheet& calc) { calc.activateWorkbook("Calls.xlsx"); });
  }
  static std::string nameOf(std::string_view call) {
    return std::string(call.substr(0, call.find('(')));
  }
  // The column of calls, read by a verb.
  static JSONValue::Array read(const std::string& verb, const std::string& key, Array more = {}) {
    Array arguments{"P" + std::to_string(firstRow) + ":P" +
                    std::to_string(firstRow + excelCalls.size() - 1)};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Bridge::Reply reply = road->bridge().dispatch(verb, arguments);
    EXPECT_TRUE(reply.ok);
    return *reply.payload.member(key)->array();
  }
  // Out of sight: what Calc first works out while it draws has no format of its own.
  static constexpr std::size_t firstRow = 201;
  static inline std::map<std::string, std::string> inFiles;  // by Excel's name
};

TEST_F(CalcFunctions, AreAllCalledHere) {
  std::set<std::string> called(withoutValue.begin(), withoutValue.end());
  for (const std::string_view call : excelCalls) called.insert(nameOf(call));
  for (const auto& [name, inFile] : inFiles) EXPECT_TRUE(called.count(name) == 1) << name;
  EXPECT_GT(inFiles.size(), 400U);
}

TEST_F(CalcFunctions, AreShownAsExcelNamesThem) {
  const JSONValue::Array rows = read("readFormulas", "formulas", {"a1", true});
  ASSERT_EQ(rows.size(), excelCalls.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    EXPECT_EQ(*rows[i].array()->at(0).string(), "=" + std::string(excelCalls[i]));
  }
}

// Of what fills more cells than one, the cell holds the first value.
TEST_F(CalcFunctions, GiveWhatTheirCellsHold) {
  const JSONValue::Array rows = read("readRange", "values");
  ASSERT_EQ(rows.size(), excelCalls.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (std::count(callsOfChance.begin(), callsOfChance.end(), excelCalls[i]) > 0) continue;
    JSONValue::Array args{std::string(excelCalls[i])};
    if (nameOf(excelCalls[i]) == "FILTERXML") args.emplace_back(Bridge::askedWord);
    const Bridge::Reply reply = road->bridge().dispatch("evaluate", args);
    const JSONValue* value = reply.payload.member("value");
    if (value == nullptr) value = reply.payload.member("message");
    const bool several =
        std::count(givingSeveral.begin(), givingSeveral.end(), nameOf(excelCalls[i])) > 0;
    while (several && value->array() != nullptr) value = &value->array()->at(0);
    EXPECT_EQ(Marshal::encode(*value), Marshal::encode(rows[i].array()->at(0))) << excelCalls[i];
  }
}

}  // namespace
}  // namespace quorin::host::calc
