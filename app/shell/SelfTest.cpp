#include "app/shell/SelfTest.h"

#include <algorithm>
#include <chrono>

#include "kit/excel/ExcelError.h"
#include "kit/value/Marshal.h"

namespace quorin {

namespace SelfTestTexts {
extern const std::string_view selfTestScript;
}

namespace {

constexpr double budget = 65;  // seconds; the longest of the handlers' own
// The first question makes the system ask the user for the permission, and waits for the answer.
constexpr double firstBudget = 300;
constexpr int repetitions = 200;
constexpr std::size_t longestAnswer = 600;

using Array = JSONValue::Array;

std::string shown(const JSONValue& value) {
  std::string text = Marshal::encode(value);
  if (text.size() > longestAnswer) text = text.substr(0, longestAnswer) + " …";
  return text;
}

// The text at a position of a list; empty when there is none.
std::string textAt(const JSONValue& list, std::size_t position) {
  const Array* const items = list.array();
  if (!items || position >= items->size()) return {};
  const std::string* const text = (*items)[position].string();
  return text ? *text : std::string();
}

long long millisecondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                               start)
      .count();
}

}  // namespace

std::string_view SelfTest::experimentsSource() {
  return SelfTestTexts::selfTestScript;
}

std::string SelfTest::run() {
  line("Quorin's self-test");
  report_ += ProblemReport::systemInfo(parts_.appVersion, parts_.versions);
  tellPlatform();
  line("");
  line("Scripts");
  const bool library = compiled("handler library", parts_.library);
  const bool experiments = compiled("experiments", parts_.experiments);
  if (library && experiments) tryWorkbook();
  line("");
  line(failures_ == 0 ? "Nothing failed." : std::to_string(failures_) + " failed.");
  return report_;
}

void SelfTest::tellPlatform() {
  line("");
  line("System interfaces: " + std::to_string(parts_.platform.checked) + " checked, " +
       std::to_string(parts_.platform.missing.size()) + " missing");
  for (const std::string& name : parts_.platform.missing) line("  MISSING " + name);
  failures_ += static_cast<int>(parts_.platform.missing.size());
}

bool SelfTest::compiled(const char* what, const ExcelThread& thread) {
  const std::optional<std::string> error = thread.compileError();
  line(std::string("  ") + what + ": " + error.value_or("compiled"));
  if (error) ++failures_;
  return !error;
}

void SelfTest::tryWorkbook() {
  line("");
  line("Excel");
  ask(parts_.experiments, {"version", "xx_version", {}}, firstBudget);
  const JSONValue books = ask(parts_.experiments, {"open workbooks", "xx_bookcount", {}});
  alone_ = books.number() && *books.number() == 0;
  const JSONValue made = ask(parts_.experiments, {"scratch workbook", "xx_open", {}});
  const std::string book = textAt(made, 0), sheet = textAt(made, 1);
  if (book.empty() || sheet.empty()) {
    line(
        "  There is no scratch workbook: nothing else was tried. If an empty workbook is left in "
        "Excel, close it without saving.");
    return;
  }
  tryHandlers(book, sheet);
  tryExperiments(book, sheet);
  tryRepeatedly();
  tryDangerous(book, sheet);
  ask(parts_.experiments, {"close the scratch workbook", "xx_close", {book}});
}

void SelfTest::tryHandlers(const std::string& book, const std::string& sheet) {
  line("");
  line("Handlers");
  const Step steps[] = {
      {"", "qx_probe", {}},
      {"", "qx_pollcell", {}},
      {"", "qx_readcell", {}},
      {"", "qx_evaluate", {"A1+A2"}},
      {"", "qx_readrange", {"$A$1:$B$3"}},
      {"", "qx_readformulas", {"$A$1:$B$3", "formula", false}},
      {"", "qx_readformulas", {"$A$1:$B$3", "formula", true}},
      {"", "qx_select", {Array{"$A$1"}}},
      {"", "qx_activate", {"$B$1"}},
      {"", "qx_dependents", {"$A$1"}},
      {"", "qx_dependents", {"$Z$9"}},
      {"", "qx_workbookmap", {}},
      {"", "qx_workbookcount", {}},
      {"", "qx_deepeval", {Array{"1+1", "A1*2"}}},
      {"", "qx_cf_apply", {Array{"$A$1", "$A$3"}, book, sheet, 255, 0, 255}},
      {"", "qx_cf_move", {Array{"$A$1", "$A$3"}, Array{"$B$1", "$B$3"}, book, sheet}},
      {"", "qx_cf_clear", {Array{"$B$1", "$B$3"}, book, sheet}},
      {"", "qx_revealread", {"$C$5", sheet, book}},
      {"hide row 5", "qx_unhide", {sheet, book, Array{Array{5, 5}}, Array{}, true}},
      {"show it again", "qx_unhide", {sheet, book, Array{Array{5, 5}}, Array{}, false}},
      {"", "qx_revealscroll", {5, 3, sheet, book, false}},
  };
  for (const Step& step : steps) ask(parts_.library, step);
}

