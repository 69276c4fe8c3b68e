#include "host/calc/marks/SheetConditions.h"

#include <algorithm>
#include <random>
#include <utility>

#include "host/Address.h"
#include "host/calc/workbook/CalcRanges.h"
#include "kit/value/EventErrors.h"

namespace quorin::host::calc {
namespace {

std::vector<std::vector<Area>> drawnOf(const std::vector<PlacedMark>& placed) {
  std::vector<Mark> marks;
  for (const PlacedMark& each : placed) marks.push_back(each.mark);
  return drawnAreas(marks);
}

// Far apart for different sheets: when a sheet is moved, Calc renames shapes of equal names and
// records that for undo, and version 7.4 crashes on that undo once the shape is gone.
int firstNumber() {
  constexpr unsigned most = 1'000'000'000;
  return static_cast<int>(std::random_device{}() % most) + 1;
}

}  // namespace

SheetConditions::SheetConditions(QuietChanges& changes, const Owner& owner,
                                 const Workbook& workbook, const std::string& sheet,
                                 const CallLimits& limits)
    : changes_(changes),
      owner_(owner),
      workbook_(workbook),
      name_(sheet),
      sheet_(sheetOf(workbook, sheet)),
      page_(drawPageOf(sheet_)),
      marks_(readMarks(page_, limits)) {}

bool SheetConditions::isFor(const Mark& mark, const std::vector<Area>& range) const {
  return touch(mark.areas, range) ||
         (mark.asked && mark.asked->sheet == place() && touch(mark.asked->areas, range));
}

std::vector<FormatCondition> SheetConditions::touching(const std::vector<Area>& range,
                                                       const CallLimits& limits) {
  if (!rules_) rules_.emplace(workbook_, sheet_, limits);
  std::vector<FormatCondition> found = rules_->touching(range, limits);
  int priority = rules_->count();
  for (const PlacedMark& placed : marks_) {
    ++priority;
    const Mark& mark = placed.mark;
    if (!isFor(mark, range)) continue;
    found.push_back({.id = markId(placed.number),
                     .formula = mark.formula,
                     .areas = mark.areas,
                     .priority = priority,
                     .fill = mark.fill});
  }
  return found;
}

std::size_t SheetConditions::placeOf(const std::string& id) const {
  const auto number = parseMarkId(id);
  const auto found = std::find_if(marks_.begin(), marks_.end(),
                                  [&](const PlacedMark& each) { return each.number == number; });
  if (found != marks_.end()) return static_cast<std::size_t>(found - marks_.begin());
  if (isUserRule(id)) throw SpreadsheetError(eventErrors::notModifiable, "The rule is the user's");
  throw SpreadsheetError(eventErrors::noSuchObject, "There is no such condition: " + id);
}

template <typename Edit>
void SheetConditions::change(const std::string& id, Edit edit) {
  const std::size_t place = placeOf(id);
  std::vector<PlacedMark> wanted = marks_;
  edit(wanted[place].mark);
  wanted[place].mark.owner = owner_.text();
  draw(std::move(wanted));
}

std::string SheetConditions::add(const std::vector<Area>& range, const std::string& formula) {
  if (formula != markFormula)
    throw SpreadsheetError(eventErrors::notUnderstood,
                           "Only marks can be made, with the formula " + std::string(markFormula));
  if (range.empty()) throw SpreadsheetError(eventErrors::badParameter, "The range has no cells");
  const int number = marks_.empty() ? firstNumber() : marks_.back().number + 1;
  std::vector<PlacedMark> wanted = marks_;
  wanted.push_back(
      {{number, {formula, std::nullopt, range, AskedPlace{place(), range}, owner_.text()}}, {}});
  draw(std::move(wanted));
  return markId(number);
}

void SheetConditions::setFill(const std::string& id, const std::optional<Color>& fill) {
  change(id, [&](Mark& mark) { mark.fill = fill; });
}

void SheetConditions::setPriority(const std::string& id, int priority) const {
  if (priority < 1) throw SpreadsheetError(eventErrors::badParameter, "A priority is 1 or more");
  placeOf(id);
}

void SheetConditions::setRange(const std::vector<Area>& range, const std::string& id) {
  change(id, [&](Mark& mark) {
    mark.areas = range;
    mark.asked = {place(), range};
  });
}

void SheetConditions::erase(const std::vector<Area>& range, const std::string& id) {
  change(id, [&](Mark& mark) {
    const bool asked = mark.asked && mark.asked->sheet == place();
    for (const Area& hole : range) {
      mark.areas = without(mark.areas, hole);
      if (asked) mark.asked->areas = without(mark.asked->areas, hole);
    }
    if (asked && mark.asked->areas.empty()) mark.areas.clear();
  });
}

void SheetConditions::removeUnreachable() {
  std::vector<PlacedMark> wanted = marks_;
  for (PlacedMark& each : wanted) {
    if (each.mark.asked && each.mark.asked->sheet != place()) each.mark.areas.clear();
  }
  draw(std::move(wanted));
}

void SheetConditions::removeMarks() {
  std::vector<PlacedMark> wanted = marks_;
  for (PlacedMark& each : wanted) each.mark.areas.clear();
  draw(std::move(wanted));
}

void SheetConditions::redraw() {
  changing_ = true;
  const auto drawn = drawnOf(marks_);
  for (std::size_t i = 0; i < marks_.size(); ++i) redraw(marks_[i], drawn[i]);
  changing_ = false;
}

// Each step is a change of its own, so that undo and the modified flag stay as they are, and leaves
// marks that say truly which cells they colour.
void SheetConditions::draw(std::vector<PlacedMark> wanted) {
  changing_ = true;
  const auto drawnBefore = drawnOf(marks_), drawn = drawnOf(wanted);
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    if (wanted[i].mark.areas.empty()) {
      changes_.remove(workbook_, page_, wanted[i].shape);
    } else if (!wanted[i].shape.is()) {
      put(wanted[i], drawn[i]);
    } else if (wanted[i].mark != marks_[i].mark || drawn[i] != drawnBefore[i]) {
      redraw(wanted[i], drawn[i]);
    }
  }
  std::erase_if(wanted, [](const PlacedMark& each) { return each.mark.areas.empty(); });
  marks_ = std::move(wanted);
  changing_ = false;
}

void SheetConditions::put(PlacedMark& mark, const std::vector<Area>& drawn) {
  mark.shape = makeMarkShape(workbook_.model, mark, outlinesOf(sheet_, drawn));
  changes_.add(workbook_, page_, mark.shape);
}

void SheetConditions::redraw(PlacedMark& mark, const std::vector<Area>& drawn) {
  auto fresh = makeMarkShape(workbook_.model, mark, outlinesOf(sheet_, drawn));
  changes_.replace(workbook_, page_, mark.shape, fresh);
  mark.shape = std::move(fresh);
}

}  // namespace quorin::host::calc
