// The data of cells read past UNO's C++ binding, beside what the binding itself gives.
#include <com/sun/star/container/XIndexAccess.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/lang/DisposedException.hpp>
#include <com/sun/star/sheet/XCellRangeFormula.hpp>
#include <com/sun/star/sheet/XSpreadsheetDocument.hpp>
#include <com/sun/star/table/XCellRange.hpp>
#include <com/sun/star/util/XCloseable.hpp>
#include <gtest/gtest.h>

#include "host/calc/Arguments.h"
#include "host/calc/CellData.h"
#include "host/calc/OfficeConnection.h"
#include "host/calc/Text.h"
#include "tests/calc/CalcFixture.h"

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

class CellData : public testing::Test {
 protected:
  CellData()
      : connection_(SharedOffice::office().open(), std::chrono::seconds(60)),
        document_(css::frame::Desktop::create(connection_.context())
                      ->loadComponentFromURL(toUno("private:factory/scalc"), toUno("_blank"), 0,
                                             sequenceOf({argument("Hidden", true)})),
                  UNO_QUERY_THROW) {}
  ~CellData() override {
    if (document_.is()) close();
  }

  Reference<css::sheet::XCellRangeData> cells(const char* address) const {
    const Reference<css::container::XIndexAccess> sheets(document_->getSheets(), UNO_QUERY_THROW);
    const Reference<css::table::XCellRange> sheet(sheets->getByIndex(0), UNO_QUERY_THROW);
    return {sheet->getCellRangeByName(toUno(address)), UNO_QUERY_THROW};
  }
  void close() {
    Reference<css::util::XCloseable>(document_, UNO_QUERY_THROW)->close(true);
    document_.clear();
  }

 private:
  OfficeConnection connection_;  // outlives what is reached through it
  Reference<css::sheet::XSpreadsheetDocument> document_;
};

TEST_F(CellData, IsWhatTheBindingGives) {
  const auto block = cells("A1:C2");
  const rtl::OUString text = toUno("Ärger \xF0\x9F\x98\x80");
  Reference<css::sheet::XCellRangeFormula>(block, UNO_QUERY_THROW)
      ->setFormulaArray(sequenceOf({sequenceOf({toUno("12.5"), text, rtl::OUString()}),
                                    sequenceOf({toUno("=1/0"), toUno("=\"\""), toUno("=1=1")})}));
  const auto data = cellData(block);
  EXPECT_EQ(data, block->getDataArray());
  ASSERT_EQ(data.getLength(), 2);
  EXPECT_EQ(data[0][0], css::uno::Any(12.5));
  EXPECT_EQ(data[0][1], css::uno::Any(text));
  EXPECT_FALSE(data[1][0].hasValue()) << "an error";
}

TEST_F(CellData, OutlivesTheWorkbook) {
  const auto block = cells("A1:B1");
  const auto data = cellData(block);
  close();
  EXPECT_EQ(data.getLength(), 1);
  EXPECT_EQ(data[0][1], css::uno::Any(rtl::OUString()));
}

TEST_F(CellData, FailsAsTheBindingDoes) {
  const auto block = cells("A1");
  close();
  EXPECT_ANY_THROW(block->getDataArray());
  EXPECT_THROW(cellData(block), css::uno::RuntimeException);
}

}  // namespace
}  // namespace quorin::host::calc
