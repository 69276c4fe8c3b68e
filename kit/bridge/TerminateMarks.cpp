// Taking every mark back while the application terminates: two seconds in all, whatever Excel does.
// And how much that is, for the panel to say before.
#include <exception>
#include <map>
#include <utility>

#include "kit/bridge/Bridge.h"
#include "kit/bridge/LoggedError.h"
#include "kit/bridge/RunArguments.h"
#include "kit/shapes/Rect.h"
#include "kit/value/Marshal.h"

namespace quorin {

namespace {

// The number of conditions that were deleted.
double numberOr0(const JSONValue& answer) {
  return answer.number() ? *answer.number() : 0;
}

// "TAX" could be a column, too; as an address a column is "TAX:TAX".
bool isName(const std::string& address) {
  return address.find_first_of(":0123456789") == std::string::npos;
}

}  // namespace

PanelBridge::Recorded Bridge::leftToTakeBack() const {
  Recorded left;
  try {
    if (!excelRunning()) return left;
    std::map<std::pair<std::string, std::string>, std::vector<BridgeShapes::Rect>> sheets;
    for (const HighlightStore::Record& record : store_.load()) {
      for (const std::string& address : record.addrs) {
        const auto rect = isName(address) ? std::nullopt : BridgeShapes::areaRect(address);
        if (rect) {
          sheets[{record.book, record.sheet}].push_back(*rect);
        } else {
          ++left.names;
        }
      }
    }
    for (const auto& [sheet, rects] : sheets) left.cells += BridgeShapes::cellsIn(rects);
    for (const UnhideStore::Record& record : unhide_.load()) {
      left.rows += BridgeShapes::count(record.rows);
      left.columns += BridgeShapes::count(record.cols);
    }
  } catch (const std::exception&) {
    // What cannot be read is not told; it is taken back all the same.
  }
  return left;
}

void Bridge::clearMarksForTerminate() {
  const ExcelThread::Deadline deadline = thread_.beginTermination();
  try {
    // A request that is painting gets to its end, or to the refusal of its next call, first.
    if (!marksTurn_.takeBefore(thread_, deadline)) {
      log_.log("ERROR", "terminate clear failed: a request is still waiting for Excel");
      return;
    }
    try {
      clearAllForTerminate(deadline);
    } catch (const std::exception& error) {
      log_.log("ERROR", "terminate clear failed: " + loggedText(error));
    }
    marksTurn_.release();
  } catch (const std::exception&) {
    // Not even the log took it; nothing may keep the application from ending.
  }
}

void Bridge::clearAllForTerminate(ExcelThread::Deadline deadline) {
  HighlightStore::Records highlights = store_.load();
  UnhideStore::Records unhidden = unhide_.load();
  if ((highlights.empty() && unhidden.empty()) || !excelRunning()) return;
  bool inTime = true;
  for (HighlightStore::Record& record : highlights)
    inTime = inTime && clearForTerminate(record, deadline);
  if (!highlights.empty()) {
    try {
      store_.recordApplied(highlights);
    } catch (const std::exception& error) {
      log_.log("ERROR", std::string("terminate: highlights.json write failed: ") + error.what());
    }
  }
  for (UnhideStore::Record& record : unhidden)
    inTime = inTime && hideForTerminate(record, deadline);
  if (!unhidden.empty()) {
    try {
      unhide_.record(unhidden);
    } catch (const std::exception& error) {
      log_.log("ERROR", std::string("terminate: unhidden.json write failed: ") + error.what());
    }
  }
}

// Takes out of the record what was cleared. False when the time is up.
bool Bridge::clearForTerminate(HighlightStore::Record& record, ExcelThread::Deadline deadline) {
  const std::size_t total = record.addrs.size();
  std::vector<std::string> left;
  double deleted = 0;
  bool inTime = true;
  for (const auto& piece : HighlightStore::chunks(record.addrs, MOVE_MAX_ADDRS)) {
    if (inTime) {
      try {
        deleted += numberOr0(thread_.callForTerminate(
            "qx_cf_clear",
            {JSONValue::Array(piece.begin(), piece.end()), record.book, record.sheet}, deadline));
        continue;
      } catch (const ExcelError& error) {
        log_.log("ERROR", "terminate clear failed: " + loggedText(error));
        inTime = error.code() != ExcelError::timedOut;
      }
    }
    left.insert(left.end(), piece.begin(), piece.end());
  }
  if (left.size() < total) {
    log_.log("TERMINATE",
             Marshal::encode(deleted) + " of " + std::to_string(total) + " recorded addresses");
    record.single = std::nullopt;
  }
  if (left.empty() && total > 0 && deleted == 0 && inTime) {
    try {
      logMoved(record,
               thread_.callForTerminate("qx_cf_moved", {record.book, record.sheet}, deadline));
    } catch (const ExcelError& error) {
      log_.log("ERROR", "terminate clear failed: " + loggedText(error));
      inTime = error.code() != ExcelError::timedOut;
      left = record.addrs;
    }
  }
  record.addrs = std::move(left);
  return inTime;
}

bool Bridge::hideForTerminate(UnhideStore::Record& record, ExcelThread::Deadline deadline) {
  try {
    thread_.callForTerminate(
        "qx_unhide", {record.sheet, record.book, runArgs(record.rows), runArgs(record.cols), true},
        deadline);
    log_.log("UNHIDE", "restore sheet=" + record.sheet +
                           " rows=" + std::to_string(record.rows.size()) +
                           " cols=" + std::to_string(record.cols.size()) + " ok=true");
    record.rows.clear();
    record.cols.clear();
    return true;
  } catch (const ExcelError& error) {
    log_.log("ERROR", "terminate restore failed: " + loggedText(error));
    return error.code() != ExcelError::timedOut;
  }
}

}  // namespace quorin
