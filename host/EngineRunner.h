// EngineRunner: runs the handler library with the script engine, against an application that
// answers as Excel. Made, used and destroyed on the call thread; failures come back as values.
#pragma once

#include <memory>
#include <optional>

#include "kit/excel/ScriptRunner.h"
#include "script/Script.h"
#include "script/terms/Application.h"

namespace quorin::host {

class EngineRunner : public ScriptRunner {
 public:
  // `excel` answers to its own name and to the identifier "com.microsoft.Excel".
  explicit EngineRunner(std::unique_ptr<script::Application> excel);
  ~EngineRunner() override;

  // The message begins with the line that the compiler stopped at.
  std::optional<ScriptErrorInfo> compile(std::string_view source) override;
  void prepare(const CallTerms& terms) override { terms_ = terms; }
  // Neither result nor error when nothing was compiled.
  ScriptReply execute(const AppleEvent& event) override;

 private:
  class OneApplication;

  std::unique_ptr<script::Application> excel_;
  std::unique_ptr<OneApplication> applications_;
  std::optional<script::Script> script_;
  CallTerms terms_;  // of the next event
};

}  // namespace quorin::host
