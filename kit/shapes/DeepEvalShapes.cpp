#include "kit/shapes/DeepEvalShapes.h"

#include <utility>

#include "kit/value/CallTerms.h"
#include "kit/value/EventErrors.h"
#include "kit/value/Marshal.h"
#include "kit/value/Unicode.h"

namespace quorin::BridgeShapes {

namespace {

constexpr std::size_t mostEntries = 40;
constexpr std::size_t longestFormula = 255;  // characters, the "=" in front included

}  // namespace

std::optional<std::string> deepEvalRefusal(const std::vector<std::string>& plan) {
  if (plan.empty()) return "deep-eval plan empty";
  if (plan.size() > mostEntries) return "deep-eval exceeds 40 entries";
  for (const std::string& entry : plan)
    if (graphemeCount(entry).value_or(entry.size()) + 1 > longestFormula)
      return "deep-eval entry exceeds 255 characters";
  return std::nullopt;
}

JSONValue deepEvalFailure(const std::string& kind, const std::string& message) {
  return JSONValue::Object{{"ok", false}, {"kind", kind}, {"message", message}};
}

JSONValue deepEvalFailure(int code, const std::string& message) {
  constexpr int firstRefusal = -9001, lastRefusal = -9005;
  constexpr int callTimedOut = -9990;
  if (code >= lastRefusal && code <= firstRefusal) return deepEvalFailure("refused", message);
  if (code == callTimedOut || code == eventErrors::timedOut)
    return deepEvalFailure("timeout", message);
  if (code == onlyWhenAsked) return onlyWhenAskedFailure(message);
  return deepEvalFailure("transport", message);
}

JSONValue onlyWhenAskedFailure(const std::string& message) {
  return JSONValue::Object{{"ok", false},
                           {"kind", "transport"},
                           {"message", message},
                           {"code", static_cast<double>(onlyWhenAsked)}};
}

JSONValue deepEvalObject(JSONValue result) {
  if (Marshal::containsUnmarshalled(result))
    return deepEvalFailure("transport", "deep-eval result could not be marshalled");
  JSONValue::Object object;
  object["ok"] = true;
  object["value"] = std::move(result);
  return object;
}

}  // namespace quorin::BridgeShapes
