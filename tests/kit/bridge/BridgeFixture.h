// A Bridge over an Excel that answers as the test says, with a log that can be read back.
#pragma once

#include <atomic>
#include <gmock/gmock.h>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "kit/bridge/Bridge.h"
#include "kit/value/Marshal.h"
#include "tests/fakes/FakeRunner.h"
#include "tests/fakes/FaultyFileSystem.h"
#include "tests/fakes/LogLines.h"
#include "tests/fakes/ScriptedClock.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin {

// For the messages of failed expectations.
inline void PrintTo(const JSONValue& value, std::ostream* out) {
  *out << Marshal::encode(value);
}
inline void PrintTo(const Bridge::Reply& reply, std::ostream* out) {
  *out << (reply.ok ? "ok " : "failed ") << Marshal::encode(reply.payload);
}

class FakeTarget : public TargetApplication {
 public:
  bool isRunning() override {
    if (broken) throw std::runtime_error("no list of processes");
    return running;
  }
  std::atomic<bool> running = true;
  std::atomic<bool> broken = false;
};

class BridgeFixture : public testing::Test {
 protected:
  using Array = JSONValue::Array;
  using Object = JSONValue::Object;

  static JSONValue error(const std::string& kind, const std::string& message) {
    return Object{{"kind", kind}, {"message", message}};
  }

  static JSONValue list(Array items) { return items; }

  // The handlers that were called, in order.
  std::vector<std::string> handlers() const {
    std::vector<std::string> names;
    for (const fakes::FakeExcel::Call& call : excel_.calls()) names.push_back(call.handler);
    return names;
  }

  // The next handler call does not come back in time; the runner is let go afterwards.
  void timesOut(const std::string& handler) {
    excel_.answer(handler, [](const AppleEvent&) { return ScriptReply{}; });
    clock_.timesOut();
  }

  fakes::FakeExcel excel_;
  fakes::LogLines log_;
  fakes::ScriptedClock clock_;
  FakeTarget target_;
  TemporaryFolder folder_;
  FaultyFileSystem files_;
  HighlightStore store_{folder_ / "highlights.json", files_, &log_.log()};
  UnhideStore unhide_{folder_ / "unhidden.json", files_, &log_.log()};
  Bridge::Date now_ = Bridge::Date(std::chrono::hours(480000));
  ExcelThread thread_{excel_.factory(), log_.log(), {.source = "on run", .clock = &clock_}};
  Bridge bridge_{thread_, log_.log(), store_, unhide_, target_, [this] { return now_; }};
};

}  // namespace quorin
