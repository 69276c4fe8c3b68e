// The verb "clearMarks" and the sweep of what an earlier run left. Both work from the records
// alone, whatever is on the screen.
#include <exception>
#include <utility>

#include "kit/bridge/Bridge.h"
#include "kit/bridge/LoggedError.h"
#include "kit/shapes/CellShapes.h"
#include "kit/value/Marshal.h"

namespace quorin {

namespace {

std::size_t addressCount(const HighlightStore::Records& records) {
  std::size_t total = 0;
  for (const HighlightStore::Record& record : records) total += record.addrs.size();
  return total;
}

}  // namespace

JSONValue Bridge::clearMarks() {
  const MarksTurn::Hold turn(marksTurn_);
  return clearRecorded();
}

// clearMarks for who has the turn already.
JSONValue Bridge::clearRecorded() {
  HighlightStore::Records kept;
  std::exception_ptr failure;
  std::size_t removed = 0;
  const HighlightStore::Records recorded = store_.load();
  for (const HighlightStore::Record& record : recorded) {
    HighlightStore::Record left = record;
    left.addrs.clear();
    bool foundNone = true;  // Excel has said of each piece that it had no mark to delete
    for (const auto& piece : HighlightStore::chunks(record.addrs, MOVE_MAX_ADDRS)) {
      try {
        foundNone = clearChunk(record, piece) == JSONValue(0) && foundNone;
        removed += piece.size();
        continue;
      } catch (const ExcelError& error) {
        foundNone = false;
        if (isStaleBookError(error.code())) {
          log_.log("HIGHLIGHT", "clear stale book=" + record.book + " sheet=" + record.sheet +
                                    " addrs=" + std::to_string(piece.size()) + ": " +
                                    loggedText(error));
          continue;
        }
        if (!failure) failure = std::current_exception();
      }
      left.addrs.insert(left.addrs.end(), piece.begin(), piece.end());
    }
    if (foundNone) {
      try {
        clearMoved(record);
      } catch (const ExcelError& error) {
        // A sheet that went just now has taken its marks along.
        if (!isStaleBookError(error.code())) {
          if (!failure) failure = std::current_exception();
          left.addrs = record.addrs;
        }
      }
    }
    if (left.addrs != record.addrs) left.single = std::nullopt;
    kept.push_back(std::move(left));
  }
  if (!recorded.empty()) {
    try {
      store_.recordApplied(kept);
    } catch (const std::exception& error) {
      log_.log("ERROR", std::string("clearMarks: highlights.json write failed: ") + error.what());
    }
  }
  restoreUnhiddenOnClear();
  if (failure) std::rethrow_exception(failure);
  return JSONValue::Object{{"removed", static_cast<double>(removed)}};
}

JSONValue Bridge::clearChunk(const HighlightStore::Record& record,
                             const std::vector<std::string>& addrs) {
  JSONValue answer =
      call("clearMarks", "qx_cf_clear",
           {JSONValue::Array(addrs.begin(), addrs.end()), record.book, record.sheet});
  log_.log("HIGHLIGHT", "clear sheet=" + record.sheet + " addrs=" + std::to_string(addrs.size()) +
                            " deleted=" + Marshal::encode(answer));
  return answer;
}

// None of the recorded cells has a mark any more: rows or columns have carried them elsewhere, or
// they were never painted.
void Bridge::clearMoved(const HighlightStore::Record& record) {
  logMoved(record, call("clearMarks", "qx_cf_moved", {record.book, record.sheet}));
}

void Bridge::logMoved(const HighlightStore::Record& record, const JSONValue& answer) {
  log_.log("HIGHLIGHT", "clear found none of addrs=" + std::to_string(record.addrs.size()) +
                            " sheet=" + record.sheet +
                            "; on the whole sheet deleted=" + Marshal::encode(answer));
}

void Bridge::restoreUnhiddenOnClear() {
  if (unhide_.load().empty()) return;
  std::optional<Position> active;
  try {
    active = positionOf(pollCell());
  } catch (const std::exception&) {
    // No workbook, or Excel does not say.
  }
  log_.log("UNHIDE", active ? "active row=" + std::to_string(active->row) +
                                  " col=" + std::to_string(active->col)
                            : "active none");
  try {
    unhide_.record(restoreUnhidden(active, std::nullopt));
  } catch (const std::exception& error) {
    log_.log("ERROR", std::string("unhidden.json write failed: ") + error.what());
  }
}

void Bridge::restoreStranded() {
  try {
    const MarksTurn::Hold turn(marksTurn_);
    const HighlightStore::Records recorded = store_.load();
    const std::string addresses = std::to_string(addressCount(recorded));
    if (recorded.empty() && unhide_.load().empty()) {
      log_.log("RESTORE", "nothing recorded");
      return;
    }
    if (!excelRunning()) {
      log_.log("RESTORE", "Excel not running; " + addresses + " addresses stay recorded");
      return;
    }
    try {
      log_.log("RESTORE", "recorded=" + addresses + " \u2192 " + Marshal::encode(clearRecorded()));
    } catch (const std::exception& error) {
      log_.log("RESTORE", "recorded=" + addresses + " failed: " + loggedText(error));
    }
  } catch (const std::exception& error) {
    log_.log("ERROR", "restoreStranded: " + loggedText(error));
  }
}

}  // namespace quorin
