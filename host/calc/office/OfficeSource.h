// OfficeSource: where the office comes from, the user's running one or a private one.
// Used on the call thread; isRunning() and interrupt() may come from any thread.
#pragma once

#include <string>
#include <sys/types.h>

namespace quorin::host::calc {

// An office that listens: its process and the name of its pipe.
struct OfficeAddress {
  pid_t process = 0;
  std::string pipe;
};

class OfficeSource {
 public:
  virtual ~OfficeSource() = default;

  virtual bool isRunning() = 0;  // at once, without asking the office

  // Sees to it that an office listens. Throws SpreadsheetError: -600 when there is none, -1743 when
  // it cannot be reached, -1712 when it does not answer in time. Never starts the user's office.
  virtual OfficeAddress open() = 0;

  virtual void interrupt() {}  // makes an open() in progress give up soon
};

}  // namespace quorin::host::calc
