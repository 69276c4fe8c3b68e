// The table of verbs: whatever the page may ask for, with what is to be known of each. The page has
// its own half of it in web/src/core/protocol/traits.ts. Constant; any thread.
#pragma once

#include <span>
#include <string_view>

#include "kit/bridge/Bridge.h"

namespace quorin {

enum class AnsweredBy {
  bridge,       // the bridge, on its queue
  panel,        // the panel, at once
  application,  // the application's settings and end, at once
  files,        // the panel's reviews and reports, on the file queue
};

struct Verb {
  std::string_view name;
  AnsweredBy answeredBy = AnsweredBy::bridge;

  // Of the bridge's verbs alone.
  double seconds = 0;  // that each of its handler calls may take, waiting for its turn included
  bool movesSelection = false;       // the poller then leaves Excel alone for half a second
  bool answersWithoutExcel = false;  // else it is refused where Excel does not run
  bool (*accepts)(const Bridge::Args& args) = nullptr;
  JSONValue (*run)(Bridge& bridge, const Bridge::Args& args) = nullptr;  // with accepted arguments
};

std::span<const Verb> verbs();

// By exact, case-sensitive comparison; a null pointer when there is no such verb.
const Verb* findVerb(std::string_view name);

}  // namespace quorin
