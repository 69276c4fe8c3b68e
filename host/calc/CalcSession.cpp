#include "host/calc/CalcSession.h"

#include <algorithm>
#include <com/sun/star/beans/NamedValue.hpp>
#include <com/sun/star/beans/XPropertySet.hpp>
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
                         std::function<void()> keeperLost)
    : connection_(office, patience),
      desktop_(css::frame::Desktop::create(connection_.context())),
      workbooks_(desktop_),
      evaluator_(connection_.context()),
      scratch_(connection_.context(), workbooks_),
      changes_(connection_.context()),
      shown_(connection_.context()),
      keeper_(office, std::move(keeperLost)) {}

Workbook& CalcSession::workbook(const std::string& book) {
  if (ScratchWorkbook* const scratch = scratch_.find(book)) return scratch->workbook();
  asked_ = workbooks_.named(book);
  return *asked_;
}

std::vector<std::string> CalcSession::worksheets(const std::string& book) {
  if (const auto kept = worksheets_.find(book); kept != worksheets_.end()) return kept->second;
  std::vector<std::string> names = sheetNames(workbook(book));
  if (keeping_) worksheets_[book] = names;
  return names;
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
  rtl::OUString uid;
  Reference<css::beans::XPropertySet>(workbook.model, UNO_QUERY_THROW)
      ->getPropertyValue("RuntimeUID") >>= uid;
  if (turn_ && turnWorkbook_ == toText(uid)) return;
  endTurn();
  turnWorkbook_ = toText(uid);
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

void CalcSession::takeBackUnreachable() {
  try {
    for (const std::string& book : workbooks_.names()) {
      removeUnreachableMarks(book);
      hideUnreachableLines(book);
    }
  } catch (const SpreadsheetError&) {
  } catch (const css::uno::Exception&) {
  }
  releaseConditions();
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
  }
}

std::vector<Area> CalcSession::setHidden(const RangeRef& lines, Lines kind, bool hide) {
  std::vector<Area> lost;
  if (!hide) shown_.remember(workbook(lines.sheet.book), lines, kind);
  for (const Area& area : lines.areas) {
    const RangeRef asked{lines.sheet, {area}};
    const Workbook& book = workbook(lines.sheet.book);
    const auto known = hide ? shown_.find(book, asked, kind) : std::nullopt;
    const RangeRef place = known.value_or(asked);
    if (place.areas.empty()) {
      lost.push_back(area);
    } else {
      setLinesHidden(changes_, book, place, kind, hide);
      linesChanged(place.sheet);
    }
    if (known) shown_.forget(book, asked, kind);
  }
  return lost;
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
  worksheets_.clear();
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
