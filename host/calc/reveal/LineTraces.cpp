#include "host/calc/reveal/LineTraces.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <exception>
#include <utility>

#include "host/Address.h"
#include "kit/value/EventErrors.h"
#include "kit/value/WholeNumber.h"

namespace quorin::host::calc {
namespace {

// Those of workbooks that never came back go by and by.
constexpr std::size_t most = 1000;

constexpr const char* rowsWord = "rows";
constexpr const char* columnsWord = "columns";

std::string hexadecimal(LineDigest digest) {
  std::array<char, 16> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), digest, 16).ptr;
  return {digits.data(), end};
}

bool read(const JSONValue* value, std::string& text) {
  if (!value || !value->string()) return false;
  text = *value->string();
  return true;
}

bool read(const JSONValue* value, int& number) {
  const auto whole = value ? wholeNumber(*value) : std::nullopt;
  if (!whole || *whole < 0 || *whole > maxRow) return false;
  number = static_cast<int>(*whole);
  return true;
}

bool read(const JSONValue* value, LineTrace& trace) {
  const JSONValue::Array* const parts = value ? value->array() : nullptr;
  if (!parts || parts->size() != trace.around.size() + 1) return false;
  for (std::size_t i = 0; i < trace.around.size(); ++i) {
    const std::string* const digits = (*parts)[i].string();
    if (!digits) return false;
    const char* const end = digits->data() + digits->size();
    const auto [stop, error] = std::from_chars(digits->data(), end, trace.around[i], 16);
    if (error != std::errc() || stop != end) return false;
  }
  return read(&parts->back(), trace.last);
}

JSONValue written(const LineTrace& trace) {
  JSONValue::Array parts;
  for (const LineDigest digest : trace.around) parts.push_back(hexadecimal(digest));
  parts.push_back(trace.last);
  return parts;
}

}  // namespace

bool LineTraces::read(const JSONValue& record, Entry& entry) {
  using calc::read;
  std::string kind;
  const bool whole =
      read(record.member("book"), entry.sheet.book) &&
      read(record.member("sheet"), entry.sheet.sheet) && read(record.member("lines"), kind) &&
      read(record.member("first"), entry.first) && read(record.member("last"), entry.last) &&
      read(record.member("firstTrace"), entry.trace.first);
  if (!whole || (kind != rowsWord && kind != columnsWord)) return false;
  entry.kind = kind == rowsWord ? Lines::rows : Lines::columns;
  entry.trace.last = entry.trace.first;
  return entry.first == entry.last || read(record.member("lastTrace"), entry.trace.last);
}

JSONValue LineTraces::written(const Entry& entry) {
  JSONValue::Object record{{"book", entry.sheet.book},
                           {"sheet", entry.sheet.sheet},
                           {"lines", entry.kind == Lines::rows ? rowsWord : columnsWord},
                           {"first", entry.first},
                           {"last", entry.last},
                           {"firstTrace", calc::written(entry.trace.first)}};
  if (entry.first != entry.last) record["lastTrace"] = calc::written(entry.trace.last);
  return record;
}

std::vector<LineTraces::Entry>::iterator LineTraces::place(const SheetRef& sheet, const Area& area,
                                                           Lines kind) {
  load();
  return std::find_if(entries_.begin(), entries_.end(), [&](const Entry& each) {
    return each.first == firstLine(area, kind) && each.last == lastLine(area, kind) &&
           each.kind == kind && each.sheet == sheet;
  });
}

void LineTraces::remember(const SheetRef& sheet, const Area& area, Lines kind,
                          const AreaTrace& trace) {
  if (!keeping_.save) return;
  if (const auto old = place(sheet, area, kind); old != entries_.end()) entries_.erase(old);
  if (entries_.size() >= most) entries_.erase(entries_.begin());
  entries_.push_back({sheet, kind, firstLine(area, kind), lastLine(area, kind), trace});
  changed_ = true;
  if (begun_) return;
  if (const std::string failure = flush(); !failure.empty()) {
    entries_.pop_back();
    throw SpreadsheetError(eventErrors::handlerFailed, failure);
  }
  begun_ = true;
}

void LineTraces::forget(const SheetRef& sheet, const Area& area, Lines kind) {
  const auto old = place(sheet, area, kind);
  if (old == entries_.end()) return;
  entries_.erase(old);
  changed_ = true;
}

const AreaTrace* LineTraces::find(const SheetRef& sheet, const Area& area, Lines kind) {
  const auto found = place(sheet, area, kind);
  return found == entries_.end() ? nullptr : &found->trace;
}

std::string LineTraces::flush() {
  begun_ = false;
  if (!changed_) return {};
  JSONValue::Array records;
  for (const Entry& entry : entries_) records.push_back(written(entry));
  try {
    keeping_.save(records);
    changed_ = false;
    return {};
  } catch (const std::exception& error) {
    return std::string("The shown lines cannot be recorded: ") + error.what();
  }
}

void LineTraces::load() {
  if (std::exchange(loaded_, true) || !keeping_.load) return;
  for (const JSONValue& record : keeping_.load()) {
    Entry entry{{}, Lines::rows, 0, 0, {}};
    if (read(record, entry)) entries_.push_back(std::move(entry));
  }
}

}  // namespace quorin::host::calc
