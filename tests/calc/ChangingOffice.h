// ChangingOffice: an office that can be exchanged for another, as a user quits and starts one.
#pragma once

#include <memory>
#include <utility>

#include "host/calc/office/PrivateOffice.h"

namespace quorin::host::calc {

class ChangingOffice : public OfficeSource {
 public:
  explicit ChangingOffice(std::shared_ptr<PrivateOffice> office) : office_(std::move(office)) {}
  void replace(std::shared_ptr<PrivateOffice> office) { office_ = std::move(office); }
  bool isRunning() override { return office_ && office_->isRunning(); }
  OfficeAddress open() override { return office_->open(); }

 private:
  std::shared_ptr<PrivateOffice> office_;
};

}  // namespace quorin::host::calc
