// The data of cells read past UNO's C++ binding, beside what the binding itself gives.
#include <com/sun/star/container/XIndexAccess.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/lang/DisposedException.hpp>
#include <com/sun/star/sheet/XCellRangeFormula.hpp>
#include <com/sun/star/sheet/XSpreadsheetDocument.hpp>
#include <com/sun/star/table/XCellRange.hpp>
#include <com/sun/star/util/XCloseable.hpp>
#include <future>
#include <gtest/gtest.h>
#include <signal.h>
#include <thread>

#include "host/calc/office/OfficeConnection.h"
#include "host/calc/uno/Arguments.h"
#include "host/calc/uno/CellData.h"
#include "host/calc/uno/Text.h"
#include "tests/calc/CalcFixture.h"
#include "tests/fakes/StoppedProcess.h"

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

// A new workbook in an office, reached by a connection of its own.
class OpenWorkbook {
 public:
  explicit OpenWorkbook(PrivateOffice& office)
      : connection_(office.open(), std::chrono::seconds(60)),
        document_(css::frame::Desktop::create(connection_.context())
                      ->loadComponentFromURL(toUno("private:factory/scalc"), toUno("_blank"), 0,
                                             sequenceOf({argument("Hidden", true)})),
                  UNO_QUERY_THROW) {}

  Reference<css::sheet::XCellRangeData> cells(const char* address) const {
    const Reference<css::container::XIndexAccess> sheets(document_->getSheets(), UNO_QUERY_THROW);
    const Reference<css::table::XCellRange> sheet(sheets->getByIndex(0), UNO_QUERY_THROW);
    return {sheet->getCellRangeByName(toUno(address)), UNO_QUERY_THROW};
  }
  void close() {
    if (document_.is()) Reference<css::util::XCloseable>(document_, UNO_QUERY_THROW)->close(true);
    document_.clear();
  }

 private:
  OfficeConnection connection_;  // outlives what is reached through it
  Reference<css::sheet::XSpreadsheetDocument> document_;
};

class CellData : public testing::Test {
 protected:
  ~CellData() override { close(); }
  Reference<css::sheet::XCellRangeData> cells(const char* address) const {
    return workbook_.cells(address);
  }
  void close() { workbook_.close(); }

 private:
  OpenWorkbook workbook_{SharedOffice::office()};
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

// The office has stopped, so that the call is under way when it dies, or at most about to begin.
TEST(CellDataOfADyingOffice, FailsAsTheBindingDoes) {
  PrivateOffice office;
  const OpenWorkbook workbook(office);
  const auto block = workbook.cells("A1:C2");
  cellData(block);
  const pid_t process = office.process();
  ASSERT_TRUE(stopProcess(process));
  const auto death = std::async(std::launch::async, [process] {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    ::kill(process, SIGKILL);
  });
  EXPECT_THROW(cellData(block), css::uno::RuntimeException);
  EXPECT_THROW(cellData(block), css::uno::RuntimeException) << "also when it is dead";
}

}  // namespace
}  // namespace quorin::host::calc
