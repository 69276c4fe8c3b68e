// ExcelError: the error of a call into Excel. Codes are the script's or Excel's own error numbers;
// -9990 is a call that did not finish in time, -9991 a handler library that did not compile, -9992
// a call that came too late because Quorin is quitting; onlyWhenAsked is in CallTerms.h.
#pragma once

#include <stdexcept>
#include <string>

namespace quorin {

class ExcelError : public std::runtime_error {
 public:
  static constexpr int timedOut = -9990;
  static constexpr int notCompiled = -9991;
  static constexpr int terminating = -9992;

  ExcelError(int code, const std::string& message) : std::runtime_error(message), code_(code) {}
  int code() const { return code_; }
  std::string message() const { return what(); }

 private:
  int code_;
};

}  // namespace quorin
