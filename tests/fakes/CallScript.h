// CallScript: the record of the calls that a fake received, and what the test wants to go wrong:
// errors, hangs and slowness at the n-th call or at every call of a name. The fake enters each call
// on its own thread; a test may read the record, or release a hang, from another.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "tests/fakes/ManualClock.h"

namespace quorin::fakes {

struct Fault {
  int number = 0;  // 0: no error
  std::string message = {};
  bool hangs = false;  // waits for release() before anything else
  std::chrono::milliseconds takes{0};
};

class CallScript {
 public:
  // Numbers count from 1, since the start or the last clear().
  void atCall(int number, Fault fault);
  void atEvery(const std::string& name, Fault fault);
  void release();                     // lets what hangs go on, and everything that would hang later
  void waitUntilHung();               // until a call hangs
  void clear();                       // forgets the record and all faults
  void useClock(ManualClock* clock);  // what slowness advances

  std::vector<std::string> calls() const;  // "values [Known.xlsx]Data!$A$1"
  std::size_t count() const;               // of them

  // The fake's side: records the call, then acts out its faults. Throws SpreadsheetError.
  void enter(const std::string& name, const std::string& detail = {});

 private:
  void actOut(const Fault& fault, std::unique_lock<std::mutex>& lock);

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<std::string> calls_;
  std::map<int, Fault> byNumber_;
  std::map<std::string, Fault> byName_;
  ManualClock* clock_ = nullptr;
  bool released_ = false;
  int hung_ = 0;
};

}  // namespace quorin::fakes
