// What reading a range costs through the handler library, the script engine and Excel's object
// model, beside the same work in plain C++, and what memory the compiled library takes. Over the
// spreadsheet of the tests.
#include <algorithm>
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <memory>
#include <stdexcept>

#include "host/Address.h"
#include "host/EngineRunner.h"
#include "host/model/Answers.h"
#include "host/model/ExcelObjectModel.h"
#include "kit/excel/ExcelScript.h"
#include "kit/shapes/ErrorLiterals.h"
#include "tests/fakes/MemorySpreadsheet.h"

namespace quorin {
namespace {

constexpr int columns = 4, cells = 20'000;

fakes::WorkbookDescription workbook() {
  fakes::SheetDescription sheet{"Sheet1", {}};
  for (int i = 0; i < cells; ++i) {
    const std::string address =
        host::columnLetters(i % columns + 1) + std::to_string(i / columns + 1);
    if (i % 3 == 0)
      sheet.cells.push_back({address, "text " + std::to_string(i)});
    else
      sheet.cells.push_back({address, 0.5 + i});
  }
  return {.name = "Book.xlsx", .sheets = {std::move(sheet)}};
}

const host::RangeRef range{{"Book.xlsx", "Sheet1"}, {{1, 1, cells / columns, columns}}};

struct Library {
  Library() {
    auto owned = std::make_unique<fakes::MemorySpreadsheet>();
    spreadsheet = owned.get();
    spreadsheet->open(workbook());
    runner = std::make_unique<host::EngineRunner>(
        std::make_unique<host::ExcelObjectModel>(std::move(owned)));
    if (runner->compile(ExcelScript::source())) throw std::logic_error("no library");
  }

  AppleEventDescriptor run(const char* handler, AppleEventDescriptor::Items arguments) {
    AppleEvent event{fourCharCode("ascr"), fourCharCode("psbr"), {}, {}};
    event.parameters.push_back({fourCharCode("snam"), AppleEventDescriptor::text(handler)});
    event.parameters.push_back({keyDirectObject, AppleEventDescriptor::list(std::move(arguments))});
    ScriptReply reply = runner->execute(event);
    if (!reply.result) throw std::logic_error("no result");
    spreadsheet->script.clear();  // the record of the calls
    return std::move(*reply.result);
  }

  fakes::MemorySpreadsheet* spreadsheet = nullptr;
  std::unique_ptr<host::EngineRunner> runner;
};

// What the handler does: a look at the first column for errors, then the values of all.
AppleEventDescriptor readPlainly(host::Spreadsheet& spreadsheet) {
  host::RangeRef first = range;
  first.areas.front().lastColumn = 1;
  const auto values = host::valueAnswer(spreadsheet.values(first));
  if (values.items().size() != cells / columns) throw std::logic_error("an error");
  for (const std::string& text : spreadsheet.displayedTexts(first).cells)
    if (std::find(BridgeShapes::errorLiterals.begin(), BridgeShapes::errorLiterals.end(), text) !=
        BridgeShapes::errorLiterals.end())
      throw std::logic_error("an error");
  return host::valueAnswer(spreadsheet.values(range));
}

void readRangePlainly(benchmark::State& state) {
  Library library;
  for (auto _ : state) {
    benchmark::DoNotOptimize(readPlainly(*library.spreadsheet));
    library.spreadsheet->script.clear();
  }
}
BENCHMARK(readRangePlainly)->Unit(benchmark::kMillisecond);

void readRangeByHandler(benchmark::State& state) {
  Library library;
  const auto address = AppleEventDescriptor::text("A1:D" + std::to_string(cells / columns));
  const auto answer = library.run("qx_readrange", {address});
  if (answer.items().size() != 5 || answer.items().front() != readPlainly(*library.spreadsheet))
    throw std::logic_error("other values than in plain C++");
  for (auto _ : state) benchmark::DoNotOptimize(library.run("qx_readrange", {address}));
}
BENCHMARK(readRangeByHandler)->Unit(benchmark::kMillisecond);

void pollCellByHandler(benchmark::State& state) {
  Library library;
  for (auto _ : state) benchmark::DoNotOptimize(library.run("qx_pollcell", {}));
}
BENCHMARK(pollCellByHandler)->Unit(benchmark::kMicrosecond);

// Bytes of heap for Excel's words, which are read once per process, and for each compiled library.
void compileLibrary(benchmark::State& state) {
  const auto heap = [] { return static_cast<double>(mallinfo2().uordblks); };
  const double before = heap();
  auto first = std::make_unique<host::EngineRunner>(
      std::make_unique<host::ExcelObjectModel>(std::make_unique<fakes::MemorySpreadsheet>()));
  if (first->compile(ExcelScript::source())) throw std::logic_error("no library");
  const double afterFirst = heap();
  for (auto _ : state)
    if (first->compile(ExcelScript::source())) throw std::logic_error("no library");
  const double compiled = heap();
  first.reset();
  state.counters["wordsAndLibraryKB"] = (afterFirst - before) / 1024;
  state.counters["libraryKB"] = (compiled - heap()) / 1024;
}
BENCHMARK(compileLibrary)->Unit(benchmark::kMillisecond)->Iterations(20);

}  // namespace
}  // namespace quorin

BENCHMARK_MAIN();
