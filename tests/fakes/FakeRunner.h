// FakeRunner: a ScriptRunner without a script. What it answers is put into a FakeExcel, which also
// keeps what it was asked. The FakeExcel outlives the runner; safe to use from several threads.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kit/excel/ScriptRunner.h"
#include "kit/value/JSONValue.h"

namespace quorin::fakes {

class FakeExcel {
 public:
  struct Call {
    std::string handler;
    JSONValue arguments;  // an array
    bool operator==(const Call&) const = default;
  };
  using Answer = std::function<ScriptReply(const AppleEvent&)>;

  // Answers of one handler, in order; the last one is given again and again. A handler without an
  // answer raises -1708.
  void answer(const std::string& handler, Answer answer);
  void returns(const std::string& handler, JSONValue value);
  void fails(const std::string& handler, std::optional<int> number,
             std::optional<std::string> message);

  // Makes the compile fail.
  void failCompile(ScriptErrorInfo error);
  // Runs on the call thread when the library is compiled.
  void onCompile(std::function<void()> action);

  std::vector<Call> calls() const;
  std::vector<AppleEvent> events() const;
  std::vector<CallTerms> terms() const;      // of each call; they may be asked while it runs
  std::vector<std::string> threads() const;  // names of the threads that compiled and executed
  std::string source() const;                // as it was given to the compiler
  int runnersAlive() const;
  CallThreadPost post() const;  // what the factory was given

  ScriptRunnerFactory factory();

 private:
  class Runner;

  mutable std::mutex mutex_;
  std::map<std::string, std::deque<Answer>> answers_;
  std::optional<ScriptErrorInfo> compileError_;
  std::function<void()> onCompile_;
  std::vector<AppleEvent> events_;
  std::vector<CallTerms> terms_;
  std::vector<std::string> threads_;
  std::string source_;
  int runnersAlive_ = 0;
  CallThreadPost post_;
};

}  // namespace quorin::fakes
