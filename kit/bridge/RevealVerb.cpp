// The verb "reveal": unhides what hides a cell, hides again what earlier reveals unhid elsewhere,
// and scrolls. The selection stays as it is.
#include <algorithm>

#include "kit/bridge/Bridge.h"
#include "kit/bridge/RunArguments.h"
#include "kit/shapes/AddressShapes.h"
#include "kit/shapes/CellShapes.h"
#include "kit/value/EventErrors.h"

namespace quorin {

using BridgeShapes::HiddenRuns;
using BridgeShapes::RevealRead;
using BridgeShapes::RevealScroll;

namespace {

JSONValue refused(const std::string& reason) {
  return JSONValue::Object{{"revealed", false}, {"reason", reason}};
}

// The runs of what is to be shown: hidden now, or unhidden for it before.
HiddenRuns shown(const RevealRead& read, const HiddenRuns& runs) {
  HiddenRuns all = runs;
  all.rows.push_back({read.target.r1, read.target.r2});
  all.cols.push_back({read.target.c1, read.target.c2});
  return all;
}

// True if these are more rows or columns than may be unhidden at a time; then the log says so.
bool isTooMuch(const HiddenRuns& runs, DiagLog& log) {
  const std::int64_t rows = BridgeShapes::count(BridgeShapes::mergeRuns(runs.rows));
  const std::int64_t cols = BridgeShapes::count(BridgeShapes::mergeRuns(runs.cols));
  if (rows <= UnhideStore::mostRows && cols <= UnhideStore::mostRows) return false;
  log.log("REVEAL", "unhide skipped reason=cap rows=" + std::to_string(rows) +
                        " cols=" + std::to_string(cols));
  return true;
}

}  // namespace

JSONValue Bridge::reveal(const std::vector<std::string>& addrs) {
  const MarksTurn::Hold turn(marksTurn_);
  const JSONValue polled = pollCell();
  const BridgeShapes::CellPlace active = BridgeShapes::activePlace(polled);
  const auto groups = BridgeShapes::groupBySheet(addrs, active.sheet);
  if (groups.size() != 1) {
    log_.log("REVEAL", "skipped reason=multi-sheet n=" + std::to_string(addrs.size()));
    return refused("multi-sheet");
  }
  const std::string& sheet = groups.front().sheet;
  const std::string& addr = groups.front().addrs.front();
  JSONValue answer;
  try {
    answer = call("reveal", "qx_revealread", {addr, sheet, active.book});
  } catch (const ExcelError& error) {
    if (error.code() != eventErrors::noSuchObject) throw;
    log_.log("REVEAL", "skipped reason=unbound sheet=" + sheet + " addr=" + addr);
    return refused("unbound");
  }
  const RevealRead read = BridgeShapes::revealRead(sheet, answer);
  JSONValue::Object reply;
  if (const auto unhid = unhideTarget(read, active.book, positionOf(polled)))
    reply["unhid"] = *unhid;
  const BridgeShapes::RevealDecision decision = BridgeShapes::revealDecision(read);
  reply["revealed"] = decision.has_value();
  if (decision) {
    scrollTo(*decision, active.book, sheet, addr);
    reply["activated"] = decision->activate;
  } else {
    log_.log("REVEAL", "visible sheet=" + sheet + " addr=" + addr);
  }
  return reply;
}

// Unhides what hides the target, and hides what earlier reveals unhid for others. The record is
// written first. Gives a description of what is unhidden, none when nothing had to be.
std::optional<std::string> Bridge::unhideTarget(const RevealRead& read, const std::string& book,
                                                const std::optional<Position>& active) {
  HiddenRuns runs = BridgeShapes::rawRuns(read);
  if (isTooMuch(runs, log_)) runs = {};
  if (runs.isEmpty() && unhide_.load().empty()) return std::nullopt;
  touchProgrammaticNav();
  const UnhideStore::Records records =
      restoreUnhidden(active, Kept{book, read.targetSheet, shown(read, runs)});
  const auto record =
      std::find_if(records.begin(), records.end(), [&](const UnhideStore::Record& other) {
        return isSheet(other.book, other.sheet, book, read.targetSheet);
      });
  const HiddenRuns recorded = record == records.end() ? HiddenRuns() : record->runs();
  const std::string& sheet = record == records.end() ? read.targetSheet : record->sheet;
  HiddenRuns fresh = BridgeShapes::subtract(runs, recorded);
  // What stays recorded of the sheet counts too, or it would grow from one reveal to the next.
  if (!fresh.isEmpty() && isTooMuch(joined(recorded, fresh), log_)) fresh = runs = {};
  if (fresh.isEmpty()) {
    unhide_.record(records);
  } else {
    unhide_.record(UnhideStore::merge({book, sheet, fresh.rows, fresh.cols}, records));
    setHidden(fresh, book, read.targetSheet, false);
  }
  if (runs.isEmpty()) return std::nullopt;
  return BridgeShapes::describe(runs);
}

void Bridge::scrollTo(const RevealScroll& where, const std::string& book, const std::string& sheet,
                      const std::string& addr) {
  touchProgrammaticNav();
  const JSONValue landed = call("reveal", "qx_revealscroll",
                                {static_cast<double>(where.row), static_cast<double>(where.col),
                                 sheet, book, where.activate});
  log_.log("REVEAL", "sheet=" + sheet + " addr=" + addr + " row=" + std::to_string(where.row) +
                         " col=" + std::to_string(where.col) +
                         " activate=" + (where.activate ? "true" : "false"));
  if (where.activate) publishLanded(BridgeShapes::pollCellObject(landed));
  touchProgrammaticNav();
}

}  // namespace quorin
