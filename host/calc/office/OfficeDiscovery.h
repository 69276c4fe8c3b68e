// OfficeDiscovery: which of this user's processes is the running Calc. It reads /proc alone, so it
// answers at once whatever state the office is in. Any thread.
//
// Private offices of our own and offices without windows are never the user's. An office that shows
// only text documents, drawings or the like is not a spreadsheet program: it has loaded the library
// of another module and not Calc's. The start centre alone has loaded neither, and counts. An
// office on other displays belongs to another session of this user, which has its own Quorin.
#pragma once

#include <chrono>
#include <filesystem>
#include <mutex>
#include <optional>

#include "host/calc/office/OfficeProcess.h"

namespace quorin::host::calc {

class OfficeDiscovery {
 public:
  // Where a session shows its windows: as in DISPLAY and WAYLAND_DISPLAY, empty for none.
  struct Session {
    std::string x11, wayland;
  };

  // Without any display: offices of all sessions.
  explicit OfficeDiscovery(std::filesystem::path proc = "/proc", Session session = ownSession());

  // The first by process id. What was found stays the answer while that process runs; that there
  // is none is looked up again after a moment.
  std::optional<OfficeProcess> runningCalc();

  // Only offices with this user folder, a file URL, for tests.
  void restrictTo(std::string userInstallation);

 private:
  using Clock = std::chrono::steady_clock;
  static Session ownSession();
  bool isElsewhere(const OfficeProcess& process) const;
  bool isCalc(const OfficeProcess& process) const;
  bool stillRuns(const OfficeProcess& process) const;

  const std::filesystem::path proc_;
  const Session session_;
  std::mutex mutex_;
  std::optional<std::string> only_;
  std::optional<OfficeProcess> found_;
  std::optional<Clock::time_point> lookedAt_;
};

}  // namespace quorin::host::calc
