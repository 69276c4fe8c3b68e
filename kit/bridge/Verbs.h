// The verb table: every verb of the page with the check of its arguments and the method that
// serves it. Constant; any thread.
#pragma once

#include <string_view>

#include "kit/bridge/Bridge.h"

namespace quorin {

struct Verb {
  std::string_view name;
  bool (*accepts)(const Bridge::Args& args);
  JSONValue (*run)(Bridge& bridge, const Bridge::Args& args);  // only with accepted arguments
};

// By exact, case-sensitive comparison; a null pointer when there is no such verb.
const Verb* findVerb(std::string_view name);

}  // namespace quorin
