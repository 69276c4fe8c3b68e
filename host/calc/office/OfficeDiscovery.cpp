#include "host/calc/office/OfficeDiscovery.h"

#include <array>
#include <cstdlib>
#include <fstream>
#include <string_view>

#include "host/calc/office/PrivateOffice.h"

namespace quorin::host::calc {
namespace {

constexpr std::chrono::milliseconds trustedFor{300};

// Writer, Draw and Impress, Math, Base.
constexpr std::array<std::string_view, 4> otherModules{"/libswlo.so", "/libsdlo.so", "/libsmlo.so",
                                                       "/libdbulo.so"};
constexpr std::string_view calcModule = "/libsclo.so";

// Without the number of a screen on it: ":0.0" is on ":0".
std::string withoutScreen(const std::string& display) {
  const std::size_t colon = display.rfind(':');
  return colon == std::string::npos ? display : display.substr(0, display.find('.', colon));
}

std::string variable(const char* name) {
  const char* const value = std::getenv(name);
  return value ? value : "";
}

}  // namespace

OfficeDiscovery::OfficeDiscovery(std::filesystem::path proc, Session session)
    : proc_(std::move(proc)), session_{withoutScreen(session.x11), std::move(session.wayland)} {}

OfficeDiscovery::Session OfficeDiscovery::ownSession() {
  return {variable("DISPLAY"), variable("WAYLAND_DISPLAY")};
}

void OfficeDiscovery::restrictTo(std::string userInstallation) {
  const std::lock_guard lock(mutex_);
  only_ = std::move(userInstallation);
}

std::optional<OfficeProcess> OfficeDiscovery::runningCalc() {
  const std::lock_guard lock(mutex_);
  if (found_ && stillRuns(*found_)) return found_;
  const auto now = Clock::now();
  if (!found_ && lookedAt_ && now - *lookedAt_ < trustedFor) return std::nullopt;
  found_.reset();
  lookedAt_ = now;
  for (const OfficeProcess& process : officeProcesses(proc_)) {
    if (!isCalc(process)) continue;
    found_ = process;
    break;
  }
  return found_;
}

bool OfficeDiscovery::stillRuns(const OfficeProcess& process) const {
  std::ifstream name(proc_ / std::to_string(process.id) / "comm");
  std::string text;
  return std::getline(name, text) && text == "soffice.bin" && isCalc(process);
}

// An office that names no display may be anywhere. One of a Wayland session names X11's as well,
// where there is one.
bool OfficeDiscovery::isElsewhere(const OfficeProcess& process) const {
  constexpr std::string_view x11 = "DISPLAY=", wayland = "WAYLAND_DISPLAY=";
  bool names = false, here = false;
  std::ifstream environment(proc_ / std::to_string(process.id) / "environ");
  for (std::string entry; std::getline(environment, entry, '\0');) {
    if (entry.starts_with(x11) && entry.size() > x11.size()) {
      names = true;
      here = here || withoutScreen(entry.substr(x11.size())) == session_.x11;
    } else if (entry.starts_with(wayland) && entry.size() > wayland.size()) {
      names = true;
      here = here || entry.substr(wayland.size()) == session_.wayland;
    }
  }
  return names && !here;
}

bool OfficeDiscovery::isCalc(const OfficeProcess& process) const {
  const std::string installation = process.userInstallation();
  if (installation.find(std::string("/") + PrivateOffice::folderPrefix) != std::string::npos) {
    return false;
  }
  if (only_ && installation != *only_) return false;
  const bool anywhere = session_.x11.empty() && session_.wayland.empty();
  if (!anywhere && isElsewhere(process)) return false;
  for (const char* windowless : {"headless", "invisible", "convert-to", "cat"}) {
    if (process.hasArgument(windowless)) return false;
  }
  bool calc = false, other = false;
  std::ifstream libraries(proc_ / std::to_string(process.id) / "maps");
  for (std::string line; std::getline(libraries, line) && !calc;) {
    calc = line.ends_with(calcModule);
    for (const std::string_view module : otherModules) other = other || line.ends_with(module);
  }
  return calc || !other;
}

}  // namespace quorin::host::calc
