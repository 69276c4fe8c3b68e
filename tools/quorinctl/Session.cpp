#include "tools/quorinctl/Session.h"

#include <chrono>
#include <cmath>
#include <exception>
#include <utility>

#include "host/calc/CalcRunner.h"
#include "kit/marks/ShownRowsFile.h"

namespace quorin::ctl {

namespace {

constexpr std::int64_t logCap = 4000000;
constexpr std::int64_t logTrim = 3000000;
constexpr auto officeStart = std::chrono::seconds(60);  // on a busy machine
constexpr auto officeEnd = std::chrono::seconds(30);

}  // namespace

Session::Session(Parts parts)
    : target_(std::move(parts.target)),
      log_(parts.log, logCap, logTrim),
      store_(parts.records / "highlights.json", FileSystem::real(), &log_),
      unhide_(parts.records / "unhidden.json", FileSystem::real(), &log_) {
  // The office is handed to the call thread, where everything that is done with it happens.
  const auto office = std::make_shared<decltype(parts.office)>(std::move(parts.office));
  const ShownRowsFile traces(parts.records, FileSystem::real(), &log_);
  const ScriptRunnerFactory factory = [this, office, traces](CallThreadPost post) {
    post_ = std::move(post);
    host::calc::CalcOptions options;
    options.patience = officeStart;
    options.traces = host::calc::TraceKeeping::in(traces);
    options.notice = [this](const std::string& text) { log_.log("UNHIDE", text); };
    options.post = post_;
    host::calc::CalcRunner calc =
        host::calc::makeCalcRunner(std::move(*office), std::move(options));
    spreadsheet_ = calc.spreadsheet;
    return std::move(calc.runner);
  };
  ExcelThread::Options options;
  options.stopWait = officeEnd;
  thread_ = std::make_unique<ExcelThread>(factory, log_, options);
  bridge_ = std::make_unique<Bridge>(*thread_, log_, store_, unhide_, *target_);
  queue_ = std::make_unique<SerialQueue>("qx.bridge");
}

Session::~Session() {
  queue_.reset();
  bridge_.reset();
  // Before the office goes, which takes the folder of a private run with it.
  log_.flush();
  thread_.reset();
}

void Session::open(const std::optional<std::filesystem::path>& workbook, Opened done) {
  post_([this, workbook, tell = std::move(done)] {
    std::optional<std::string> failure;
    try {
      if (workbook)
        spreadsheet_->openWorkbook(workbook->string());
      else
        spreadsheet_->version();
    } catch (const std::exception& error) {
      failure = error.what();
    }
    tell(std::move(failure));
  });
}

void Session::serve(std::string verb, Bridge::Args args, Served done) {
  queue_->post([this, asked = std::move(verb), given = std::move(args), tell = std::move(done)] {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    Bridge::Reply reply = bridge_->dispatch(asked, given);
    const std::chrono::duration<double, std::micro> took = Clock::now() - start;
    tell(std::move(reply), std::round(took.count()) / 1000);
  });
}

void Session::quit() {
  if (spreadsheet_) spreadsheet_->quit();
}

}  // namespace quorin::ctl
