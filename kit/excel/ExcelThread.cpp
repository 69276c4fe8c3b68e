#include "kit/excel/ExcelThread.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <exception>
#include <utility>

#include "kit/excel/ExcelScript.h"
#include "kit/platform/Fatal.h"
#include "kit/platform/Thread.h"
#include "kit/value/Marshal.h"

namespace quorin {

namespace {

constexpr auto leastBudget = std::chrono::milliseconds(100);
constexpr auto slowCall = std::chrono::milliseconds(80);
constexpr auto terminateBudget = std::chrono::seconds(2);

ExcelThread* sharedThread = nullptr;  // set by `main` before any other thread starts

CallClock::Duration durationOf(double seconds) {
  constexpr double longest = 1e6;  // keeps the nanoseconds far from overflow
  const double bounded = std::isnan(seconds) ? 0 : std::clamp(seconds, 0.0, longest);
  return CallClock::Duration(std::llround(bounded * 1e9));
}

std::string wholeSeconds(CallClock::Duration duration) {
  return std::to_string(std::chrono::duration_cast<std::chrono::seconds>(duration).count()) + "s";
}

std::string lowerCased(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return text;
}

// The script language's subroutine call: the handler by name, its arguments by position.
AppleEvent subroutineCall(const std::string& handler, const JSONValue::Array& args) {
  AppleEvent event;
  event.eventClass = fourCharCode("ascr");
  event.eventID = fourCharCode("psbr");
  event.parameters.push_back(
      {fourCharCode("snam"), AppleEventDescriptor::text(lowerCased(handler))});
  event.parameters.push_back({keyDirectObject, Marshal::toDescriptor(JSONValue(args))});
  return event;
}

}  // namespace

ExcelThread::ExcelThread(ScriptRunnerFactory factory, DiagLog& log)
    : ExcelThread(std::move(factory), log, Options()) {}

ExcelThread::ExcelThread(ScriptRunnerFactory factory, DiagLog& log, Options options)
    : clock_(options.clock ? *options.clock : steadyClock_),
      log_(log),
      thread_(std::move(factory),
              options.source.empty() ? ExcelScript::source() : std::move(options.source), clock_,
              options.stopWait),
      gate_("com.quorin.app.excel.gate") {
  if (!thread_.waitUntilCompiled(options.compileWait)) {
    compileError_ =
        "AppleScript compile did not finish within " + wholeSeconds(options.compileWait);
  } else if (const auto failure = thread_.compileFailure()) {
    compileError_ = "AppleScript compile failed: " + describe(*failure);
  }
}

ExcelThread::~ExcelThread() {
  if (sharedThread == this) sharedThread = nullptr;
}

ExcelThread& ExcelThread::shared() {
  if (!sharedThread) fatal("ExcelThread::shared was asked for before main set it up");
  return *sharedThread;
}

void ExcelThread::setShared(ExcelThread* thread) {
  sharedThread = thread;
}

std::optional<std::string> ExcelThread::compileError() const {
  return compileError_;
}

JSONValue ExcelThread::call(const std::string& handler, const JSONValue::Array& args,
                            double timeout, bool asked) {
  MainThread::forbid("ExcelThread::call");
  Outcome outcome;
  gate_.sync([&] {
    outcome = terminating_ ? Outcome(Failure{ExcelError::terminating, "Quorin is quitting"})
                           : invoke(handler, args, durationOf(timeout), asked);
  });
  return resultOf(std::move(outcome));
}

ExcelThread::Deadline ExcelThread::beginTermination() {
  terminating_ = true;
  return clock_.now() + terminateBudget;
}

bool ExcelThread::waitUntil(Semaphore& semaphore, Deadline deadline) {
  return clock_.wait(semaphore, std::max(deadline - clock_.now(), Duration::zero()));
}

JSONValue ExcelThread::callForTerminate(const std::string& handler, const JSONValue::Array& args) {
  return callForTerminate(handler, args, clock_.now(), terminateBudget);
}

JSONValue ExcelThread::callForTerminate(const std::string& handler, const JSONValue::Array& args,
                                        Deadline deadline) {
  const Duration now = clock_.now();
  return callForTerminate(handler, args, now, std::max(deadline - now, Duration::zero()));
}

JSONValue ExcelThread::callForTerminate(const std::string& handler, const JSONValue::Array& args,
                                        Duration start, Duration budget) {
  // Shared with the gate: a call that never got its turn is left to it.
  struct Turn {
    std::atomic<bool> taken = false;
    Semaphore began;
    Semaphore ended;
    Outcome outcome;
  };
  const auto turn = std::make_shared<Turn>();
  gate_.post([this, turn, handler, args, start, budget] {
    if (turn->taken.exchange(true)) return;
    turn->began.signal();
    const Duration left = budget - (clock_.now() - start);
    turn->outcome = invoke(handler, args, std::max<Duration>(left, Duration::zero()));
    turn->ended.signal();
  });
  if (!clock_.wait(turn->began, budget) && !turn->taken.exchange(true))
    return resultOf(stillBusy(budget));
  turn->ended.wait();
  return resultOf(std::move(turn->outcome));
}

ExcelThread::Outcome ExcelThread::invoke(const std::string& handler, const JSONValue::Array& args,
                                         Duration timeout, bool asked) {
  if (compileError_) return Failure{ExcelError::notCompiled, *compileError_};

  Duration waited = Duration::zero();
  if (pending_) {
    const Duration start = clock_.now();
    if (!waitForPending(pending_->done, timeout)) return stillBusy(timeout);
    waited = clock_.now() - start;
    pending_.reset();
  }
  const auto box = std::make_shared<CallBox>(subroutineCall(handler, args), asked);
  const Duration budget = std::max<Duration>(timeout - waited, leastBudget);
  thread_.post([box](ScriptRunner& runner) { execute(*box, runner); });

  const Duration sent = clock_.now();
  const bool inTime = waitForPending(box->done, budget);
  const Duration took = clock_.now() - sent;
  if (took >= slowCall) {
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(took).count();
    log_.log("PERF", handler + " " + std::to_string(milliseconds) + "ms");
  }
  if (!inTime) {
    box->givenUp = true;
    pending_ = box;
    return Failure{ExcelError::timedOut, "Excel did not respond within " + wholeSeconds(budget)};
  }
  if (box->error)
    return Failure{box->error->number.value_or(-1),
                   box->error->message.value_or("AppleScript error")};
  return box->result ? Marshal::fromDescriptor(*box->result) : JSONValue();
}

JSONValue ExcelThread::resultOf(Outcome outcome) {
  if (const Failure* const failure = std::get_if<Failure>(&outcome))
    throw ExcelError(failure->code, failure->message);
  return std::get<JSONValue>(std::move(outcome));
}

ExcelThread::Failure ExcelThread::stillBusy(Duration waited) {
  return {ExcelError::timedOut,
          "Excel is still busy with the previous call after " + wholeSeconds(waited)};
}

bool ExcelThread::waitForPending(Semaphore& semaphore, Duration timeout) {
  return clock_.wait(semaphore, timeout);
}

void ExcelThread::execute(CallBox& box, ScriptRunner& runner) {
  try {
    runner.prepare({box.asked, [&box] { return box.givenUp.load(); }});
    ScriptReply reply = runner.execute(box.event);
    box.result = std::move(reply.result);
    box.error = std::move(reply.error);
  } catch (const std::exception& error) {
    box.error = ScriptErrorInfo{std::nullopt, error.what()};
  } catch (...) {
    box.error = ScriptErrorInfo{};
  }
  box.done.signal();
}

std::string ExcelThread::describe(const ScriptErrorInfo& errorInfo) {
  return std::to_string(errorInfo.number.value_or(-1)) + ": " +
         errorInfo.message.value_or("unknown error");
}

}  // namespace quorin
