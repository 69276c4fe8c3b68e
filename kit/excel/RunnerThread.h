// RunnerThread: the thread "qx.excel". It makes the script runner, compiles the library with it,
// and then does what it is handed, one piece after another, until it is stopped.
//
// Owned by ExcelThread. A runner that is stuck in Excel cannot be interrupted: when it does not
// return within the time allowed at destruction, the thread is given up, keeps only what it shares
// with nobody else, and ends by itself as soon as the runner returns.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "kit/excel/ScriptRunner.h"
#include "kit/excel/Semaphore.h"

namespace quorin {

class RunnerThread {
 public:
  using Work = std::function<void(ScriptRunner&)>;

  // Starts the thread. `stopWait` is how long the destructor waits for it.
  RunnerThread(ScriptRunnerFactory factory, std::string source, CallClock& clock,
               CallClock::Duration stopWait);

  // Stops the thread after the work in hand; what has not begun by then is dropped.
  ~RunnerThread();
  RunnerThread(const RunnerThread&) = delete;
  RunnerThread& operator=(const RunnerThread&) = delete;

  // Waits for the end of compiling. False when that did not come in time.
  bool waitUntilCompiled(CallClock::Duration atMost);

  // What the runner told of a failed compile; nothing before the end of compiling.
  std::optional<ScriptErrorInfo> compileFailure() const;

  // Hands work to the thread. Any thread may post. Work must not throw.
  void post(Work work);

  // Joins the threads that were given up: for those who have seen to it that their runners return.
  static void joinAbandoned();

 private:
  struct Shared;
  static void run(const std::shared_ptr<Shared>& shared, const ScriptRunnerFactory& factory,
                  const std::string& source);

  CallClock& clock_;
  const CallClock::Duration stopWait_;
  std::shared_ptr<Shared> shared_;
  std::thread thread_;
};

}  // namespace quorin
