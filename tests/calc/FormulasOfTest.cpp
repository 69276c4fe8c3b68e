#include <com/sun/star/sheet/XCellRangeFormula.hpp>
#include <cppuhelper/implbase2.hxx>
#include <gtest/gtest.h>

#include "host/calc/workbook/CalcRanges.h"

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::Sequence;
using Formulas = Sequence<Sequence<rtl::OUString>>;

// Cells of which rows or columns have gone since they were asked for.
class Cells : public cppu::WeakImplHelper2<css::table::XCellRange, css::sheet::XCellRangeFormula> {
 public:
  Cells(sal_Int32 rows, sal_Int32 columns) : formulas_(rows) {
    for (sal_Int32 row = 0; row < rows; ++row)
      formulas_[row] =
          Sequence<rtl::OUString>(std::vector(columns, rtl::OUString("=A1")).data(), columns);
  }
  Formulas SAL_CALL getFormulaArray() override { return formulas_; }
  void SAL_CALL setFormulaArray(const Formulas&) override {}
  Reference<css::table::XCell> SAL_CALL getCellByPosition(sal_Int32, sal_Int32) override {
    return {};
  }
  Reference<css::table::XCellRange> SAL_CALL getCellRangeByPosition(sal_Int32, sal_Int32, sal_Int32,
                                                                    sal_Int32) override {
    return {};
  }
  Reference<css::table::XCellRange> SAL_CALL getCellRangeByName(const rtl::OUString&) override {
    return {};
  }

 private:
  Formulas formulas_;
};

std::string told(sal_Int32 rows, sal_Int32 columns) {
  const Formulas formulas = formulasOf(new Cells(rows, columns), {5, 2, 7, 3});
  std::string text;
  for (const auto& row : formulas) {
    for (const auto& formula : row) text += formula.isEmpty() ? "." : "f";
    text += "|";
  }
  return text;
}

TEST(FormulasOf, AreAsManyAsTheAreaHas) {
  EXPECT_EQ(told(3, 2), "ff|ff|ff|");
}

TEST(FormulasOf, AreEmptyWhereRowsOrColumnsWereDeletedMeanwhile) {
  EXPECT_EQ(told(2, 2), "ff|ff|..|");
  EXPECT_EQ(told(3, 1), "f.|f.|f.|");
  EXPECT_EQ(told(0, 0), "..|..|..|");
}

}  // namespace
}  // namespace quorin::host::calc
