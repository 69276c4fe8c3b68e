// The one part of the engine that two threads share.
#include <atomic>
#include <thread>

#include "tests/script/EngineFixture.h"

namespace quorin::script {
namespace {

class Cancelling : public EngineFixture {};

TEST_F(Cancelling, EndsALoopFromAnotherThread) {
  std::atomic<bool> running = false;
  excel.answer = [&](const AppleEvent&) {
    running = true;
    return AppleEventReply{AppleEventDescriptor::integer(1), {}};
  };
  Script script = compiled(
      "on spin()\ntell application \"Microsoft Excel\" to calculate\nrepeat\nend repeat\nend spin");
  std::thread stopper([&] {
    while (!running) std::this_thread::yield();
    script.cancel();
  });
  EXPECT_EQ(show(script.call("spin", {})), "error -128: User canceled.");
  stopper.join();
}

}  // namespace
}  // namespace quorin::script
