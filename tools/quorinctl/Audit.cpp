#include "tools/quorinctl/Audit.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <deque>
#include <map>
#include <mutex>
#include <set>
#include <unistd.h>
#include <utility>

#include "kit/platform/Thread.h"
#include "kit/support/AtomicFile.h"
#include "kit/value/JSONText.h"
#include "kit/value/Marshal.h"
#include "tools/quorinctl/AuditScript.h"
#include "tools/quorinctl/Place.h"
#include "tools/quorinctl/RequestLine.h"
#include "tools/quorinctl/Waiter.h"

namespace quorin::ctl {

namespace {

using Clock = std::chrono::steady_clock;
using std::filesystem::path;

constexpr int failing = 1;
constexpr int unable = 2;
constexpr int signalled = 128;

// A signal asked the program to end.
class Ended {};

// Beside a program that was built and not installed, or under the prefix that it was installed to.
path scriptFile() {
  const path folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  const path built = folder / "resources" / "audit.js";
  if (std::filesystem::exists(built)) return built;
  return folder.parent_path() / "share" / "quorin" / "audit.js";
}

bool isWorkbook(const path& file) {
  static const std::set<std::string> suffixes{".xlsx", ".xlsm", ".xls", ".xlsb", ".ods", ".fods"};
  std::string suffix = file.extension().string();
  std::transform(suffix.begin(), suffix.end(), suffix.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return suffixes.contains(suffix);
}

// The workbooks of folders by their names, without the files that programs keep beside an open one.
std::vector<path> workbooksOf(const std::vector<path>& given) {
  std::vector<path> files;
  for (const path& one : given) {
    if (!std::filesystem::is_directory(one)) {
      files.push_back(one);
      continue;
    }
    std::vector<path> found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(
             one, std::filesystem::directory_options::skip_permission_denied)) {
      const std::string name = entry.path().filename().string();
      const bool isLock = name.starts_with("~$") || name.starts_with(".~lock.");
      if (entry.is_regular_file() && !isLock && isWorkbook(entry.path()))
        found.push_back(entry.path());
    }
    std::sort(found.begin(), found.end());
    files.insert(files.end(), found.begin(), found.end());
  }
  return files;
}

// One line on a terminal, written over by the next.
class ProgressLine {
 public:
  explicit ProgressLine(std::string file) : file_(std::move(file)) {}
  ~ProgressLine() { clear(); }
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  void tell(const std::string& text) {
    if (!isTerminal_) return;
    std::fprintf(stderr, "\r\033[K%s  %s", file_.c_str(), text.c_str());
    std::fflush(stderr);
    isShown_ = true;
  }
  void clear() {
    if (std::exchange(isShown_, false)) std::fputs("\r\033[K", stderr);
  }

 private:
  const std::string file_;
  const bool isTerminal_ = ::isatty(STDERR_FILENO) == 1;
  bool isShown_ = false;
};

// One workbook in an office of its own, which is gone when this is.
class WorkbookAudit {
 public:
  WorkbookAudit(Waiter& waiter, const path& file)
      : waiter_(waiter),
        file_(file),
        progress_(file.string()),
        script_(scriptFile(), host()),
        place_(privatePlace(std::nullopt)),
        session_(std::move(place_.parts)) {
    if (session_.compileError()) throw Unserved(*session_.compileError());
  }

  ~WorkbookAudit() {
    // What was asked tells its end all the same, and is not to be taken for the next workbook's.
    session_.quit();
    for (; asked_ > 0; --asked_) waiter_.waitForDoneAlone();
  }

  // The report as JSON. Throws Ended, Unserved and AuditScript::Error.
  std::string report(int top) {
    open();
    script_.begin(file_.string(), top);
    while (!report_ && !failure_) {
      answer();
      if (!report_ && !failure_) wait();
    }
    if (failure_) throw Unserved(*failure_);
    return *report_;
  }

 private:
  AuditScript::Host host() {
    return {
        .ask = [this](std::string request) { ask(request); },
        .after = [this](std::chrono::milliseconds time,
                        int id) { timers_.emplace(Clock::now() + time, id); },
        .progress = [this](std::string text) { progress_.tell(text); },
        .failed = [this](std::string why) { failure_ = std::move(why); },
        .done = [this](std::string text) { report_ = std::move(text); },
    };
  }

  void open() {
    progress_.tell("opening");
    const Opening opening = openAndWait(session_, waiter_, file_);
    if (opening.isEnded) throw Ended();
    if (opening.failure) throw Unserved(*opening.failure);
  }

  void ask(const std::string& text) {
    std::variant<Request, Refused> parsed = parseRequest(text);
    if (Refused* const refusal = std::get_if<Refused>(&parsed)) {
      take(Marshal::encode(replyObject(refusal->id, std::move(refusal->reply), std::nullopt)));
      return;
    }
    Request& request = std::get<Request>(parsed);
    ++asked_;
    session_.serve(std::move(request.verb), std::move(request.args),
                   [this, id = request.id](Bridge::Reply reply, double) {
                     take(Marshal::encode(replyObject(id, std::move(reply), std::nullopt)));
                     waiter_.done();
                   });
  }

