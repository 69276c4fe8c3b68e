// What the verbs read of real workbooks, compared with what their files hold: formulas word by
// word, values as Excel left them. A figure that falls fails the test.
//
// By default a fixed sample of every workbook is read; $QUORIN_WHOLE_WORKBOOKS=1 reads everything,
// $QUORIN_SHOW_DIFFERENCES=1 prints each difference. The workbooks lie beside the project, or where
// $QUORIN_WORKBOOKS says; without them the test is skipped and says so.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

#include "host/Address.h"
#include "kit/value/Marshal.h"
#include "tests/calc/CalcRoad.h"
#include "tests/xlsx/FormulaWords.h"
#include "tests/xlsx/StoredWorkbook.h"

namespace quorin::host::calc {
namespace {

using xlsx::StoredCell;
using Cells = std::map<std::pair<int, int>, StoredCell>;

// How many cells may differ: at most so many in the sample and in the whole workbook. The causes
// are in docs/comparison.md.
struct Expected {
  const char* file;
  int formulasInSample, formulas;
  int valuesInSample, values;
  // LibreOffice does not know functions that the workbook is full of: its values are its own.
  bool comparesValues = true;
  // Of the values: sums that are nothing but what rounding left, and 0 to Calc once it calculates
  // them. How many it does at loading differs between its versions (newer ones do SUBTOTAL), so at
  // most all that the file has.
  int remainders = 0;
};

constexpr Expected expectations[] = {
    {"deep-nested-if-cf.xlsx", 0, 0, 0, 0},
    {"errors-in-first-columns.xlsx", 0, 0, 6, 6},
    {"event-calendar-let-lambda.xlsx", 0, 0, 0, 0, false},
    {"gt-azure-review-checklist-before-fix.xlsm", 0, 0, 0, 0, false},
    {"gt-lci-ships-before-fix.xlsx", 0, 0, 0, 0},
    {"gt-owasp-testing-checklist-before-fix.xlsx", 0, 0, 0, 0},
    {"lambda-names-geometry.xlsx", 0, 0, 0, 0, false},
    {"lci-two-wheelers.xlsx", 0, 0, 0, 0},
    {"many-sheets-130-prefixed-xml.xlsx", 0, 0, 0, 0},
    {"nonascii-sheets-hidden.xlsx", 0, 0, 0, 0},
    {"structured-refs-lookups.xlsx", 0, 0, 0, 0},
    {"times-nz-industry.xlsx", 0, 0, 0, 0},
    {"uk-2050-energy-model.xlsx", 0, 0, 0, 0, true, 17},
    {"wazobia-valuation-model.xlsx", 0, 0, 128, 128},
};

bool isSet(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && std::string(value) == "1";
}

std::filesystem::path folderOfWorkbooks() {
  const char* const told = std::getenv("QUORIN_WORKBOOKS");
  return told != nullptr ? told : QUORIN_ROOT "/../shared/workbooks";
}

// Counts what is equal, and prints what is not when asked to.
class Figure {
 public:
  Figure(std::string what) : what_(std::move(what)) {}

  void add(bool equal, const std::string& place, const std::string& stored,
           const std::string& read) {
    ++cells;
    if (equal) return;
    ++differences;
    if (isSet("QUORIN_SHOW_DIFFERENCES"))
      std::printf("%s %s\n  stored %s\n  read   %s\n", what_.c_str(), place.c_str(), stored.c_str(),
                  read.c_str());
  }

  void add(const Figure& other) {
    cells += other.cells;
    differences += other.differences;
  }

  double percent() const { return 100.0 * (cells - differences) / cells; }

  int cells = 0;
  int differences = 0;

