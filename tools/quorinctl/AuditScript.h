// AuditScript: the page's reading and auditing of a workbook, run in JavaScriptCore without a
// window. Made, used and destroyed on one thread; what it asks for is told by functions that return
// at once.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

namespace quorin::ctl {

class AuditScript {
 public:
  struct Host {
    std::function<void(std::string request)> ask;  // a request of the page's, as JSON
    std::function<void(std::chrono::milliseconds, int id)> after;  // then due(id)
    std::function<void(std::string text)> progress;                // one short line, or nothing
    std::function<void(std::string why)> failed;
    std::function<void(std::string report)> done;       // the workbook's report, as JSON
    std::function<std::string(std::string of)> review;  // what was kept of a review, both as JSON
  };

  // The script threw, or is not the one that this program needs.
  class Error : public std::runtime_error {
   public:
    using std::runtime_error::runtime_error;
  };

  // To be called once, before there is a second thread. JavaScriptCore lets its heap grow by the
  // machine's memory; told of little, it collects sooner, at hardly any cost.
  static void keepSmall();

  // The script's file: beside a program that was built and not installed, or under the prefix that
  // it was installed to.
  static std::filesystem::path installed();

  // Throws Error when the file cannot be read.
  AuditScript(const std::filesystem::path& file, Host host);
  ~AuditScript();
  AuditScript(const AuditScript&) = delete;
  AuditScript& operator=(const AuditScript&) = delete;

  // Audits the workbook that the spreadsheet has in front; `file` is what the report calls it,
  // `withReview` whether the host is asked for what was kept of a review of it.
  void begin(const std::string& file, int top, bool withReview, bool withPictures);
  void reply(const std::string& reply);
  void due(int id);

  // The reports, a JSON list, in a format of the command line's.
  std::string written(const std::string& reports, const std::string& format);
  // True if reports of the format may be written one by one.
  bool isLineByLine(const std::string& format);

 private:
  struct Engine;
  std::unique_ptr<Engine> engine_;
};

}  // namespace quorin::ctl
