#include "host/EngineRunner.h"

#include <utility>
#include <variant>

#include "kit/value/Unicode.h"

namespace quorin::host {
class EngineRunner::OneApplication : public script::Applications {
 public:
  explicit OneApplication(script::Application& excel) : excel_(excel) {}
  script::Application* named(std::string_view name) override {
    return caselesslyEqual(name, excel_.name()) ? &excel_ : nullptr;
  }
  script::Application* identified(std::string_view id) override {
    return caselesslyEqual(id, "com.microsoft.Excel") ? &excel_ : nullptr;
  }

 private:
  script::Application& excel_;
};

EngineRunner::EngineRunner(std::unique_ptr<script::Application> excel)
    : excel_(std::move(excel)), applications_(std::make_unique<OneApplication>(*excel_)) {}

EngineRunner::~EngineRunner() = default;

std::optional<ScriptErrorInfo> EngineRunner::compile(std::string_view source) {
  script_.reset();
  auto compiled = script::compile(source, *applications_);
  if (auto* const error = std::get_if<script::CompileError>(&compiled))
    return ScriptErrorInfo{error->number,
                           "line " + std::to_string(error->line) + ": " + error->message};
  script_.emplace(std::move(std::get<script::Script>(compiled)));
  return std::nullopt;
}

ScriptReply EngineRunner::execute(const AppleEvent& event) {
  const CallTerms terms = std::exchange(terms_, {});
  if (!script_) return {};
  excel_->handlerBegins(terms);
  script::ScriptOutcome outcome = [&] {
    try {
      return script_->call(event);
    } catch (...) {
      excel_->handlerEnds();  // the terms refer to the call, however it ends
      throw;
    }
  }();
  const std::optional<AppleEventError> late = excel_->handlerEnds();
  if (outcome.error)
    return {std::nullopt,
            ScriptErrorInfo{outcome.error->number, std::move(outcome.error->message)}};
  if (late)
    return {std::nullopt, ScriptErrorInfo{late->number, std::string(excel_->name()) +
                                                            " got an error: " + late->message}};
  return {std::move(outcome.result), std::nullopt};
}

}  // namespace quorin::host
