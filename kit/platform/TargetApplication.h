// TargetApplication: the spreadsheet program that is audited.
#pragma once

namespace quorin {

class TargetApplication {
 public:
  virtual ~TargetApplication() = default;
  // True if it runs now. Any thread; answers at once, from what the system knows of processes, and
  // never asks the application itself.
  virtual bool isRunning() = 0;
};

}  // namespace quorin
