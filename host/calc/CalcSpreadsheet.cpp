#include "host/calc/CalcSpreadsheet.h"

#include <algorithm>
#include <com/sun/star/lang/DisposedException.hpp>
#include <iterator>

#include "host/calc/CalcCells.h"
#include "host/calc/CalcLines.h"
#include "host/calc/CalcLookup.h"
#include "host/calc/CalcNames.h"
#include "host/calc/CalcRanges.h"
#include "host/calc/CalcSession.h"
#include "host/calc/CalcTexts.h"
#include "host/calc/CalcView.h"
#include "host/calc/Text.h"

namespace quorin::host::calc {
namespace {

// "rows 12-14 sheet=Data"
std::string lostText(const RangeRef& range, const Area& lost, Lines lines) {
  const bool rows = lines == Lines::rows;
  const int first = rows ? lost.firstRow : lost.firstColumn;
  const int last = rows ? lost.lastRow : lost.lastColumn;
  return (rows ? "rows " : "columns ") + std::to_string(first) + "-" + std::to_string(last) +
         " sheet=" + range.sheet.sheet;
}

RangeRef firstCellOf(const ScratchWorkbook& scratch) {
  return {{scratch.name(), ScratchWorkbook::onlySheet}, {Area{}}};
}

// Going anywhere in the user's workbooks puts those that are ours behind them.
CalcNavigation navigation(CalcSession& office) {
  office.scratch().deactivate();
  return CalcNavigation(office.workbooks());
}

Grid<CellValue> withFirstColumn(Grid<CellValue> first, Grid<CellValue> rest) {
  Grid<CellValue> all{rest.rows, rest.columns + 1, {}};
  all.cells.reserve(first.cells.size() + rest.cells.size());
  auto next = rest.cells.begin();
  for (CellValue& cell : first.cells) {
    all.cells.push_back(std::move(cell));
    std::move(next, next + rest.columns, std::back_inserter(all.cells));
    next += rest.columns;
  }
  return all;
}

}  // namespace

CalcSpreadsheet::CalcSpreadsheet(std::shared_ptr<OfficeSource> source,
                                 std::chrono::milliseconds patience)
    : source_(std::move(source)), patience_(patience) {}

CalcSpreadsheet::~CalcSpreadsheet() {
  dropSession();
}

void CalcSpreadsheet::quit() {
  quitting_ = true;
  source_->interrupt();
  const std::lock_guard lock(mutex_);
  if (session_) session_->interrupt();
}

CalcSession& CalcSpreadsheet::session() {
  if (quitting_) throw SpreadsheetError(-600, "Quorin is quitting");
  if (session_ && session_->connection().isAlive()) return *session_;
  dropSession();
  auto fresh = std::make_unique<CalcSession>(source_->open(), patience_, keeperLost_, &traces_);
  fresh->keepReadings(inHandler_);
  const std::lock_guard lock(mutex_);
  session_ = std::move(fresh);
  return *session_;
}

void CalcSpreadsheet::dropSession() {
  std::unique_ptr<CalcSession> old;
  const std::lock_guard lock(mutex_);
  old.swap(session_);
  old.reset();
}

// Runs the work, once more when it met a document that was closed meanwhile.
template <typename Work>
auto CalcSpreadsheet::call(Work work) {
  asked_ = Asked::more;
  for (bool again = true;; again = false) {
    CalcSession& office = session();
    try {
      return work(office);
    } catch (const css::lang::DisposedException&) {
      endIfDead();
      office.workbooks().forget();
      memory_.forget();
      if (!again) throw SpreadsheetError(-1728, "The workbook was closed");
    } catch (const css::uno::RuntimeException& failure) {
      endIfDead();
      office.workbooks().forget();
      memory_.forget();
      throw SpreadsheetError(-10000, "LibreOffice refused: " + toText(failure.Message));
    } catch (const css::uno::Exception& failure) {
      throw SpreadsheetError(-10000, "LibreOffice refused: " + toText(failure.Message));
    }
  }
}

// What changes something makes all that was read old.
template <typename Work>
auto CalcSpreadsheet::change(Work work) {
  memory_.forget();
  return call([&](CalcSession& office) {
    office.workbooks().forgetActive();
    return work(office);
  });
}

void CalcSpreadsheet::endIfDead() {
  if (session_->answers()) return;
  dropSession();
  if (quitting_) throw SpreadsheetError(-600, "Quorin is quitting");
  throw SpreadsheetError(-609, "LibreOffice ended during the call");
}

void CalcSpreadsheet::openWorkbook(const std::string& path) {
  change([&](CalcSession& office) { office.openWorkbook(path); });
}

void CalcSpreadsheet::protectMarks() {
  if (!quitting_ && session_ && session_->connection().isAlive()) session_->protectMarks();
}

void CalcSpreadsheet::handlerBegins() {
  inHandler_ = true;
  asked_ = Asked::nothing;
  marks_ = Marks::unasked;
  memory_.begin();
  if (session_) session_->keepReadings(true);
}

void CalcSpreadsheet::handlerEnds() {
  // A handler that asked for names and for nothing else has missed what it was looking for. So has
  // one that found no mark where it looked: another sheet may have the name now.
  const bool missed = asked_ == Asked::names || marks_ == Marks::missed;
  if (session_ && missed) session_->takeBackUnreachable();
  inHandler_ = false;
  memory_.end();
  if (session_) session_->keepReadings(false);
  flushTraces();
}

void CalcSpreadsheet::flushTraces() {
  if (const std::string failure = traces_.flush(); !failure.empty() && notice_) notice_(failure);
}

bool CalcSpreadsheet::isRunning() {
  return source_->isRunning();
}

std::string CalcSpreadsheet::version() {
  return call([](CalcSession& office) { return office.version(); });
}

bool CalcSpreadsheet::isFrontmost() {
  return call([](CalcSession& office) {
    for (const Window& window : office.workbooks().windows()) {
      if (calc::isFrontmost(window)) return true;
    }
    return false;
  });
}

void CalcSpreadsheet::activate() {
  change([](CalcSession& office) {
    if (const auto window = office.workbooks().active()) bringToFront(*window);
  });
}

// Notes that names were asked for, beside what else was.
class CalcSpreadsheet::NamesAsked {
 public:
  explicit NamesAsked(Asked& asked) : asked_(asked), before_(asked) {}
  ~NamesAsked() { asked_ = before_ == Asked::more ? Asked::more : Asked::names; }
  NamesAsked(const NamesAsked&) = delete;
  NamesAsked& operator=(const NamesAsked&) = delete;

