#include "app/linux/X11Workspace.h"

#include <algorithm>
#include <strings.h>
#include <unistd.h>

namespace quorin {

namespace {

constexpr const char* calcClass = "libreoffice-calc";
constexpr const char* startCentreClass = "libreoffice-startcenter";
constexpr const char* openingClass = "soffice";
constexpr int transientLevels = 8;
constexpr guint settlingMilliseconds = 150;

}  // namespace

X11Workspace::X11Workspace(X11Session& session) : session_(session) {
  session_.setOnActiveWindowChanged([this] { activeWindowChanged(); });
  if (front(session_.activeWindow())) told_ = front_->application;
}

X11Workspace::~X11Workspace() {
  session_.setOnActiveWindowChanged({});
}

// A dialog belongs to the application of the window that it stands in front of: Calc's own ones do
// not carry Calc's class.
std::optional<RunningApplication> X11Workspace::applicationOf(WindowId id) const {
  std::optional<X11Session::Window> window = session_.window(id);
  if (!window) return std::nullopt;
  RunningApplication application{window->windowClass, window->processIdentifier,
                                 window->processIdentifier == getpid()};
  for (int level = 0; window && level < transientLevels; ++level) {
    if (window->windowClass == calcClass) {
      application.identifier = excelIdentifier;
      break;
    }
    window = session_.window(window->transientFor);
  }
  return application;
}

bool X11Workspace::isPanel(WindowId id) const {
  const std::optional<X11Session::Window> window = session_.window(id);
  return window && window->isUtility && window->processIdentifier == getpid();
}

// An office's window that does not yet say which of its programs it belongs to.
bool X11Workspace::isOpening(WindowId id) const {
  const std::optional<X11Session::Window> window = session_.window(id);
  return window && window->transientFor == 0 &&
         strcasecmp(window->windowClass.c_str(), openingClass) == 0;
}

// While the keyboard changes hands there is no active window for a moment.
std::optional<X11Workspace::Front> X11Workspace::front(WindowId active) const {
  if (active == 0 || isPanel(active)) {
    if (front_ && !session_.window(front_->window)) front_.reset();
    return front_;
  }
  std::optional<RunningApplication> application = applicationOf(active);
  if (!application) return std::nullopt;
  front_ = Front{std::move(*application), active};
  return front_;
}

std::optional<RunningApplication> X11Workspace::frontmostApplication() const {
  const std::optional<Front> now = front(session_.activeWindow());
  return now ? std::optional(now->application) : std::nullopt;
}

void X11Workspace::activeWindowChanged() {
  const WindowId active = session_.activeWindow();
  if (isOpening(active)) return;
  const std::optional<Front> now = front(active);
  if (active == 0 || !now) {
    if (!settling_) settling_.reset(g_timeout_add(settlingMilliseconds, settled, this));
    return;
  }
  settling_.reset();
  if (told_ == now->application) return;
  told_ = now->application;
  const ActivationHandler handler = handler_;  // which may replace itself
  if (handler) handler(now->application);
}

gboolean X11Workspace::settled(gpointer data) {
  auto& self = *static_cast<X11Workspace*>(data);
  self.settling_.forget();
  const WindowId active = self.session_.activeWindow();
  if (active == 0 || !self.front(active)) {
    self.front_.reset();
    self.told_.reset();
  }
  return G_SOURCE_REMOVE;
}

std::vector<RunningApplication> X11Workspace::runningApplications(
    const std::string& identifier) const {
  std::vector<RunningApplication> found;
  for (const WindowId id : session_.windowsFromTop()) {
    std::optional<RunningApplication> application = applicationOf(id);
    if (!application) continue;
    if (application->identifier == startCentreClass) application->identifier = excelIdentifier;
    if (application->identifier == identifier &&
        std::find(found.begin(), found.end(), *application) == found.end()) {
      found.push_back(*application);
    }
  }
  return found;
}

// The topmost of the application's windows comes forward.
void X11Workspace::activate(const RunningApplication& application) {
  for (const WindowId id : session_.windowsFromTop()) {
    std::optional<RunningApplication> owner = applicationOf(id);
    if (!owner || owner->processIdentifier != application.processIdentifier) continue;
    if (owner->identifier == startCentreClass) owner->identifier = excelIdentifier;
    if (*owner == application) {
      session_.requestActivation(id);
      return;
    }
  }
}

}  // namespace quorin
