// Every function of the office: how its calls are shown, and what they give when they are asked for
// again as they are shown.
#include <algorithm>
#include <map>
#include <regex>
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
      if (name.empty() || name.starts_with("COM.SUN.STAR.")) continue;  // a second name
      // Excel's BINOM.DIST.RANGE, which the office neither reads nor writes by that name.
      inFiles[name == "B" ? "BINOM.DIST.RANGE" : withoutAge(name)] = name;
    }
    std::erase_if(inFiles, [](const auto& one) {  // second names again
      return inFiles.count("ORG.OPENOFFICE." + one.first) > 0;
    });
    calls.assign(excelCalls.begin(), excelCalls.end());
    calls.insert(calls.end(), newerCalls.begin(), newerCalls.end());
    fakes::SheetDescription sheet = cellsOfExcelCalls();
    for (std::size_t i = 0; i < calls.size(); ++i) {
      sheet.cells.push_back(
          {"P" + std::to_string(firstRow + i), Blank(), "=" + textInFile(calls[i])});
    }
    open({.name = "Calls.xlsx", .sheets = {sheet}});
  }
  void SetUp() override {
    road->use([](CalcSpreadsheet& calc) { calc.activateWorkbook("Calls.xlsx"); });
  }
  static std::string nameOf(std::string_view call) {
    return std::string(call.substr(0, call.find('(')));
  }
  static std::string withoutAge(const std::string& name) {
    return std::regex_replace(name, std::regex("^_xlfn\\.(_xlws\\.)?"), "");
  }
  static bool isNewer(const std::string& call) {
    return std::count(newerCalls.begin(), newerCalls.end(), call) > 0;
  }
  // With what files put before the names of newer functions, and of what LET names.
  static std::string textInFile(const std::string& call) {
    static const std::regex newer(
        "(FILTER|LET|RANDARRAY|SEQUENCE|SORT|SORTBY|UNIQUE|XLOOKUP|"
        "XMATCH)\\(");
    static const std::regex sheetsOwn("_xlfn\\.(FILTER|SORT)\\(");
    const std::string name = nameOf(call);
    const auto known = inFiles.find(name);
    if (!isNewer(call))
      return (known == inFiles.end() ? name : known->second) + call.substr(name.size());
    std::string text = std::regex_replace(call, newer, "_xlfn.$1(");
    text = std::regex_replace(text, sheetsOwn, "_xlfn._xlws.$1(");
    return std::regex_replace(text, std::regex("\\b([vw])\\b"), "_xlpm.$1");
  }
  // The column of calls, read by a verb.
  static JSONValue::Array read(const std::string& verb, const std::string& key, Array more = {}) {
    Array arguments{"P" + std::to_string(firstRow) + ":P" +
                    std::to_string(firstRow + calls.size() - 1)};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Bridge::Reply reply = road->bridge().dispatch(verb, arguments);
    EXPECT_TRUE(reply.ok);
    return *reply.payload.member(key)->array();
  }
  // Out of sight: what Calc first works out while it draws has no format of its own.
  static constexpr std::size_t firstRow = 201;
  static inline std::map<std::string, std::string> inFiles;  // by Excel's name
  static inline std::vector<std::string> calls;
};

TEST_F(CalcFunctions, AreAllCalledHere) {
  std::set<std::string> called(withoutValue.begin(), withoutValue.end());
  for (const std::string& call : calls) called.insert(nameOf(call));
  for (const auto& [name, inFile] : inFiles) EXPECT_TRUE(called.count(name) == 1) << name;
  EXPECT_GT(inFiles.size(), 400U);
}

TEST_F(CalcFunctions, AreShownAsExcelNamesThem) {
  const JSONValue::Array rows = read("readFormulas", "formulas", {"a1", true});
  ASSERT_EQ(rows.size(), calls.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    EXPECT_EQ(*rows[i].array()->at(0).string(), "=" + calls[i]);
  }
}

// Of what fills more cells than one, the cell holds the first value.
TEST_F(CalcFunctions, GiveWhatTheirCellsHold) {
  const JSONValue::Array rows = read("readRange", "values");
  ASSERT_EQ(rows.size(), calls.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (std::count(callsOfChance.begin(), callsOfChance.end(), calls[i]) > 0) continue;
    if (isNewer(calls[i]) && inFiles.count(nameOf(calls[i])) == 0) continue;
    JSONValue::Array args{calls[i]};
    if (nameOf(calls[i]) == "FILTERXML") args.emplace_back(Bridge::askedWord);
    const Bridge::Reply reply = road->bridge().dispatch("evaluate", args);
    const JSONValue* value = reply.payload.member("value");
    if (value == nullptr) value = reply.payload.member("message");
    const bool several =
        std::count(givingSeveral.begin(), givingSeveral.end(), nameOf(calls[i])) > 0;
    while (several && value->array() != nullptr) value = &value->array()->at(0);
    EXPECT_EQ(Marshal::encode(*value), Marshal::encode(rows[i].array()->at(0))) << calls[i];
  }
}

}  // namespace
}  // namespace quorin::host::calc
