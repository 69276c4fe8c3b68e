// The verbs that read and evaluate, all the way to a private Calc with a workbook full of trouble.
// One office for the tests of all files that include this.
#pragma once

#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/calc/CalcRoad.h"
#include "tests/calc/UserHands.h"
#include "tests/calc/XlsxFile.h"

namespace quorin::host::calc {

inline const std::string longName = "Ärger & Übermut (2024) – 31 ch.!";

// Every kind of trouble that a range can be in.
inline fakes::WorkbookDescription edges() {
  fakes::SheetDescription data{"Data",
                               {{"A1", "Item"},
                                {"B1", 12.5},
                                {"C1", true},
                                {"A2", CellError{"#N/A"}, "=NA()"},
                                {"B2", 25.0, "=B1*2"},
                                {"C2", CellError{"#DIV/0!"}, "=1/0"},
                                {"A3", "last"},
                                {"E1", 1.0},
                                {"E2", CellError{"#DIV/0!"}, "=1/0"},
                                {"E3", 3.0},
                                {"G1", "=no formula"},
                                {"G2", "", "=\"\""}}};
  return {.name = "Edges.xlsx",
          .sheets = {data,
                     {"Blank", {}},
                     {"Hidden", {{"A1", "unseen"}}, true},
                     {"It's a \"q\"", {{"A1", "quoted"}}},
                     {"a!b (c)", {{"A1", "marked"}}},
                     {longName, {{"A1", "long"}, {"A2", 2.0, "=Data!B1"}}}},
          .names = {{"Rate", "=Data!$B$1"},
                    {"_xlnm.Print_Area", "=Data!$A$1:$B$2", "Data"},
                    {"_xlfn.SINGLE", "=#NAME?"},
                    {"_xlpm.x", "=#NAME?"},
                    {"Local", "=Blank!$A$1", "Blank"}}};
}

class CalcReads : public testing::Test {
 protected:
  using Array = JSONValue::Array;

  static void SetUpTestSuite() {
    road = std::make_unique<CalcRoad>();
    folder = std::make_unique<TemporaryFolder>();
    open({.name = "Second.xlsx", .sheets = {{"Data", {{"A1", "second"}}}}});
    open(edges());
    hands = std::make_unique<UserHands>(road->office().open());
  }
  static void TearDownTestSuite() {
    hands.reset();
    road.reset();
    folder.reset();
  }
  static void open(const fakes::WorkbookDescription& book) {
    fakes::writeXlsx(book, *folder / book.name);
    road->open(*folder / book.name);
  }

  void SetUp() override {
    road->use([](CalcSpreadsheet& calc) { calc.activateWorkbook("Edges.xlsx"); });
  }

  // The reply's payload as JSON text, slashes as they are; of a failure with a word before it.
  static std::string ask(const std::string& verb, Array args = {}) {
    std::string text = road->ask(verb, std::move(args));
    for (std::size_t at = 0; (at = text.find("\\/", at)) != std::string::npos;) text.erase(at, 1);
    return text;
  }
  static std::string deep(std::vector<std::string> entries) {
    return ask("deepEval", {Array(entries.begin(), entries.end())});
  }
  static std::string evaluate(const std::string& expression) {
    return ask("evaluate", {expression});
  }

  static inline std::unique_ptr<CalcRoad> road;
  static inline std::unique_ptr<TemporaryFolder> folder;
  static inline std::unique_ptr<UserHands> hands;
};

inline std::string grid(int rows, int columns, const std::string& values) {
  return "{\"cols\":" + std::to_string(columns) + ",\"rows\":" + std::to_string(rows) +
         ",\"values\":" + values + "}";
}
inline std::string failure(const std::string& message) {
  return R"(failed {"kind":"transport","message":")" + message + "\"}";
}

}  // namespace quorin::host::calc
