// The objects of Excel's object model: what a specifier turns out to mean. Plain values, found
// anew for every event and never kept.
#pragma once

#include <string>
#include <variant>

#include "host/Spreadsheet.h"
#include "kit/value/AppleEventDescriptor.h"

namespace quorin::host {

struct ApplicationObject {};

struct WorkbookObject {
  std::string name;
};

struct SheetObject {
  SheetRef sheet;
};

struct WindowObject {
  int index = 1;  // 1 is the active one
};

// Cells, rows and columns are ranges too.
struct RangeObject {
  RangeRef range;
};

using Object =
    std::variant<ApplicationObject, WorkbookObject, SheetObject, WindowObject, RangeObject>;

// The first-th to last-th elements of one class in an object: `worksheets`, `cells 1 thru 3`.
struct Elements {
  Object owner;
  FourCharCode elementClass = 0;
  long long first = 1, last = 0;
};

// What a specifier stands for: a value, an object, or some elements of one.
using Resolved = std::variant<AppleEventDescriptor, Object, Elements>;

// The specifier by which Excel names an object in an answer: workbooks and sheets by name, ranges
// by address, so that it keeps its meaning whatever becomes active.
AppleEventDescriptor specifierOf(const Object& object);
AppleEventDescriptor specifierOf(const SheetRef& sheet);
AppleEventDescriptor specifierOf(const RangeRef& range);

}  // namespace quorin::host
