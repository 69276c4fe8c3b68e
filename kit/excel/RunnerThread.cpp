#include "kit/excel/RunnerThread.h"

#include <deque>
#include <exception>
#include <mutex>
#include <utility>
#include <vector>

#include "kit/platform/Thread.h"

namespace quorin {

namespace {

struct Abandoned {
  std::mutex mutex;
  std::vector<std::thread> threads;
};

// Never destroyed: destroying a thread that still runs would end the process with an abort.
Abandoned& abandoned() {
  static auto* const threads = new Abandoned;
  return *threads;
}

}  // namespace

struct RunnerThread::Shared {
  std::mutex mutex;
  std::condition_variable changed;
  std::deque<Work> work;
  bool stopping = false;
  std::optional<ScriptErrorInfo> compileFailure;
  Semaphore compiled;
  Semaphore ended;

  void post(Work item) {
    const std::lock_guard lock(mutex);
    if (stopping) return;
    work.push_back(std::move(item));
    changed.notify_one();
  }

  // The next piece of work, or nothing when the thread is to end.
  std::optional<Work> next() {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return stopping || !work.empty(); });
    if (stopping) return std::nullopt;
    Work item = std::move(work.front());
    work.pop_front();
    return item;
  }

  void stop() {
    std::deque<Work> dropped;
    const std::lock_guard lock(mutex);
    stopping = true;
    dropped.swap(work);
    changed.notify_one();
  }
};

RunnerThread::RunnerThread(ScriptRunnerFactory factory, std::string source, CallClock& clock,
                           CallClock::Duration stopWait)
    : clock_(clock), stopWait_(stopWait), shared_(std::make_shared<Shared>()) {
  thread_ = std::thread([shared = shared_, make = std::move(factory), text = std::move(source)] {
    nameCurrentThread("qx.excel");
    run(shared, make, text);
    shared->ended.signal();
  });
}

RunnerThread::~RunnerThread() {
  shared_->stop();
  if (clock_.wait(shared_->ended, stopWait_)) {
    thread_.join();
    return;
  }
  Abandoned& given = abandoned();
  const std::lock_guard lock(given.mutex);
  given.threads.push_back(std::move(thread_));
}

bool RunnerThread::waitUntilCompiled(CallClock::Duration atMost) {
  return clock_.wait(shared_->compiled, atMost);
}

std::optional<ScriptErrorInfo> RunnerThread::compileFailure() const {
  const std::lock_guard lock(shared_->mutex);
  return shared_->compileFailure;
}

void RunnerThread::post(Work work) {
  shared_->post(std::move(work));
}

void RunnerThread::joinAbandoned() {
  std::vector<std::thread> threads;
  {
    Abandoned& given = abandoned();
    const std::lock_guard lock(given.mutex);
    threads.swap(given.threads);
  }
  for (std::thread& thread : threads) thread.join();
}

void RunnerThread::run(const std::shared_ptr<Shared>& shared, const ScriptRunnerFactory& factory,
                       const std::string& source) {
  // Whoever keeps the post function, a listener of the spreadsheet say, may outlive the thread.
  const CallThreadPost post = [weak = std::weak_ptr(shared)](std::function<void()> work) {
    if (const auto thread = weak.lock())
      thread->post([task = std::move(work)](ScriptRunner&) { task(); });
  };

  std::unique_ptr<ScriptRunner> runner;
  std::optional<ScriptErrorInfo> failure;
  try {
    runner = factory(post);
    failure = runner ? runner->compile(source) : ScriptErrorInfo{};
  } catch (const std::exception& error) {
    failure = ScriptErrorInfo{std::nullopt, error.what()};
  } catch (...) {
    failure = ScriptErrorInfo{};
  }
  {
    const std::lock_guard lock(shared->mutex);
    shared->compileFailure = std::move(failure);
  }
  shared->compiled.signal();
  if (!runner) return;
  while (const std::optional<Work> work = shared->next()) (*work)(*runner);
}

}  // namespace quorin
