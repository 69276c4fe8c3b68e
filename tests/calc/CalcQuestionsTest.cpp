// How often reading asks the office: each question changes threads some six times.
#include <algorithm>
#include <limits>

#include "tests/calc/CalcReads.h"
#include "tests/calc/OfficeQuestions.h"

namespace quorin::host::calc {
namespace {

class CalcQuestions : public CalcReads {
 protected:
  static void SetUpTestSuite() {
    CalcReads::SetUpTestSuite();
    fakes::SheetDescription data{"Data", {}}, errors{"Errors", {}}, texts{"Texts", {}};
    for (int row = 1; row <= 5'000; ++row) {
      for (const char* column : {"A", "B"}) {
        const std::string cell = column + std::to_string(row);
        data.cells.push_back({cell, 7.0, "=3+4"});
        const bool isError = *column == 'B' && row % 1'000 == 0;
        if (isError) {
          errors.cells.push_back({cell, CellError{"#DIV/0!"}, "=1/0"});
        } else {
          errors.cells.push_back({cell, 7.0, "=3+4"});
        }
        if (row <= 400) texts.cells.push_back({cell, std::string(1'200, 'x')});
      }
    }
    open({.name = "Pieces.xlsx", .sheets = {data, errors, texts}});
  }
  void SetUp() override {
    road->use([](CalcSpreadsheet& calc) { calc.activateWorkbook("Pieces.xlsx"); });
  }

  // Of a verb that reads this range. Every two seconds one looks anew which windows there are.
  static int questionsOf(const std::string& range) {
    int fewest = std::numeric_limits<int>::max();
    for (int i = 0; i < 3; ++i) {
      const int before = officeQuestions();
      EXPECT_THAT(ask("readFormulas", {range, "r1c1", false}), testing::StartsWith(R"({"cols":2)"));
      fewest = std::min(fewest, officeQuestions() - before);
    }
    return fewest;
  }
};

// The window in front, the names of the sheets, the sheet; twice cells, their data and what these
// are asked for by, twice the same for formulas; and the texts, which take three.
TEST_F(CalcQuestions, AreFewForAPieceOfAScan) {
  EXPECT_EQ(questionsOf("Data!A1:B2500"), 3 + 2 * 3 + 2 * 3 + 3);
  EXPECT_EQ(questionsOf("Data!A2501:B5000"), 18);
  EXPECT_EQ(questionsOf("Data!A1:B5000"), 3 + 4 * 3 + 4 * 3 + 3);  // texts of the first column
}

// What two errors are is asked with the values, and told again among the texts.
TEST_F(CalcQuestions, AreHardlyMoreForAPieceWithErrors) {
  EXPECT_EQ(questionsOf("Errors!A1:B2500"), 18 + 2 * 2);
}

// Of 800 long texts 200 at once, however often they were read before.
TEST_F(CalcQuestions, AreMoreWhereTextsAreLong) {
  EXPECT_EQ(questionsOf("Texts!A1:B400"), 3 + 4 * 3 + 3 + 4 * 3);
}

}  // namespace
}  // namespace quorin::host::calc
