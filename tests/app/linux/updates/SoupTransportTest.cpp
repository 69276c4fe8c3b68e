#include <gmock/gmock.h>

#include "app/linux/updates/SoupTransport.h"
#include "kit/platform/Thread.h"
#include "tests/app/linux/EventLoop.h"
#include "tests/app/linux/updates/ReleaseServer.h"

namespace quorin {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

// What became of a file.
struct Outcome {
  std::optional<std::string> body;
  std::optional<UpdateFailure> failure;
  std::vector<std::uint64_t> progress;

  bool isOver() const { return body || failure; }
};

class SoupTransportTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { MainThread::record(); }

  UpdateTransport::Handlers into(Outcome& outcome) {
    return {[&](std::uint64_t received) { outcome.progress.push_back(received); },
            [&](std::string body) { outcome.body = std::move(body); },
            [&](const UpdateFailure& failure) { outcome.failure = failure; }};
  }

  Outcome fetch(const std::string& url, std::uint64_t limit = 1'000'000) {
    Outcome outcome;
    const auto transfer = transport.fetch(url, limit, into(outcome));
    EXPECT_FALSE(outcome.isOver());
    EXPECT_TRUE(runUntil([&] { return outcome.isOver(); }));
    EXPECT_FALSE(outcome.body && outcome.failure);
    return outcome;
  }

  UpdateFault fault(const std::string& url, std::uint64_t limit = 1'000'000) {
    const Outcome outcome = fetch(url, limit);
    EXPECT_TRUE(outcome.failure) << url;
    return outcome.failure.value_or(UpdateFailure{}).fault;
  }

  ReleaseServer server;
  SoupTransport transport{{server.authorities(), 2s}};
};

