#include "tests/macos/program/ExcelOfTheRun.h"

#include <sstream>
#include <string_view>
#include <utility>

#include "host/Address.h"
#include "host/model/ExcelObjectModel.h"

namespace quorin {

namespace host {
extern const std::string_view excelTermTable;
}

namespace {

constexpr const char* book = "Model.xlsx";
constexpr std::chrono::milliseconds underWay{500};

fakes::WorkbookDescription workbook() {
  fakes::WorkbookDescription model{.name = book, .sheets = {}};
  model.sheets.push_back({"Model",
                          {{"A2", "Revenue"},
                           {"B2", 600.0, "=Inputs!B1*Inputs!B2"},
                           {"A3", "Cost"},
                           {"B3", 150.0, "=B2*Share"},
                           {"A4", "Margin"},
                           {"B4", 450.0, "=B2-B3"},
                           {"A6", "Verdict"},
                           {"B6", "good", "=IF(B4>100,\"good\",\"bad\")"},
                           {"A7", "Broken"},
                           {"B7", host::CellError{"#DIV/0!"}, "=B2/Inputs!B9"}}});
  model.sheets.push_back({"Inputs",
                          {{"A1", "Price"},
                           {"B1", 20.0},
                           {"A2", "Units"},
                           {"B2", 30.0},
                           {"A3", "Share"},
                           {"B3", 0.25},
                           {"A9", "Nothing"},
                           {"B9", 0.0}}});
  model.names = {{"Share", "=Inputs!$B$3"}};
  return model;
}

// What Excel for Mac is known for and what needs no other answer of the program.
fakes::ExcelQuirks quirks() {
  fakes::ExcelQuirks known;
  known.dropsErrorRows = known.diesOfFirstColumnErrors = true;
  known.losesLongText = known.hidesEvaluationErrors = known.ignoresLongFormulas = true;
  known.refusesLongAddresses = true;
  known.asksForMissingSheets = true;
  return known;
}

AppleEventReply failed(int number, const char* message) {
  return {std::nullopt, AppleEventError{number, message, {}}};
}

}  // namespace

class ExcelOfTheRun::Connection : public script::Application {
 public:
  explicit Connection(ExcelOfTheRun& excel) : excel_(excel) {}

  std::string_view name() const override { return excel_.excel_->name(); }
  const script::Terminology& terminology() const override {
    return excel_.poorer_ ? *excel_.poorer_ : excel_.excel_->terminology();
  }
  bool isRunning() override { return excel_.running_; }
  AppleEventReply send(const AppleEvent& event, std::chrono::milliseconds timeout) override {
    return excel_.answer(event, timeout);
  }

 private:
  ExcelOfTheRun& excel_;
};

ExcelOfTheRun::ExcelOfTheRun(std::function<bool()> isInFront) : isInFront_(std::move(isInFront)) {
  auto sheets = std::make_unique<fakes::MemorySpreadsheet>();
  sheets_ = sheets.get();
  sheets_->open(workbook());
  excel_ = std::make_unique<fakes::QuirkyExcel>(
      std::make_unique<host::ExcelObjectModel>(std::move(sheets)), quirks());
}

std::unique_ptr<script::Application> ExcelOfTheRun::connection() {
  return std::make_unique<Connection>(*this);
}

AppleEventReply ExcelOfTheRun::answer(const AppleEvent& event, std::chrono::milliseconds timeout) {
  if (!running_) {
    if (std::chrono::steady_clock::now() > ended_.load() + underWay) ++strayEvents_;
    return failed(-600, "Application isn't running.");
  }
  if (!permitted_) return failed(-1743, "Not authorized to send Apple events to Microsoft Excel.");
  if (!becomesFree(timeout)) return failed(-1712, "AppleEvent timed out.");
  const std::lock_guard guard(lock_);
  sheets_->program.frontmost = isInFront_();
  AppleEventReply reply = excel_->send(event, timeout);
  excel_->forget();  // its records, which would grow
  sheets_->script.clear();
  return reply;
}

bool ExcelOfTheRun::becomesFree(std::chrono::milliseconds timeout) {
  std::unique_lock guard(busyLock_);
  return changed_.wait_for(guard, timeout, [this] { return !busy_; });
}

host::RangeRef ExcelOfTheRun::range(const std::string& cells) const {
  const std::size_t mark = cells.find('!');
  return {{book, cells.substr(0, mark)}, host::parseA1(cells.substr(mark + 1)).value()};
}

void ExcelOfTheRun::goTo(const std::string& cells) {
  const std::lock_guard guard(lock_);
  sheets_->goTo(range(cells));
}

void ExcelOfTheRun::hide(const std::string& cells, bool rows, bool hidden) {
  const std::lock_guard guard(lock_);
  sheets_->setHidden(range(cells), rows ? host::Axis::rows : host::Axis::columns, hidden);
}

bool ExcelOfTheRun::isHidden(const std::string& cells, bool rows) {
  const std::lock_guard guard(lock_);
  return sheets_->hidden(range(cells), rows ? host::Axis::rows : host::Axis::columns) == true;
}

void ExcelOfTheRun::mark(const std::string& cells, const std::string& formula) {
  const std::lock_guard guard(lock_);
  sheets_->addFormatCondition(range(cells), formula);
}

JSONValue ExcelOfTheRun::conditions() {
  const std::lock_guard guard(lock_);
  JSONValue::Array all;
  for (const std::string& sheet : sheets_->worksheets(book)) {
    for (const host::FormatCondition& each :
         sheets_->formatConditions(range(sheet + "!A1:XFD1048576"))) {
      all.push_back(JSONValue::Array{sheet + "!" + host::addressText(each.areas), each.formula});
    }
  }
  return all;
}

JSONValue ExcelOfTheRun::active() {
  const std::lock_guard guard(lock_);
  const auto cell = sheets_->activeCell();
  if (!cell) return nullptr;
  return cell->sheet.sheet + "!" + host::addressText(cell->areas);
}

// The second column of the table has the terms.
void ExcelOfTheRun::lackTerm(const std::string& term) {
  std::istringstream table{std::string(host::excelTermTable)};
  std::string line, rest;
  while (std::getline(table, line)) {
    if (line.find("\t" + term) == std::string::npos) rest += line + "\n";
  }
  poorer_ = std::make_unique<script::Terminology>(rest);
}

void ExcelOfTheRun::setRunning(bool running) {
  ended_ = std::chrono::steady_clock::now();
  running_ = running;
}

void ExcelOfTheRun::setBusy(bool busy) {
  const std::lock_guard guard(busyLock_);
  busy_ = busy;
  changed_.notify_all();
}

}  // namespace quorin
