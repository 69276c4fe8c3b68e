#include "host/calc/keeper/DocumentMarks.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <vector>

#include "host/calc/workbook/CalcRanges.h"

namespace quorin::host::calc {

using css::uno::Reference;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

std::optional<Workbook> asWorkbook(const Reference<css::uno::XInterface>& document) {
  Workbook workbook;
  workbook.model.set(document, UNO_QUERY);
  workbook.document.set(document, UNO_QUERY);
  if (!workbook.model.is() || !workbook.document.is()) return std::nullopt;
  workbook.sheets.set(workbook.document->getSheets(), UNO_QUERY_THROW);
  workbook.uid = uidOf(workbook.model);
  return workbook;
}

std::vector<MarkedSheet> findMarks(const Owner& owner, const Workbook& workbook) {
  std::vector<MarkedSheet> found;
  const std::vector<Reference<css::sheet::XSpreadsheet>> sheets = sheetsOf(workbook);
  for (std::size_t i = 0; i < sheets.size(); ++i) {
    const auto page = drawPageIfAny(sheets[i]);
    if (!page.is()) continue;
    std::vector<PlacedMark> marks = readMarks(page);
    std::erase_if(marks, [&](const auto& each) { return !owner.caresFor(each.mark.owner); });
    if (!marks.empty())
      found.push_back({static_cast<sal_Int32>(i), sheets[i], page, std::move(marks)});
  }
  return found;
}

namespace {

constexpr int mostTries = 10;

// One that cannot be read goes all the same.
void takeMark(QuietChanges& changes, const Workbook& workbook, const MarkedSheet& sheet,
              const PlacedMark& mark, std::vector<TakenMark>& taken) {
  TakenMark copy{sheet.page, mark, {}};
  bool complete = !isMarkShape(mark.shape);
  try {
    complete = complete || (Reference<css::beans::XPropertySet>(mark.shape, UNO_QUERY_THROW)
                                ->getPropertyValue("PolyPolygon") >>= copy.outlines);
  } catch (const css::beans::UnknownPropertyException&) {
    complete = false;
  }
  changes.remove(workbook, sheet.page, mark.shape);
  // An earlier try may have had it, and not have removed it: see DocumentMarks.h.
  std::erase_if(taken, [&](const TakenMark& each) {
    return each.page == sheet.page && each.mark.number == mark.number;
  });
  if (complete) taken.push_back(std::move(copy));
}

}  // namespace

void takeMarks(const Owner& owner, QuietChanges& changes, const Workbook& workbook,
               std::vector<TakenMark>& taken) noexcept {
  bool found = true;
  for (int tries = 0; found && tries < mostTries; ++tries) {
    try {
      found = false;
      for (const MarkedSheet& sheet : findMarks(owner, workbook)) {
        found = true;
        for (const PlacedMark& mark : sheet.marks) takeMark(changes, workbook, sheet, mark, taken);
      }
    } catch (const css::uno::Exception&) {
      // What another holds no longer is being unmade, or the workbook or the office is gone.
      found = true;
    }
  }
}

Reference<css::drawing::XShape> putBack(QuietChanges& changes, const Workbook& workbook,
                                        const TakenMark& mark) {
  auto shape = makeMarkShape(workbook.model, mark.mark, mark.outlines);
  changes.add(workbook, mark.page, shape);
  return shape;
}

void removeMarks(const Owner& owner, QuietChanges& changes, const Workbook& workbook) {
  for (int tries = 0; tries < mostTries; ++tries) {
    const std::vector<MarkedSheet> sheets = findMarks(owner, workbook);
    if (sheets.empty()) return;
    for (const MarkedSheet& sheet : sheets) {
      for (const PlacedMark& mark : sheet.marks) changes.remove(workbook, sheet.page, mark.shape);
    }
  }
}

}  // namespace quorin::host::calc
