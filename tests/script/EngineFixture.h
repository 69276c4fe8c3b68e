// What most tests of the engine share: an application with Excel's terms and ways to compile, run
// and print. Values are written as a script would write them; events as
// core/getd{----: active cell}, so that a table of scripts can say what was sent.
#pragma once

#include <gtest/gtest.h>
#include <string>
#include <variant>

#include "host/dictionary/ExcelTerminology.h"
#include "script/Script.h"
#include "tests/script/RecordingApplication.h"

namespace quorin::script {

std::string show(const AppleEventDescriptor& descriptor, const Application* application = nullptr);
std::string show(const AppleEvent& event, const Application* application = nullptr);

class EngineFixture : public testing::Test {
 protected:
  Script compiled(std::string_view source);
  CompileError compileError(std::string_view source);
  // The result of the statements at the top of a script: its value, "no value", or
  // "error number: message". A source that does not compile gives "line n: message (number)".
  std::string run(std::string_view source);
  // The same inside a tell to the application.
  std::string tell(const std::string& statements);
  std::string sent(std::size_t index = 0) const;

  RecordingApplication excel{"Microsoft Excel", host::excelTerminology()};
  RecordingApplications applications{excel};
};

std::string show(const ScriptOutcome& outcome, const Application* application = nullptr);

}  // namespace quorin::script
