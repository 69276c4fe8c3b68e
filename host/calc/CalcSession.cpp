#include "host/calc/CalcSession.h"

#include <algorithm>
#include <com/sun/star/beans/NamedValue.hpp>
#include <com/sun/star/configuration/theDefaultProvider.hpp>
#include <com/sun/star/container/XNameAccess.hpp>
#include <com/sun/star/document/MacroExecMode.hpp>
#include <com/sun/star/document/UpdateDocMode.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/frame/XFrames.hpp>
#include <utility>

#include "host/Address.h"
#include "host/Spreadsheet.h"
#include "host/calc/Arguments.h"
#include "host/calc/CalcLines.h"
#include "host/calc/CalcRanges.h"
#include "host/calc/CalcView.h"
#include "host/calc/OfficeFiles.h"
#include "host/calc/Text.h"

namespace quorin::host::calc {

using css::uno::Any;
using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

CalcSession::CalcSession(const OfficeAddress& office, std::chrono::milliseconds patience,
                         std::function<void()> keeperLost, LineTraces* traces)
    : connection_(office, patience),
      desktop_(css::frame::Desktop::create(connection_.context())),
      workbooks_(desktop_, connection_.context()),
      evaluator_(connection_.context()),
      names_(connection_.context()),
      scratch_(connection_.context(), workbooks_),
      changes_(connection_.context()),
      shown_(connection_.context()),
      traces_(traces),
      keeper_(office, std::move(keeperLost)) {}

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
  conditions_ = std::make_unique<SheetConditions>(changes_, book, sheet.sheet);
  return *conditions_;
}

void CalcSession::takeTurn(const Workbook& workbook, bool adding) {
  const std::string uid = workbook.uid.empty() ? uidOf(workbook.model) : workbook.uid;
  if (turn_ && turnWorkbook_ == uid) return;
  endTurn();
  turnWorkbook_ = uid;
  try {
    turn_.emplace(keeper_, turnWorkbook_);
  } catch (const SpreadsheetError& failure) {
    // Marks that are there can still be read and taken away.
    constexpr int noKeeper = -10000;
    if (adding || failure.number() != noKeeper) throw;
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
    if (what == Unreachable::all) attempt([&] { hideUnreachableLines(book); });
  }
  releaseConditions();
  return done;
}

void CalcSession::removeUnreachableMarks(const std::string& book) {
  for (const std::string& sheet : sheetNames(workbook(book))) {
    const SheetRef place{book, sheet};
    const auto marks = readMarks(drawPageOf(sheetOf(workbook(book), sheet)));
    const bool some = std::any_of(marks.begin(), marks.end(), [&](const PlacedMark& each) {
      return each.mark.asked && each.mark.asked->sheet != place;
    });
    if (some) conditions(place).removeUnreachable();
  }
}

void CalcSession::protectMarks() {
  try {
    for (const std::string& book : workbooks_.names()) {
      for (const std::string& sheet : sheetNames(workbook(book))) {
        const auto marks = readMarks(drawPageOf(sheetOf(workbook(book), sheet)));
        if (!marks.empty()) conditions({book, sheet});
      }
    }
  } catch (const SpreadsheetError&) {
  } catch (const css::uno::Exception&) {
  }
  releaseConditions();
}

// But for those that the user is looking at.
void CalcSession::hideUnreachableLines(const std::string& book) {
  const auto window = workbooks_.active();
  const RangeRef cell = window ? activeCellOf(*window) : RangeRef();
  for (const ShownLines::Unreachable& each : shown_.unreachable(workbook(book))) {
    if (cell.sheet == each.now.sheet && touch(cell.areas, each.now.areas)) continue;
    setLinesHidden(changes_, workbook(book), each.now, each.kind, true);
    linesChanged(each.now.sheet);
    shown_.forget(each.key);
    if (traces_) traces_->forget(each.asked.sheet, each.asked.areas.front(), each.kind);
  }
}

