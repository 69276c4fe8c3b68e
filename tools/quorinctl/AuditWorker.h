// AuditWorker: the process that audits one workbook, seen from the one that started it. Main
// thread.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

#include "kit/value/JSONValue.h"
#include "tools/quorinctl/LineBuffer.h"

namespace quorin::ctl {

class AuditWorker {
 public:
  using Clock = std::chrono::steady_clock;

  // Throws std::system_error when no process can be started.
  AuditWorker(std::size_t index, std::filesystem::path file,
              const std::vector<std::string>& arguments, std::chrono::seconds patience);
  // Kills it if it still runs; its office goes too, as after any death of the process that started
  // it.
  ~AuditWorker();
  AuditWorker(const AuditWorker&) = delete;
  AuditWorker& operator=(const AuditWorker&) = delete;

  std::size_t index() const { return index_; }  // of its file
  int output() const { return output_; }        // to be waited for
  // When its patience ends.
  Clock::time_point limit() const { return limit_; }

  // Reads what it has written, and hands on what that says. The report, once the process has ended;
  // that of a workbook has the file's stamp in it.
  std::optional<JSONValue> hear(const std::function<void(const std::string&)>& progress);

  // Asks it to end, and gives it so long for that. When it was asked before, kills it.
  void end(std::chrono::seconds time);
  // Waits until it has ended; after its time, ends it.
  void waitForEnd();

 private:
  JSONValue report();

  const std::size_t index_;
  const std::filesystem::path file_;
  const JSONValue::Object stamp_;  // of the file, before it is read
  const std::chrono::seconds patience_;
  Clock::time_point limit_;
  pid_t process_ = -1;
  int output_ = -1;
  LineBuffer lines_;
  std::optional<std::string> told_;  // the report as JSON
  bool isAskedToEnd_ = false;
};

}  // namespace quorin::ctl
