#include "tests/app/contract/ApplicationContract.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace quorin::contract {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr int asPromised = 57, otherwise = 58;

// Ends its process, and tells by the status whether all was as promised until then.
class Ending : public ApplicationDelegate {
 public:
  using Asked = std::function<void(Ending&, GoOn)>;
  using Verdict = std::function<bool(const Ending&)>;
  Ending(Asked asked, Verdict verdict) : asked_(std::move(asked)), verdict_(std::move(verdict)) {}

  void applicationDidFinishLaunching() override {}
  void applicationShouldTerminate(GoOn goOn) override {
    ++times;
    began_ = Clock::now();
    asked_(*this, std::move(goOn));
  }
  void applicationWillTerminate() override { std::_Exit(verdict_(*this) ? asPromised : otherwise); }

  Clock::duration kept() const { return Clock::now() - began_; }

  int times = 0;
  bool wentOn = false;
  std::thread page;  // ends with the process

 private:
  Asked asked_;
  Verdict verdict_;
  Clock::time_point began_;
};

void terminate() {
  application().terminate();
}

void runUntilItEnds(Ending ending, const std::function<void()>& begin) {
  ::alarm(20);  // one that never ends outlives no test
  application().setDelegate(ending);
  const auto soon = applicationLoop().startTimer(1ms, TimerKind::once, begin);
  application().run();
  std::_Exit(otherwise);
}

// What has an upper bound of time is tried again on a machine with too much to do.
void expectAsPromised(const std::function<void()>& run) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  int status = 0;
  for (int attempt = 0; attempt < 3 && status != asPromised; ++attempt) {
    EXPECT_EXIT(
        run(),
        [&](int ended) {
          status = WIFEXITED(ended) ? WEXITSTATUS(ended) : -1;
          return true;
        },
        "");
  }
  EXPECT_EQ(status, asPromised);
}

TEST(ApplicationContractDeathTest, EndsAtOnceWhereNothingIsToBeShown) {
  expectAsPromised([] {
    runUntilItEnds({[](Ending&, const auto& goOn) { goOn(); },
                    [](const Ending& ending) {
                      return ending.times == 1 && ending.kept() < Ending::longestDelay;
                    }},
                   terminate);
  });
}

// What the page says comes from elsewhere, and reaches the main thread while the application waits.
TEST(ApplicationContractDeathTest, WaitsForItsDelegate) {
  expectAsPromised([] {
    runUntilItEnds({[](Ending& ending, auto goOn) {
                      ending.page = std::thread([&ending, goOn] {
                        std::this_thread::sleep_for(20ms);
                        applicationLoop().post([&ending, goOn] {
                          ending.wentOn = true;
                          goOn();
                        });
                      });
                    },
                    [](const Ending& ending) {
                      return ending.times == 1 && ending.wentOn &&
                             ending.kept() < Ending::longestDelay;
                    }},
                   terminate);
  });
}

TEST(ApplicationContractDeathTest, EndsWithoutADelegateThatKeepsIt) {
  expectAsPromised([] {
    runUntilItEnds({[](Ending&, const auto&) {},
                    [](const Ending& ending) {
                      return ending.times == 1 && ending.kept() >= Ending::longestDelay &&
                             ending.kept() < 5 * Ending::longestDelay;
                    }},
                   terminate);
  });
}

TEST(ApplicationContractDeathTest, AsksAndWaitsOnceHoweverOftenItIsToEnd) {
  expectAsPromised([] {
    runUntilItEnds({[](Ending&, const auto&) {
                      terminate();
                      std::raise(SIGTERM);
                    },
                    [](const Ending& ending) {
                      return ending.times == 1 && ending.kept() >= Ending::longestDelay &&
                             ending.kept() < 5 * Ending::longestDelay;
                    }},
                   [] {
                     terminate();
                     terminate();
                   });
  });
}

TEST(ApplicationContractDeathTest, EndsOnceHoweverOftenItsDelegateGoesOn) {
  expectAsPromised([] {
    runUntilItEnds(
        {[](Ending&, const auto& goOn) {
           goOn();
           goOn();
           applicationLoop().post(goOn);
         },
         [ends = 0](const Ending& ending) mutable { return ++ends == 1 && ending.times == 1; }},
        terminate);
  });
}

TEST(ApplicationContractDeathTest, EndsOnceThoughItsDelegateGoesOnTwiceWhileItWaits) {
  expectAsPromised([] {
    runUntilItEnds(
        {[](Ending&, auto goOn) {
           applicationLoop().post([goOn] {
             goOn();
             goOn();
           });
         },
         [ends = 0](const Ending& ending) mutable { return ++ends == 1 && ending.times == 1; }},
        terminate);
  });
}

}  // namespace
}  // namespace quorin::contract