void SelfTest::tryExperiments(const std::string& book, const std::string& sheet) {
  line("");
  line("Questions (an error is an answer, too)");
  const int before = failures_;
  const Step steps[] = {
      {"2 an array as a result", "xx_evaluate", {"ROW(A1:A3)"}},
      {"2 a reference as a result", "xx_evaluate", {"A1"}},
      {"2 an error as a result", "xx_evaluate", {"1/0"}},
      {"2 a text of 256 characters", "xx_evaluate", {"1+" + std::string(254, '1')}},
      {"3 a condition made at a range", "xx_condition_at_range", {book, sheet}},
      {"3 a condition made at its end", "xx_condition_at_end", {book, sheet}},
      {"3 what make gives, after another came first", "xx_condition_specifier", {book, sheet}},
      {"3 the language of a condition's formula", "xx_condition_language", {book, sheet}},
      {"4 a condition moved", "xx_move_condition", {book, sheet}},
      {"5 no dependents", "xx_no_dependents", {book, sheet}},
      {"5 no visible cells", "xx_no_visible", {book, sheet}},
      {"6 a range in a variable", "xx_range_in_variable", {}},
      {"6 the active workbook in a variable", "xx_active_in_variable", {}},
      {"7 formula, R1C1, text and value2 of A1:B2", "xx_shapes", {book, sheet}},
      {"7 formula2 of A1:B2", "xx_formula2", {book, sheet}},
      {"8 the address of 60 areas", "xx_long_address", {book, sheet}},
      {"10 a range with its sheet", "xx_qualified_range", {sheet}},
      {"2 an expression sent to another sheet", "xx_evaluate_in_sheet", {book, sheet}},
  };
  for (const Step& step : steps) ask(parts_.experiments, step);
  failures_ = before;
}

// Asks for the active cell again and again off the main thread, and writes how long that took.
void SelfTest::tryRepeatedly() {
  line("");
  line("Threads");
  std::vector<long long> times;
  int failed = 0;
  for (int i = 0; i < repetitions; ++i) {
    const auto start = std::chrono::steady_clock::now();
    try {
      parts_.library.call("qx_pollcell", {}, budget);
    } catch (const ExcelError&) {
      ++failed;
    }
    times.push_back(millisecondsSince(start));
  }
  std::sort(times.begin(), times.end());
  line("  " + std::to_string(repetitions) + " calls off the main thread: " +
       std::to_string(failed) + " failed, median " + std::to_string(times[times.size() / 2]) +
       " ms, longest " + std::to_string(times.back()) + " ms");
  failures_ += failed > 0;
}

// A crash of Excel would cost the user what is not saved, and a dialog of its stops everything
// else.
void SelfTest::tryDangerous(const std::string& book, const std::string& sheet) {
  line("");
  line("What may stop or end Excel");
  if (!alone_) {
    line("  1, 10 not tried: close all workbooks in Excel before the self-test to have them tried");
    return;
  }
  const int before = failures_;
  const Step steps[] = {
      {"10 a sheet that is not there (a dialog of Excel's? press Cancel)", "xx_missing_sheet", {}},
      {"1 error cells as text", "xx_errors_as_text", {book, sheet}},
      {"1 error cells in bulk, one column, two columns", "xx_errors_in_bulk", {book, sheet}},
  };
  for (const Step& step : steps) ask(parts_.experiments, step);
  failures_ = before;
}

JSONValue SelfTest::ask(ExcelThread& thread, const Step& step) {
  return ask(thread, step, budget);
}

JSONValue SelfTest::ask(ExcelThread& thread, const Step& step, double seconds) {
  const std::string name = step.what.empty() ? step.handler : step.what;
  const auto start = std::chrono::steady_clock::now();
  JSONValue answer;
  std::string told;
  try {
    answer = thread.call(step.handler, step.arguments, seconds);
    told = shown(answer);
  } catch (const ExcelError& error) {
    ++failures_;
    told = "ERROR " + std::to_string(error.code()) + ": " + error.message();
  }
  line("  " + name + ": " + told + " (" + std::to_string(millisecondsSince(start)) + " ms)");
  return answer;
}

}  // namespace quorin
