// MarksTurn: one at a time may change the records of marks and the marks themselves: the bridge
// queue's requests, and termination on the main thread.
#pragma once

#include "kit/excel/ExcelThread.h"
#include "kit/excel/Semaphore.h"

namespace quorin {

class MarksTurn {
 public:
  MarksTurn() { free_.signal(); }

  // Waits for the turn and holds it while it lives.
  class Hold {
   public:
    explicit Hold(MarksTurn& turn) : turn_(turn) { turn_.free_.wait(); }
    ~Hold() { turn_.release(); }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

   private:
    MarksTurn& turn_;
  };

  // Takes the turn if it comes before the deadline; then release() gives it back.
  bool takeBefore(ExcelThread& thread, ExcelThread::Deadline deadline) {
    return thread.waitUntil(free_, deadline);
  }
  void release() { free_.signal(); }

 private:
  Semaphore free_;
};

}  // namespace quorin
