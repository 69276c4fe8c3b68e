// The marks of one document, as shapes on its sheets: finding them, taking them out and putting
// them back, without a trace. On any thread that may call the office.
//
// The office makes the object that stands for a shape when it is asked for, and unmakes it when
// nobody holds it any more. One that is made while the last one is being unmade has lost its shape:
// it has no name and does nothing. So whoever knows a mark holds its shape, and hands it over only
// to somebody who has got hold of it too.
#pragma once

#include <com/sun/star/frame/XModel.hpp>
#include <optional>
#include <vector>

#include "host/calc/marks/MarkShape.h"
#include "host/calc/marks/Owner.h"
#include "host/calc/workbook/CalcWorkbooks.h"
#include "host/calc/workbook/QuietChanges.h"

namespace quorin::host::calc {

// A document as changes want it; none when it is no workbook.
std::optional<Workbook> asWorkbook(const css::uno::Reference<css::uno::XInterface>& document);

// One sheet with at least one mark on it.
struct MarkedSheet {
  sal_Int32 position = 0;  // among the sheets, from 0
  css::uno::Reference<css::sheet::XSpreadsheet> sheet;
  css::uno::Reference<css::drawing::XDrawPage> page;
  std::vector<PlacedMark> marks;
};
// Only marks that the owner takes care of.
std::vector<MarkedSheet> findMarks(const Owner& owner, const Workbook& workbook);

// What it takes to make a mark again as it was.
struct TakenMark {
  css::uno::Reference<css::drawing::XDrawPage> page;
  NumberedMark mark;
  css::drawing::PointSequenceSequence outlines;
};

// Throws nothing: what fails on the way is left out, for a mark that cannot be put back must still
// be gone.
void takeMarks(const Owner& owner, QuietChanges& changes, const Workbook& workbook,
               std::vector<TakenMark>& taken) noexcept;
css::uno::Reference<css::drawing::XShape> putBack(QuietChanges& changes, const Workbook& workbook,
                                                  const TakenMark& mark);

// Takes them out for good.
void removeMarks(const Owner& owner, QuietChanges& changes, const Workbook& workbook);

}  // namespace quorin::host::calc
