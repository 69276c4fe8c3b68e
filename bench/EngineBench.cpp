// What the script engine itself costs: compiling a library of the size of the real one, its memory,
// a handler call with a few events, and a grid of 20,000 cells that passes through a handler.
#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <iostream>
#include <malloc.h>
#include <string>

#include "host/dictionary/ExcelTerminology.h"
#include "kit/excel/ExcelScript.h"
#include "script/Script.h"

namespace quorin::script {
namespace {

// Answers at once, so that only the engine's own work is measured.
class InstantApplication : public Application {
 public:
  std::string_view name() const override { return "Microsoft Excel"; }
  const Terminology& terminology() const override { return host::excelTerminology(); }
  bool isRunning() override { return true; }
  AppleEventReply send(const AppleEvent&, std::chrono::milliseconds) override {
    return {answer, {}};
  }
  AppleEventDescriptor answer = AppleEventDescriptor::text("$B$3");
};

class InstantApplications : public Applications {
 public:
  Application* named(std::string_view) override { return &application; }
  Application* identified(std::string_view) override { return &application; }
  InstantApplication application;
};

// Twenty-four handlers of some twenty lines each.
std::string library() {
  std::string text;
  for (int i = 0; i < 24; ++i) {
    const std::string name = "handler_" + std::to_string(i);
    text += "on " + name +
            "(addrs, bookName)\n"
            "  tell application \"Microsoft Excel\"\n"
            "    with timeout of 3 seconds\n"
            "      set found to {}\n"
            "      repeat with i from 1 to count of addrs\n"
            "        set r to range (item i of addrs) of worksheet 1 of workbook bookName\n"
            "        try\n"
            "          set end of found to get address of r row absolute false\n"
            "          if (count of format conditions of r) > 0 then\n"
            "            set color of interior object of format condition 1 of r to {1, 2, 3}\n"
            "          else if class of found is not list then\n"
            "            special cells r type cell type formulas\n"
            "          end if\n"
            "        on error m number n\n"
            "          if n is not -1708 then error m number n\n"
            "          set end of found to missing value\n"
            "        end try\n"
            "      end repeat\n"
            "      return {name of active workbook, found, \"text \" & (count of found)}\n"
            "    end timeout\n"
            "  end tell\n"
            "end " +
            name + "\n";
  }
  return text;
}

Script compiled(const std::string& source, Applications& applications) {
  auto result = compile(source, applications);
  if (auto* script = std::get_if<Script>(&result)) return std::move(*script);
  std::cerr << "does not compile: " << std::get<CompileError>(result).message << "\n";
  std::exit(1);
}

// A measurement of a handler that fails would measure nothing.
void check(const ScriptOutcome& outcome) {
  if (!outcome.error) return;
  std::cerr << "failed: " << outcome.error->message << "\n";
  std::exit(1);
}

void callAgain(benchmark::State& state, Script& script, const std::string& handler) {
  for (auto _ : state) {
    const ScriptOutcome outcome = script.call(handler, {});
    check(outcome);
    benchmark::DoNotOptimize(outcome);
  }
}

void compileLibrary(benchmark::State& state) {
  InstantApplications applications;
  const std::string source = library();
  for (auto _ : state) benchmark::DoNotOptimize(compile(source, applications));
  state.counters["lines"] = static_cast<double>(std::count(source.begin(), source.end(), '\n'));
}
BENCHMARK(compileLibrary)->Unit(benchmark::kMillisecond);

void compileHandlerLibrary(benchmark::State& state) {
  InstantApplications applications;
  const std::string source(ExcelScript::source());
  compiled(source, applications);
  for (auto _ : state) benchmark::DoNotOptimize(compile(source, applications));
  state.counters["lines"] = static_cast<double>(std::count(source.begin(), source.end(), '\n'));
}
BENCHMARK(compileHandlerLibrary)->Unit(benchmark::kMillisecond);

std::size_t bytesInUse() {
  return mallinfo2().uordblks;
}

std::size_t terminologyBytes = 0;  // measured before anything else asks for the terms

void memoryOfHandlerLibrary(benchmark::State& state) {
  InstantApplications applications;
  const std::string source(ExcelScript::source());
  compiled(source, applications);
  for (auto _ : state) {
    const std::size_t before = bytesInUse();
    const Script script = compiled(source, applications);
    state.counters["script KiB"] = static_cast<double>(bytesInUse() - before) / 1024;
  }
  state.counters["terms KiB"] = static_cast<double>(terminologyBytes) / 1024;
}
BENCHMARK(memoryOfHandlerLibrary)->Unit(benchmark::kMillisecond);

void buildTerminology(benchmark::State& state) {
  std::string table;
  for (int i = 0; i < 7600; ++i) {
    table += "property\tsome term " + std::to_string(i) + "\tab" + std::to_string(i % 90 + 10) +
             "\trange\tinteger\tr/w\n";
  }
  for (auto _ : state) benchmark::DoNotOptimize(Terminology(table).find("some term 1"));
}
BENCHMARK(buildTerminology)->Unit(benchmark::kMillisecond);

void callWithThreeEvents(benchmark::State& state) {
  InstantApplications applications;
  Script script = compiled(
      "on poll()\ntell application \"Microsoft Excel\"\nwith timeout of 2 seconds\n"
      "return {name of active workbook, name of active sheet, get address of active cell}\n"
      "end timeout\nend tell\nend poll",
      applications);
  callAgain(state, script, "poll");
}
BENCHMARK(callWithThreeEvents)->Unit(benchmark::kMicrosecond);

AppleEventDescriptor grid(int rows, int columns) {
  AppleEventDescriptor::Items lines;
  for (int row = 0; row < rows; ++row) {
    AppleEventDescriptor::Items cells;
    for (int column = 0; column < columns; ++column) {
      cells.push_back(column % 4 == 0 ? AppleEventDescriptor::text("text of a cell")
                                      : AppleEventDescriptor::real(row + column / 100.0));
    }
    lines.push_back(AppleEventDescriptor::list(std::move(cells)));
  }
  return AppleEventDescriptor::list(std::move(lines));
}

void passGrid(benchmark::State& state) {
  InstantApplications applications;
  applications.application.answer = grid(1000, 20);
  Script script = compiled(
      "on read_()\ntell application \"Microsoft Excel\"\nset v to value2 of range \"A1:T1000\"\n"
      "return {v, count of v, \"\", 20000}\nend tell\nend read_",
      applications);
  callAgain(state, script, "read_");
}
BENCHMARK(passGrid)->Unit(benchmark::kMillisecond);

// The peer of passGrid: the same answer copied once and destroyed.
void copyGrid(benchmark::State& state) {
  const AppleEventDescriptor answer = grid(1000, 20);
  for (auto _ : state) {
    AppleEventDescriptor copy = answer;
    benchmark::DoNotOptimize(copy);
  }
}
BENCHMARK(copyGrid)->Unit(benchmark::kMillisecond);

void visitGrid(benchmark::State& state) {
  InstantApplications applications;
  applications.application.answer = grid(1000, 20);
  Script script = compiled(
      "on sum_()\ntell application \"Microsoft Excel\" to set v to value2 of range \"A1:T1000\"\n"
      "set n to 0\nrepeat with row_ in v\nrepeat with i from 2 to 4\n"
      "set n to n + (item i of row_)\nend repeat\nend repeat\nreturn n\nend sum_",
      applications);
  callAgain(state, script, "sum_");
}
BENCHMARK(visitGrid)->Unit(benchmark::kMillisecond);

void measureTerminology() {
  const std::size_t before = bytesInUse();
  host::excelTerminology();
  terminologyBytes = bytesInUse() - before;
}

}  // namespace
}  // namespace quorin::script

int main(int count, char** arguments) {
  quorin::script::measureTerminology();
  benchmark::Initialize(&count, arguments);
  benchmark::RunSpecifiedBenchmarks();
}
