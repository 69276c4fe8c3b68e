// The three reads of a poll, made directly over UNO, through the port, and on the whole road from
// the call thread through handler library, engine and object model, side by side in one run.
#include <benchmark/benchmark.h>
#include <com/sun/star/container/XNamed.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/frame/XModel.hpp>
#include <com/sun/star/sheet/XSpreadsheetView.hpp>
#include <fstream>

#include "host/calc/CalcRunner.h"
#include "host/calc/office/OfficeConnection.h"
#include "host/calc/office/PrivateOffice.h"
#include "kit/excel/ExcelThread.h"
#include "kit/shapes/CellShapes.h"
#include "tests/fakes/TemporaryFolder.h"

namespace {

using namespace quorin::host::calc;
using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

constexpr const char* emptyWorkbook = R"(<?xml version="1.0" encoding="UTF-8"?>
<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
 xmlns:table="urn:oasis:names:tc:opendocument:xmlns:table:1.0" office:version="1.3"
 office:mimetype="application/vnd.oasis.opendocument.spreadsheet"><office:body><office:spreadsheet>
<table:table table:name="Data"/></office:spreadsheet></office:body></office:document>)";

std::shared_ptr<PrivateOffice> office() {
  static const quorin::TemporaryFolder folder;
  static const auto shared = [] {
    auto started = std::make_shared<PrivateOffice>();
    const auto file = folder / "Bench.fods";
    std::ofstream(file) << emptyWorkbook;
    CalcSpreadsheet(started).openWorkbook(file.string());
    return started;
  }();
  return shared;
}

// What a program asks for that holds on to the workbook and its window.
void DirectReads(benchmark::State& state) {
  OfficeConnection connection(office()->open(), std::chrono::seconds(10));
  const auto desktop = css::frame::Desktop::create(connection.context());
  const Reference<css::frame::XModel> model(desktop->getCurrentComponent(), UNO_QUERY_THROW);
  const Reference<css::frame::XController> controller = model->getCurrentController();
  const Reference<css::sheet::XSpreadsheetView> view(controller, UNO_QUERY_THROW);
  for ([[maybe_unused]] auto turn : state) {
    benchmark::DoNotOptimize(model->getURL());
    const Reference<css::container::XNamed> sheet(view->getActiveSheet(), UNO_QUERY_THROW);
    benchmark::DoNotOptimize(sheet->getName());
    benchmark::DoNotOptimize(controller->getViewData());
  }
}

void PortReads(benchmark::State& state) {
  CalcSpreadsheet calc(office());
  for ([[maybe_unused]] auto turn : state) {
    benchmark::DoNotOptimize(calc.activeWorkbook());
    benchmark::DoNotOptimize(calc.activeSheet());
    benchmark::DoNotOptimize(calc.activeCell());
  }
}

// One thread that has compiled the real library, made before the timing starts.
quorin::ExcelThread& callThread() {
  static const quorin::TemporaryFolder folder;
  static quorin::DiagLog log(folder / "bench.log", 4000000, 3000000);
  static quorin::ExcelThread thread(
      [](const quorin::CallThreadPost&) {
        return quorin::host::calc::makeCalcRunner(office(), {}).runner;
      },
      log);
  return thread;
}

void PollCell(benchmark::State& state) {
  quorin::ExcelThread& thread = callThread();
  for ([[maybe_unused]] auto turn : state) {
    benchmark::DoNotOptimize(
        quorin::BridgeShapes::pollCellObject(thread.call("qx_pollcell", {}, 3)));
  }
}

void ReadCell(benchmark::State& state) {
  quorin::ExcelThread& thread = callThread();
  for ([[maybe_unused]] auto turn : state) {
    benchmark::DoNotOptimize(
        quorin::BridgeShapes::readCellObject(thread.call("qx_readcell", {}, 10)));
  }
}

BENCHMARK(DirectReads)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(PortReads)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(PollCell)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(ReadCell)->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
