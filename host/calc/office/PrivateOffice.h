// PrivateOffice: an office of our own, with its own user folder, pipe and temporary files, that
// nobody else sees. It lives as long as this object: a supervisor process ends it and removes
// everything of it when this object or this whole process goes, even by SIGKILL. A private office
// locks no document, so opening a workbook leaves nothing beside it. Call thread.
#pragma once

#include <chrono>
#include <filesystem>
#include <mutex>
#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

#include "host/calc/office/OfficeSource.h"

namespace quorin::host::calc {

class PrivateOffice : public OfficeSource {
 public:
  // The folder's name by which the discovery of the user's offices knows a private one.
  static constexpr const char* folderPrefix = "quorin-office-";

  struct Options {
    bool headless = true;
    std::vector<std::pair<std::string, std::string>> environment;  // more of it
    std::string prefix = folderPrefix;
    std::chrono::milliseconds patience = std::chrono::seconds(60);  // for a first answer
  };

  // Starts the office without waiting for it. Throws SpreadsheetError -600 when it cannot start.
  PrivateOffice();
  explicit PrivateOffice(Options options);
  ~PrivateOffice() override;  // returns when the process has ended and its files are gone
  PrivateOffice(const PrivateOffice&) = delete;
  PrivateOffice& operator=(const PrivateOffice&) = delete;

  bool isRunning() override;
  OfficeAddress open() override;

  const std::filesystem::path& folder() const { return folder_; }
  pid_t process();  // of the office itself; 0 before it has started and after it has ended

 private:
  void prepareFolder();
  void startSupervisor();
  pid_t readProcessIds();  // under the mutex

  const Options options_;
  std::filesystem::path folder_;
  std::string pipe_;
  pid_t supervisor_ = 0;
  int ownerEnd_ = -1;   // closing it tells the supervisor to end the office
  int reportEnd_ = -1;  // the supervisor's report of process ids
  std::mutex mutex_;    // guards what follows
  pid_t office_ = 0;
  std::string report_;
};

}  // namespace quorin::host::calc
