// Hiding and unhiding runs of rows and columns in Excel, and hiding again what reveals unhid.
#include <algorithm>
#include <exception>

#include "kit/bridge/Bridge.h"
#include "kit/bridge/LoggedError.h"
#include "kit/bridge/RunArguments.h"
#include "kit/shapes/CellPlace.h"
#include "kit/shapes/HiddenRuns.h"

namespace quorin {

using BridgeShapes::HiddenRuns;

namespace {

constexpr double hideBudget = 8;

std::string sizes(const HiddenRuns& runs, const std::string& sheet) {
  return " sheet=" + sheet + " rows=" + std::to_string(runs.rows.size()) +
         " cols=" + std::to_string(runs.cols.size());
}

}  // namespace

std::optional<Bridge::Position> Bridge::positionOf(const JSONValue& polled) {
  const std::optional<BridgeShapes::CellPlace> place = BridgeShapes::cellPlace(polled);
  if (!place) return std::nullopt;
  const std::optional<BridgeShapes::Rect> cell = BridgeShapes::areaRect(place->address);
  if (!cell) return std::nullopt;
  return Position{place->book, place->sheet, cell->r1, cell->c1};
}

// Hides again what is recorded but for the runs that hold the active cell or are to be shown.
// Gives what must stay recorded. Throws nothing of Excel's, but FileError.
UnhideStore::Records Bridge::restoreUnhidden(const std::optional<Position>& active,
                                             const std::optional<Kept>& keep) {
  UnhideStore::Records remaining;
  for (const UnhideStore::Record& record : unhide_.loadToReplace()) {
    const HiddenRuns recorded = record.runs();
    HiddenRuns stays;
    if (active && isSheet(active->book, active->sheet, record.book, record.sheet))
      stays = BridgeShapes::runsContaining(active->row, active->col, recorded);
    if (keep && isSheet(keep->book, keep->sheet, record.book, record.sheet))
      stays = joined(stays, BridgeShapes::runsOverlapping(recorded, keep->runs));
    const HiddenRuns goes = BridgeShapes::subtract(recorded, stays);
    // In the order of the record.
    if (hideAgain(record, goes)) {
      const HiddenRuns left = BridgeShapes::subtract(recorded, goes);
      remaining.push_back({record.book, record.sheet, left.rows, left.cols});
    } else {
      remaining.push_back(record);
    }
  }
  return remaining;
}

// True when the runs need no record any more: they are hidden, or their sheet is gone.
bool Bridge::hideAgain(const UnhideStore::Record& record, const HiddenRuns& runs) {
  if (runs.isEmpty()) return true;
  try {
    setHidden(runs, record.book, record.sheet, true);
    log_.log("UNHIDE", "restore" + sizes(runs, record.sheet) + " ok=true");
    return true;
  } catch (const ExcelError& error) {
    log_.log("UNHIDE", "restore" + sizes(runs, record.sheet) + " ok=false: " + loggedText(error));
    if (!isStaleBookError(error.code())) return false;
    log_.log("UNHIDE", "restore stale book=" + record.book + " sheet=" + record.sheet);
    return true;
  }
}

void Bridge::setHidden(const HiddenRuns& runs, const std::string& book, const std::string& sheet,
                       bool hide) {
  if (runs.isEmpty()) return;
  thread_.call("qx_unhide", {sheet, book, runArgs(runs.rows), runArgs(runs.cols), hide},
               hideBudget);
  log_.log(hide ? "UNHIDE" : "REVEAL", (hide ? "restore" : "unhide") + sizes(runs, sheet));
}

}  // namespace quorin
