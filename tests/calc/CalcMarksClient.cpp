// Marks cells in an office until it is killed. Its points are the steps of the stores, the calls of
// the spreadsheet that change something or ask for much, by name, and every "message" to the
// office.
//
//   calc_marks_client SOCKET PIPE PROCESS
#include <cstdlib>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "host/calc/CalcSpreadsheet.h"
#include "host/dictionary/ExcelTerminology.h"
#include "kit/marks/ShownRowsFile.h"
#include "tests/kit/crash/Nursery.h"
#include "tests/kit/crash/VictimWork.h"

namespace quorin::host::calc {
namespace {

crash::Victim* listening = nullptr;

class KnownOffice : public OfficeSource {
 public:
  explicit KnownOffice(OfficeAddress address) : address_(std::move(address)) {}
  bool isRunning() override { return true; }
  OfficeAddress open() override { return address_; }

 private:
  const OfficeAddress address_;
};

class ToldSpreadsheet : public CalcSpreadsheet {
 private:
  template <typename Call>
  auto told(const char* name, Call call) {
    victim_.pass(name);
    return call();
  }

 public:
  ToldSpreadsheet(crash::Victim& victim, const OfficeAddress& office, TraceKeeping traces)
      : CalcSpreadsheet(std::make_shared<KnownOffice>(office),
                        {.patience = std::chrono::seconds(60), .traces = std::move(traces)}),
        victim_(victim) {}

  std::vector<std::string> worksheets(const std::string& book) override {
    return told("worksheets", [&] { return CalcSpreadsheet::worksheets(book); });
  }
  std::optional<RangeRef> activeCell() override {
    return told("activeCell", [&] { return CalcSpreadsheet::activeCell(); });
  }
  void activateSheet(const SheetRef& sheet) override {
    told("activateSheet", [&] { CalcSpreadsheet::activateSheet(sheet); });
  }
  void scrollTo(const RangeRef& range) override {
    told("scrollTo", [&] { CalcSpreadsheet::scrollTo(range); });
  }
  std::optional<RangeRef> visibleRange() override {
    return told("visibleRange", [&] { return CalcSpreadsheet::visibleRange(); });
  }
  std::optional<bool> hidden(const RangeRef& range, Axis axis) override {
    return told("hidden", [&] { return CalcSpreadsheet::hidden(range, axis); });
  }
  void setHidden(const RangeRef& range, Axis axis, bool hide) override {
    told("setHidden", [&] { CalcSpreadsheet::setHidden(range, axis, hide); });
  }
  std::vector<FormatCondition> formatConditions(const RangeRef& range) override {
    return told("formatConditions", [&] { return CalcSpreadsheet::formatConditions(range); });
  }
  std::string addFormatCondition(const RangeRef& range, const std::string& formula) override {
    return told("addFormatCondition",
                [&] { return CalcSpreadsheet::addFormatCondition(range, formula); });
  }
  void setConditionFill(const SheetRef& sheet, const std::string& id,
                        const std::optional<Color>& fill) override {
    told("setConditionFill", [&] { CalcSpreadsheet::setConditionFill(sheet, id, fill); });
  }
  void setConditionPriority(const SheetRef& sheet, const std::string& id, int priority) override {
    told("setConditionPriority",
         [&] { CalcSpreadsheet::setConditionPriority(sheet, id, priority); });
  }
  void setConditionRange(const RangeRef& range, const std::string& id) override {
    told("setConditionRange", [&] { CalcSpreadsheet::setConditionRange(range, id); });
  }
  void deleteCondition(const RangeRef& range, const std::string& id) override {
    told("deleteCondition", [&] { CalcSpreadsheet::deleteCondition(range, id); });
  }

 private:
  crash::Victim& victim_;
};

}  // namespace
}  // namespace quorin::host::calc

// Stands before the system's own, which the office's libraries send their messages with.
extern "C" ssize_t send(int socket, const void* data, size_t size, int flags) {
  auto* const victim = quorin::host::calc::listening;
  if (victim != nullptr && socket != victim->socket()) victim->pass("message");
  return ::syscall(SYS_sendto, socket, data, size, flags, nullptr, 0);
}

int main(int count, char** arguments) {
  using namespace quorin;
  using namespace quorin::crash;
  if (count != 4) return 2;
  const host::calc::OfficeAddress office{std::atoi(arguments[3]), arguments[2]};
  host::excelTerminology();
  return nurse(Link(std::atoi(arguments[1])), [&](Link link, const std::string& folder) {
    // Never destroyed: a thread of the office's libraries may send its last message late.
    auto& victim = *new Victim(std::move(link));
    host::calc::listening = &victim;
    serve(victim, folder, [&](FileSystem& files) {
      return std::make_unique<host::calc::ToldSpreadsheet>(
          victim, office, host::calc::TraceKeeping::in(ShownRowsFile(folder, files, nullptr)));
    });
    host::calc::listening = nullptr;
  });
}
