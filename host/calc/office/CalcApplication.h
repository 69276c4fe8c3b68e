// CalcApplication: the audited program as the core asks for it. Any thread.
#pragma once

#include <memory>

#include "host/calc/office/OfficeSource.h"
#include "kit/platform/TargetApplication.h"

namespace quorin::host::calc {

class CalcApplication : public TargetApplication {
 public:
  explicit CalcApplication(std::shared_ptr<OfficeSource> source) : source_(std::move(source)) {}
  bool isRunning() override { return source_->isRunning(); }

 private:
  const std::shared_ptr<OfficeSource> source_;
};

}  // namespace quorin::host::calc
