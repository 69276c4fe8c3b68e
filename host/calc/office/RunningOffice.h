// RunningOffice: the user's own Calc. It is asked to listen over the socket through which it takes
// the command lines of further starts; nothing is ever started.
#pragma once

#include <atomic>
#include <memory>

#include "host/calc/office/OfficeDiscovery.h"
#include "host/calc/office/OfficeSource.h"

namespace quorin::host::calc {

class RunningOffice : public OfficeSource {
 public:
  explicit RunningOffice(
      std::shared_ptr<OfficeDiscovery> discovery = std::make_shared<OfficeDiscovery>())
      : discovery_(std::move(discovery)) {}

  ~RunningOffice() override { clearUp(); }
  RunningOffice(const RunningOffice&) = delete;
  RunningOffice& operator=(const RunningOffice&) = delete;

  bool isRunning() override { return discovery_->runningCalc().has_value(); }

  // -600 when no Calc runs, -1712 when it is stopped, just starting or does not answer within two
  // seconds, -1743 when it listens where we cannot reach it (another system's folder, a sandbox).
  OfficeAddress open() override;
  void interrupt() override { interrupted_ = true; }

 private:
  using Clock = std::chrono::steady_clock;
  void askToListen(const OfficeProcess& office, const std::string& pipe,
                   Clock::time_point deadline) const;

  void clearUp();  // the pipe's file, once the office that made it for us is gone

  const std::shared_ptr<OfficeDiscovery> discovery_;
  OfficeAddress last_;
  std::atomic<bool> interrupted_ = false;
};

}  // namespace quorin::host::calc
