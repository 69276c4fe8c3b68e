// Workspace: the other applications of the user's session. Main thread only.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quorin {

// Excel's, by which beside other spreadsheet programs these go.
constexpr const char* excelIdentifier = "com.microsoft.Excel";

struct RunningApplication {
  std::string identifier;  // bundle identifier; empty where there is none
  int processIdentifier = 0;
  bool isSelf = false;  // this very process
  bool operator==(const RunningApplication&) const = default;
};

class Workspace {
 public:
  using ActivationHandler = std::function<void(const RunningApplication&)>;

  virtual ~Workspace() = default;

  // The running applications with this identifier.
  virtual std::vector<RunningApplication> runningApplications(
      const std::string& identifier) const = 0;

  // True if the desktop tells which application is in front: of all of them at all times, or just
  // now. While it does not, Excel counts as in front as long as it runs.
  virtual bool alwaysTellsWhoIsInFront() const { return true; }
  virtual bool tellsWhoIsInFront() const { return true; }

  // The application in front; none when there is none.
  virtual std::optional<RunningApplication> frontmostApplication() const = 0;

  // Brings an application forward, with no options. One that is gone is no error.
  virtual void activate(const RunningApplication& application) = 0;

  // Called on the main thread each time another application has come to the front. One handler; a
  // second call replaces it, an empty one ends it.
  virtual void observeActivation(ActivationHandler handler) = 0;

  // Hands a URL or a file to the application that the user chose for it. False when there is none.
  virtual bool openURL(const std::string& url) = 0;
  virtual bool openFile(const std::filesystem::path& file) = 0;
};

}  // namespace quorin
