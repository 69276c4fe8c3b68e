#include "host/calc/CalcSpreadsheet.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "host/Address.h"
#include "host/calc/CalcActive.h"
#include "host/calc/OfficeCalls.h"
#include "host/calc/cells/AreaGrid.h"
#include "host/calc/cells/CalcCells.h"
#include "host/calc/cells/CalcLookup.h"
#include "host/calc/cells/CalcRows.h"
#include "host/calc/cells/CalcTexts.h"
#include "host/calc/office/AskedNetwork.h"
#include "host/calc/workbook/CalcRanges.h"
#include "host/calc/workbook/CalcView.h"
#include "kit/value/EventErrors.h"
#include "kit/value/Unicode.h"

namespace quorin::host::calc {
namespace {

// "no longer told apart, stays visible: rows 12-12 sheet=Data"
std::string visibleText(const CalcSession::VisibleRow& visible) {
  const auto& [sheet, axis, position] = visible.row;
  const std::string number = std::to_string(position);
  return std::string(visible.why) +
         ", stays visible: " + (axis == Axis::rows ? "rows " : "columns ") + number + "-" + number +
         " sheet=" + sheet.sheet;
}

// Going anywhere in the user's workbooks puts those that are ours behind them.
CalcNavigation navigation(CalcSession& office) {
  office.scratch().deactivate();
  return CalcNavigation(office.workbooks());
}

}  // namespace

CalcSpreadsheet::CalcSpreadsheet(std::shared_ptr<OfficeSource> source, CalcOptions options)
    : traces_(std::move(options.traces)),
      notice_(std::move(options.notice)),
      office_(std::make_unique<OfficeCalls>(std::move(source), options.patience, traces_, memory_,
                                            limits_)) {
  if (options.post) {
    office_->onKeeperLost(
        [this, post = std::move(options.post)] { post([this] { protectMarks(); }); });
  }
}

CalcSpreadsheet::~CalcSpreadsheet() = default;

void CalcSpreadsheet::quit() {
  office_->quit();
}

template <typename Work>
auto CalcSpreadsheet::call(Work work) {
  setRows();
  findings_.askedForMore();
  return office_->run([&](CalcSession& office) {
    const AskedNetwork network(office.connection().context(), limits_.terms().asked);
    return work(office);
  });
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

void CalcSpreadsheet::openWorkbook(const std::string& path) {
  change([&](CalcSession& office) { office.openWorkbook(path); });
}

void CalcSpreadsheet::protectMarks() {
  if (CalcSession* const office = office_->livingSession()) office->protectMarks();
}

void CalcSpreadsheet::handlerBegins(const CallTerms& terms) {
  limits_.begin(terms);
  inHandler_ = true;
  findings_.begin();
  memory_.begin();
  office_->keepReadings(true);
}

void CalcSpreadsheet::handlerEnds() {
  limits_.end();
  std::exception_ptr failure;
  try {
    setRows();
  } catch (const SpreadsheetError&) {
    failure = std::current_exception();
  }
  constexpr std::chrono::seconds most{2};  // what is not done by then is done with later calls
  limits_.waitUntil(std::chrono::steady_clock::now() + most);
  takeBackUnreachable();
  if (CalcSession* const office = office_->session()) {
    office->scratch().closeAll();
    office->hideLeftRows();
  }
  inHandler_ = false;
  memory_.end();
  office_->keepReadings(false);
  limits_.end();
  flushTraces();
  if (failure) std::rethrow_exception(failure);
}

void CalcSpreadsheet::eventBegins(std::chrono::steady_clock::time_point until) {
  limits_.waitUntil(until);
}

// What failed is tried again, but not with every handler.
void CalcSpreadsheet::takeBackUnreachable() {
  using Unreachable = CalcSession::Unreachable;
  constexpr std::chrono::seconds pause{1};
  const auto now = std::chrono::steady_clock::now();
  const bool again = takeBackAgain_ && now >= *takeBackAgain_;
  CalcSession* const office = office_->session();
  if (!office || !(again || findings_.missed() || findings_.tookMarks())) return;
  const bool all = takeBackAgain_ || findings_.missed();
  const bool done = office->takeBack(all ? Unreachable::all : Unreachable::marks);
  takeBackAgain_ = done ? std::nullopt : std::optional(now + pause);
}

void CalcSpreadsheet::flushTraces() {
  if (const std::string failure = traces_.flush(); !failure.empty() && notice_) notice_(failure);
}

bool CalcSpreadsheet::isRunning() {
  return office_->isRunning();
}

std::string CalcSpreadsheet::version() {
  return call([](CalcSession& office) { return office.version(); });
}

bool CalcSpreadsheet::isFrontmost() {
  return call([](CalcSession& office) { return calc::isFrontmost(office); });
}

void CalcSpreadsheet::activate() {
  change([](CalcSession& office) {
    if (const auto window = office.workbooks().active()) bringToFront(*window);
  });
}

// These two do not end what setHidden() has put off: a handler asks for names with each row.
std::vector<std::string> CalcSpreadsheet::workbooks() {
  const HandlerFindings::NamesAsked note(findings_);
  return memory_.workbooks(
      [this] { return office_->run([](CalcSession& office) { return office.workbookNames(); }); });
}

std::vector<std::string> CalcSpreadsheet::worksheets(const std::string& book) {
  const HandlerFindings::NamesAsked note(findings_);
  return office_->run([&](CalcSession& office) { return office.worksheets(book); });
}

std::optional<Bounds> CalcSpreadsheet::windowBounds(int index) {
  return call([&](CalcSession& office) { return calc::windowBounds(office, index); });
}

std::optional<std::string> CalcSpreadsheet::activeWorkbook() {
  return memory_.activeWorkbook(
      [this] { return call([](CalcSession& office) { return calc::activeWorkbook(office); }); });
}

std::optional<SheetRef> CalcSpreadsheet::activeSheet() {
  return memory_.activeSheet(
      [this] { return call([](CalcSession& office) { return calc::activeSheet(office); }); });
}

std::optional<RangeRef> CalcSpreadsheet::activeCell() {
  return call([](CalcSession& office) { return calc::activeCell(office); });
}

std::optional<RangeRef> CalcSpreadsheet::selection() {
  return call([](CalcSession& office) { return calc::selection(office); });
}

SheetRef CalcSpreadsheet::activeSheetOf(const std::string& book) {
  return call([&](CalcSession& office) { return calc::activeSheetOf(office, book); });
}

void CalcSpreadsheet::goTo(const RangeRef& range) {
  change([&](CalcSession& office) { navigation(office).select(range); });
}

void CalcSpreadsheet::select(const RangeRef& range) {
  goTo(range);  // Calc scrolls either way
}

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
  return call([&](CalcSession& office) {
    return findNamed(office.workbook(from.book), from.sheet, name, limits_);
  });
}

std::optional<RangeRef> CalcSpreadsheet::currentRegion(const RangeRef& range) {
  limits_.check();
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
    return findDependents(office.workbook(range.sheet.book), range, levels, limits_);
  });
}

