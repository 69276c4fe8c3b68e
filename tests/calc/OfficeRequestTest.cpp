#include <functional>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

#include "host/calc/office/OfficeRequest.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin::host::calc {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

// Serves one connection at a socket as an office would, or would not.
class OfficeAtSocket {
 public:
  using Script = std::function<void(int connection)>;
  explicit OfficeAtSocket(Script script) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path().native().copy(address.sun_path, sizeof address.sun_path - 1);
    ::bind(listening_, reinterpret_cast<sockaddr*>(&address), sizeof address);
    ::listen(listening_, 1);
    thread_ = std::thread([this, script = std::move(script)] {
      const int connection = ::accept(listening_, nullptr, nullptr);
      script(connection);
      ::close(connection);
    });
  }
  ~OfficeAtSocket() {
    thread_.join();
    ::close(listening_);
  }
  std::filesystem::path path() const { return folder_ / "office"; }

  static void say(int connection, const std::string& text) {
    ::send(connection, text.data(), text.size(), MSG_NOSIGNAL);
  }
  static std::string hear(int connection) {
    std::string text;
    for (char one = 0; ::recv(connection, &one, 1, 0) == 1;) {
      text += one;
      if (one == 0) break;
    }
    return text;
  }

 private:
  TemporaryFolder folder_;
  const int listening_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  std::thread thread_;
};

OfficeAnswer hand(const std::filesystem::path& socket, std::chrono::milliseconds patience = 10s) {
  return handToOffice(socket, {"--nologo", "--accept=pipe,name=a\\b;urp;"},
                      std::chrono::steady_clock::now() + patience);
}

TEST(OfficeRequest, HandsTheArgumentsOverWithTheirCommasMarked) {
  std::string heard;
  {
    const OfficeAtSocket office([&](int connection) {
      OfficeAtSocket::say(connection, "InternalIPC::SendArguments\0"s);
      heard = OfficeAtSocket::hear(connection);
      OfficeAtSocket::say(connection, "InternalIPC::Processing");
      OfficeAtSocket::say(connection, "Done\0"s);
    });
    EXPECT_EQ(hand(office.path()), OfficeAnswer::done);
  }
  EXPECT_EQ(heard, "InternalIPC::Arguments0,--nologo,--accept=pipe\\,name=a\\\\b;urp;\0"s);
}

TEST(OfficeRequest, CannotReachASocketThatIsNotThere) {
  const TemporaryFolder folder;
  EXPECT_EQ(hand(folder / "nowhere"), OfficeAnswer::unreachable);
}

TEST(OfficeRequest, HasNoAnswerFromASocketThatWasLeftBehind) {
  std::filesystem::path left;
  const TemporaryFolder folder;
  {
    const OfficeAtSocket office([](int) {});
    left = folder / "left";
    std::filesystem::create_hard_link(office.path(), left);
    EXPECT_EQ(hand(left), OfficeAnswer::noAnswer) << "it hangs up";
  }
  EXPECT_EQ(hand(left), OfficeAnswer::noAnswer);
}

TEST(OfficeRequest, HasNoAnswerFromWhoSpeaksOtherwiseOrHangsUpInTheMiddle) {
  {
    const OfficeAtSocket office(
        [](int connection) { OfficeAtSocket::say(connection, "HTTP/1.0"); });
    EXPECT_EQ(hand(office.path()), OfficeAnswer::noAnswer);
  }
  const OfficeAtSocket office([](int connection) {
    OfficeAtSocket::say(connection, "InternalIPC::SendArguments\0"s);
    OfficeAtSocket::hear(connection);
  });
  EXPECT_EQ(hand(office.path()), OfficeAnswer::noAnswer);
}

TEST(OfficeRequest, GivesUpAtTheDeadline) {
  const OfficeAtSocket office([](int connection) { OfficeAtSocket::hear(connection); });
  EXPECT_EQ(hand(office.path(), 50ms), OfficeAnswer::noAnswer);
}

}  // namespace
}  // namespace quorin::host::calc
