// Session: what the answers to Apple events work on: the spreadsheet, and the little that Excel
// itself remembers between events. Used on the call thread.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/Spreadsheet.h"
#include "kit/value/AppleEventDescriptor.h"

namespace quorin::host {

struct Session {
  Spreadsheet& spreadsheet;
  bool displayAlerts = true;
  bool screenUpdating = true;
  std::vector<std::string> windows = {};  // the workbooks whose windows were given an id, in order
  bool inHandler = false;
  std::string toldBook = {};  // the active workbook as the handler was told it; empty for none
};

// The failure of one event. Without a message the scripting system writes its own for the number,
// from the offending object.
class EventError : public std::runtime_error {
 public:
  explicit EventError(int number, std::optional<AppleEventDescriptor> offender = std::nullopt,
                      const std::string& message = {})
      : std::runtime_error(message), number_(number), offender_(std::move(offender)) {}
  int number() const { return number_; }
  const std::optional<AppleEventDescriptor>& offender() const { return offender_; }

 private:
  int number_;
  std::optional<AppleEventDescriptor> offender_;
};

}  // namespace quorin::host