Grid<CellValue> CalcSpreadsheet::values(const RangeRef& range) {
  if (auto known = memory_.values(range)) return *std::move(known);
  // Who reads a range often looks at its first column before.
  const auto first = memory_.takeFirstColumn(range);
  RangeRef rest = range;
  if (first) ++rest.areas.front().firstColumn;
  Grid<CellValue> values = call([&](CalcSession& office) {
    return readValues(office.workbook(range.sheet.book), rest, limits_);
  });
  if (first) values = withFirstColumn(*std::move(first), std::move(values));
  memory_.noteErrors(range, values);
  if (values.columns == 1) memory_.keepValues(range, values);
  return values;
}

Grid<CellValue> CalcSpreadsheet::formulas(const RangeRef& range, ReferenceStyle style) {
  return call([&](CalcSession& office) {
    // A chain that was given up is found by what stands in it, and closed.
    if (auto* scratch = office.scratch().find(range.sheet.book))
      return scratch->formulas(range, CallLimits());
    CellContents read = readContents(office.workbook(range.sheet.book), range, style, limits_);
    memory_.noteErrors(range, read.values);
    memory_.keepValues(range, std::move(read.values));
    return std::move(read.formulas);
  });
}

Grid<CellValue> CalcSpreadsheet::localFormulas(const RangeRef& range) {
  return call([&](CalcSession& office) {
    return readLocalFormulas(office.workbook(range.sheet.book), range, limits_);
  });
}

