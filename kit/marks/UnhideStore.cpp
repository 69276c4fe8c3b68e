#include "kit/marks/UnhideStore.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "kit/support/QXConfig.h"

namespace quorin {
namespace {

using BridgeShapes::Run;
using Record = UnhideStore::Record;
using Records = UnhideStore::Records;

constexpr std::int64_t lastRow = 1048576, lastColumn = 16384;

std::vector<Run> decodeRuns(const JSONValue& record, const std::string& key, std::int64_t last) {
  std::vector<Run> runs;
  for (const JSONValue& value : arrayMember(record, key)) {
    const JSONValue::Array& ends = arrayOf(value, "a run in \"" + key + "\"");
    if (ends.size() != 2) throw RecordError("a run in \"" + key + "\" has not two ends");
    const std::string what = "an end of a run in \"" + key + "\"";
    runs.push_back({integerOf(ends[0], what), integerOf(ends[1], what)});
    if (runs.back()[0] < 1 || runs.back()[0] > runs.back()[1] || runs.back()[1] > last)
      throw RecordError("a run in \"" + key + "\" is outside of every sheet");
  }
  return runs;
}

Record decodeRecord(const JSONValue& value) {
  return {textMember(value, "book"), textMember(value, "sheet"), decodeRuns(value, "rows", lastRow),
          decodeRuns(value, "cols", lastColumn)};
}

// What is more than can be right. Gives what the log has to say, or nothing.
std::string dropWide(std::vector<Run>& runs, const std::string& key, const std::string& sheet) {
  const std::int64_t rows = BridgeShapes::count(runs);
  if (rows <= UnhideStore::mostRows) return {};
  runs.clear();
  return "unhidden.json: dropped " + key + " of sheet=" + sheet + ": " + std::to_string(rows) +
         " of at most " + std::to_string(UnhideStore::mostRows);
}

JSONValue encodeRuns(const std::vector<Run>& runs) {
  JSONValue::Array array;
  for (const Run& run : runs) {
    array.push_back(JSONValue::Array{static_cast<double>(run[0]), static_cast<double>(run[1])});
  }
  return array;
}

JSONValue encodeRecord(const Record& record) {
  return JSONValue::Object{{"book", record.book},
                           {"sheet", record.sheet},
                           {"rows", encodeRuns(record.rows)},
                           {"cols", encodeRuns(record.cols)}};
}

void join(const std::vector<Run>& incoming, std::vector<Run>& runs) {
  runs.insert(runs.end(), incoming.begin(), incoming.end());
  runs = BridgeShapes::mergeRuns(std::move(runs));
}

}  // namespace

std::filesystem::path UnhideStore::defaultURL() {
  return QXConfig::defaultURL().parent_path() / "unhidden.json";
}

UnhideStore::UnhideStore(std::filesystem::path url, FileSystem& files, DiagLog* log)
    : file_(std::move(url), "unhidden.json", files, log) {}

Records UnhideStore::load() const {
  return load(RecordFile::Unreadable::isNone);
}

Records UnhideStore::loadToReplace() const {
  return load(RecordFile::Unreadable::isError);
}

Records UnhideStore::load(RecordFile::Unreadable unreadable) const {
  Records records;
  const auto decode = [&records](const JSONValue& document) {
    for (const JSONValue& value : arrayOf(document, "the top level")) {
      records.push_back(decodeRecord(value));
    }
  };
  if (!file_.load(decode, unreadable)) return {};
  bool dropped = false;
  for (Record& each : records) {
    for (const std::string& text :
         {dropWide(each.rows, "rows", each.sheet), dropWide(each.cols, "cols", each.sheet)}) {
      if (text.empty()) continue;
      file_.log().log("ERROR", text);
      dropped = true;
    }
  }
  if (!dropped) return records;
  std::erase_if(records, [](const Record& each) { return each.isEmpty(); });
  try {
    record(records);
  } catch (const std::exception&) {
    // It is left out the next time too.
  }
  return records;
}

void UnhideStore::record(const Records& records) const {
  JSONValue::Array array;
  for (const Record& each : records) {
    if (!each.isEmpty()) array.push_back(encodeRecord(each));
  }
  file_.replace(array);
}

Records UnhideStore::merge(const Record& record, Records existing) {
  const auto found = std::find_if(existing.begin(), existing.end(), [&](const Record& other) {
    return other.book == record.book && other.sheet == record.sheet;
  });
  if (found == existing.end()) {
    existing.push_back(record);
  } else {
    join(record.rows, found->rows);
    join(record.cols, found->cols);
  }
  return existing;
}

}  // namespace quorin
