// `quorinctl audit` as its users run it: the program, a real Calc, workbooks with a known mistake.
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <sstream>
#include <string>

#include "kit/value/JSONText.h"
#include "tests/calc/XlsxFile.h"
#include "tests/fakes/Files.h"
#include "tests/fakes/WorkbookDescription.h"
#include "tests/tools/Quorinctl.h"

namespace quorin {
namespace {

using host::CellValue;
using testing::HasSubstr;
using testing::StartsWith;

class QuorinctlAudit : public Quorinctl {
 protected:
  // Ten rows that add what stands to the left, but for row 7, which subtracts.
  path oddWorkbook(const std::string& name) const {
    fakes::SheetDescription sheet{"Data", {}};
    for (int row = 1; row <= 10; ++row) {
      const std::string number = std::to_string(row);
      const double left = row * 3, right = row * row;
      sheet.cells.push_back({"A" + number, CellValue(left)});
      sheet.cells.push_back({"B" + number, CellValue(right)});
      const bool isOdd = row == 7;
      sheet.cells.push_back({"C" + number, CellValue(isOdd ? left - right : left + right),
                             "=A" + number + (isOdd ? "-B" : "+B") + number});
    }
    return written(name, std::move(sheet));
  }
  path written(const std::string& name, fakes::SheetDescription sheet) const {
    const path file = folder_ / name;
    std::filesystem::create_directories(file.parent_path());
    fakes::writeXlsx({.name = name, .sheets = {std::move(sheet)}}, file);
    return file;
  }

  struct Run {
    int status = -1;
    std::string output;
    std::string errors;
  };
  Run run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "audit");
    const auto tool = start(arguments);
    Run result;
    while (const auto line = tool->readLine()) result.output += *line + "\n";
    result.status = tool->wait();
    result.errors = tool->errors();
    expectNothingLeft();
    return result;
  }
  static JSONValue parsed(const std::string& text) {
    const ParsedJSON json = parseJSON(text);
    EXPECT_TRUE(json) << text;
    return json.value.value_or(nullptr);
  }
  static JSONValue firstFinding(const JSONValue& report) {
    const auto* const findings = member(report, "findings").array();
    if (findings && !findings->empty()) return findings->front();
    ADD_FAILURE() << "no finding: " << Marshal::encode(report);
    return nullptr;
  }
};

TEST_F(QuorinctlAudit, NamesTheCellThatBreaksThePattern) {
  const Run told = run({oddWorkbook("Odd.xlsx"), "--format", "json"});
  EXPECT_EQ(told.status, 0) << told.errors;
  const JSONValue report = parsed(told.output);
  EXPECT_EQ(member(member(report, "summary"), "formulas"), JSONValue(10));
  EXPECT_EQ(member(member(report, "summary"), "distinctFormulas"), JSONValue(2));
  const auto* const sheets = member(member(report, "inventory"), "sheets").array();
  ASSERT_TRUE(sheets && sheets->size() == 1);
  EXPECT_EQ(member(sheets->front(), "area"), JSONValue("A1:C10"));
  const JSONValue first = firstFinding(report);
  EXPECT_EQ(member(first, "rank"), JSONValue(1));
  EXPECT_EQ(member(first, "sheet"), JSONValue("Data"));
  EXPECT_EQ(member(first, "cells"), JSONValue(JSONValue::Array{"C7"}));
  EXPECT_EQ(member(first, "expected"), JSONValue("=A7+B7"));
  ASSERT_TRUE(member(first, "message").string());
  EXPECT_THAT(*member(first, "message").string(), HasSubstr("C7"));
}

TEST_F(QuorinctlAudit, FailsOnWhatItIsToldToFailOn) {
  const std::string odd = oddWorkbook("Odd.xlsx");
  EXPECT_EQ(run({odd, "--fail-on", "style"}).status, 1);
  fakes::SheetDescription even{"Data", {}};
  for (const char* address : {"A1", "A2", "A3"}) even.cells.push_back({address, CellValue(1.0)});
  EXPECT_EQ(run({written("Even.xlsx", even), "--fail-on", "style"}).status, 0);
}

TEST_F(QuorinctlAudit, GoesOnAfterFilesThatItCannotRead) {
  std::filesystem::create_directories(folder_ / "books");
  std::ofstream(folder_ / "books" / "a.xlsx") << "no workbook at all";
  oddWorkbook("books/b.xlsx");
  std::ofstream(folder_ / "books" / "~$b.xlsx") << "the file of whoever has it open";
  const Run told = run({folder_ / "books", folder_ / "gone.xlsx", "--format", "jsonl"});
  EXPECT_EQ(told.status, 2);
  std::istringstream lines(told.output);
  std::vector<JSONValue> reports;
  for (std::string line; std::getline(lines, line);) reports.push_back(parsed(line));
  ASSERT_EQ(reports.size(), 3U) << told.output;
  EXPECT_EQ(member(reports[0], "file"), JSONValue(folder_ / "books" / "a.xlsx"));
  EXPECT_TRUE(member(reports[0], "error").string());
  EXPECT_EQ(member(firstFinding(reports[1]), "cells"), JSONValue(JSONValue::Array{"C7"}));
  EXPECT_TRUE(member(reports[2], "error").string());
  EXPECT_THAT(told.errors, HasSubstr("gone.xlsx: no such workbook"));
}

TEST_F(QuorinctlAudit, WritesTheListWholeOrLeavesTheFileAsItWas) {
  const std::string odd = oddWorkbook("Odd.xlsx");
  const path list = folder_ / "list.csv";
  std::ofstream(list) << "what was there";
  const Run told = run({odd, "--format", "csv", "--output", list});
  EXPECT_EQ(told.status, 0) << told.errors;
  EXPECT_EQ(told.output, "");
  EXPECT_THAT(readFile(list), StartsWith("file,rank,kind"));
  EXPECT_THAT(readFile(list), HasSubstr(",'=A7+B7,"));
  const Run barred = run({odd, "--output", folder_ / "nowhere" / "list.txt"});
  EXPECT_EQ(barred.status, 2);
  EXPECT_THAT(barred.errors, HasSubstr("list.txt cannot be written"));
}

TEST_F(QuorinctlAudit, TidiesUpWhenASignalEndsIt) {
  const auto tool = start({"audit", oddWorkbook("Odd.xlsx")});
  while (processesWith((folder_ / "tmp").string()).empty()) ::usleep(10'000);
  tool->signal(SIGTERM);
  EXPECT_EQ(tool->wait(), 128 + SIGTERM);
  expectNothingLeft();
}

}  // namespace
}  // namespace quorin