Grid<std::string> CalcSpreadsheet::displayedTexts(const RangeRef& range) {
  if (auto known = memory_.takeTexts(range)) return *std::move(known);
  const RangeRef asked = memory_.textsAskedNext(range);
  Grid<std::string> texts = call([&](CalcSession& office) {
    const bool areKnown = memory_.knowsErrors(asked);
    const Errors errors = areKnown || memory_.hasNoErrors(asked) ? Errors::none : Errors::possible;
    const Texts length = memory_.hasShortTexts(asked) ? Texts::shortOnes : Texts::anyLength;
    Grid<std::string> read =
        readTexts(office.workbook(range.sheet.book), asked, errors, length, limits_);
    if (areKnown) memory_.nameErrors(asked, read);
    return read;
  });
  if (asked == range) return texts;
  Grid<std::string> part = partOf(texts, asked.areas.front(), range.areas.front());
  memory_.keepTexts(asked, std::move(texts));
  return part;
}

Evaluation CalcSpreadsheet::evaluate(const std::string& expression, const SheetRef& from) {
  return call([&](CalcSession& office) {
    return office.evaluator().evaluate(office.workbooks(), expression, from, limits_);
  });
}

std::optional<RangeRef> CalcSpreadsheet::visibleRange() {
  return call([](CalcSession& office) { return calc::visibleRange(office); });
}

std::vector<DefinedName> CalcSpreadsheet::definedNames(const std::string& book) {
  return memory_.definedNames(book, [&] {
    return call(
        [&](CalcSession& office) { return office.names().of(office.workbook(book), limits_); });
  });
}

std::optional<bool> CalcSpreadsheet::hidden(const RangeRef& range, Axis axis) {
  return call([&](CalcSession& office) {
    return areHidden(office.workbook(range.sheet.book), range, axis, limits_);
  });
}

// A handler sets row after row, and a change of one costs the office as much as one of many.
void CalcSpreadsheet::setHidden(const RangeRef& range, Axis axis, bool hide) {
  constexpr int mostAtATime = 1000;
  memory_.forget();
  findings_.askedForMore();
  const SheetRef sheet = office_->run([&](CalcSession& office) {
    office.workbooks().forgetActive();
    const auto names = office.worksheets(range.sheet.book);
    const auto its = std::find_if(names.begin(), names.end(), [&](const std::string& name) {
      return caselesslyEqual(name, range.sheet.sheet);
    });
    if (its == names.end()) throw noSuchSheet(range.sheet.sheet);
    return SheetRef{range.sheet.book, *its};
  });
  for (const Area& area : range.areas) {
    if (countOn(area, axis) > mostAtATime)
      throw SpreadsheetError(eventErrors::handlerFailed,
                             "No more than 1000 rows or columns at a time");
    for (int number = firstOn(area, axis); number <= lastOn(area, axis); ++number)
      rowRequests_.push_back({{sheet, axis, number}, hide});
  }
  if (!inHandler_) setRows();
}

// Does what setHidden() has put off.
void CalcSpreadsheet::setRows() {
  if (rowRequests_.empty()) return;
  const auto requests = std::exchange(rowRequests_, {});
  office_->run([&](CalcSession& office) {
    for (const CalcSession::VisibleRow& each : office.setHidden(requests))
      if (notice_) notice_(visibleText(each));
  });
}

std::optional<RangeRef> CalcSpreadsheet::visibleCells(const RangeRef& range) {
  return call([&](CalcSession& office) {
    return findVisibleCells(office.workbook(range.sheet.book), range, limits_);
  });
}

template <typename Work>
auto CalcSpreadsheet::withConditions(const SheetRef& sheet, bool adding, Work work) {
  return call([&](CalcSession& office) { return office.withConditions(sheet, adding, work); });
}

std::vector<FormatCondition> CalcSpreadsheet::formatConditions(const RangeRef& range) {
  const std::vector<FormatCondition> found =
      withConditions(range.sheet, false,
                     [&](SheetConditions& sheet) { return sheet.touching(range.areas, limits_); });
  findings_.lookedForMarks(std::any_of(found.begin(), found.end(), [](const FormatCondition& each) {
    return each.formula == markFormula;
  }));
  return found;
}

std::string CalcSpreadsheet::addFormatCondition(const RangeRef& range, const std::string& formula) {
  findings_.madeMark();
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
    office.scratch().named(cell.sheet.book).setFormula(office.workbooks(), cell, formula, limits_);
  });
}

void CalcSpreadsheet::closeWorkbook(const std::string& book) {
  change([&](CalcSession& office) {
    office.workbook(book);
    office.scratch().close(book);
  });
}

}  // namespace quorin::host::calc
