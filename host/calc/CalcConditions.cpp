#include "host/calc/CalcConditions.h"

#include <algorithm>
#include <utility>

#include "host/Address.h"
#include "host/calc/CalcRanges.h"
#include "host/calc/ChangeGuard.h"
#include "host/calc/MarkShape.h"
#include "host/calc/UserRules.h"

namespace quorin::host::calc {
namespace {

using css::drawing::XDrawPage;
using css::uno::Reference;

// The marks of one sheet, to be changed. What is changed here is drawn by draw().
class SheetMarks {
 public:
  SheetMarks(const Workbook& workbook, const std::string& sheet)
      : workbook_(workbook),
        sheet_(sheetOf(workbook, sheet)),
        page_(drawPageOf(sheet_)),
        marks_(readMarks(page_)),
        before_(marks_) {}

  Mark& mark(const std::string& id) {
    const auto number = parseMarkId(id);
    const auto found = std::find_if(marks_.begin(), marks_.end(),
                                    [&](const PlacedMark& each) { return each.number == number; });
    if (found != marks_.end()) return found->mark;
    if (isUserRule(id)) throw SpreadsheetError(-10006, "The rule is the user's");
    throw SpreadsheetError(-1728, "There is no such condition: " + id);
  }
  std::string add(Mark mark) {
    const int number = marks_.empty() ? 1 : marks_.back().number + 1;
    marks_.push_back({{number, std::move(mark)}, {}});
    return markId(number);
  }

  // Each change is one of its own, so that undo and the modified flag stay as they are, and each
  // leaves marks that say truly which cells they colour.
  void draw() {
    const auto drawn = drawnOf(marks_), drawnBefore = drawnOf(before_);
    for (std::size_t i = 0; i < marks_.size(); ++i) {
      if (marks_[i].mark.areas.empty()) {
        erase(marks_[i].shape);
      } else if (!marks_[i].shape.is()) {
        put(marks_[i], drawn[i]);
      } else if (marks_[i].mark != before_[i].mark || drawn[i] != drawnBefore[i]) {
        redraw(marks_[i], drawn[i]);
      }
    }
  }

 private:
  static std::vector<std::vector<Area>> drawnOf(const std::vector<PlacedMark>& placed) {
    std::vector<Mark> marks;
    for (const PlacedMark& each : placed) marks.push_back(each.mark);
    return drawnAreas(marks);
  }
  void put(const PlacedMark& placed, const std::vector<Area>& drawn) {
    const auto shape = makeMarkShape(workbook_.model, placed, outlinesOf(sheet_, drawn));
    const ChangeGuard guard(workbook_);
    page_->add(shape);
  }
  void redraw(const PlacedMark& placed, const std::vector<Area>& drawn) {
    if (!isRedrawable(placed.shape)) {
      put(placed, drawn);
      return erase(placed.shape);
    }
    const auto outlines = outlinesOf(sheet_, drawn);
    const ChangeGuard guard(workbook_);
    redrawMarkShape(placed.shape, placed, outlines);
  }
  void erase(const Reference<css::drawing::XShape>& shape) {
    const ChangeGuard guard(workbook_);
    page_->remove(shape);
  }

  const Workbook& workbook_;
  const Reference<css::sheet::XSpreadsheet> sheet_;
  const Reference<XDrawPage> page_;
  std::vector<PlacedMark> marks_;  // one whose cells are all gone stays until it is drawn
  const std::vector<PlacedMark> before_;
};

}  // namespace

std::vector<FormatCondition> listConditions(const Workbook& workbook, const RangeRef& range) {
  const auto sheet = sheetOf(workbook, range.sheet.sheet);
  UserRules rules = readUserRules(workbook, sheet, range.areas);
  int priority = rules.total;
  for (const PlacedMark& placed : readMarks(drawPageOf(sheet))) {
    ++priority;
    const Mark& mark = placed.mark;
    if (!touch(mark.areas, range.areas)) continue;
    rules.onRange.push_back({.id = markId(placed.number),
                             .formula = mark.formula,
                             .areas = mark.areas,
                             .priority = priority,
                             .fill = mark.fill});
  }
  return std::move(rules.onRange);
}

std::string addMark(const Workbook& workbook, const RangeRef& range, const std::string& formula) {
  if (formula != markFormula)
    throw SpreadsheetError(-1708,
                           "Only marks can be made, with the formula " + std::string(markFormula));
  SheetMarks marks(workbook, range.sheet.sheet);
  firstArea(range);
  std::string id = marks.add({formula, std::nullopt, range.areas});
  marks.draw();
  return id;
}

void fillMark(const Workbook& workbook, const SheetRef& sheet, const std::string& id,
              const std::optional<Color>& fill) {
  SheetMarks marks(workbook, sheet.sheet);
  marks.mark(id).fill = fill;
  marks.draw();
}

void checkPriority(const Workbook& workbook, const SheetRef& sheet, const std::string& id,
                   int priority) {
  if (priority < 1) throw SpreadsheetError(-50, "A priority is 1 or more");
  SheetMarks(workbook, sheet.sheet).mark(id);
}

void moveMark(const Workbook& workbook, const RangeRef& range, const std::string& id) {
  SheetMarks marks(workbook, range.sheet.sheet);
  marks.mark(id).areas = range.areas;
  marks.draw();
}

void eraseMark(const Workbook& workbook, const RangeRef& range, const std::string& id) {
  SheetMarks marks(workbook, range.sheet.sheet);
  std::vector<Area>& areas = marks.mark(id).areas;
  for (const Area& hole : range.areas) areas = without(areas, hole);
  marks.draw();
}

}  // namespace quorin::host::calc
