// Marks cells in a spreadsheet that another process holds, until it is killed.
//
//   marks_client SOCKET
//
// For every line that it is sent, with the folder of the stores, it makes a process that serves
// there: reading Excel's words once is enough for all of them.
#include <cstdlib>
#include <sys/wait.h>

#include "host/dictionary/ExcelTerminology.h"
#include "tests/kit/crash/RemoteSpreadsheet.h"
#include "tests/kit/crash/VictimWork.h"

namespace quorin::crash {
namespace {

void serveAt(Link link, const std::string& folder) {
  Victim victim(std::move(link));
  serve(victim, folder, [&victim] { return std::make_unique<RemoteSpreadsheet>(victim); });
}

int serveAll(Link control) {
  host::excelTerminology();
  while (auto line = control.receiveWith()) {
    auto& [folder, link] = *line;
    const pid_t child = ::fork();
    if (child < 0) return 1;
    if (child == 0) {
      serveAt(std::move(link), *folder.string());
      return 0;
    }
    { const Link closed = std::move(link); }
    int status = 0;
    control.send(child);
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    control.send(status);
  }
  return 0;
}

}  // namespace
}  // namespace quorin::crash

int main(int count, char** arguments) {
  using namespace quorin::crash;
  return count == 2 ? serveAll(Link(std::atoi(arguments[1]))) : 2;
}
