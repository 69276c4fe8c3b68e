#include "kit/platform/Thread.h"

#include <atomic>
#include <sstream>
#include <thread>

#include "kit/platform/Fatal.h"

namespace quorin {
namespace {

thread_local std::string threadName;
std::atomic<std::thread::id> mainThread{};
std::atomic<ThreadNamed> onThreadNamed{};

}  // namespace

void nameCurrentThread(std::string name) {
  threadName = std::move(name);
  if (const ThreadNamed action = onThreadNamed) action(threadName);
}

void setOnThreadNamed(ThreadNamed action) {
  onThreadNamed = action;
}

std::string currentThreadName() {
  if (!threadName.empty()) return "\"" + threadName + "\"";
  if (MainThread::isCurrent()) return "\"main\"";
  std::ostringstream text;
  text << "thread " << std::this_thread::get_id();
  return text.str();
}

void stopForWrongThread(std::string_view what, std::string_view owner) {
  fatal(std::string(what) + " belongs on the thread \"" + std::string(owner) +
        "\" but was called on " + currentThreadName());
}

namespace MainThread {

void record() {
  mainThread = std::this_thread::get_id();
}

bool isCurrent() {
  return mainThread.load() == std::this_thread::get_id();
}

void require(std::string_view what) {
  if (!isCurrent()) stopForWrongThread(what, "main");
}

void forbid(std::string_view what) {
  if (!isCurrent()) return;
  fatal(std::string(what) + " belongs on any thread but \"main\" and was called on " +
        currentThreadName());
}

}  // namespace MainThread
}  // namespace quorin
