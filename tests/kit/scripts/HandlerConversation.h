// HandlerConversation: the library, compiled and run by a script runner against one Excel, for the
// contract suite of the handlers. Used on one thread.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "kit/excel/ScriptRunner.h"
#include "tests/kit/scripts/HandlerRequests.h"

namespace quorin {

class HandlerConversation {
 public:
  // Selects cells of a sheet of the workbook, as the user does.
  using GoTo = std::function<void(const std::string& sheet, const std::string& selection)>;

  // `book` is open in the Excel that `runner` reaches and `goTo` moves about in.
  HandlerConversation(std::unique_ptr<ScriptRunner> runner, GoTo goTo, std::string book);

  // Takes the user to where the request wants them, and makes it. What it answers has the
  // workbook's name in place of "{book}", and so has what is expected of it; an answer that is as
  // expected but for the numbers that "*" stands for is given as what is expected.
  std::string answer(const HandlerRequest& request);
  std::string expected(const HandlerRequest& request) const;

 private:
  const std::unique_ptr<ScriptRunner> runner_;
  const GoTo goTo_;
  const std::string book_;
};

// The request in one line, for messages and lists of differences: `Data!A1 qx_evaluate ["1+1"]`.
std::string described(const HandlerRequest& request);

}  // namespace quorin
