// BridgeShapes for deep evaluation: which plans Excel is asked for, and the replies. Failures are
// told inside a reply that is not an error. Pure functions for any thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "kit/value/JSONValue.h"

namespace quorin::BridgeShapes {

// Why a plan of formula bodies is refused: it is empty, has more than 40 entries, or one of more
// than 254 characters. None when Excel may have it.
std::optional<std::string> deepEvalRefusal(const std::vector<std::string>& plan);

// {"ok": false, "kind", "message"}.
JSONValue deepEvalFailure(const std::string& kind, const std::string& message);

// The same from the number of an error: "refused" for the handler's own refusals (-9005 to -9001),
// "timeout" (-9990, -1712), "transport" for any other, with its code for -9993.
JSONValue deepEvalFailure(int code, const std::string& message);

// {"ok": false, "kind": "transport", "message", "code": -9993}: an expression that reaches out of
// the workbook, and that the user did not ask for. Of "evaluate" too.
JSONValue onlyWhenAskedFailure(const std::string& message);

// {"ok": true, "value"}, or a failure when the value holds what could not be marshalled.
JSONValue deepEvalObject(JSONValue result);

}  // namespace quorin::BridgeShapes
