// A client of an office that evaluates expressions until it is ended: the victim of the tests.
//
//   evaluating_client PIPE PROCESS BOOK SHEET EXPRESSION...
//
// It writes a line for each round over the expressions.
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

#include "host/calc/CalcSpreadsheet.h"

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
  for (;;) {
    for (int i = 5; i < count; ++i) {
      spreadsheet.evaluate(arguments[i], {arguments[3], arguments[4]});
    }
    if (::write(STDOUT_FILENO, "\n", 1) != 1) return 1;
  }
}