TEST_F(SoupTransportTest, FetchesAFileAndTellsHowFarItIs) {
  const std::string file(300'000, 'x');
  server.serveFile("/a?b=1", file);
  const Outcome outcome = fetch(server.url("/a?b=1"));
  EXPECT_EQ(outcome.body, file);
  EXPECT_GE(outcome.progress.size(), 2u);
  EXPECT_TRUE(std::is_sorted(outcome.progress.begin(), outcome.progress.end()));
  EXPECT_EQ(outcome.progress.back(), file.size());
  EXPECT_THAT(server.requests(), ElementsAre("/a?b=1"));
}

TEST_F(SoupTransportTest, FetchesFilesOfEveryByteAndNone) {
  std::string bytes(256, '\0');
  for (int i = 0; i < 256; ++i) bytes[static_cast<std::size_t>(i)] = static_cast<char>(i);
  server.serveFile("/bytes", bytes);
  server.serveFile("/empty", "");
  EXPECT_EQ(fetch(server.url("/bytes")).body, bytes);
  EXPECT_EQ(fetch(server.url("/empty")).body, "");
}

TEST_F(SoupTransportTest, LeavesPackedFilesAsTheyAre) {
  // "file", packed by gzip.
  const std::string packed(
      "\x1f\x8b\x08\0\0\0\0\0\x02\x03\x4b\xcb\xcc\x49\x05\0\x10\x36\x9f\x8c\x04\0\0\0", 24);
  server.serve("/packed", {"200 OK", packed, {"Content-Encoding: gzip"}});
  EXPECT_EQ(fetch(server.url("/packed")).body, packed);
}

TEST_F(SoupTransportTest, SaysThatNobodyAnswers) {
  std::string closed;
  {
    const ReleaseServer gone;
    closed = gone.url("/a");
  }
  EXPECT_EQ(fault(closed), UpdateFault::unreachable);
}

TEST_F(SoupTransportTest, TrustsNoServerThatCannotShowWhoItIs) {
  const ReleaseServer stranger;
  const std::string url = stranger.url("/a");
  EXPECT_EQ(fault(url), UpdateFault::untrusted);
  EXPECT_THAT(stranger.requests(), IsEmpty());
  SoupTransport asTheSystemDoes({{}, 2s});
  Outcome outcome;
  const auto transfer = asTheSystemDoes.fetch(server.url("/a"), 100, into(outcome));
  EXPECT_TRUE(runUntil([&] { return outcome.isOver(); }));
  EXPECT_EQ(outcome.failure.value_or(UpdateFailure{}).fault, UpdateFault::untrusted);
}

TEST_F(SoupTransportTest, AsksForNothingWithoutEncryption) {
  std::string plain = server.url("/a");
  plain.erase(4, 1);  // http
  EXPECT_EQ(fault(plain), UpdateFault::insecure);
  EXPECT_EQ(fault("file:///etc/hostname"), UpdateFault::insecure);
  EXPECT_THAT(server.requests(), IsEmpty());
}

TEST_F(SoupTransportTest, TellsTheServersRefusal) {
  const Outcome outcome = fetch(server.url("/missing"));
  EXPECT_EQ(outcome.failure, (UpdateFailure{UpdateFault::refused, "status 404"}));
  server.serve("/broken", {"500 Internal Server Error", "x"});
  EXPECT_EQ(fault(server.url("/broken")), UpdateFault::refused);
  server.serve("/login", {"401 Unauthorized", "x", {"WWW-Authenticate: Basic realm=\"a\""}});
  EXPECT_EQ(fault(server.url("/login")), UpdateFault::refused);
}

TEST_F(SoupTransportTest, FollowsTheServerToItself) {
  server.serve("/old", {"302 Found", "moved", {"Location: /new"}});
  server.serve("/new", {"301 Moved Permanently", "", {"Location: " + server.url("/newest")}});
  server.serveFile("/newest", "here");
  EXPECT_EQ(fetch(server.url("/old")).body, "here");
  EXPECT_THAT(server.requests(), ElementsAre("/old", "/new", "/newest"));
}

TEST_F(SoupTransportTest, FollowsItToNoOtherServer) {
  const std::string elsewhere = server.url("/there", "localhost");
  server.serveFile("/there", "here");
  server.serve("/moved", {"302 Found", "", {"Location: " + elsewhere}});
  EXPECT_EQ(fetch(server.url("/moved")).failure,
            (UpdateFailure{UpdateFault::redirected, elsewhere}));
  server.serve("/nowhere", {"302 Found", ""});
  EXPECT_EQ(fault(server.url("/nowhere")), UpdateFault::redirected);
  EXPECT_THAT(server.requests(), ElementsAre("/moved", "/nowhere"));
  ASSERT_EQ(fetch(elsewhere).body, "here");  // there is something to be had there
}

TEST_F(SoupTransportTest, DoesNotRunInCircles) {
  server.serve("/a", {"302 Found", "", {"Location: /b"}});
  server.serve("/b", {"302 Found", "", {"Location: /a"}});
  EXPECT_EQ(fault(server.url("/a")), UpdateFault::redirected);
  EXPECT_EQ(server.requests().size(), 6u);
}

TEST_F(SoupTransportTest, NoticesThatAFileBreaksOff) {
  server.serve("/short", {"200 OK", std::string(50'000, 'x'), {}, 60'000});
  EXPECT_EQ(fault(server.url("/short")), UpdateFault::truncated);
}

TEST_F(SoupTransportTest, GivesUpWhatIsLongerThanItMayBe) {
  const std::string file(100'000, 'x');
  server.serveFile("/announced", file);
  server.serve("/unannounced", {"200 OK", file, {}, {}, false});
  for (const char* path : {"/announced", "/unannounced"}) {
    const Outcome outcome = fetch(server.url(path), 99'999);
    EXPECT_EQ(outcome.failure.value_or(UpdateFailure{}).fault, UpdateFault::tooLong) << path;
    EXPECT_LE(outcome.progress.size() ? outcome.progress.back() : 0, 99'999u) << path;
    EXPECT_EQ(fetch(server.url(path), 100'000).body, file) << path;
  }
}

TEST_F(SoupTransportTest, LosesPatienceWithASilentServer) {
  server.serve("/silent", {"200 OK", "some", {}, 1000, true, true});
  EXPECT_EQ(fault(server.url("/silent")), UpdateFault::stalled);
}

TEST_F(SoupTransportTest, IsSilentOnceATransferIsGone) {
  server.serve("/silent", {"200 OK", "some", {}, 1000, true, true});
  Outcome before, during;
  transport.fetch(server.url("/silent"), 1000, into(before)).reset();
  auto transfer = transport.fetch(server.url("/silent"), 1000, into(during));
  ASSERT_TRUE(runUntil([&] { return !during.progress.empty(); }));
  transfer.reset();
  server.serveFile("/after", "after");
  EXPECT_EQ(fetch(server.url("/after")).body, "after");
  EXPECT_FALSE(before.isOver());
  EXPECT_FALSE(during.isOver());
  EXPECT_THAT(server.requests(), ElementsAre("/silent", "/after"));
}

TEST_F(SoupTransportTest, LetsAHandlerEndItsOwnTransfer) {
  server.serveFile("/a", std::string(300'000, 'x'));
  std::unique_ptr<UpdateTransport::Transfer> transfer;
  int finished = 0, progressed = 0;
  transfer = transport.fetch(server.url("/a"), 300'000,
                             {[&](std::uint64_t) {},
                              [&](const std::string&) {
                                transfer.reset();
                                ++finished;
                              },
                              [&](const UpdateFailure&) { ADD_FAILURE(); }});
  ASSERT_TRUE(runUntil([&] { return finished > 0; }));
  transfer = transport.fetch(
      server.url("/a"), 300'000,
      {[&](std::uint64_t) {
         transfer.reset();
         ++progressed;
       },
       [&](const std::string&) { ADD_FAILURE(); }, [&](const UpdateFailure&) { ADD_FAILURE(); }});
  ASSERT_TRUE(runUntil([&] { return progressed > 0; }));
  server.serveFile("/after", "after");
  EXPECT_EQ(fetch(server.url("/after")).body, "after");
  EXPECT_EQ(finished, 1);
  EXPECT_EQ(progressed, 1);
}

}  // namespace
}  // namespace quorin
