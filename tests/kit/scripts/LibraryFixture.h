// The handler library, run by the script engine against Excel's object model over a spreadsheet in
// memory, with Excel's own quirks at a switch.
#pragma once

#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/Address.h"
#include "host/EngineRunner.h"
#include "host/model/ExcelObjectModel.h"
#include "kit/excel/ExcelScript.h"
#include "kit/value/Marshal.h"
#include "tests/fakes/MemorySpreadsheet.h"
#include "tests/fakes/QuirkyExcel.h"

namespace quorin {

class LibraryFixture : public testing::Test {
 protected:
  using Array = JSONValue::Array;

  LibraryFixture() {
    auto memory = std::make_unique<fakes::MemorySpreadsheet>();
    memory_ = memory.get();
    memory_->script.useClock(&clock_);
    auto model = std::make_unique<host::ExcelObjectModel>(std::move(memory),
                                                          [this] { return clock_.now(); });
    auto excel = std::make_unique<fakes::QuirkyExcel>(std::move(model), fakes::ExcelQuirks{});
    excel_ = excel.get();
    runner_ = std::make_unique<host::EngineRunner>(std::move(excel));
  }

  void SetUp() override {
    memory_->open(fakes::knownWorkbook());
    const auto error = runner_->compile(ExcelScript::source());
    ASSERT_FALSE(error) << error->message.value_or("");
  }

  // The answer as JSON text, or "error ", its number and its message.
  std::string run(const std::string& handler, Array arguments = {}) {
    AppleEvent event{fourCharCode("ascr"), fourCharCode("psbr"), {}, {}};
    event.parameters.push_back({fourCharCode("snam"), AppleEventDescriptor::text(handler)});
    event.parameters.push_back(
        {keyDirectObject, Marshal::toDescriptor(JSONValue(std::move(arguments)))});
    const ScriptReply reply = runner_->execute(event);
    if (reply.error)
      return "error " + std::to_string(reply.error->number.value_or(0)) + " " +
             reply.error->message.value_or("");
    return Marshal::encode(
        Marshal::fromDescriptor(reply.result.value_or(AppleEventDescriptor::null())));
  }

  void select(const char* sheet, const char* address) {
    memory_->goTo({{"Known.xlsx", sheet}, host::parseA1(address).value()});
  }

  // How often the spreadsheet was asked for values.
  long valueReads() const {
    const std::vector<std::string> calls = memory_->script.calls();
    return std::count_if(calls.begin(), calls.end(),
                         [](const std::string& call) { return call.starts_with("values"); });
  }

  static JSONValue texts(Array list) { return list; }

  fakes::ManualClock clock_;
  fakes::MemorySpreadsheet* memory_ = nullptr;
  fakes::QuirkyExcel* excel_ = nullptr;
  std::unique_ptr<host::EngineRunner> runner_;
};

}  // namespace quorin
