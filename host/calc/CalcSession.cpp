#include "host/calc/CalcSession.h"

#include <algorithm>
#include <com/sun/star/container/XNameAccess.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/frame/XFrames.hpp>
#include <set>
#include <utility>

#include "host/Address.h"
#include "host/Spreadsheet.h"
#include "host/calc/office/OfficeConfiguration.h"
#include "host/calc/office/OpeningWorkbooks.h"
#include "host/calc/uno/Arguments.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"
#include "host/calc/workbook/CalcView.h"
#include "kit/value/EventErrors.h"

namespace quorin::host::calc {
namespace {

constexpr const char* opened = "made visible by the user";

Area areaOf(Axis axis, int number) {
  return axis == Axis::rows ? Area{number, 1, number, maxColumn} : Area{1, number, maxRow, number};
}

}  // namespace

using css::uno::Any;
using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

CalcSession::CalcSession(const OfficeAddress& office, std::chrono::milliseconds patience,
                         std::function<void()> keeperLost, RowTraces* traces,
                         const CallLimits* limits)
    : connection_(office, patience),
      desktop_(css::frame::Desktop::create(connection_.context())),
      workbooks_(desktop_, connection_.context()),
      evaluator_(connection_.context()),
      names_(connection_.context()),
      scratch_(connection_.context(), workbooks_),
      changes_(connection_.context()),
      shown_(connection_.context(), owner_),
      traces_(traces),
      limits_(limits != nullptr ? *limits : noLimits_),
      keeper_(office, owner_, std::move(keeperLost)) {}

Workbook& CalcSession::workbook(const std::string& book) {
  if (ScratchWorkbook* const scratch = scratch_.find(book)) return scratch->workbook();
  asked_ = workbooks_.named(book);
  return *asked_;
}

std::vector<std::string> CalcSession::workbookNames() {
  std::vector<std::string> names = workbooks_.names();
  for (std::string& name : scratch_.names()) names.push_back(std::move(name));
  return names;
}

std::vector<std::string> CalcSession::worksheets(const std::string& book) {
  if (scratch_.find(book) != nullptr) return {ScratchWorkbook::onlySheet};
  return workbooks_.sheets(workbook(book));
}

SheetConditions& CalcSession::conditions(const SheetRef& sheet, bool adding) {
  Workbook& book = workbook(sheet.book);
  // With a turn that lasts, what was read in it is still true, and it is the same workbook's.
  const bool kept = keeping_ && turn_ && conditions_ && conditions_->isTrue() &&
                    conditions_->workbook().model == book.model &&
                    conditions_->sheet() == sheet.sheet;
  if (kept) return *conditions_;
  takeTurn(book, adding);
  if (conditions_) earlier_.push_back(std::move(conditions_));
  conditions_ = std::make_unique<SheetConditions>(changes_, owner_, book, sheet.sheet, limits_);
  return *conditions_;
}

void CalcSession::takeTurn(const Workbook& workbook, bool adding) {
  const std::string uid = uidOf(workbook);
  if (turn_ && turnWorkbook_ == uid) return;
  endTurn();
  turnWorkbook_ = uid;
  try {
    turn_.emplace(keeper_, turnWorkbook_);
  } catch (const SpreadsheetError& failure) {
    // Marks that are there can still be read and taken away.
    if (adding || failure.number() != eventErrors::handlerFailed) throw;
  }
}

// Drops the conditions after it: the keeper gets hold of their shapes while they are held here.
void CalcSession::endTurn() {
  turn_.reset();
  earlier_.clear();
  conditions_.reset();
}

void CalcSession::releaseConditions() {
  if (!keeping_) endTurn();
}

bool CalcSession::takeBack(Unreachable what) {
  bool done = true;
  // One workbook that fails must not keep the others from it.
  const auto attempt = [&done](const auto& work) {
    try {
      work();
    } catch (const SpreadsheetError&) {
      done = false;
    } catch (const css::uno::Exception&) {
      done = false;
    }
  };
  std::vector<std::string> books;
  attempt([&] { books = workbooks_.names(); });
  for (const std::string& book : books) {
    attempt([&] { removeUnreachableMarks(book); });
    if (what == Unreachable::all) attempt([&] { hideUnreachableRows(book); });
  }
  releaseConditions();
  return done;
}

// None on a sheet that the office has made without a place for them.
std::vector<PlacedMark> CalcSession::marksOn(const SheetRef& sheet) {
  const auto page = drawPageIfAny(sheetOf(workbook(sheet.book), sheet.sheet));
  return page.is() ? readMarks(page, limits_) : std::vector<PlacedMark>();
}

void CalcSession::removeUnreachableMarks(const std::string& book) {
  for (const std::string& sheet : namedSheets(workbook(book))) {
    const SheetRef place{book, sheet};
    const auto marks = marksOn({book, sheet});
    const bool some = std::any_of(marks.begin(), marks.end(), [&](const PlacedMark& each) {
      return each.mark.asked && each.mark.asked->sheet != place;
    });
    if (some) conditions(place).removeUnreachable();
  }
}

void CalcSession::protectMarks() {
  try {
    for (const std::string& book : workbooks_.names()) {
      try {
        protectMarks(book);
      } catch (const SpreadsheetError& failure) {
        if (failure.number() != eventErrors::handlerFailed) throw;
        takeBackUnprotected(book);
      }
    }
  } catch (const SpreadsheetError&) {
  } catch (const css::uno::Exception&) {
  }
  releaseConditions();
}

void CalcSession::protectMarks(const std::string& book) {
  for (const std::string& sheet : namedSheets(workbook(book))) {
    const auto marks = marksOn({book, sheet});
    if (!marks.empty()) conditions({book, sheet}, true);
  }
  if (!shown_.entries(workbook(book)).empty()) takeTurn(workbook(book), true);
}

// The records that are left ask for it again: then there is nothing to do any more.
void CalcSession::takeBackUnprotected(const std::string& book) {
  for (const std::string& sheet : namedSheets(workbook(book))) {
    const auto marks = marksOn({book, sheet});
    if (!marks.empty()) conditions({book, sheet}).removeMarks();
  }
  const auto entries = shown_.entries(workbook(book));
  hideShownRows(changes_, workbook(book), entries, entries);
  shown_.set(entries, ShownRows::State::over);
  tidyNotes(changes_, workbook(book), shown_);
}

void CalcSession::hideLeftRows() {
  if (!std::exchange(rowsLeft_, false)) return;
  try {
    for (const std::string& book : workbooks_.names()) hideUnreachableRows(book);
  } catch (const SpreadsheetError&) {
    rowsLeft_ = true;
  } catch (const css::uno::Exception&) {
    rowsLeft_ = true;
  }
  releaseConditions();
}

// But for those that the user is looking at. What is on a sheet that was removed is left until the
// sheet comes back, or we end.
void CalcSession::hideUnreachableRows(const std::string& book) {
  const auto window = workbooks_.active();
  const RangeRef cell = window ? activeCellOf(*window) : RangeRef();
  const Workbook itself = workbook(book);
  const auto entries = shown_.entries(itself);
  ShownRows::Entries due;
  for (const ShownRows::Entry& each : entries) {
    if (!each.place && !each.isOver()) forgetTrace(each.asked);
    if (!each.place) continue;
    const SheetRef sheet{book, each.place->name};
    if (each.asked.sheet == sheet) continue;
    const bool isLookedAt =
        cell.sheet == sheet && touch(cell.areas, {areaOf(each.asked.axis, each.place->number)});
    rowsLeft_ = rowsLeft_ || isLookedAt;
    if (!isLookedAt) due.push_back(each);
  }
  if (due.empty()) return;
  takeTurn(itself, false);
  for (const HiddenRows& each : hideShownRows(changes_, itself, due, entries).rows)
    rowsChanged({book, each.name});
  shown_.forget(due);
  tidyNotes(changes_, itself, shown_);
  for (const ShownRows::Entry& each : due) forgetTrace(each.asked);
}

std::vector<CalcSession::VisibleRow> CalcSession::setHidden(
    const std::vector<RowRequest>& requests) {
  const struct Release {
    CalcSession& office;
    ~Release() {
      if (!office.keeping_) office.rows_.clear();
      office.releaseConditions();
    }
  } release{*this};
  std::vector<VisibleRow> visible;
  for (auto first = requests.begin(); first != requests.end();) {
    const AskedRow& row = first->row;
    const bool hides = first->hide;
    std::vector<int> numbers;
    auto end = first;
    for (; end != requests.end() && end->hide == hides && end->row.axis == row.axis &&
           end->row.sheet == row.sheet;
         ++end)
      numbers.push_back(end->row.number);
    if (hides) {
      hide(row.sheet, row.axis, numbers, visible);
    } else {
      show(row.sheet, row.axis, numbers);
    }
    first = end;
  }
  return visible;
}

// Those that are visible already are not ours to hide, though a handler may ask for that later.
void CalcSession::show(const SheetRef& sheet, Axis axis, const std::vector<int>& numbers) {
  const Workbook book = workbook(sheet.book);
  RowStates states(sheetOf(book, sheet.sheet), axis);
  try {
    takeTurn(book, true);
  } catch (const SpreadsheetError& failure) {
    // Somebody has recorded them all the same, and what the user shows is not to be hidden.
    if (failure.number() == eventErrors::handlerFailed)
      shown_.remember(book, sheet, axis, {}, states, {}, numbers);
    throw;
  }
  ShownRows::Entries outdated;
  std::set<int> known;
  std::vector<int> shown;
  const std::set<int> asked(numbers.begin(), numbers.end());
  for (const ShownRows::Entry& each : shown_.entries(book)) {
    if (each.place && !each.isOver() && each.asked.axis == axis && each.place->name == sheet.sheet)
      shown.push_back(each.place->number);
    if (each.asked.axis != axis || each.asked.sheet != sheet || !asked.contains(each.asked.number))
      continue;
    const bool isThere =
        each.place && each.place->name == sheet.sheet && each.place->number == each.asked.number;
    if (states.isHidden(each.asked.number) && (isThere || !each.place || each.isOver())) {
      outdated.push_back(each);
    } else {
      known.insert(each.asked.number);
    }
  }
  std::vector<int> hidden, visible;
  for (const int number : asked) {
    if (states.isHidden(number)) {
      hidden.push_back(number);
    } else if (keeping_ && !known.contains(number)) {
      visible.push_back(number);
    }
  }
  if (traces_) {
    for (const int number : hidden) {
      const Area area = areaOf(axis, number);
      traces_->remember(sheet, area, axis, rowsOf(sheet, axis).traceOf(area));
    }
  }
  shown_.forget(outdated);
  const std::string key = shown_.remember(book, sheet, axis, hidden, states, shown, visible);
  if (!hidden.empty()) addNote(changes_, book, drawPageOf(sheetOf(book, sheet.sheet)), key);
  states.setHidden(changes_, book, hidden, false);
  shown_.set(key, ShownRows::State::shown);
  rowsChanged(sheet);
}

void CalcSession::hide(const SheetRef& sheet, Axis axis, const std::vector<int>& numbers,
                       std::vector<VisibleRow>& visible) {
  const Workbook book = workbook(sheet.book);
  const auto sheetItself = sheetOf(book, sheet.sheet);
  takeTurn(book, false);
  const auto entries = shown_.entries(book);
  const std::set<int> asked(numbers.begin(), numbers.end());
  ShownRows::Entries known;
  std::set<int> remembered;
  const RowStates states(sheetItself, axis);
  const auto tell = [&](const ShownRows::Entry& entry) {
    const bool isTaken = entry.state == ShownRows::State::taken && entry.place &&
                         entry.place->name == sheet.sheet && !states.isHidden(entry.place->number);
    if (isTaken || entry.state == ShownRows::State::opened)
      visible.push_back({entry.asked, opened});
  };
  for (const ShownRows::Entry& each : entries) {
    if (each.asked.axis != axis || each.asked.sheet != sheet || !asked.contains(each.asked.number))
      continue;
    known.push_back(each);
    remembered.insert(each.asked.number);
    if (!each.isOver() && !each.place) visible.push_back({each.asked, "no longer told apart"});
    tell(each);
  }
  // In a workbook that was opened again since.
  for (const ShownRows::Entry& each : shown_.entriesElsewhere(book, sheet, axis)) {
    if (!asked.contains(each.asked.number) || remembered.contains(each.asked.number)) continue;
    known.push_back(each);
    tell(each);
  }
  for (const ShownRows::Entry& each : known) remembered.insert(each.asked.number);
  std::vector<int> byNumber;
  for (const int number : asked) {
    if (remembered.contains(number)) continue;
    if (const auto found = tracedRow({sheet, axis, number})) {
      byNumber.push_back(*found);
    } else {
      visible.push_back({{sheet, axis, number}, "no longer told apart"});
    }
  }
  const HiddenAgain again = hideShownRows(changes_, book, known, entries);
  for (const ShownRows::Entry& each : again.opened) visible.push_back({each.asked, opened});
  for (const HiddenRows& each : again.rows) rowsChanged({sheet.book, each.name});
  if (!byNumber.empty()) {
    RowStates(sheetItself, axis).setHidden(changes_, book, byNumber, true);
    rowsChanged(sheet);
  }
  shown_.forget(known);
  if (!known.empty()) tidyNotes(changes_, book, shown_);
  for (const int number : asked) forgetTrace({sheet, axis, number});
}

void CalcSession::forgetTrace(const AskedRow& row) {
  if (traces_) traces_->forget(row.sheet, areaOf(row.axis, row.number), row.axis);
}

// Where the row is in a workbook that was opened again since it was shown, told by what it holds;
// its own number where there is nothing to tell it by, and nothing when it is not to be found.
std::optional<int> CalcSession::tracedRow(const AskedRow& row) {
  const Area area = areaOf(row.axis, row.number);
  const AreaTrace* const trace = traces_ ? traces_->find(row.sheet, area, row.axis) : nullptr;
  if (!trace) return row.number;
  const auto found = rowsOf(row.sheet, row.axis).find(*trace, area);
  return found ? std::optional(firstOn(*found, row.axis)) : std::nullopt;
}

SheetRows& CalcSession::rowsOf(const SheetRef& sheet, Axis axis) {
  const std::tuple key{sheet.book, sheet.sheet, axis};
  const auto known = rows_.find(key);
  if (known != rows_.end()) return known->second;
  return rows_.try_emplace(key, workbook(sheet.book), sheet.sheet, axis).first->second;
}

void CalcSession::interrupt() {
  keeper_.interrupt();
  connection_.interrupt();
}

void CalcSession::rowsChanged(const SheetRef& sheet) {
  if (!keeping_) return redrawMarks(sheet);
  if (std::find(changedRows_.begin(), changedRows_.end(), sheet) == changedRows_.end())
    changedRows_.push_back(sheet);
}

// What fails is left as it is drawn: the rows are what was asked for.
void CalcSession::redrawMarks(const SheetRef& sheet) {
  try {
    const Workbook& book = workbook(sheet.book);
    if (!readMarks(drawPageOf(sheetOf(book, sheet.sheet)), limits_).empty())
      conditions(sheet).redraw();
  } catch (const SpreadsheetError&) {
  } catch (const css::uno::Exception&) {
  }
  releaseConditions();
}

void CalcSession::keepReadings(bool keep) {
  for (const SheetRef& sheet : std::exchange(changedRows_, {})) redrawMarks(sheet);
  keeping_ = keep;
  rows_.clear();
  endTurn();
  workbooks_.keepReading(keep);
}

bool CalcSession::answers() {
  if (!connection_.isAlive()) return false;
  try {
    return desktop_->getFrames().is();
  } catch (const css::uno::RuntimeException&) {
    return false;
  }
}

const std::string& CalcSession::version() {
  if (version_.empty()) {
    const Reference<css::container::XNameAccess> product(
        configurationAt(connection_.context(), "/org.openoffice.Setup/Product"), UNO_QUERY_THROW);
    rtl::OUString text;
    product->getByName("ooSetupVersionAboutBox") >>= text;
    version_ = toText(text);
  }
  return version_;
}

void CalcSession::openWorkbook(const std::string& path) {
  openWorkbookAlone(connection_.context(), desktop_, path);
  workbooks_.forget();
}

}  // namespace quorin::host::calc
