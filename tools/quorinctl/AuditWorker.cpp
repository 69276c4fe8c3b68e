#include "tools/quorinctl/AuditWorker.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "kit/value/JSONText.h"
#include "tools/quorinctl/AuditFiles.h"
#include "tools/quorinctl/WorkerMain.h"

namespace quorin::ctl {

namespace {

constexpr std::size_t longestReport = 512 * 1024 * 1024;

// The path, so that no file is taken for an option.
std::string asArgument(const std::filesystem::path& file) {
  return file.string().starts_with('-') ? "./" + file.string() : file.string();
}

pid_t spawned(std::vector<std::string> command, int output) {
  std::vector<char*> arguments;
  for (std::string& argument : command) arguments.push_back(argument.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&files, output, STDOUT_FILENO);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t none;
  sigemptyset(&none);
  sigset_t pipe = none;
  sigaddset(&pipe, SIGPIPE);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setsigdefault(&attributes, &pipe);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  pid_t process = -1;
  const int failure =
      ::posix_spawn(&process, "/proc/self/exe", &files, &attributes, arguments.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&files);
  if (failure != 0) throw std::system_error(failure, std::generic_category(), "a new process");
  return process;
}

}  // namespace

AuditWorker::AuditWorker(std::size_t index, std::filesystem::path file,
                         const std::vector<std::string>& arguments, std::chrono::seconds patience)
    : index_(index),
      file_(std::move(file)),
      stamp_(stampOf(file_)),
      patience_(patience),
      limit_(Clock::now() + patience),
      lines_(longestReport) {
  std::array<int, 2> ends{-1, -1};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0)
    throw std::system_error(errno, std::generic_category(), "a pipe");
  output_ = ends[0];
  std::vector<std::string> command{"quorinctl", "audit-workbook", asArgument(file_)};
  command.insert(command.end(), arguments.begin(), arguments.end());
  try {
    process_ = spawned(std::move(command), ends[1]);
  } catch (...) {
    ::close(ends[0]);
    ::close(ends[1]);
    throw;
  }
  ::close(ends[1]);
  ::fcntl(output_, F_SETFL, O_NONBLOCK);
}

AuditWorker::~AuditWorker() {
  if (process_ > 0) {
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
  }
  ::close(output_);
}

std::optional<JSONValue> AuditWorker::hear(
    const std::function<void(const std::string&)>& progress) {
  std::array<char, 65536> bytes;
  bool isOver = false;
  for (;;) {
    const ssize_t count = ::read(output_, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) {
      isOver = count == 0 || errno != EAGAIN;
      break;
    }
    lines_.append({bytes.data(), static_cast<std::size_t>(count)});
    if (!isAskedToEnd_) limit_ = Clock::now() + patience_;
  }
  while (std::optional<LineBuffer::Line> line = lines_.next()) {
    if (line->text.starts_with(progressLetter)) progress(line->text.substr(1));
    if (line->text.starts_with(reportLetter)) told_ = line->text.substr(1);
  }
  if (!isOver) return std::nullopt;
  return report();
}

// A process that has closed its output is at its end.
JSONValue AuditWorker::report() {
  int status = 0;
  while (::waitpid(process_, &status, 0) < 0 && errno == EINTR) {
  }
  process_ = -1;
  if (told_) {
    ParsedJSON parsed = parseJSON(*told_);
    JSONValue::Object* const members = parsed ? parsed.value->object() : nullptr;
    if (members == nullptr) return failureReport(file_, "the program told: " + parsed.error);
    if (!members->contains("error")) members->insert(stamp_.begin(), stamp_.end());
    return std::move(*parsed.value);
  }
  if (isAskedToEnd_)
    return failureReport(file_, "given up: nothing was heard of it for " +
                                    std::to_string(patience_.count()) + " seconds");
  if (WIFSIGNALED(status))
    return failureReport(file_, std::string("the program ended: ") + ::strsignal(WTERMSIG(status)));
  return failureReport(file_, "the program ended with " + std::to_string(WEXITSTATUS(status)));
}

void AuditWorker::end(std::chrono::seconds time) {
  ::kill(process_, std::exchange(isAskedToEnd_, true) ? SIGKILL : SIGTERM);
  limit_ = Clock::now() + time;
}

void AuditWorker::waitForEnd() {
  for (;;) {
    if (hear([](const std::string&) {})) return;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(limit_ - Clock::now()).count();
    pollfd output{output_, POLLIN, 0};
    if (left <= 0)
      end(std::chrono::seconds(1));
    else
      ::poll(&output, 1, static_cast<int>(left));
  }
}

}  // namespace quorin::ctl
