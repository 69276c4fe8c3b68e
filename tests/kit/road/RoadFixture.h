// A bridge whose Excel is the object model over a spreadsheet in memory, with Excel's own quirks at
// a switch.
#pragma once

#include <gmock/gmock.h>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "host/Address.h"
#include "host/EngineRunner.h"
#include "host/model/ExcelObjectModel.h"
#include "kit/bridge/Bridge.h"
#include "kit/value/Marshal.h"
#include "tests/fakes/LogLines.h"
#include "tests/fakes/MemorySpreadsheet.h"
#include "tests/fakes/QuirkyExcel.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin {

// For the messages of failed expectations.
inline void PrintTo(const JSONValue& value, std::ostream* out) {
  *out << Marshal::encode(value);
}

class RoadFixture : public testing::Test {
 protected:
  using Array = JSONValue::Array;
  using Object = JSONValue::Object;
  using Colour = std::vector<std::int64_t>;
  static constexpr const char* sentinel = "=\"QXZ\"=\"QXZ\"";

  // The reply's payload as JSON text, slashes as they are; of a failure with its kind.
  std::string ask(const std::string& verb, Array args = {}) {
    const Bridge::Reply reply = bridge_.dispatch(verb, args);
    std::string text = Marshal::encode(reply.payload);
    for (std::size_t at = 0; (at = text.find("\\/", at)) != std::string::npos;) text.erase(at, 1);
    return reply.ok ? text : "failed " + text;
  }

  static host::RangeRef on(const std::string& book, const std::string& sheet,
                           const std::string& address) {
    return {{book, sheet}, host::parseA1(address).value()};
  }

  // The conditions of a whole sheet that are highlights, and the user's.
  std::vector<host::FormatCondition> conditions(const std::string& book, const std::string& sheet,
                                                bool ours) {
    std::vector<host::FormatCondition> chosen;
    for (host::FormatCondition& each : memory_->formatConditions(on(book, sheet, "A1:XFD1048576")))
      if ((each.formula == sentinel) == ours) chosen.push_back(std::move(each));
    return chosen;
  }

  // Where highlights are on the sheet: "$A$1,$B$2".
  std::string marked(const std::string& book, const std::string& sheet) {
    std::string text;
    for (const host::FormatCondition& each : conditions(book, sheet, true))
      text += (text.empty() ? "" : "+") + host::addressText(each.areas);
    return text;
  }

  static JSONValue texts(const std::vector<std::string>& list) {
    return Array(list.begin(), list.end());
  }

  fakes::MemorySpreadsheet* memory_ = nullptr;
  fakes::QuirkyExcel* excel_ = nullptr;

 private:
  class Running : public TargetApplication {
    bool isRunning() override { return true; }
  };

  ScriptRunnerFactory runners() {
    return [this](CallThreadPost) {
      auto memory = std::make_unique<fakes::MemorySpreadsheet>();
      memory_ = memory.get();
      auto model = std::make_unique<host::ExcelObjectModel>(std::move(memory));
      auto excel = std::make_unique<fakes::QuirkyExcel>(std::move(model), fakes::ExcelQuirks{});
      excel_ = excel.get();
      return std::make_unique<host::EngineRunner>(std::move(excel));
    };
  }

  Running target_;

 protected:
  TemporaryFolder folder_;
  fakes::LogLines log_;
  HighlightStore store_{folder_ / "highlights.json", FileSystem::real(), &log_.log()};
  UnhideStore unhide_{folder_ / "unhidden.json", FileSystem::real(), &log_.log()};
  ExcelThread thread_{runners(), log_.log()};
  Bridge bridge_{thread_, log_.log(), store_, unhide_, target_};
};

}  // namespace quorin
