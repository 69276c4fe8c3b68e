#include "kit/shapes/WorkbookShapes.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "kit/shapes/ShapeError.h"
#include "kit/value/Marshal.h"

namespace quorin::BridgeShapes {

namespace {

using Array = JSONValue::Array;

constexpr std::size_t mappedSheets = 50;

// Names that Excel keeps for itself: print areas, functions and parameters of newer releases.
bool isInternal(const JSONValue& name) {
  constexpr std::string_view prefixes[] = {"_xlnm", "_xlfn", "_xlpm"};
  const std::string* const text = name.string();
  return text && std::any_of(std::begin(prefixes), std::end(prefixes),
                             [text](std::string_view prefix) { return text->starts_with(prefix); });
}

bool hasShape(const JSONValue& answer) {
  const Array* const items = answer.array();
  if (!items || items->size() != 5 || !(*items)[0].string()) return false;
  const auto isList = [](const JSONValue& item) { return item.array() != nullptr; };
  return std::all_of(items->begin() + 1, items->end(), isList) &&
         (*items)[3].array()->size() == (*items)[4].array()->size();
}

Array sheetsOf(const Array& names, const Array& usedRanges) {
  Array sheets;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string* const used = i < usedRanges.size() ? usedRanges[i].string() : nullptr;
    sheets.push_back(JSONValue::Object{
        {"name", names[i]}, {"usedRange", used && !used->empty() ? usedRanges[i] : nullptr}});
  }
  return sheets;
}

Array namesOf(const Array& names, const Array& references) {
  Array shown;
  for (std::size_t i = 0; i < names.size(); ++i)
    if (!isInternal(names[i]))
      shown.push_back(JSONValue::Object{{"name", names[i]}, {"refersTo", references[i]}});
  return shown;
}

}  // namespace

JSONValue workbookMapObject(JSONValue answer) {
  if (Marshal::containsUnmarshalled(answer))
    throw ShapeError("workbookMap payload could not be marshalled");
  if (!hasShape(answer)) throw ShapeError("workbookMap payload has an unexpected shape");
  const Array& items = *answer.array();
  const Array& sheetNames = *items[1].array();
  JSONValue::Object map;
  map["book"] = items[0];
  map["sheets"] = sheetsOf(sheetNames, *items[2].array());
  map["sheetsTruncated"] = sheetNames.size() > mappedSheets;
  map["names"] = namesOf(*items[3].array(), *items[4].array());
  return map;
}

}  // namespace quorin::BridgeShapes
