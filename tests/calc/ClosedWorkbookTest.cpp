// A workbook that its user closes between two calls of ours: the calls fail, and neither the office
// nor this process ends.
#include <com/sun/star/sheet/XCellRangesQuery.hpp>
#include <com/sun/star/util/XCloseable.hpp>
#include <gtest/gtest.h>

#include "host/calc/CalcSession.h"
#include "host/calc/cells/AreaGrid.h"
#include "host/calc/cells/CalcLookup.h"
#include "host/calc/cells/CalcTexts.h"
#include "host/calc/marks/MarkShape.h"
#include "host/calc/office/PrivateOffice.h"
#include "host/calc/workbook/CalcRanges.h"
#include "tests/calc/XlsxFile.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

class ClosedWorkbook : public testing::Test {
 protected:
  ClosedWorkbook() {
    for (const char* name : {"Known.xlsx", "Other.xlsx"}) {
      fakes::writeXlsx(fakes::knownWorkbook(), folder_ / name);
      session_.openWorkbook((folder_ / name).string());
    }
  }
  static void close(const Workbook& workbook) {
    Reference<css::util::XCloseable>(workbook.model, UNO_QUERY_THROW)->close(true);
  }
  Grid<std::string> textsOf(const Workbook& workbook) {
    return bulkTexts(workbook, "Data", {2, 1, 3, 2}, limits_);
  }

  TemporaryFolder folder_;
  PrivateOffice office_;
  CalcSession session_{office_.open(), std::chrono::seconds(60), [] {}, nullptr};
  const CallLimits limits_;
};

TEST_F(ClosedWorkbook, IsNotAskedForItsDisplayedTexts) {
  const Workbook closed = session_.workbook("Known.xlsx");
  close(closed);
  EXPECT_ANY_THROW(textsOf(closed));
  session_.workbooks().forget();
  const std::vector<std::string> shown{"Bolt", "1.5", "Nut", "2"};
  EXPECT_EQ(textsOf(session_.workbook("Other.xlsx")).cells, shown);
}

TEST_F(ClosedWorkbook, FailsTheCallsThatHaveItsCellsAlready) {
  const Workbook closed = session_.workbook("Known.xlsx");
  const Reference<css::sheet::XSpreadsheet> sheet = sheetOf(closed, "Data");
  const auto cells = cellsOf(sheet, {1, 1, 9, 9});
  const Reference<css::sheet::XCellRangesQuery> query(cells, UNO_QUERY_THROW);
  close(closed);
  using css::uno::Exception;
  EXPECT_THROW(findFilledParts(cells, {1, 1, 9, 9}), Exception);
  EXPECT_THROW(findFilledPart(cells, {1, 1, 9, 9}), Exception);
  EXPECT_THROW(forEachCell(query->queryEmptyCells(), {1, 1, 9, 9}, [](int, int) {}), Exception);
  EXPECT_THROW(drawPageOf(sheet), Exception);
  EXPECT_THROW(outlinesOf(sheet, {{1, 1, 9, 9}}), Exception);
}

}  // namespace
}  // namespace quorin::host::calc
