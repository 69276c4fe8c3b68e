// TimedBridge: the bridge, which notes what each request of the page takes. Part of
// quorin_inspected alone.
#pragma once

#include <chrono>
#include <mutex>
#include <string>
#include <utility>

#include "kit/bridge/Bridge.h"

namespace quorin {

class TimedBridge : public Bridge {
 public:
  using Bridge::Bridge;

  Reply dispatch(const std::string& verb, const Args& args) override {
    const auto begun = std::chrono::steady_clock::now();
    Reply reply = Bridge::dispatch(verb, args);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begun;
    const std::lock_guard lock(mutex_);
    // One at a time: from a list of both g++ 14 believes that it reads behind the end.
    JSONValue::Array call;
    call.reserve(2);
    call.emplace_back(verb);
    call.emplace_back(took.count());
    calls_.emplace_back(std::move(call));
    return reply;
  }

  // [verb, seconds] of each request since the last time. Any thread.
  JSONValue take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(calls_, {});
  }

 private:
  std::mutex mutex_;
  JSONValue::Array calls_;
};

}  // namespace quorin
