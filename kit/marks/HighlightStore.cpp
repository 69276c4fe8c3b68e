#include "kit/marks/HighlightStore.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "kit/support/Check.h"
#include "kit/support/QXConfig.h"

namespace quorin {
namespace {

using Record = HighlightStore::Record;
using Records = HighlightStore::Records;

Record decodeRecord(const JSONValue& value) {
  Record record{textMember(value, "book"), textMember(value, "sheet"), {}};
  for (const JSONValue& address : arrayMember(value, "addrs")) {
    if (!address.string()) throw RecordError("an address in \"addrs\" is not text");
    record.addrs.push_back(*address.string());
  }
  if (const JSONValue* rgb = optionalMember(value, "rgb")) {
    record.rgb.emplace();
    for (const JSONValue& part : arrayOf(*rgb, "\"rgb\"")) {
      record.rgb->push_back(integerOf(part, "a part of \"rgb\""));
    }
  }
  if (const JSONValue* single = optionalMember(value, "single")) {
    if (!single->boolean()) throw RecordError("\"single\" is not a boolean");
    record.single = *single->boolean();
  }
  return record;
}

JSONValue encodeRecord(const Record& record) {
  JSONValue::Object object{{"book", record.book},
                           {"sheet", record.sheet},
                           {"addrs", JSONValue::Array(record.addrs.begin(), record.addrs.end())}};
  if (record.rgb) {
    JSONValue::Array rgb;
    for (const std::int64_t part : *record.rgb) rgb.push_back(static_cast<double>(part));
    object.emplace("rgb", std::move(rgb));
  }
  if (record.single) object.emplace("single", *record.single);
  return object;
}

// Appends the addresses that are not there yet; whether there were any.
bool appendNew(const std::vector<std::string>& addresses, std::vector<std::string>& list) {
  std::unordered_set<std::string> held(list.begin(), list.end());
  const std::size_t before = list.size();
  for (const std::string& address : addresses) {
    if (held.insert(address).second) list.push_back(address);
  }
  return list.size() != before;
}

}  // namespace

std::filesystem::path HighlightStore::defaultURL() {
  return QXConfig::defaultURL().parent_path() / "highlights.json";
}

HighlightStore::HighlightStore(std::filesystem::path url, FileSystem& files, DiagLog* log)
    : file_(std::move(url), "highlights.json", files, log) {}

Records HighlightStore::load() const {
  return load(RecordFile::Unreadable::isNone);
}

Records HighlightStore::loadToReplace() const {
  return load(RecordFile::Unreadable::isError);
}

Records HighlightStore::load(RecordFile::Unreadable unreadable) const {
  Records records;
  const auto decode = [&records](const JSONValue& document) {
    for (const JSONValue& value : arrayOf(document, "the top level")) {
      records.push_back(decodeRecord(value));
    }
  };
  return file_.load(decode, unreadable) ? records : Records();
}

void HighlightStore::recordApplied(const Records& records) const {
  JSONValue::Array array;
  for (const Record& record : records) {
    if (!record.addrs.empty()) array.push_back(encodeRecord(record));
  }
  file_.replace(array);
}

Records HighlightStore::merge(const Records& incoming, Records existing) {
  for (const Record& record : incoming) {
    const auto found = std::find_if(existing.begin(), existing.end(), [&](const Record& other) {
      return other.book == record.book && other.sheet == record.sheet;
    });
    if (found == existing.end()) {
      existing.push_back({record.book, record.sheet, {}, record.rgb, record.single});
      appendNew(record.addrs, existing.back().addrs);
    } else if (appendNew(record.addrs, found->addrs)) {
      found->single = std::nullopt;
    }
  }
  return existing;
}

std::vector<std::vector<std::string>> HighlightStore::chunks(const std::vector<std::string>& list,
                                                             std::size_t size) {
  check(size > 0, "HighlightStore::chunks needs pieces of at least one element");
  std::vector<std::vector<std::string>> pieces;
  for (std::size_t start = 0; start < list.size(); start += size) {
    const auto first = list.begin() + static_cast<std::ptrdiff_t>(start);
    const auto count = static_cast<std::ptrdiff_t>(std::min(size, list.size() - start));
    pieces.emplace_back(first, first + count);
  }
  return pieces;
}

}  // namespace quorin
