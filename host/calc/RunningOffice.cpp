#include "host/calc/RunningOffice.h"

#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "host/Spreadsheet.h"
#include "host/calc/OfficeFiles.h"

namespace quorin::host::calc {
namespace {

constexpr std::chrono::seconds patience{2};
constexpr std::chrono::milliseconds pause{5};

// The variables that tell where the office's own user folder is, as the office has them.
std::vector<std::string> environmentOf(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/environ", std::ios::binary);
  std::vector<std::string> result;
  for (std::string variable; std::getline(file, variable, '\0');) result.push_back(variable);
  return result;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  for (std::string& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

// A pipe file that was there before the process is what another one of that number left behind.
void removeIfOlder(const std::string& pipe, pid_t process) {
  struct stat file {
  }, started{};
  const std::string path = pipeFile(pipe).string();
  if (::stat(path.c_str(), &file) != 0) return;
  if (::stat(("/proc/" + std::to_string(process)).c_str(), &started) != 0) return;
  if (file.st_mtime < started.st_mtime) ::unlink(path.c_str());
}

[[noreturn]] void refuse() {
  throw SpreadsheetError(-1743, "LibreOffice runs where it cannot be reached");
}

}  // namespace

void RunningOffice::clearUp() {
  if (last_.process == 0 || ::kill(last_.process, 0) == 0 || !isOwnPipe(last_.pipe)) return;
  ::unlink(pipeFile(last_.pipe).c_str());
}

OfficeAddress RunningOffice::open() {
  const auto office = discovery_->runningCalc();
  if (!office) throw SpreadsheetError(-600, "LibreOffice Calc is not running");
  const auto deadline = Clock::now() + patience;
  if (!waitWhileStopped(office->id, patience)) {
    throw SpreadsheetError(-1712, "LibreOffice does not answer");
  }
  const std::string pipe = "quorin-" + std::to_string(office->id);
  if (last_.process != office->id) clearUp();
  last_ = {office->id, pipe};
  removeIfOlder(pipe, office->id);
  if (!isOwnPipe(pipe)) askToListen(*office, pipe, deadline);
  return {office->id, pipe};
}

void RunningOffice::askToListen(const OfficeProcess& office, const std::string& pipe,
                                Clock::time_point deadline) const {
  const std::filesystem::path starter = office.program.parent_path() / "oosplash";
  if (::access(starter.c_str(), X_OK) != 0) refuse();
  std::vector<std::string> command{starter.string(), "--nologo", "--nodefault", "--norestore",
                                   "--accept=pipe,name=" + pipe + ";urp;"};
  if (const std::string folder = office.userInstallation(); !folder.empty()) {
    command.push_back("-env:UserInstallation=" + folder);
  }
  std::vector<std::string> variables = environmentOf(office.id);
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    posix_spawn_file_actions_addopen(&files, descriptor, "/dev/null", O_RDWR, 0);
  }
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);  // to be ended with all it started
  pid_t helper = 0;
  const int failure = ::posix_spawn(&helper, starter.c_str(), &files, &attributes,
                                    pointers(command).data(), pointers(variables).data());
  posix_spawn_file_actions_destroy(&files);
  posix_spawnattr_destroy(&attributes);
  if (failure != 0) refuse();

  bool ended = false;
  int status = 0;
  while (!interrupted_ && Clock::now() < deadline && !(ended && isOwnPipe(pipe))) {
    if (!ended && ::waitpid(helper, &status, WNOHANG) == helper) {
      ended = true;
      if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) break;
    }
    std::this_thread::sleep_for(pause);
  }
  ::kill(-helper, SIGKILL);
  if (!ended) {
    ::waitpid(helper, &status, 0);
    throw SpreadsheetError(-1712, "LibreOffice does not answer");
  }
  if (!isOwnPipe(pipe)) refuse();
}

}  // namespace quorin::host::calc
