// RowTraces: what is kept on disk of the rows and columns that were shown, for the time when their
// workbook was closed and opened again. No contents, only digests of them. It outlives connections
// and holds nothing of the office. Call thread.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/Spreadsheet.h"
#include "host/calc/reveal/RowTrace.h"
#include "kit/value/JSONValue.h"

namespace quorin::host::calc {

// Where they are kept. `save` replaces everything, and throws a std::exception when it cannot.
struct TraceKeeping {
  std::function<JSONValue::Array()> load;
  std::function<void(const JSONValue::Array&)> save;

  // In a file with these two.
  template <typename File>
  static TraceKeeping in(File file) {
    return {[file] { return file.load(); },
            [file](const JSONValue::Array& all) { file.save(all); }};
  }
};

// Of an area of whole rows: its first and its last.
struct AreaTrace {
  RowTrace first, last;

  bool operator==(const AreaTrace&) const = default;
};

class RowTraces {
 public:
  // Reads what is there when it is first asked. Nothing is kept where there is no place for it.
  explicit RowTraces(TraceKeeping keeping = {}) : keeping_(std::move(keeping)) {}

  // The area is asked for again by the same name and numbers. It is on disk when this returns, or
  // with the others of a handler, whose first one is. Throws SpreadsheetError -10000 when it cannot
  // be written.
  void remember(const SheetRef& sheet, const Area& area, Axis axis, const AreaTrace& trace);
  void forget(const SheetRef& sheet, const Area& area, Axis axis);
  const AreaTrace* find(const SheetRef& sheet, const Area& area, Axis axis);

  // Writes what is not written yet. Gives why that failed; it is tried again with the next.
  std::string flush();

 private:
  struct Entry {
    SheetRef sheet;
    Axis axis;
    int first, last;
    AreaTrace trace;
  };
  static bool read(const JSONValue& record, Entry& entry);
  static JSONValue written(const Entry& entry);
  std::vector<Entry>::iterator place(const SheetRef& sheet, const Area& area, Axis axis);
  void load();

  TraceKeeping keeping_;
  bool loaded_ = false;
  bool changed_ = false;        // not written yet
  bool begun_ = false;          // the first one of a handler is on disk
  std::vector<Entry> entries_;  // the oldest first
};

}  // namespace quorin::host::calc
