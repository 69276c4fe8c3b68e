#include "app/linux/ListedWorkspace.h"

#include <algorithm>
#include <string_view>
#include <strings.h>

namespace quorin {

namespace {

constexpr const char* calcProgram = "libreoffice-calc";
constexpr const char* startCentreProgram = "libreoffice-startcenter";
constexpr const char* openingProgram = "soffice";
constexpr std::string_view calcTitle = "LibreOffice Calc";  // how its titles end
constexpr int ownerLevels = 8;
constexpr guint settlingMilliseconds = 150;

// The start centre becomes the window of the workbook that is opened from it. Some compositors do
// not tell its new application id, all tell its new title.
bool isCalc(const ListedWindow& window) {
  return window.program == calcProgram ||
         (window.program == startCentreProgram && window.title.ends_with(calcTitle));
}

// An office's window that does not yet say which of its programs it belongs to, or a dialog whose
// owner is not told.
bool isOpening(const ListedWindow& window) {
  return window.program.empty() || strcasecmp(window.program.c_str(), openingProgram) == 0;
}

}  // namespace

ListedWorkspace::ListedWorkspace(WindowList& list, std::string own,
                                 std::function<bool()> hasKeyboard)
    : list_(list), own_(std::move(own)), hasKeyboard_(std::move(hasKeyboard)) {
  list_.setOnChanged([this] { listChanged(); });
  listChanged();
}

ListedWorkspace::~ListedWorkspace() {
  list_.setOnChanged({});
}

const ListedWindow* ListedWorkspace::find(std::uint32_t id) const {
  const auto found = std::find_if(windows_.begin(), windows_.end(),
                                  [&](const ListedWindow& one) { return one.id == id; });
  return found == windows_.end() ? nullptr : &*found;
}

const ListedWindow* ListedWorkspace::active() const {
  const auto found = std::find_if(windows_.begin(), windows_.end(),
                                  [](const ListedWindow& one) { return one.isActive; });
  return found == windows_.end() ? nullptr : &*found;
}

RunningApplication ListedWorkspace::applicationOf(const ListedWindow& window) const {
  const ListedWindow* one = &window;
  for (int level = 0; one && level < ownerLevels; ++level) {
    if (isCalc(*one)) return {excelIdentifier, 0, false};
    one = one->owner == 0 ? nullptr : find(one->owner);
  }
  return {window.program, 0, window.program == own_};
}

// The start centre does not make Calc the one in front, but from it Calc can be had.
RunningApplication ListedWorkspace::runningAs(const ListedWindow& window) const {
  RunningApplication application = applicationOf(window);
  if (application.identifier == startCentreProgram) application.identifier = excelIdentifier;
  return application;
}

void ListedWorkspace::listChanged() {
  windows_ = list_.windows();
  std::erase_if(recent_, [this](std::uint32_t id) { return !find(id); });
  const ListedWindow* const now = active();
  if (!now) return settle();
  const RunningApplication application = applicationOf(*now);
  if (application.isSelf || (isOpening(*now) && application.identifier != excelIdentifier)) return;
  settling_.reset();
  std::erase(recent_, now->id);
  recent_.push_back(now->id);
  front_ = application;
  if (told_ == front_) return;
  told_ = front_;
  const ActivationHandler handler = handler_;  // which may replace itself
  if (handler) handler(application);
}

// While the keyboard changes hands no window is active for a moment.
void ListedWorkspace::settle() {
  if (!settling_) settling_.reset(g_timeout_add(settlingMilliseconds, settled, this));
}

gboolean ListedWorkspace::settled(gpointer data) {
  auto& self = *static_cast<ListedWorkspace*>(data);
  self.settling_.forget();
  if (self.active() || self.hasKeyboard_()) return G_SOURCE_REMOVE;
  self.front_.reset();
  self.told_.reset();
  return G_SOURCE_REMOVE;
}

std::optional<RunningApplication> ListedWorkspace::frontmostApplication() const {
  return front_;
}

std::vector<RunningApplication> ListedWorkspace::runningApplications(
    const std::string& identifier) const {
  std::vector<RunningApplication> found;
  for (const ListedWindow& window : windows_) {
    RunningApplication application = runningAs(window);
    if (application.identifier == identifier &&
        std::find(found.begin(), found.end(), application) == found.end()) {
      found.push_back(std::move(application));
    }
  }
  return found;
}

// The window of the application's that was in front last comes forward.
void ListedWorkspace::activate(const RunningApplication& application) {
  const ListedWindow* chosen = nullptr;
  std::ptrdiff_t chosenAge = -1;
  for (const ListedWindow& window : windows_) {
    if (runningAs(window) != application) continue;
    const auto at = std::find(recent_.begin(), recent_.end(), window.id);
    const std::ptrdiff_t age = at == recent_.end() ? 0 : 1 + (at - recent_.begin());
    if (age > chosenAge) {
      chosen = &window;
      chosenAge = age;
    }
  }
  if (chosen) list_.activate(chosen->id);
}

void ListedWorkspace::activateOwn() {
  for (const ListedWindow& window : windows_) {
    if (window.program == own_) list_.activate(window.id);
  }
}

void ListedWorkspace::reactivate() {
  if (!recent_.empty()) list_.activate(recent_.back());
}

}  // namespace quorin
