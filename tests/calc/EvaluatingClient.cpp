// A client of an office that evaluates expressions, each by itself and all in a chain, until it is
// ended: the victim of the tests.
//
//   evaluating_client PIPE PROCESS BOOK SHEET EXPRESSION...
//
// It writes a line for each round over the expressions, while the chain is still there.
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

#include "host/calc/CalcSpreadsheet.h"
#include "tests/calc/Chain.h"

namespace quorin::host::calc {
namespace {

class KnownOffice : public OfficeSource {
 public:
  explicit KnownOffice(OfficeAddress address) : address_(std::move(address)) {}
  bool isRunning() override { return true; }
  OfficeAddress open() override { return address_; }

 private:
  const OfficeAddress address_;
};

}  // namespace
}  // namespace quorin::host::calc

int main(int count, char** arguments) {
  using namespace quorin::host;
  if (count < 6) return 2;
  calc::CalcSpreadsheet spreadsheet(std::make_shared<calc::KnownOffice>(
      calc::OfficeAddress{std::atoi(arguments[2]), arguments[1]}));
  const std::string book = arguments[3];
  for (;;) {
    for (int i = 5; i < count; ++i) {
      spreadsheet.evaluate(arguments[i], {book, arguments[4]});
    }
    const calc::Chain chain(spreadsheet, {"[" + book + "]Data!B2*2", "A1+42"});
    if (::write(STDOUT_FILENO, "\n", 1) != 1) return 1;
  }
}