 private:
  std::string what_;
};

std::string shown(const CellValue& value) {
  if (const auto* number = std::get_if<double>(&value)) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", *number);
    return text;
  }
  if (const auto* boolean = std::get_if<bool>(&value)) return *boolean ? "TRUE" : "FALSE";
  if (const auto* error = std::get_if<CellError>(&value)) return "error " + error->text;
  if (const auto* text = std::get_if<std::string>(&value)) return "\"" + *text + "\"";
  return "(blank)";
}

std::string shown(const JSONValue& value) {
  return Marshal::encode(value);
}

bool equalNumbers(double a, double b) {
  return a == b || std::abs(a - b) <= 1e-9 * std::max(std::abs(a), std::abs(b));
}

// A stored number that is less than the last digit of what was added up, where 0 is read.
bool isRemainder(const StoredCell& stored, const JSONValue& read) {
  const auto* number = std::get_if<double>(&stored.value);
  return number && !stored.formula.empty() && *number != 0 && std::abs(*number) < 1e-12 &&
         read == JSONValue(0);
}

// Errors reach the page as their texts, blank cells as "" or null.
bool equalValues(const CellValue& stored, const JSONValue& read) {
  if (const auto* number = std::get_if<double>(&stored))
    return read.number() && equalNumbers(*number, *read.number());
  if (const auto* boolean = std::get_if<bool>(&stored)) return read == JSONValue(*boolean);
  if (const auto* error = std::get_if<CellError>(&stored)) return read == JSONValue(error->text);
  if (const auto* text = std::get_if<std::string>(&stored))
    return read == JSONValue(*text) || (text->empty() && read.isNull());
  return read.isNull() || read == JSONValue("");
}

// One workbook against its file.
class Comparison {
 public:
  Comparison(CalcRoad& road, const std::filesystem::path& file, bool comparesValues)
      : road_(road),
        book_(xlsx::readWorkbook(file)),
        name_(file.filename().string()),
        comparesValues_(comparesValues) {}

  void run() {
    std::size_t total = 0;
    for (const xlsx::StoredSheet& sheet : book_.sheets) total += sheet.cells.size();
    // Every stride-th band of rows is read, over all sheets.
    constexpr std::size_t sampleSize = 4000;
    const std::size_t stride =
        isSet("QUORIN_WHOLE_WORKBOOKS") ? 1 : (total + sampleSize - 1) / sampleSize;
    std::size_t band = 0;
    for (const xlsx::StoredSheet& sheet : book_.sheets)
      for (const Area& area : bandsOf(sheet.cells))
        if (stride <= 1 || band++ % stride == 0) compare(sheet, area);
  }

  Figure formulas{"formula"};
  Figure values{"value"};
  int remainders = 0;

 private:
  // The rows that hold cells, in areas of at most 1000 cells.
  static std::vector<Area> bandsOf(const Cells& cells) {
    std::vector<Area> bands;
    for (const auto& [place, cell] : cells) {
      const auto [row, column] = place;
      if (!bands.empty()) {
        Area grown = bands.back();
        grown.lastRow = row;
        grown.firstColumn = std::min(grown.firstColumn, column);
        grown.lastColumn = std::max(grown.lastColumn, column);
        const int rows = grown.lastRow - grown.firstRow + 1;
        const int columns = grown.lastColumn - grown.firstColumn + 1;
        if (row == bands.back().lastRow || rows * columns <= 1000) {
          bands.back() = grown;
          continue;
        }
      }
      bands.push_back({row, column, row, column});
    }
    return bands;
  }

  std::string addressOf(const xlsx::StoredSheet& sheet, const Area& area) const {
    std::string quoted;
    for (const char c : sheet.name) quoted += c == '\'' ? std::string("''") : std::string(1, c);
    return "'" + quoted + "'!" + a1Text(area);
  }

  void compare(const xlsx::StoredSheet& sheet, const Area& area) {
    const std::string address = addressOf(sheet, area);
    const Bridge::Reply read =
        road_.bridge().dispatch("readFormulas", {JSONValue(address), "a1", true});
    if (!read.ok) {
      refused(address, read);
      return;
    }
    eachCell(sheet, area, [&](const StoredCell& cell, int row, int column) {
      if (cell.formula.empty()) return;
      const JSONValue& told = at(*read.payload.member("formulas"), area, row, column);
      const std::string text = told.string() ? *told.string() : "";
      formulas.add(xlsx::formulaWords(cell.formula, book_.externals) == xlsx::formulaWords(text),
                   placeOf(sheet, row, column), cell.formula, text);
    });
    if (comparesValues_) compareValues(sheet, area);
  }

