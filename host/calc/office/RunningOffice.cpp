#include "host/calc/office/RunningOffice.h"

#include <signal.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "host/Spreadsheet.h"
#include "host/calc/office/OfficeRequest.h"
#include "host/calc/uno/OfficeFiles.h"
#include "kit/value/EventErrors.h"

namespace quorin::host::calc {
namespace {

constexpr std::chrono::seconds patience{2};
constexpr std::chrono::milliseconds pause{5};

constexpr const char* pipePrefix = "quorin-";

// The pipe that the office made for us or for a Quorin before; none when its file is gone.
std::optional<std::string> pipeOf(const OfficeProcess& office) {
  const std::string start = pipeFile(pipePrefix).string();
  for (const std::filesystem::path& socket : office.sockets(start)) {
    const std::string name = pipePrefix + socket.string().substr(start.size());
    // A private office's own begins in the same way.
    const bool ours = name.size() == newPipeName(pipePrefix).size();
    if (ours && isOwnPipe(name)) return name;
  }
  return std::nullopt;
}

// Processes in a sandbox of their own cannot be.
bool mayLookInto(const OfficeProcess& office) {
  return ::access(("/proc/" + std::to_string(office.id) + "/fd").c_str(), R_OK) == 0;
}

[[noreturn]] void refuse() {
  throw SpreadsheetError(eventErrors::notPermitted, "LibreOffice runs where it cannot be reached");
}

}  // namespace

void RunningOffice::clearUp() {
  if (last_.process == 0 || ::kill(last_.process, 0) == 0) return;
  ::unlink(pipeFile(last_.pipe).c_str());  // in /tmp this cannot hit another user's
  last_ = {};
}

OfficeAddress RunningOffice::open() {
  const auto office = discovery_->runningCalc();
  if (!office) throw SpreadsheetError(eventErrors::notRunning, "LibreOffice Calc is not running");
  const auto deadline = Clock::now() + patience;
  if (!waitWhileStopped(office->id, patience)) {
    throw SpreadsheetError(eventErrors::timedOut, "LibreOffice does not answer");
  }
  if (last_.process != office->id) clearUp();
  const std::optional<std::string> present = pipeOf(*office);
  const std::string pipe = present.value_or(newPipeName(pipePrefix));
  last_ = {office->id, pipe};
  if (!present) askToListen(*office, pipe, deadline);
  // The office makes it as its umask says, which may let others in.
  if (::chmod(pipeFile(pipe).c_str(), S_IRUSR | S_IWUSR) != 0) {
    throw SpreadsheetError(eventErrors::notRunning, "LibreOffice is not listening");
  }
  return last_;
}

void RunningOffice::askToListen(const OfficeProcess& office, const std::string& pipe,
                                Clock::time_point deadline) const {
  const auto socket = office.requestSocket();
  if (!socket) {
    if (!mayLookInto(office)) refuse();
    throw SpreadsheetError(eventErrors::timedOut, "LibreOffice is still starting");
  }
  const OfficeAnswer answer = handToOffice(
      *socket, {"--nologo", "--nodefault", "--norestore", "--accept=pipe,name=" + pipe + ";urp;"},
      deadline);
  if (answer == OfficeAnswer::unreachable) refuse();
  while (answer == OfficeAnswer::done && !interrupted_ && Clock::now() < deadline &&
         !isOwnPipe(pipe)) {
    std::this_thread::sleep_for(pause);
  }
  if (!isOwnPipe(pipe))
    throw SpreadsheetError(eventErrors::timedOut, "LibreOffice does not answer");
}

}  // namespace quorin::host::calc
