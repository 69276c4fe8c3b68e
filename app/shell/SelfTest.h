// SelfTest: tries a machine's own Excel and system interfaces and writes down what they answered,
// for whoever develops Quorin without such a machine. Every handler of the library runs on a
// scratch workbook, which is closed without saving whatever happens; workbooks of the user's are
// not touched. Runs on the thread that calls it, never the main one, for up to some minutes.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "kit/excel/ExcelThread.h"
#include "kit/support/ProblemReport.h"

namespace quorin {

class SelfTest {
 public:
  // What the platform found out about its own interfaces.
  struct PlatformFindings {
    std::size_t checked = 0;
    std::vector<std::string> missing;
  };

  // Everything here must outlive the object.
  struct Parts {
    ExcelThread& library;      // with the handler library
    ExcelThread& experiments;  // with experimentsSource()
    std::string appVersion;
    SystemVersions versions;
    PlatformFindings platform;
  };

  // The script of the experiments.
  static std::string_view experimentsSource();

  explicit SelfTest(Parts parts) : parts_(std::move(parts)) {}

  // The report, for people. Its last line counts what failed.
  std::string run();

 private:
  struct Step {
    std::string what, handler;
    JSONValue::Array arguments;
  };

  void tellPlatform();
  bool compiled(const char* what, const ExcelThread& thread);
  void tryWorkbook();
  void tryHandlers(const std::string& book, const std::string& sheet);
  void tryExperiments(const std::string& book, const std::string& sheet);
  void tryDangerous(const std::string& book, const std::string& sheet);
  void tryRepeatedly();
  JSONValue ask(ExcelThread& thread, const Step& step);
  JSONValue ask(ExcelThread& thread, const Step& step, double seconds);
  void line(const std::string& text) { report_ += text + "\n"; }

  Parts parts_;
  std::string report_;
  int failures_ = 0;
  bool alone_ = false;  // no workbook was open but the scratch one
};

}  // namespace quorin
