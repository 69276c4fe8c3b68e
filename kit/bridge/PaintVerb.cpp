// The verb "markCells". Every address is in the record before Excel is asked to paint it, so that
// no crash can leave a highlight that the record does not know.
#include <algorithm>
#include <exception>
#include <utility>

#include "kit/bridge/Bridge.h"
#include "kit/bridge/LoggedError.h"
#include "kit/marks/MovePlan.h"
#include "kit/shapes/AddressShapes.h"
#include "kit/shapes/CellShapes.h"
#include "kit/value/Marshal.h"

namespace quorin {

namespace {

using Record = HighlightStore::Record;
using Records = HighlightStore::Records;

constexpr std::size_t mostAddresses = 200;

JSONValue listOf(const std::vector<std::string>& texts) {
  return JSONValue::Array(texts.begin(), texts.end());
}

Records withoutSingle(Records records) {
  for (Record& record : records) record.single = std::nullopt;
  return records;
}

// One record a sheet, the addresses as they were asked for.
Records recordsOf(const std::vector<BridgeShapes::SheetGroup>& groups, const std::string& book,
                  const std::vector<std::int64_t>& colour) {
  Records records;
  for (const BridgeShapes::SheetGroup& group : groups)
    records.push_back({book, group.sheet, group.addrs, colour});
  return records;
}

// {created, preexisting} of an apply or move.
struct Counts {
  double created = 0, preexisting = 0;
};

std::optional<Counts> countsOf(const JSONValue& answer) {
  const JSONValue::Array* const items = answer.array();
  if (!items || items->size() != 2 || !(*items)[0].number() || !(*items)[1].number())
    return std::nullopt;
  return Counts{*(*items)[0].number(), *(*items)[1].number()};
}

}  // namespace

JSONValue Bridge::markCells(const std::vector<std::string>& addrs,
                            const std::vector<std::int64_t>& rgb) {
  const MarksTurn::Hold turn(marksTurn_);
  const std::size_t taken = std::min(addrs.size(), mostAddresses);
  const std::vector<std::string> first(addrs.begin(),
                                       addrs.begin() + static_cast<std::ptrdiff_t>(taken));
  const BridgeShapes::CellPlace active = BridgeShapes::activePlace(pollCell());
  const std::vector<std::int64_t> magenta = {255, 0, 255};
  const Records groups = recordsOf(BridgeShapes::groupBySheet(first, active.sheet), active.book,
                                   rgb.size() == 3 ? rgb : magenta);
  const Records wanted = HighlightStore::merge(groups, {});
  if (wanted.size() == 1)
    if (std::optional<JSONValue> moved = moveMarks(wanted.front())) return *std::move(moved);
  const bool cleared = clearBeforePainting(wanted);
  const bool fits = groups.size() == 1 && groups.front().addrs.size() <= MOVE_MAX_ADDRS;
  return applyMarks(groups, cleared && fits);
}

// Points the recorded highlight at the wanted cells. None when that is not possible, and then the
// record may hold more than is painted.
std::optional<JSONValue> Bridge::moveMarks(const Record& wanted) {
  const auto from = BridgeShapes::movePlan(store_.load(), wanted, MOVE_MAX_ADDRS);
  if (!from) return std::nullopt;
  Record target = wanted;
  target.single = true;
  recordBeforePainting(HighlightStore::merge({target}, {*from}));
  JSONValue answer;
  try {
    answer = call("markCells", "qx_cf_move",
                  {listOf(from->addrs), listOf(target.addrs), target.book, target.sheet});
  } catch (const std::exception& error) {
    log_.log("ERROR", "markCells: move failed, clear+apply: " + loggedText(error));
    return std::nullopt;
  }
  if (answer != JSONValue(JSONValue::Array{1, 0})) {
    log_.log("HIGHLIGHT", "move declined result=" + Marshal::encode(answer) + "; clear+apply");
    return std::nullopt;
  }
  try {
    store_.recordApplied({target});
  } catch (const std::exception& error) {
    // The wider record does no harm: a cell without a highlight has none to delete.
    log_.log("ERROR", std::string("markCells: move landed, record narrow failed: ") + error.what());
  }
  log_.log("HIGHLIGHT", "move sheet=" + target.sheet +
                            " from=" + std::to_string(from->addrs.size()) +
                            " to=" + std::to_string(target.addrs.size()));
  return JSONValue::Object{
      {"applied", static_cast<double>(target.addrs.size())}, {"shadowed", false}, {"moved", true}};
}

// Clears what is recorded unless it is what is wanted. True if it was cleared, and wholly.
bool Bridge::clearBeforePainting(const Records& wanted) {
  if (withoutSingle(store_.load()) == wanted) return false;
  try {
    clearRecorded();
    return true;
  } catch (const std::exception& error) {
    log_.log("ERROR", "markCells: prior clear failed, carrying forward: " + loggedText(error));
    return false;
  }
}

JSONValue Bridge::applyMarks(const Records& groups, bool mayBeSingle) {
  Records recorded = store_.loadToReplace();
  double shadowTotal = 0;
  std::size_t applied = 0;
  for (const Record& group : groups) {
    const std::vector<std::int64_t>& rgb = *group.rgb;
    for (const std::vector<std::string>& piece :
         HighlightStore::chunks(group.addrs, MOVE_MAX_ADDRS)) {
      recorded =
          HighlightStore::merge({{group.book, group.sheet, piece, group.rgb}}, std::move(recorded));
      recordBeforePainting(recorded);
      const JSONValue answer =
          call("markCells", "qx_cf_apply",
               {listOf(piece), group.book, group.sheet, static_cast<double>(rgb[0]),
                static_cast<double>(rgb[1]), static_cast<double>(rgb[2])});
      if (const std::optional<Counts> counts = countsOf(answer)) {
        shadowTotal += counts->preexisting;
        const auto record =
            std::find_if(recorded.begin(), recorded.end(), [&group](const Record& other) {
              return other.book == group.book && other.sheet == group.sheet;
            });
        const bool single = mayBeSingle && counts->created == 1 && record->addrs == piece;
        const std::optional<bool> before =
            std::exchange(record->single, single ? std::optional(true) : std::nullopt);
        if (record->single != before) store_.recordApplied(recorded);
      }
      applied += piece.size();
      log_.log("HIGHLIGHT", "apply sheet=" + group.sheet +
                                " addrs=" + std::to_string(piece.size()) +
                                " result=" + Marshal::encode(answer));
    }
  }
  return JSONValue::Object{{"applied", static_cast<double>(applied)},
                           {"shadowed", shadowTotal > 0}};
}

void Bridge::recordBeforePainting(const Records& records) {
  try {
    store_.recordApplied(records);
  } catch (const std::exception& error) {
    log_.log("ERROR",
             std::string("markCells: highlights.json write failed, not painting: ") + error.what());
    throw;
  }
}

}  // namespace quorin