 private:
  Asked& asked_;
  const Asked before_;
};

std::vector<std::string> CalcSpreadsheet::workbooks() {
  const NamesAsked note(asked_);
  return memory_.workbooks([this] {
    return call([](CalcSession& office) {
      std::vector<std::string> names = office.workbooks().names();
      for (std::string& name : office.scratch().names()) names.push_back(std::move(name));
      return names;
    });
  });
}

std::vector<std::string> CalcSpreadsheet::worksheets(const std::string& book) {
  const NamesAsked note(asked_);
  return call([&](CalcSession& office) {
    if (office.scratch().find(book) != nullptr) {
      return std::vector<std::string>{ScratchWorkbook::onlySheet};
    }
    return office.worksheets(book);
  });
}

std::optional<Bounds> CalcSpreadsheet::windowBounds(int index) {
  return call([&](CalcSession& office) -> std::optional<Bounds> {
    const auto active = office.workbooks().active();
    if (!active || index < 1) return std::nullopt;
    if (index == 1) return boundsOf(*active);
    int position = 1;
    for (const Window& window : office.workbooks().windows()) {
      if (window.frame != active->frame && ++position == index) return boundsOf(window);
    }
    return std::nullopt;
  });
}

std::optional<std::string> CalcSpreadsheet::activeWorkbook() {
  return memory_.activeWorkbook([this] {
    return call([](CalcSession& office) -> std::optional<std::string> {
      if (const auto* scratch = office.scratch().active()) return scratch->name();
      const auto window = office.workbooks().active();
      return !window ? std::nullopt : std::optional(window->workbook->name);
    });
  });
}

std::optional<SheetRef> CalcSpreadsheet::activeSheet() {
  return memory_.activeSheet([this] {
    return call([](CalcSession& office) -> std::optional<SheetRef> {
      if (const auto* scratch = office.scratch().active())
        return SheetRef{scratch->name(), ScratchWorkbook::onlySheet};
      const auto window = office.workbooks().active();
      return !window ? std::nullopt
                     : std::optional(calc::activeSheetOf(office.workbooks(), *window));
    });
  });
}

std::optional<RangeRef> CalcSpreadsheet::activeCell() {
  return call([](CalcSession& office) -> std::optional<RangeRef> {
    if (const auto* scratch = office.scratch().active()) return firstCellOf(*scratch);
    const auto window = office.workbooks().active();
    return !window ? std::nullopt : std::optional(activeCellOf(*window));
  });
}

std::optional<RangeRef> CalcSpreadsheet::selection() {
  return call([](CalcSession& office) -> std::optional<RangeRef> {
    if (const auto* scratch = office.scratch().active()) return firstCellOf(*scratch);
    const auto window = office.workbooks().active();
    return !window ? std::nullopt : std::optional(selectionOf(*window));
  });
}

SheetRef CalcSpreadsheet::activeSheetOf(const std::string& book) {
  return call([&](CalcSession& office) {
    if (office.scratch().find(book) != nullptr) return SheetRef{book, ScratchWorkbook::onlySheet};
    return calc::activeSheetOf(office.workbooks(), office.workbooks().windowOf(book));
  });
}

void CalcSpreadsheet::goTo(const RangeRef& range) {
  change([&](CalcSession& office) { navigation(office).select(range); });
}

void CalcSpreadsheet::select(const RangeRef& range) {
  goTo(range);
}  // Calc scrolls either way

void CalcSpreadsheet::activateWorkbook(const std::string& book) {
  change([&](CalcSession& office) { navigation(office).activateWorkbook(book); });
}

void CalcSpreadsheet::activateSheet(const SheetRef& sheet) {
  change([&](CalcSession& office) { navigation(office).activateSheet(sheet); });
}

void CalcSpreadsheet::activateCell(const RangeRef& range) {
  change([&](CalcSession& office) { navigation(office).activateCell(range); });
}

void CalcSpreadsheet::scrollTo(const RangeRef& range) {
  change([&](CalcSession& office) { navigation(office).scrollTo(range); });
}

std::optional<RangeRef> CalcSpreadsheet::named(const SheetRef& from, const std::string& name) {
  return call(
      [&](CalcSession& office) { return findNamed(office.workbook(from.book), from.sheet, name); });
}

std::optional<RangeRef> CalcSpreadsheet::currentRegion(const RangeRef& range) {
  return call([&](CalcSession& office) {
    return findCurrentRegion(office.workbook(range.sheet.book), range);
  });
}

std::optional<RangeRef> CalcSpreadsheet::usedRange(const SheetRef& sheet) {
  return call(
      [&](CalcSession& office) { return findUsedRange(office.workbook(sheet.book), sheet.sheet); });
}

std::optional<RangeRef> CalcSpreadsheet::dependents(const RangeRef& range, DependentLevels levels) {
  return call([&](CalcSession& office) {
    return findDependents(office.workbook(range.sheet.book), range, levels);
  });
}

Grid<CellValue> CalcSpreadsheet::values(const RangeRef& range) {
  if (auto known = memory_.values(range)) return *std::move(known);
  // Who reads a range often looks at its first column before.
  const auto first = memory_.takeFirstColumn(range);
  RangeRef rest = range;
  if (first) ++rest.areas.front().firstColumn;
  Grid<CellValue> values = call(
      [&](CalcSession& office) { return readValues(office.workbook(range.sheet.book), rest); });
  if (first) values = withFirstColumn(*std::move(first), std::move(values));
  memory_.noteErrors(range, values);
  if (values.columns == 1) memory_.keepValues(range, values);
  return values;
}

Grid<CellValue> CalcSpreadsheet::formulas(const RangeRef& range, ReferenceStyle style) {
  return call([&](CalcSession& office) {
    if (auto* scratch = office.scratch().find(range.sheet.book)) return scratch->formulas(range);
    Workbook& workbook = office.workbook(range.sheet.book);
    Grid<CellValue> values = readValues(workbook, range);
    Grid<CellValue> formulas = readFormulas(workbook, range, style, values);
    memory_.noteErrors(range, values);
    memory_.keepValues(range, std::move(values));
    return formulas;
  });
}

Grid<CellValue> CalcSpreadsheet::localFormulas(const RangeRef& range) {
  return call([&](CalcSession& office) {
    return readLocalFormulas(office.workbook(range.sheet.book), range);
  });
}

Grid<std::string> CalcSpreadsheet::displayedTexts(const RangeRef& range) {
  const Errors errors = memory_.hasNoErrors(range) ? Errors::none : Errors::possible;
  return call([&](CalcSession& office) {
    return readTexts(office.workbook(range.sheet.book), range, errors);
  });
}

Evaluation CalcSpreadsheet::evaluate(const std::string& expression, const SheetRef& from) {
  return call([&](CalcSession& office) {
    return office.evaluator().evaluate(office.workbooks(), expression, from);
  });
}

std::optional<RangeRef> CalcSpreadsheet::visibleRange() {
  return call([](CalcSession& office) -> std::optional<RangeRef> {
    const auto window = office.workbooks().active();
    return !window ? std::nullopt : std::optional(visibleRangeOf(office.workbooks(), *window));
  });
}

std::vector<DefinedName> CalcSpreadsheet::definedNames(const std::string& book) {
  return memory_.definedNames(book, [&] {
    return call([&](CalcSession& office) { return listNames(office.workbook(book)); });
  });
}

std::optional<bool> CalcSpreadsheet::hidden(const RangeRef& range, Lines lines) {
  return call([&](CalcSession& office) {
    return areHidden(office.workbook(range.sheet.book), range, lines);
  });
}

void CalcSpreadsheet::setHidden(const RangeRef& range, Lines lines, bool hide) {
  change([&](CalcSession& office) {
    for (const Area& lost : office.setHidden(range, lines, hide)) {
      if (notice_) notice_("no longer told apart, stays visible: " + lostText(range, lost, lines));
    }
  });
  if (!inHandler_) flushTraces();
}

std::optional<RangeRef> CalcSpreadsheet::visibleCells(const RangeRef& range) {
  return call([&](CalcSession& office) {
    return findVisibleCells(office.workbook(range.sheet.book), range);
  });
}

// The conditions of one sheet, handed back however the work ends.
template <typename Work>
auto CalcSpreadsheet::withConditions(const SheetRef& sheet, bool adding, Work work) {
  return call([&](CalcSession& office) {
    const struct Release {
      CalcSession& office;
      ~Release() { office.releaseConditions(); }
    } release{office};
    return work(office.conditions(sheet, adding));
  });
}

std::vector<FormatCondition> CalcSpreadsheet::formatConditions(const RangeRef& range) {
  const std::vector<FormatCondition> found = withConditions(
      range.sheet, false, [&](SheetConditions& sheet) { return sheet.touching(range.areas); });
  const bool met = std::any_of(found.begin(), found.end(), [](const FormatCondition& each) {
    return each.formula == markFormula;
  });
  if (met || marks_ == Marks::unasked) marks_ = met ? Marks::metOrMade : Marks::missed;
  return found;
}

std::string CalcSpreadsheet::addFormatCondition(const RangeRef& range, const std::string& formula) {
  marks_ = Marks::metOrMade;
  return withConditions(range.sheet, true,
                        [&](SheetConditions& sheet) { return sheet.add(range.areas, formula); });
}

void CalcSpreadsheet::setConditionFill(const SheetRef& sheet, const std::string& id,
                                       const std::optional<Color>& fill) {
  withConditions(sheet, false, [&](SheetConditions& its) { its.setFill(id, fill); });
}

void CalcSpreadsheet::setConditionPriority(const SheetRef& sheet, const std::string& id,
                                           int priority) {
  withConditions(sheet, false, [&](SheetConditions& its) { its.setPriority(id, priority); });
}

void CalcSpreadsheet::setConditionRange(const RangeRef& range, const std::string& id) {
  withConditions(range.sheet, true,
                 [&](SheetConditions& sheet) { sheet.setRange(range.areas, id); });
}

void CalcSpreadsheet::deleteCondition(const RangeRef& range, const std::string& id) {
  withConditions(range.sheet, false, [&](SheetConditions& sheet) { sheet.erase(range.areas, id); });
}

std::string CalcSpreadsheet::makeWorkbook() {
  return change([](CalcSession& office) { return office.scratch().make(); });
}

void CalcSpreadsheet::setFormula(const RangeRef& cell, const std::string& formula) {
  change([&](CalcSession& office) {
    office.scratch().named(cell.sheet.book).setFormula(office.workbooks(), cell, formula);
  });
}

void CalcSpreadsheet::closeWorkbook(const std::string& book) {
  change([&](CalcSession& office) {
    office.workbook(book);
    office.scratch().close(book);
  });
}

}  // namespace quorin::host::calc
