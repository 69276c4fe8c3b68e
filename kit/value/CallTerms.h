// CallTerms: what a caller lays down for one handler call beside its arguments. They hold for that
// call alone. A value; `isOver` may be asked on the thread that serves the call.
#pragma once

#include <functional>

namespace quorin {

struct CallTerms {
  // The user asked for this very part: it may call functions that reach out of the workbook.
  bool asked = false;
  // True if the caller has given the call up, so that nobody waits for what it will say. Empty:
  // never.
  std::function<bool()> isOver = {};
};

// The number of the refusal to call a function that reaches out of the workbook, and that the user
// did not ask for.
inline constexpr int onlyWhenAsked = -9993;

}  // namespace quorin
