// Marks cells in a spreadsheet that another process holds, until it is killed.
//
//   marks_client SOCKET
#include <cstdlib>

#include "host/dictionary/ExcelTerminology.h"
#include "tests/kit/crash/Nursery.h"
#include "tests/kit/crash/RemoteSpreadsheet.h"
#include "tests/kit/crash/VictimWork.h"

int main(int count, char** arguments) {
  using namespace quorin::crash;
  if (count != 2) return 2;
  quorin::host::excelTerminology();  // reading Excel's words once is enough for all
  return nurse(Link(std::atoi(arguments[1])), [](Link link, const std::string& folder) {
    Victim victim(std::move(link));
    serve(victim, folder,
          [&victim](quorin::FileSystem&) { return std::make_unique<RemoteSpreadsheet>(victim); });
  });
}
