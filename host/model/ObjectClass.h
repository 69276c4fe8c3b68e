// What each class of Excel's object model answers to: tables of properties and elements, keyed by
// the dictionary's codes. One source file holds the tables of one class; a new class is a new file,
// a new alternative of Object and a new overload of classTable.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/model/Object.h"
#include "host/model/Session.h"

namespace quorin::host {

template <typename T>
struct PropertyEntry {
  enum class Kind { fixed, dynamic };

  FourCharCode code;
  // Missing value where Excel has nothing to give.
  Resolved (*get)(Session&, const T&);
  void (*set)(Session&, const T&, const AppleEventDescriptor&) = nullptr;  // none: read-only
  // `get` of a dynamic property answers the property's specifier, so that a variable keeps meaning
  // whatever is active when it is used.
  Kind kind = Kind::fixed;
};

template <typename T>
struct ElementEntry {
  FourCharCode code;
  long long (*count)(Session&, const T&);
  Object (*at)(Session&, const T&, long long index);  // 1-based, within the count
  // Nothing when there is no element of that name; a null pointer when there is no such form.
  std::optional<Object> (*named)(Session&, const T&, const std::string& name) = nullptr;
  // All of them in one go; a null pointer where going through `at` asks the spreadsheet nothing.
  std::vector<Object> (*all)(Session&, const T&) = nullptr;
  // Nothing when there is no element of that id; a null pointer when there is no such form.
  std::optional<Object> (*identified)(Session&, const T&, long long id) = nullptr;
};

template <typename T>
struct ClassTable {
  FourCharCode code;  // its `class`
  std::span<const PropertyEntry<T>> properties;
  std::span<const ElementEntry<T>> elements;

  const PropertyEntry<T>* property(FourCharCode wanted) const {
    for (const auto& entry : properties)
      if (entry.code == wanted) return &entry;
    return nullptr;
  }
  const ElementEntry<T>* element(FourCharCode wanted) const {
    for (const auto& entry : elements)
      if (entry.code == wanted) return &entry;
    return nullptr;
  }
};

const ClassTable<ApplicationObject>& classTable(const ApplicationObject&);
const ClassTable<WorkbookObject>& classTable(const WorkbookObject&);
const ClassTable<SheetObject>& classTable(const SheetObject&);
const ClassTable<WindowObject>& classTable(const WindowObject&);
const ClassTable<RangeObject>& classTable(const RangeObject&);
const ClassTable<NamedItemObject>& classTable(const NamedItemObject&);
const ClassTable<ConditionObject>& classTable(const ConditionObject&);
const ClassTable<InteriorObject>& classTable(const InteriorObject&);

}  // namespace quorin::host
