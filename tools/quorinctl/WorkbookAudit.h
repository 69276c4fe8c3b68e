// WorkbookAudit: one workbook, read whole and audited in a private office that serves nothing else.
// Main thread.
#pragma once

#include <chrono>
#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "tools/quorinctl/AuditScript.h"
#include "tools/quorinctl/CommandLine.h"
#include "tools/quorinctl/Place.h"
#include "tools/quorinctl/Waiter.h"

namespace quorin::ctl {

class WorkbookAudit {
 public:
  // A signal asked the program to end.
  class Ended {};

  // Starts the office; it is gone when this is. `progress` is told one short line, or nothing, at
  // least with every piece that has been read. Throws Unserved.
  WorkbookAudit(Waiter& waiter, const std::filesystem::path& file,
                std::function<void(std::string)> progress);
  ~WorkbookAudit();
  WorkbookAudit(const WorkbookAudit&) = delete;
  WorkbookAudit& operator=(const WorkbookAudit&) = delete;

  // The report as JSON. Throws Ended, Unserved and AuditScript::Error.
  std::string report(const AuditWorkbookCommand& command);

 private:
  using Clock = std::chrono::steady_clock;

  AuditScript::Host host();
  void open();
  std::string review(const std::string& of);
  void ask(const std::string& text);
  void take(std::string reply);
  void answer();
  void wait();

  Waiter& waiter_;
  const std::filesystem::path file_;
  const std::function<void(std::string)> progress_;
  std::optional<std::filesystem::path> reviews_;
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

}  // namespace quorin::ctl
