#include "host/calc/marks/MarksKeeper.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "host/Spreadsheet.h"
#include "kit/value/EventErrors.h"

extern char** environ;

namespace quorin::host::calc {
namespace {

constexpr int endInMilliseconds = 1000;
constexpr int endWhileQuitting = 200;  // also in milliseconds

// Waits for the process to end, for so long. It is reaped where it did.
void awaitEnd(pid_t process, int milliseconds) {
  const int handle = static_cast<int>(::syscall(SYS_pidfd_open, process, 0));
  pollfd end{handle, POLLIN, 0};
  if (handle >= 0) {
    while (::poll(&end, 1, milliseconds) < 0 && errno == EINTR) {
    }
    ::close(handle);
  }
  ::waitpid(process, nullptr, WNOHANG);
}

}  // namespace

std::optional<std::filesystem::path> marksKeeperProgram(const std::filesystem::path& self) {
  std::filesystem::path folder = self.parent_path();
  constexpr int mostLevels = 4;
  for (int level = 0; level < mostLevels; ++level, folder = folder.parent_path()) {
    const std::filesystem::path program = folder / "libexec/quorin/quorin-marks-keeper";
    if (::access(program.c_str(), X_OK) == 0) return program;
  }
  return std::nullopt;
}

MarksKeeper::MarksKeeper(OfficeAddress office, Owner owner, std::function<void()> lost)
    : office_(std::move(office)),
      owner_(std::move(owner)),
      lost_(std::move(lost)),
      interrupted_(::eventfd(0, EFD_CLOEXEC)),
      watchEnds_(::eventfd(0, EFD_CLOEXEC)) {}

MarksKeeper::~MarksKeeper() {
  forget();
  ::close(interrupted_);
  ::close(watchEnds_);
}

void MarksKeeper::interrupt() {
  const std::uint64_t one = 1;
  [[maybe_unused]] const auto written = ::write(interrupted_, &one, sizeof one);
}

// Closing the socket tells the keeper that nobody needs the marks any more.
void MarksKeeper::forget() {
  endWatch();
  if (socket_ >= 0) ::close(socket_);
  socket_ = -1;
  pollfd quitting{interrupted_, POLLIN, 0};
  const bool inHaste = ::poll(&quitting, 1, 0) > 0;
  if (process_ > 0) awaitEnd(process_, inHaste ? endWhileQuitting : endInMilliseconds);
  process_ = 0;
}

void MarksKeeper::start() {
  forget();
  const auto program = marksKeeperProgram(std::filesystem::read_symlink("/proc/self/exe"));
  if (!program)
    throw SpreadsheetError(eventErrors::handlerFailed, "Quorin's marks keeper is not installed");
  std::array<int, 2> ends{-1, -1};
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    throw SpreadsheetError(eventErrors::handlerFailed,
                           "The marks keeper cannot be started: no socket");
  }
  std::array<std::string, 4> words{program->string(), office_.pipe, std::to_string(office_.process),
                                   owner_.text()};
  std::array<char*, 5> command{words[0].data(), words[1].data(), words[2].data(), words[3].data(),
                               nullptr};
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_adddup2(&files, ends[1], STDIN_FILENO);
  posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);  // stops and ends of a job leave it be
  const int failure =
      ::posix_spawn(&process_, command[0], &files, &attributes, command.data(), environ);
  posix_spawn_file_actions_destroy(&files);
  posix_spawnattr_destroy(&attributes);
  ::close(ends[1]);
  socket_ = ends[0];
  if (failure != 0) {
    process_ = 0;
    forget();
    throw SpreadsheetError(eventErrors::handlerFailed, "The marks keeper cannot be started");
  }
  if (!readAnswer()) {
    forget();
    throw SpreadsheetError(eventErrors::handlerFailed, "The marks keeper ended at once");
  }
}

// The other end of the socket closes with the keeper's death, whatever that was. One that has not
// got through a turn yet is not watched, so that none is started over and over.
void MarksKeeper::watch() {
  if (!lost_ || watcher_.joinable()) return;
  watcher_ = std::thread([this, socket = socket_] {
    std::array<pollfd, 2> watched{pollfd{socket, 0, 0}, pollfd{watchEnds_, POLLIN, 0}};
    while (::poll(watched.data(), watched.size(), -1) < 0 && errno == EINTR) {
    }
    if (watched[1].revents == 0) lost_();
  });
}

void MarksKeeper::endWatch() {
  if (!watcher_.joinable()) return;
  std::uint64_t count = 1;
  [[maybe_unused]] const auto written = ::write(watchEnds_, &count, sizeof count);
  watcher_.join();
  [[maybe_unused]] const auto got = ::read(watchEnds_, &count, sizeof count);
}

bool MarksKeeper::send(const std::string& line) const {
  return socket_ >= 0 && ::send(socket_, line.data(), line.size(), MSG_NOSIGNAL) ==
                             static_cast<ssize_t>(line.size());
}

bool MarksKeeper::readAnswer() {
  std::array<pollfd, 2> watched{pollfd{socket_, POLLIN, 0}, pollfd{interrupted_, POLLIN, 0}};
  while (::poll(watched.data(), watched.size(), -1) < 0 && errno == EINTR) {
  }
  if (watched[1].revents != 0)
    throw SpreadsheetError(eventErrors::notRunning, "Quorin is quitting");
  char answer = 0;
  return ::recv(socket_, &answer, 1, 0) == 1;
}

void MarksKeeper::ask(const std::string& request) {
  if (send(request) && readAnswer()) return;
  // None was started yet, or it died. Marks that it left are found by the next one.
  start();
  if (send(request) && readAnswer()) return;
  throw SpreadsheetError(eventErrors::notRunning, "LibreOffice is not running");
}

MarksKeeper::Turn::Turn(MarksKeeper& keeper, const std::string& document) : keeper_(keeper) {
  keeper_.ask("begin " + document + "\n");
}

MarksKeeper::Turn::~Turn() {
  try {
    if (keeper_.send("end\n") && keeper_.readAnswer()) keeper_.watch();
  } catch (const std::exception&) {
    // We are quitting, or no thread can be had.
  }
}

}  // namespace quorin::host::calc
