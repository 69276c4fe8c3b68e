#include <fstream>
#include <sys/stat.h>
#include <thread>

#include "app/linux/GLibMainLoop.h"
#include "app/linux/LineServer.h"
#include "tests/app/linux/GtkFixture.h"

namespace quorin {
namespace {

using namespace std::chrono_literals;

class LineServerTest : public GtkFixture {
 protected:
  LineServerTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "quorin-line-XXXXXX").string();
    folder = mkdtemp(pattern.data());
  }
  ~LineServerTest() override { std::filesystem::remove_all(folder); }

  static void echo(const std::string& line, const LineServer::Answer& answer) {
    answer("<" + line + ">");
  }

  // Asks as another process would, while the main loop runs.
  std::string ask(const std::filesystem::path& path, const std::string& line) {
    std::optional<std::string> told;
    std::thread client([&] {
      std::string answer = LineServer::ask(path, line, patience);
      platform->mainLoop().post([&told, answer = std::move(answer)] { told = answer; });
    });
    waitUntil([&] { return told.has_value(); });
    client.join();
    return told.value_or("nothing");
  }

  std::filesystem::path folder;
  std::chrono::milliseconds patience = 60s;
};

TEST_F(LineServerTest, AnswersALineWithALine) {
  const LineServer server(folder / "control", 64, echo);
  EXPECT_EQ(ask(folder / "control", "show"), "<show>");
  EXPECT_EQ(ask(folder / "control", ""), "<>");
}

TEST_F(LineServerTest, IsThisUsersAlone) {
  const LineServer server(folder / "control", 64, echo);
  struct stat status {};
  ASSERT_EQ(stat((folder / "control").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0700u);
}

TEST_F(LineServerTest, EndsConnectionsThatSendTooMuch) {
  const LineServer server(folder / "control", 64, echo);
  EXPECT_EQ(ask(folder / "control", std::string(10'000, 'x')), "");
  EXPECT_EQ(ask(folder / "control", "show"), "<show>");
}

TEST_F(LineServerTest, ReplacesASocketThatWasLeftBehind) {
  std::ofstream(folder / "control") << "left";
  const LineServer server(folder / "control", 64, echo);
  EXPECT_EQ(ask(folder / "control", "show"), "<show>");
}

TEST_F(LineServerTest, ListensAtPathsThatAreTooLongForAnAddress) {
  const std::filesystem::path deep = folder / std::string(120, 'a') / std::string(120, 'b');
  std::filesystem::create_directories(deep);
  const LineServer server(deep / "control", 64, echo);
  EXPECT_EQ(ask(deep / "control", "show"), "<show>");
}

TEST_F(LineServerTest, SaysWhenItCannotListen) {
  EXPECT_THROW(LineServer(folder / "nowhere" / "control", 64, echo), std::runtime_error);
}

TEST_F(LineServerTest, GivesNothingWhenNobodyAnswers) {
  EXPECT_EQ(LineServer::ask(folder / "control", "show", 60s), "") << "nobody listens";
  patience = 100ms;
  const LineServer server(folder / "control", 64,
                          [](const std::string&, const LineServer::Answer&) {});
  EXPECT_EQ(ask(folder / "control", "show"), "");
}

class GLibMainLoopTest : public GtkFixture {};

TEST_F(GLibMainLoopTest, RunsWhatIsPostedLaterAndInOrder) {
  std::vector<int> order;
  platform->mainLoop().post([&] { order.push_back(1); });
  platform->mainLoop().post([&] {
    order.push_back(2);
    platform->mainLoop().post([&] { order.push_back(4); });
  });
  platform->mainLoop().post([&] { order.push_back(3); });
  EXPECT_TRUE(order.empty());
  ASSERT_TRUE(waitUntil([&] { return order.size() == 4; }));
  EXPECT_EQ(order, (std::vector<int>{1, 2, 3, 4}));
}

TEST_F(GLibMainLoopTest, RunsWhatOtherThreadsPostOnTheMainThread) {
  int count = 0;
  bool main = true;
  std::thread worker([&] {
    EXPECT_FALSE(platform->mainLoop().isMainThread());
    for (int i = 0; i < 1000; ++i) {
      platform->mainLoop().post([&] {
        ++count;
        main = main && platform->mainLoop().isMainThread();
      });
    }
  });
  EXPECT_TRUE(waitUntil([&] { return count == 1000; }));
  worker.join();
  EXPECT_TRUE(main);
}

TEST_F(GLibMainLoopTest, FiresOnceOrAgainAndAgainUntilItsTimerGoes) {
  int once = 0, often = 0;
  const auto single = platform->mainLoop().startTimer(20ms, TimerKind::once, [&] { ++once; });
  auto repeated = platform->mainLoop().startTimer(20ms, TimerKind::repeating, [&] { ++often; });
  EXPECT_EQ(often, 0);
  ASSERT_TRUE(waitUntil([&] { return often >= 3; }));
  EXPECT_EQ(once, 1);
  repeated.reset();
  const int seen = often;
  runFor(100ms);
  EXPECT_EQ(often, seen);
}

TEST_F(GLibMainLoopTest, LetsAnActionEndItsOwnTimer) {
  int count = 0;
  std::unique_ptr<Timer> timer;
  timer = platform->mainLoop().startTimer(10ms, TimerKind::repeating, [&] {
    ++count;
    timer.reset();
  });
  ASSERT_TRUE(waitUntil([&] { return count > 0; }));
  runFor(60ms);
  EXPECT_EQ(count, 1);
}

}  // namespace
}  // namespace quorin
