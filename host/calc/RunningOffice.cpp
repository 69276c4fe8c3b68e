#include "host/calc/RunningOffice.h"

#include <signal.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "host/Spreadsheet.h"
#include "host/calc/OfficeFiles.h"
#include "host/calc/OfficeRequest.h"

namespace quorin::host::calc {
namespace {

constexpr std::chrono::seconds patience{2};
constexpr std::chrono::milliseconds pause{5};

// A pipe file that was there before the process is what another one of that number left behind.
void removeIfOlder(const std::string& pipe, pid_t process) {
  struct stat file {
  }, started{};
  const std::string path = pipeFile(pipe).string();
  if (::stat(path.c_str(), &file) != 0) return;
  if (::stat(("/proc/" + std::to_string(process)).c_str(), &started) != 0) return;
  if (file.st_mtime < started.st_mtime) ::unlink(path.c_str());
}

// Processes in a sandbox of their own cannot be.
bool mayLookInto(const OfficeProcess& office) {
  return ::access(("/proc/" + std::to_string(office.id) + "/fd").c_str(), R_OK) == 0;
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
  const auto socket = office.requestSocket();
  if (!socket) {
    if (!mayLookInto(office)) refuse();
    throw SpreadsheetError(-1712, "LibreOffice is still starting");
  }
  const OfficeAnswer answer = handToOffice(
      *socket, {"--nologo", "--nodefault", "--norestore", "--accept=pipe,name=" + pipe + ";urp;"},
      deadline);
  if (answer == OfficeAnswer::unreachable) refuse();
  while (answer == OfficeAnswer::done && !interrupted_ && Clock::now() < deadline &&
         !isOwnPipe(pipe)) {
    std::this_thread::sleep_for(pause);
  }
  if (!isOwnPipe(pipe)) throw SpreadsheetError(-1712, "LibreOffice does not answer");
}

}  // namespace quorin::host::calc
