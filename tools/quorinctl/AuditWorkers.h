// AuditWorkers: audits workbooks side by side, each in a process of its own with an office of its
// own, so that one that ends or hangs is told of that workbook alone. Main thread.
#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "kit/value/JSONValue.h"
#include "tools/quorinctl/AuditWorker.h"
#include "tools/quorinctl/Waiter.h"

namespace quorin::ctl {

class AuditWorkers {
 public:
  struct Options {
    std::size_t jobs = 1;                     // so many at a time
    std::chrono::seconds patience{600};       // with one that tells nothing
    std::vector<std::string> arguments = {};  // for each, behind the file
  };
  // What is told of a file, by its index. The report of a workbook that could not be audited says
  // why.
  struct Client {
    std::function<void(std::size_t, const std::string& text)> progress;
    std::function<void(std::size_t, JSONValue report)> done;
  };

  AuditWorkers(Waiter& waiter, Options options, Client client);

  // Audits the files with these indexes. False when a signal came. However it ends, no worker is
  // left.
  bool run(const std::vector<std::filesystem::path>& files, std::vector<std::size_t> indexes);

 private:
  void fill(const std::vector<std::filesystem::path>& files, std::vector<std::size_t>& indexes);
  bool wait();
  void hear();
  void endTheSilent();
  void endAll();

  Waiter& waiter_;
  const Options options_;
  const Client client_;
  std::vector<std::unique_ptr<AuditWorker>> workers_;
};

}  // namespace quorin::ctl
