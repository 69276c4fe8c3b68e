// The player whose scripts meet Excel's object model over workbooks in memory.
#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>
#include <vector>

#include "host/model/ExcelObjectModel.h"
#include "tests/fakes/MemorySpreadsheet.h"
#include "tests/fuzz/Promises.h"
#include "tests/fuzz/ScriptPlayer.h"

namespace quorin::fuzz {
namespace {

using Descriptor = AppleEventDescriptor;

// What one script may cost: answers beyond are those of an Excel that has died.
constexpr std::size_t mostCalls = 5'000;
constexpr long long mostCells = 2'000;

// The object model, each of whose answers is looked at.
class Watched : public script::Application, public script::Applications {
 public:
  Watched(fakes::MemorySpreadsheet& spreadsheet, std::string_view source)
      : spreadsheet_(spreadsheet), excel_(spreadsheet), source_(source) {}

  std::string_view name() const override { return excel_.name(); }
  const script::Terminology& terminology() const override { return excel_.terminology(); }
  bool isRunning() override { return excel_.isRunning(); }
  Application* named(std::string_view wanted) override { return wanted == name() ? this : nullptr; }
  Application* identified(std::string_view id) override {
    return id == "com.microsoft.Excel" ? this : nullptr;
  }

  AppleEventReply send(const AppleEvent& event, std::chrono::milliseconds timeout) override {
    if (spreadsheet_.script.count() > mostCalls)
      return {std::nullopt, AppleEventError{-609, "Connection is invalid.", std::nullopt}};
    AppleEventReply reply = excel_.send(event, timeout);
    if (reply.error && reply.result) broken("an answer or an error", source_);
    if (reply.error && reply.error->number == 0) broken("an error has a number", source_);
    return reply;
  }

 private:
  fakes::MemorySpreadsheet& spreadsheet_;
  host::ExcelObjectModel excel_;
  std::string_view source_;
};

Descriptor texts(std::initializer_list<const char*> items) {
  Descriptor::Items list;
  for (const char* item : items) list.push_back(Descriptor::text(item));
  return Descriptor::list(std::move(list));
}

// Such that handlers find what they are asked for.
const std::vector<Descriptor::Items>& argumentSets() {
  static const std::vector<Descriptor::Items> sets = {
      {texts({"B2", "Data!C3:D4", "Spot"}), Descriptor::text("Known.xlsx"),
       Descriptor::text("Data"), Descriptor::integer(255), Descriptor::integer(0),
       Descriptor::boolean(true)},
      {Descriptor::text("A1:C4"), Descriptor::text("Data"), Descriptor::text("Known.xlsx"),
       Descriptor::boolean(true), texts({"1:2"}), Descriptor::real(2)},
      {Descriptor::integer(2), Descriptor::integer(3), Descriptor::text("It's a test"),
       Descriptor::text("Known.xlsx"), Descriptor::boolean(false), Descriptor::null()},
  };
  return sets;
}

// The user's cells, which no script may change: the spreadsheet writes into scratch workbooks only.
using Cells = std::vector<std::pair<host::RangeRef, host::Grid<host::CellValue>>>;

Cells cellsOf(host::Spreadsheet& spreadsheet, const std::vector<std::string>& books) {
  Cells found;
  for (const std::string& book : books)
    for (const std::string& sheet : spreadsheet.worksheets(book)) {
      const auto used = spreadsheet.usedRange({book, sheet});
      if (!used) continue;
      found.emplace_back(*used, spreadsheet.formulas(*used, host::ReferenceStyle::a1));
      found.emplace_back(*used, spreadsheet.values(*used));
    }
  return found;
}

}  // namespace

bool play(std::string_view source) {
  fakes::MemorySpreadsheet spreadsheet;
  spreadsheet.program.mostCells = mostCells;
  spreadsheet.open(fakes::ruledWorkbook());
  spreadsheet.open(fakes::knownWorkbook());
  const std::vector<std::string> books = spreadsheet.workbooks();
  const Cells before = cellsOf(spreadsheet, books);
  Watched excel(spreadsheet, source);
  bool compiled = false;
  for (const Descriptor::Items& arguments : argumentSets()) {
    compiled = compileAndRun(source, excel, arguments);
    if (!compiled) return false;
  }
  for (const std::string& book : books) {
    const auto open = spreadsheet.workbooks();
    if (std::find(open.begin(), open.end(), book) == open.end())
      broken("the user's workbooks stay open", source);
  }
  if (cellsOf(spreadsheet, books) != before) broken("the user's cells stay as they are", source);
  return compiled;
}

}  // namespace quorin::fuzz
