// ExcelThread: every conversation with Excel. One dedicated thread compiles the handler library
// once and runs its handlers; callers on other threads wait for the answer, one at a time, with a
// time-out. A call that outlives its time-out stays pending: the next caller waits for it first, so
// that Excel never works on two calls at once, and its late answer is dropped.
//
// Any thread but the main thread may call; calling from the main thread stops the process, for it
// would freeze the interface while Excel is slow. Termination has its own entry, with two seconds.
// Every failure is an ExcelError.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <variant>

#include "kit/excel/CallBox.h"
#include "kit/excel/ExcelError.h"
#include "kit/excel/RunnerThread.h"
#include "kit/excel/ScriptRunner.h"
#include "kit/support/DiagLog.h"
#include "kit/support/SerialQueue.h"
#include "kit/value/JSONValue.h"

namespace quorin {

class ExcelThread {
 public:
  struct Options {
    std::string source;          // the library to compile; empty: ExcelScript::source()
    CallClock* clock = nullptr;  // must outlive the thread; none: the steady clock
    CallClock::Duration compileWait = std::chrono::seconds(30);
    CallClock::Duration stopWait = std::chrono::seconds(2);  // for the thread, at destruction
  };

  // Starts the thread and waits until the library has been compiled, at most for the compile wait.
  // Returns in either case. The factory and its runner are used on the thread alone.
  ExcelThread(ScriptRunnerFactory factory, DiagLog& log, Options options);
  ExcelThread(ScriptRunnerFactory factory, DiagLog& log);
  ~ExcelThread();
  ExcelThread(const ExcelThread&) = delete;
  ExcelThread& operator=(const ExcelThread&) = delete;

  // The one that `main` set up. Asking before that stops the process.
  static ExcelThread& shared();
  static void setShared(ExcelThread* thread);

  // Set when the library did not compile, or not in time; every call then fails with -9991.
  std::optional<std::string> compileError() const;

  // Runs a handler with these arguments and gives its result (null when it returned nothing).
  // `timeout` in seconds. Never on the main thread. `asked` holds for this call alone: the user
  // asked for this very part (CallTerms).
  JSONValue call(const std::string& handler, const JSONValue::Array& args, double timeout,
                 bool asked = false);

  // The same for the main thread while the application terminates: two seconds for everything,
  // waiting for other callers included.
  JSONValue callForTerminate(const std::string& handler, const JSONValue::Array& args);

  // A time on the thread's clock.
  using Deadline = CallClock::Duration;

  // Termination begins: every other call that has not had its turn yet is refused from now on, with
  // -9992, so that nothing is done to the workbooks behind the back of the last calls. Any thread.
  // Gives the end of the two seconds that there are for all of them.
  Deadline beginTermination();
  bool isTerminating() const { return terminating_; }

  // callForTerminate as one of several that share a deadline. The last one may take 0.1 s longer.
  JSONValue callForTerminate(const std::string& handler, const JSONValue::Array& args,
                             Deadline deadline);

  // Waits for a semaphore until the deadline; true when it was signalled in time.
  bool waitUntil(Semaphore& semaphore, Deadline deadline);

 private:
  using Duration = CallClock::Duration;

  // What a call came to, on its way from the gate to the caller: errors are thrown only there.
  struct Failure {
    int code;
    std::string message;
  };
  using Outcome = std::variant<JSONValue, Failure>;

  JSONValue callForTerminate(const std::string& handler, const JSONValue::Array& args,
                             Duration start, Duration budget);
  Outcome invoke(const std::string& handler, const JSONValue::Array& args, Duration timeout,
                 bool asked = false);
  static JSONValue resultOf(Outcome outcome);
  static Failure stillBusy(Duration waited);
  bool waitForPending(Semaphore& semaphore, Duration timeout);
  static void execute(CallBox& box, ScriptRunner& runner);
  static std::string describe(const ScriptErrorInfo& errorInfo);

  CallClock steadyClock_;
  CallClock& clock_;
  DiagLog& log_;
  std::optional<std::string> compileError_;  // written by the constructor alone
  RunnerThread thread_;
  std::atomic<bool> terminating_ = false;
  std::shared_ptr<CallBox> pending_;  // touched inside the gate alone
  SerialQueue gate_;
};

}  // namespace quorin