  void take(std::string reply) {
    const std::lock_guard lock(mutex_);
    replies_.push_back(std::move(reply));
  }

  // Hands over what has come and what is due.
  void answer() {
    for (;;) {
      std::string reply;
      {
        const std::lock_guard lock(mutex_);
        if (replies_.empty()) break;
        reply = std::move(replies_.front());
        replies_.pop_front();
      }
      script_.reply(reply);
    }
    while (!timers_.empty() && timers_.begin()->first <= Clock::now()) {
      const int id = timers_.begin()->second;
      timers_.erase(timers_.begin());
      script_.due(id);
    }
  }

  void wait() {
    constexpr auto whole = std::chrono::minutes(10);
    {
      const std::lock_guard lock(mutex_);
      if (!replies_.empty()) return;
    }
    const auto limit = timers_.empty() ? Clock::now() + whole : timers_.begin()->first;
    const Waiter::Event event = waiter_.waitForDone(limit);
    if (event == Waiter::Event::done) --asked_;
    if (event == Waiter::Event::signal) {
      session_.quit();
      throw Ended();
    }
  }

  Waiter& waiter_;
  const path file_;
  ProgressLine progress_;
  std::optional<std::string> report_;
  std::optional<std::string> failure_;
  std::multimap<Clock::time_point, int> timers_;
  std::mutex mutex_;
  std::deque<std::string> replies_;  // of the bridge queue
  int asked_ = 0;                    // questions whose end was not waited for
  AuditScript script_;
  Place place_;
  Session session_;  // last: it calls back
};

JSONValue failureReport(const path& file, const std::string& why) {
  return JSONValue::Object{{"file", file.string()}, {"error", why}};
}

bool isAtLeast(const std::string& level, const std::string& wanted) {
  constexpr std::array<std::string_view, 3> levels{"style", "doubt", "fact"};
  return std::find(levels.begin(), levels.end(), level) >=
         std::find(levels.begin(), levels.end(), wanted);
}

bool hasFinding(const JSONValue& report, const std::string& wanted) {
  const JSONValue* const findings = report.member("findings");
  if (!findings || !findings->array()) return false;
  return std::any_of(findings->array()->begin(), findings->array()->end(),
                     [&](const JSONValue& finding) {
                       const JSONValue* const level = finding.member("level");
                       return level && level->string() && isAtLeast(*level->string(), wanted);
                     });
}

// Where the list goes. A file is there when it is whole, and as it was before otherwise.
class Output {
 public:
  explicit Output(std::optional<path> file) : file_(std::move(file)) {}

  void write(const std::string& text) {
    if (file_) {
      text_ += text;
    } else if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() ||
               std::fflush(stdout) != 0) {
      throw Unserved("the list cannot be written");
    }
  }
  void finish() {
    if (!file_) return;
    try {
      AtomicFile::write(FileSystem::real(), std::filesystem::absolute(*file_), text_);
    } catch (const FileError&) {
      throw Unserved(file_->string() + " cannot be written");
    }
  }

 private:
  const std::optional<path> file_;
  std::string text_;
};

JSONValue reportOf(Waiter& waiter, const path& file, int top) {
  try {
    requireWorkbook(file);
    const ParsedJSON parsed = parseJSON(WorkbookAudit(waiter, file).report(top));
    return parsed.value ? *parsed.value : failureReport(file, parsed.error);
  } catch (const std::exception& error) {
    return failureReport(file, error.what());
  }
}

int audited(const AuditCommand& command, Waiter& waiter) {
  AuditScript writer(scriptFile(), {});
  const bool isLineByLine = writer.isLineByLine(command.format);
  const std::vector<path> files = workbooksOf(command.files);
  if (files.empty()) throw Unserved("no workbook there");
  Output output(command.output);
  JSONValue::Array reports;
  int status = 0;
  for (const path& file : files) {
    JSONValue report = reportOf(waiter, file, command.top);
    if (const JSONValue* const error = report.member("error")) {
      status = unable;
      std::fprintf(stderr, "quorinctl: %s: %s\n", file.c_str(),
                   error->string() ? error->string()->c_str() : "");
    } else if (status == 0 && command.failOn && hasFinding(report, *command.failOn)) {
      status = failing;
    }
    if (isLineByLine)
      output.write(writer.written(Marshal::encode(JSONValue::Array{report}), command.format));
    else
      reports.push_back(std::move(report));
  }
  if (!isLineByLine) output.write(writer.written(Marshal::encode(reports), command.format));
  output.finish();
  return status;
}

}  // namespace

int audit(const AuditCommand& command) {
  std::signal(SIGPIPE, SIG_IGN);
  AuditScript::keepSmall();
  Waiter waiter;
  MainThread::record();
  try {
    return audited(command, waiter);
  } catch (const Ended&) {
    return signalled + waiter.signalNumber();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "quorinctl: %s\n", error.what());
    return unable;
  }
}

}  // namespace quorin::ctl
