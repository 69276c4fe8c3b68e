#include "host/calc/OfficeDiscovery.h"

#include <array>
#include <cstdlib>
#include <fstream>
#include <string_view>

#include "host/calc/PrivateOffice.h"

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

}  // namespace

OfficeDiscovery::OfficeDiscovery(std::filesystem::path proc, const std::string& display)
    : proc_(std::move(proc)), display_(withoutScreen(display)) {}

std::string OfficeDiscovery::ownDisplay() {
  const char* const display = std::getenv("DISPLAY");
  return display ? display : "";
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

// An office that names no display may be on this one, by way of Wayland.
bool OfficeDiscovery::isElsewhere(const OfficeProcess& process) const {
  constexpr std::string_view variable = "DISPLAY=";
  std::ifstream environment(proc_ / std::to_string(process.id) / "environ");
  for (std::string entry; std::getline(environment, entry, '\0');) {
    if (!entry.starts_with(variable)) continue;
    const std::string display = withoutScreen(entry.substr(variable.size()));
    return !display.empty() && display != display_;
  }
  return false;
}

bool OfficeDiscovery::isCalc(const OfficeProcess& process) const {
  const std::string installation = process.userInstallation();
  if (installation.find(std::string("/") + PrivateOffice::folderPrefix) != std::string::npos) {
    return false;
  }
  if (only_ && installation != *only_) return false;
  if (!display_.empty() && isElsewhere(process)) return false;
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
