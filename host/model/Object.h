// The objects of Excel's object model: what a specifier turns out to mean. Plain values, found
// anew for every event and never kept.
#pragma once

#include <string>
#include <variant>
#include <vector>

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

struct NamedItemObject {
  std::string book;
  DefinedName name;
};

// The index-th condition of a range. Its number changes when those before it do.
struct ConditionObject {
  RangeRef range;
  int index = 1;
  FormatCondition condition;
};

struct InteriorObject {
  ConditionObject condition;  // whose fill it is
};

using Object = std::variant<ApplicationObject, WorkbookObject, SheetObject, WindowObject,
                            RangeObject, NamedItemObject, ConditionObject, InteriorObject>;
using Objects = std::vector<Object>;

// The first-th to last-th elements of one class in an object: `worksheets`, `cells 1 thru 3`.
struct Elements {
  Object owner;
  FourCharCode elementClass = 0;
  long long first = 1, last = 0;
};

// What a specifier stands for: a value, an object, some elements of one in a row, or those elements
// that a test picked.
using Resolved = std::variant<AppleEventDescriptor, Object, Elements, Objects>;

// The specifier by which Excel names an object in an answer: workbooks and sheets by name, ranges
// by address, so that it keeps its meaning whatever becomes active.
AppleEventDescriptor specifierOf(const Object& object);
AppleEventDescriptor specifierOf(const SheetRef& sheet);
AppleEventDescriptor specifierOf(const RangeRef& range);

// As the workbook lists it: "Rate", or "Sheet2!Rate" for a sheet's own.
std::string listedName(const DefinedName& name);

}  // namespace quorin::host