std::vector<Area> CalcSession::setHidden(const RangeRef& lines, Lines kind, bool hide) {
  if (!hide) {
    for (const Area& area : lines.areas)
      if (traces_)
        traces_->remember(lines.sheet, area, kind, linesOf(lines.sheet, kind).traceOf(area));
    shown_.remember(workbook(lines.sheet.book), lines, kind);
  }
  std::vector<Area> lost;
  for (const Area& area : lines.areas) {
    const RangeRef asked{lines.sheet, {area}};
    for (const RangeRef& place : hide ? placesOf(asked, kind) : std::vector{asked}) {
      if (place.areas.empty()) {
        lost.push_back(area);
      } else {
        setLinesHidden(changes_, workbook(place.sheet.book), place, kind, hide);
        linesChanged(place.sheet);
      }
    }
    if (!hide) continue;
    shown_.forget(workbook(lines.sheet.book), asked, kind);
    if (traces_) traces_->forget(lines.sheet, area, kind);
  }
  if (!keeping_) lines_.clear();
  return lost;
}

// Where the lines of one area are now that were shown. In a workbook that was opened again since
// then they are told by what they hold.
std::vector<RangeRef> CalcSession::placesOf(const RangeRef& lines, Lines kind) {
  const Area& area = lines.areas.front();
  std::vector<RangeRef> places = shown_.find(workbook(lines.sheet.book), lines, kind);
  if (!places.empty()) return places;
  const AreaTrace* const trace = traces_ ? traces_->find(lines.sheet, area, kind) : nullptr;
  if (!trace) return {lines};
  const std::optional<Area> found = linesOf(lines.sheet, kind).find(*trace, area);
  return {{lines.sheet, found ? std::vector{*found} : std::vector<Area>()}};
}

SheetLines& CalcSession::linesOf(const SheetRef& sheet, Lines kind) {
  const std::tuple key{sheet.book, sheet.sheet, kind};
  const auto known = lines_.find(key);
  if (known != lines_.end()) return known->second;
  return lines_.try_emplace(key, workbook(sheet.book), sheet.sheet, kind).first->second;
}

void CalcSession::interrupt() {
  keeper_.interrupt();
  connection_.interrupt();
}

void CalcSession::linesChanged(const SheetRef& sheet) {
  if (!keeping_) return redrawMarks(sheet);
  if (std::find(changedLines_.begin(), changedLines_.end(), sheet) == changedLines_.end())
    changedLines_.push_back(sheet);
}

// What fails is left as it is drawn: the rows are what was asked for.
void CalcSession::redrawMarks(const SheetRef& sheet) {
  try {
    const Workbook& book = workbook(sheet.book);
    if (!readMarks(drawPageOf(sheetOf(book, sheet.sheet))).empty()) conditions(sheet).redraw();
  } catch (const SpreadsheetError&) {
  } catch (const css::uno::Exception&) {
  }
  releaseConditions();
}

void CalcSession::keepReadings(bool keep) {
  for (const SheetRef& sheet : std::exchange(changedLines_, {})) redrawMarks(sheet);
  keeping_ = keep;
  lines_.clear();
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
    const auto configuration = css::configuration::theDefaultProvider::get(connection_.context());
    const css::beans::NamedValue path("nodepath",
                                      Any(rtl::OUString("/org.openoffice.Setup/Product")));
    const Reference<css::container::XNameAccess> product(
        configuration->createInstanceWithArguments("com.sun.star.configuration.ConfigurationAccess",
                                                   sequenceOf({Any(path)})),
        UNO_QUERY_THROW);
    rtl::OUString text;
    product->getByName("ooSetupVersionAboutBox") >>= text;
    version_ = toText(text);
  }
  return version_;
}

void CalcSession::openWorkbook(const std::string& path) {
  // A load on a thread of the bridge can hang for ever while it makes the window's menu.
  const Reference<css::lang::XComponent> opened = desktop_->loadComponentFromURL(
      toUno(fileUrl(path)), "_blank", 0,
      sequenceOf({argument("OnMainThread", true), argument("PickListEntry", false),
                  argument("MacroExecutionMode", css::document::MacroExecMode::NEVER_EXECUTE),
                  argument("UpdateDocMode", css::document::UpdateDocMode::NO_UPDATE)}));
  if (!Reference<css::sheet::XSpreadsheetDocument>(opened, css::uno::UNO_QUERY).is()) {
    throw SpreadsheetError(-1728, "\"" + path + "\" is not a workbook");
  }
  workbooks_.forget();
}

}  // namespace quorin::host::calc
