// Workbooks whose files have one name, open in one office.
#include <chrono>
#include <com/sun/star/frame/Desktop.hpp>
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>

#include "host/Address.h"
#include "host/calc/office/OfficeConnection.h"
#include "host/calc/workbook/CalcWorkbooks.h"
#include "tests/calc/CalcFixture.h"
#include "tests/calc/UserHands.h"
#include "tests/calc/XlsxFile.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin::host::calc {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::Not;

class EqualNames : public testing::Test {
 protected:
  static CalcSpreadsheet& calc() { return SharedOffice::spreadsheet(); }
  void open(const std::string& inFolder, double value) const {
    fakes::WorkbookDescription book{.name = "Equal.xlsx", .sheets = {}};
    book.sheets.push_back({"Data", {{"A1", value}}});
    std::filesystem::create_directories(folder / inFolder);
    fakes::writeXlsx(book, folder / inFolder / "Equal.xlsx");
    calc().openWorkbook((folder / inFolder / "Equal.xlsx").string());
  }
  static CellValue valueIn(const std::string& book) {
    return calc().values({{book, "Data"}, parseA1("A1").value()}).cells.front();
  }
  static int numberOf(const std::function<void()>& call) {
    try {
      call();
    } catch (const SpreadsheetError& error) {
      return error.number();
    }
    return 0;
  }
  const TemporaryFolder folder;
};

// One test, because the office keeps what is open.
TEST_F(EqualNames, AreAlwaysDifferentAndStayWhatTheyAre) {
  open("2024", 1);
  EXPECT_EQ(calc().activeWorkbook(), "Equal.xlsx");
  EXPECT_EQ(valueIn("Equal.xlsx"), CellValue(1.0));
  open("2025", 2);
  EXPECT_EQ(calc().activeWorkbook(), "2025/Equal.xlsx");
  EXPECT_EQ(calc().activeCell()->sheet.book, "2025/Equal.xlsx");
  EXPECT_EQ(valueIn("Equal.xlsx"), CellValue(1.0));
  EXPECT_EQ(valueIn("2025/Equal.xlsx"), CellValue(2.0));
  EXPECT_EQ(numberOf([] { valueIn("2024/Equal.xlsx"); }), -1728);
  const SheetRef from{"Equal.xlsx", "Data"};
  EXPECT_EQ(calc().evaluate("A1*10", from), Evaluation(CellValue(10.0)));
  EXPECT_EQ(calc().evaluate("'[2025/Equal.xlsx]Data'!A1*10+A1", from), Evaluation(CellValue(21.0)));

  open("other/2025", 3);
  EXPECT_EQ(calc().activeWorkbook(), "other/2025/Equal.xlsx");
  EXPECT_EQ(valueIn("Equal.xlsx"), CellValue(1.0));
  EXPECT_EQ(valueIn("2025/Equal.xlsx"), CellValue(2.0));
  EXPECT_EQ(valueIn("other/2025/Equal.xlsx"), CellValue(3.0));
  calc().activateWorkbook("2025/Equal.xlsx");
  EXPECT_EQ(calc().activeWorkbook(), "2025/Equal.xlsx");

  // Another connection, as after a relaunch, and after the first of them was closed.
  UserHands hands(SharedOffice::office().open());
  hands.close("2024/Equal.xlsx");
  const OfficeConnection next(SharedOffice::office().open(), std::chrono::seconds(60));
  CalcWorkbooks again(css::frame::Desktop::create(next.context()), next.context());
  EXPECT_THAT(again.names(), AllOf(Contains("2025/Equal.xlsx"), Contains("other/2025/Equal.xlsx"),
                                   Not(Contains("Equal.xlsx"))));
  EXPECT_EQ(valueIn("2025/Equal.xlsx"), CellValue(2.0));
}

}  // namespace
}  // namespace quorin::host::calc
