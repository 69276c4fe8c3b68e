// ExcelObjectModel: a spreadsheet presented to scripts as the application "Microsoft Excel". Owns
// the spreadsheet, or is given one that outlives it; made, used and destroyed on the call thread.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "host/model/Session.h"
#include "script/terms/Application.h"

namespace quorin::host {

class ExcelObjectModel : public script::Application {
 public:
  using Clock = std::function<std::chrono::steady_clock::time_point()>;

  explicit ExcelObjectModel(std::unique_ptr<Spreadsheet> spreadsheet,
                            Clock clock = std::chrono::steady_clock::now);
  explicit ExcelObjectModel(Spreadsheet& spreadsheet, Clock clock = std::chrono::steady_clock::now);
  ~ExcelObjectModel() override;

  std::string_view name() const override { return "Microsoft Excel"; }
  const script::Terminology& terminology() const override;
  bool isRunning() override;
  void handlerBegins(const CallTerms& terms) override;
  std::optional<AppleEventError> handlerEnds() override;

  // The spreadsheet is not interrupted: an answer that took longer than the time-out is thrown
  // away for -1712. What it did stays done, as with an Excel that answers too late.
  AppleEventReply send(const AppleEvent& event, std::chrono::milliseconds timeout) override;

 private:
  const std::unique_ptr<Spreadsheet> owned_;  // or none
  Clock clock_;
  Session session_;
};

}  // namespace quorin::host
