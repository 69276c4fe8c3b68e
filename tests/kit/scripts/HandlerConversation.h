// HandlerConversation: the library, compiled and run by the script engine against one Excel, for
// the contract suite of the handlers. Used on one thread.
#pragma once

#include <memory>
#include <string>

#include "host/EngineRunner.h"
#include "host/Spreadsheet.h"
#include "tests/kit/scripts/HandlerRequests.h"

namespace quorin {

class HandlerConversation {
 public:
  // `spreadsheet` is what `excel` works on, with the workbook `book` open in it; it outlives this.
  HandlerConversation(std::unique_ptr<script::Application> excel, host::Spreadsheet& spreadsheet,
                      std::string book);

  // Takes the user to where the request wants them, and makes it. What it answers has the
  // workbook's name in place of "{book}", and so has what is expected of it; an answer that is as
  // expected but for the numbers that "*" stands for is given as what is expected.
  std::string answer(const HandlerRequest& request);
  std::string expected(const HandlerRequest& request) const;

 private:
  host::Spreadsheet& spreadsheet_;
  const std::string book_;
  host::EngineRunner runner_;
};

// The request in one line, for messages and lists of differences: `Data!A1 qx_evaluate ["1+1"]`.
std::string described(const HandlerRequest& request);

}  // namespace quorin
