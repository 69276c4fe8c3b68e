#include "kit/shapes/CellShapes.h"

#include <cmath>
#include <vector>

#include "kit/shapes/AddressShapes.h"
#include "kit/shapes/ShapeError.h"
#include "kit/value/EventErrors.h"
#include "kit/value/Marshal.h"

namespace quorin::BridgeShapes {

namespace {

JSONValue stateObject(std::string state) {
  return JSONValue::Object{{"state", JSONValue(std::move(state))}};
}

// Excel reports the formula of a constant cell as the constant itself, of a blank cell as "".
JSONValue formulaText(const JSONValue& item) {
  const std::string* text = item.string();
  return text && text->starts_with('=') ? item : JSONValue("");
}

bool isNonEmptyText(const JSONValue& item) {
  const std::string* text = item.string();
  return text && !text->empty();
}

}  // namespace

JSONValue probeObject(const JSONValue& answer) {
  const JSONValue::Array* items = answer.array();
  if (!items || items->size() != 5) return stateObject("busy");
  const std::string* state = items->front().string();
  if (!state) return stateObject("busy");
  if (*state != "ok") return stateObject(*state);

  std::vector<double> bounds;
  for (std::size_t i = 1; i < items->size(); ++i)
    if (const double* edge = (*items)[i].number(); edge && std::isfinite(*edge))
      bounds.push_back(*edge);
  if (bounds.size() != 4) return stateObject("ok");
  return JSONValue::Object{
      {"state", "ok"},
      {"excelWindow",
       JSONValue::Object{
           {"x1", bounds[0]}, {"y1", bounds[1]}, {"x2", bounds[2]}, {"y2", bounds[3]}}}};
}

std::string probeState(int errorCode) {
  return errorCode == eventErrors::notPermitted || errorCode == eventErrors::wouldRequireConsent
             ? "denied"
             : "busy";
}

JSONValue readCellObject(const JSONValue& answer) {
  if (Marshal::containsUnmarshalled(answer))
    throw ShapeError("readCell payload could not be marshalled");
  const JSONValue::Array* items = answer.array();
  if (!items || items->size() != 10 || !(*items)[2].string() || !(*items)[3].number() ||
      !(*items)[4].number())
    throw ShapeError("readCell payload has an unexpected shape");

  JSONValue::Object cell{
      {"book", (*items)[0]},
      {"sheet", (*items)[1]},
      {"addr", stripDollars(*(*items)[2].string())},
      {"row", (*items)[3]},
      {"col", (*items)[4]},
      {"formula", formulaText((*items)[5])},
      {"formulaLocal", formulaText((*items)[6])},
      {"value", (*items)[7]},
  };
  if (isNonEmptyText((*items)[8])) cell["selection"] = (*items)[8];
  if (isNonEmptyText((*items)[9])) cell["region"] = (*items)[9];
  return cell;
}

JSONValue pollCellObject(const JSONValue& answer) {
  const JSONValue::Array* items = answer.array();
  if (!items || items->size() != 3 || !(*items)[0].string() || !(*items)[1].string() ||
      !(*items)[2].string())
    throw ShapeError("pollCell payload has an unexpected shape");
  return payloadOf({*(*items)[0].string(), *(*items)[1].string(), *(*items)[2].string()});
}

CellPlace activePlace(const JSONValue& polled) {
  std::optional<CellPlace> place = cellPlace(polled);
  if (!place) throw ShapeError("pollCell gave no active sheet");
  return *std::move(place);
}

}  // namespace quorin::BridgeShapes
