#include "host/calc/reveal/RowTraces.h"

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

std::string hexadecimal(RowDigest digest) {
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

bool read(const JSONValue* value, RowTrace& trace) {
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

JSONValue written(const RowTrace& trace) {
  JSONValue::Array parts;
  for (const RowDigest digest : trace.around) parts.push_back(hexadecimal(digest));
  parts.push_back(trace.last);
  return parts;
}

}  // namespace

bool RowTraces::read(const JSONValue& record, Entry& entry) {
  using calc::read;
  std::string axis;
  const bool whole =
      read(record.member("book"), entry.sheet.book) &&
      read(record.member("sheet"), entry.sheet.sheet) && read(record.member("lines"), axis) &&
      read(record.member("first"), entry.first) && read(record.member("last"), entry.last) &&
      read(record.member("firstTrace"), entry.trace.first);
  if (!whole || (axis != rowsWord && axis != columnsWord)) return false;
  entry.axis = axis == rowsWord ? Axis::rows : Axis::columns;
  entry.trace.last = entry.trace.first;
  return entry.first == entry.last || read(record.member("lastTrace"), entry.trace.last);
}

JSONValue RowTraces::written(const Entry& entry) {
  JSONValue::Object record{{"book", entry.sheet.book},
                           {"sheet", entry.sheet.sheet},
                           {"lines", entry.axis == Axis::rows ? rowsWord : columnsWord},
                           {"first", entry.first},
                           {"last", entry.last},
                           {"firstTrace", calc::written(entry.trace.first)}};
  if (entry.first != entry.last) record["lastTrace"] = calc::written(entry.trace.last);
  return record;
}

std::vector<RowTraces::Entry>::iterator RowTraces::place(const SheetRef& sheet, const Area& area,
                                                         Axis axis) {
  load();
  return std::find_if(entries_.begin(), entries_.end(), [&](const Entry& each) {
    return each.first == firstOn(area, axis) && each.last == lastOn(area, axis) &&
           each.axis == axis && each.sheet == sheet;
  });
}

void RowTraces::remember(const SheetRef& sheet, const Area& area, Axis axis,
                         const AreaTrace& trace) {
  if (!keeping_.save) return;
  if (const auto old = place(sheet, area, axis); old != entries_.end()) entries_.erase(old);
  if (entries_.size() >= most) entries_.erase(entries_.begin());
  entries_.push_back({sheet, axis, firstOn(area, axis), lastOn(area, axis), trace});
  changed_ = true;
  if (begun_) return;
  if (const std::string failure = flush(); !failure.empty()) {
    entries_.pop_back();
    throw SpreadsheetError(eventErrors::handlerFailed, failure);
  }
  begun_ = true;
}

void RowTraces::forget(const SheetRef& sheet, const Area& area, Axis axis) {
  const auto old = place(sheet, area, axis);
  if (old == entries_.end()) return;
  entries_.erase(old);
  changed_ = true;
}

const AreaTrace* RowTraces::find(const SheetRef& sheet, const Area& area, Axis axis) {
  const auto found = place(sheet, area, axis);
  return found == entries_.end() ? nullptr : &found->trace;
}

std::string RowTraces::flush() {
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

void RowTraces::load() {
  if (std::exchange(loaded_, true) || !keeping_.load) return;
  for (const JSONValue& record : keeping_.load()) {
    Entry entry{{}, Axis::rows, 0, 0, {}};
    if (read(record, entry)) entries_.push_back(std::move(entry));
  }
}

}  // namespace quorin::host::calc
