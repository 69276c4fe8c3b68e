#include "tests/fuzz/ScriptPlayer.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <variant>

#include "host/dictionary/ExcelTerminology.h"
#include "script/Script.h"

namespace quorin::fuzz {
namespace {

using script::CompileError;
using script::Script;
using script::ScriptOutcome;

constexpr std::size_t mostArguments = 5;

[[noreturn]] void broken(const char* promise, std::string_view source) {
  std::fprintf(stderr, "broken promise: %s\n%.*s\n", promise, static_cast<int>(source.size()),
               source.data());
  std::abort();
}

AppleEventReply error(int number, std::string message = {}) {
  return {std::nullopt, AppleEventError{number, std::move(message), std::nullopt}};
}

AppleEventDescriptor grid() {
  using Descriptor = AppleEventDescriptor;
  Descriptor::Items rows;
  for (int row = 0; row < 3; ++row) {
    Descriptor::Items cells;
    cells.push_back(Descriptor::real(row + 0.5));
    cells.push_back(Descriptor::text("b"));
    cells.push_back(Descriptor::missingValue());
    rows.push_back(Descriptor::list(std::move(cells)));
  }
  return Descriptor::list(std::move(rows));
}

// Excel's words, and answers by turns.
class Answering : public script::Application, public script::Applications {
 public:
  std::string_view name() const override { return "Microsoft Excel"; }
  const script::Terminology& terminology() const override { return host::excelTerminology(); }
  bool isRunning() override { return true; }
  Application* named(std::string_view wanted) override { return wanted == name() ? this : nullptr; }
  Application* identified(std::string_view id) override {
    return id == "com.microsoft.Excel" ? this : nullptr;
  }

  AppleEventReply send(const AppleEvent& event, std::chrono::milliseconds) override {
    using Descriptor = AppleEventDescriptor;
    turn_ = turn_ * 1664525U + 1013904223U + event.eventID;
    const Descriptor* direct = event.parameter(keyDirectObject);
    switch ((turn_ >> 24U) % 16U) {
      case 0:
        return {};
      case 1:
        return error(-1728);
      case 2:
        return error(-1708, "odd");
      case 3:
        return {std::nullopt,
                AppleEventError{-10006, "", direct ? *direct : Descriptor::integer(1)}};
      case 4:
        return {Descriptor::missingValue(), {}};
      case 5:
        return {Descriptor::list({}), {}};
      case 6:
        return {grid(), {}};
      case 7:
        return {Descriptor::boolean(true), {}};
      case 8:
        return {Descriptor::real(2.5), {}};
      case 9:
      case 10:
        return {Descriptor::text("$A$1:$B$2"), {}};
      case 11:
      case 12:
        // What is asked for is answered as itself, as Excel does with its objects.
        return {direct ? *direct : Descriptor::null(), {}};
      case 13:
        return {Descriptor::enumerator(fourCharCode("yes ")), {}};
      default:
        return {Descriptor::integer(2), {}};
    }
  }

  void begin() { turn_ = 0; }

 private:
  std::uint32_t turn_ = 0;
};

void check(const ScriptOutcome& outcome, std::string_view source) {
  if (outcome.error && outcome.result) broken("a result or an error", source);
}

// Every handler is called with as many arguments as it takes.
void callAll(Script& script, std::string_view source) {
  using Descriptor = AppleEventDescriptor;
  for (const std::string& handler : script.handlerNames()) {
    for (std::size_t count = 0; count <= mostArguments; ++count) {
      Descriptor::Items arguments;
      for (std::size_t i = 0; i < count; ++i) {
        if (i % 3 == 0)
          arguments.push_back(grid());
        else if (i % 3 == 1)
          arguments.push_back(Descriptor::text("A1"));
        else
          arguments.push_back(Descriptor::integer(static_cast<std::int32_t>(i)));
      }
      const ScriptOutcome outcome = script.call(handler, std::move(arguments));
      check(outcome, source);
      if (!outcome.error || outcome.error->number != -1721) break;
    }
  }
}

}  // namespace

bool play(std::string_view source) {
  static Answering excel;
  excel.begin();
  auto compiled = script::compile(source, excel);
  if (const auto* failure = std::get_if<CompileError>(&compiled)) {
    if (failure->number == 0) broken("a compile error has a number", source);
    if (failure->message.empty()) broken("a compile error has a message", source);
    if (failure->line < 1) broken("a compile error has a line", source);
    if (failure->offset > source.size() || failure->length > source.size() - failure->offset)
      broken("a compile error lies in the text", source);
    return false;
  }
  auto& script = std::get<Script>(compiled);
  script::ScriptLimits limits;
  limits.steps = 5'000;
  limits.textBytes = 200'000;
  limits.listItems = 5'000;
  script.setLimits(limits);
  check(script.run(), source);
  callAll(script, source);
  return true;
}

}  // namespace quorin::fuzz
