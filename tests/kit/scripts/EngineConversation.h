// The conversation of the handler contract through the script engine.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "host/Address.h"
#include "host/EngineRunner.h"
#include "host/Spreadsheet.h"
#include "tests/kit/scripts/HandlerConversation.h"

namespace quorin {

// `spreadsheet` is what `excel` works on, with the workbook `book` open in it; it outlives the
// conversation.
inline std::unique_ptr<HandlerConversation> engineConversation(
    std::unique_ptr<script::Application> excel, host::Spreadsheet& spreadsheet,
    const std::string& book) {
  return std::make_unique<HandlerConversation>(
      std::make_unique<host::EngineRunner>(std::move(excel)),
      [&spreadsheet, book](const std::string& sheet, const std::string& selection) {
        spreadsheet.goTo({{book, sheet}, host::parseA1(selection).value()});
      },
      book);
}

}  // namespace quorin