  void compareValues(const xlsx::StoredSheet& sheet, const Area& area) {
    const std::string address = addressOf(sheet, area);
    const Bridge::Reply read = road_.bridge().dispatch("readRange", {JSONValue(address)});
    if (!read.ok) {
      const std::string message = *read.payload.member("message")->string();
      if (area.firstColumn == area.lastColumn || !message.starts_with("range has an error")) {
        refused(address, read);
        return;
      }
      // As the page does: column by column.
      for (int column = area.firstColumn; column <= area.lastColumn; ++column)
        compareValues(sheet, {area.firstRow, column, area.lastRow, column});
      return;
    }
    eachCell(sheet, area, [&](const StoredCell& cell, int row, int column) {
      const JSONValue& told = at(*read.payload.member("values"), area, row, column);
      if (isRemainder(cell, told)) {
        ++remainders;
        return;
      }
      values.add(equalValues(cell.value, told), placeOf(sheet, row, column), shown(cell.value),
                 shown(told));
    });
  }

  void refused(const std::string& address, const Bridge::Reply& reply) {
    ADD_FAILURE() << name_ << " " << address << ": " << Marshal::encode(reply.payload);
  }

  template <typename Action>
  static void eachCell(const xlsx::StoredSheet& sheet, const Area& area, Action action) {
    for (auto cell = sheet.cells.lower_bound({area.firstRow, 0});
         cell != sheet.cells.end() && cell->first.first <= area.lastRow; ++cell)
      if (cell->first.second >= area.firstColumn && cell->first.second <= area.lastColumn)
        action(cell->second, cell->first.first, cell->first.second);
  }

  static const JSONValue& at(const JSONValue& grid, const Area& area, int row, int column) {
    const JSONValue& line = (*grid.array())[static_cast<std::size_t>(row - area.firstRow)];
    return (*line.array())[static_cast<std::size_t>(column - area.firstColumn)];
  }

  std::string placeOf(const xlsx::StoredSheet& sheet, int row, int column) const {
    return name_ + " " + sheet.name + "!" + a1Text({row, column, row, column});
  }

  static std::string a1Text(const Area& area) {
    const auto corner = [](int row, int column) {
      return columnLetters(column) + std::to_string(row);
    };
    return corner(area.firstRow, area.firstColumn) + ":" + corner(area.lastRow, area.lastColumn);
  }

  CalcRoad& road_;
  const xlsx::StoredWorkbook book_;
  const std::string name_;
  const bool comparesValues_;
};

TEST(StoredCells, AreWhatTheVerbsRead) {
  const std::filesystem::path folder = folderOfWorkbooks();
  if (!std::filesystem::exists(folder / expectations[0].file))
    GTEST_SKIP() << "no workbooks: set QUORIN_WORKBOOKS to a folder of them";
  const bool whole = isSet("QUORIN_WHOLE_WORKBOOKS");
  CalcRoad road;
  Figure formulas{"formula"}, values{"value"};
  for (const Expected& expected : expectations) {
    SCOPED_TRACE(expected.file);
    Comparison comparison(road, folder / expected.file, expected.comparesValues);
    road.open(folder / expected.file);
    comparison.run();
    std::printf("%-44s formulas %d of %d differ, values %d of %d, remainders %d\n", expected.file,
                comparison.formulas.differences, comparison.formulas.cells,
                comparison.values.differences, comparison.values.cells, comparison.remainders);
    EXPECT_LE(comparison.formulas.differences,
              whole ? expected.formulas : expected.formulasInSample);
    EXPECT_LE(comparison.values.differences, whole ? expected.values : expected.valuesInSample);
    EXPECT_LE(comparison.remainders, expected.remainders);
    formulas.add(comparison.formulas);
    values.add(comparison.values);
  }
  std::printf("formulas equal %.3f %%, values %.3f %%\n", formulas.percent(), values.percent());
  EXPECT_GE(formulas.percent(), 99.9);
  EXPECT_GE(values.percent(), 99.5);
}

}  // namespace
}  // namespace quorin::host::calc
