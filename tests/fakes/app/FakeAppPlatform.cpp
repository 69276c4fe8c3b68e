#include "tests/fakes/app/FakeAppPlatform.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "app/shell/PageAddress.h"
#include "app/shell/ScreenPlacement.h"

namespace quorin {

namespace {

std::string text(const ScreenFrame& frame) {
  std::ostringstream out;
  out << frame.x << ' ' << frame.y << ' ' << frame.width << ' ' << frame.height;
  return out.str();
}

}  // namespace

class FakeMainLoop::FakeTimer : public Timer {
 public:
  FakeTimer(FakeMainLoop& loop, int number) : loop_(loop), number_(number) {}
  ~FakeTimer() override { loop_.timers_.erase(number_); }

 private:
  FakeMainLoop& loop_;
  int number_;
};

std::unique_ptr<Timer> FakeMainLoop::startTimer(std::chrono::milliseconds interval, TimerKind kind,
                                                Action action) {
  const int number = nextTimer_++;
  timers_[number] = {clock_.elapsed + interval, interval, kind, std::move(action)};
  return std::make_unique<FakeTimer>(*this, number);
}

void FakeMainLoop::runPosted() {
  while (!posted_.empty()) {
    const Action action = std::move(posted_.front());
    posted_.pop_front();
    action();
  }
}

void FakeMainLoop::advance(std::chrono::milliseconds time) {
  const auto end = clock_.elapsed + time;
  for (;;) {
    auto next = std::min_element(timers_.begin(), timers_.end(), [](const auto& a, const auto& b) {
      return a.second.due < b.second.due;
    });
    if (next == timers_.end() || next->second.due > end) break;
    clock_.elapsed = std::max(clock_.elapsed, next->second.due);
    const Action action = next->second.action;
    if (next->second.kind == TimerKind::repeating) {
      while (next->second.due <= clock_.elapsed) next->second.due += next->second.interval;
    } else {
      timers_.erase(next);
    }
    action();
    runPosted();
  }
  clock_.elapsed = end;
}

FakePanelWindow::FakePanelWindow(const PanelWindowOptions& given, const Defaults& defaults,
                                 Journal& journal)
    : options(given), journal_(journal) {
  const Screen screen{{0, 0, 1440, 900}, {0, 70, 1440, 805}};
  allScreens = {screen};
  ownScreen = screen;
  keyScreen = screen;
  const auto text = defaults.string("NSWindow Frame " + given.frameAutosaveName);
  const auto saved = text ? ScreenPlacement::savedFrame(*text) : std::nullopt;
  if (saved) currentFrame = ScreenPlacement::constrained(*saved, allScreens);
}

void FakePanelWindow::setFrame(const ScreenFrame& frame) {
  currentFrame = frame;
  journal_.push_back("setFrame " + text(frame));
}

void FakePanelWindow::orderFront() {
  visible = true;
  journal_.push_back("orderFront");
}

void FakePanelWindow::makeKeyAndOrderFront() {
  if (onMakeKey) onMakeKey();
  visible = key = true;
  journal_.push_back("makeKeyAndOrderFront");
}

void FakePanelWindow::resignKey() {
  key = keepsKey;
  journal_.push_back("resignKey");
}

void FakePanelWindow::orderOut() {
  visible = key = false;
  journal_.push_back("orderOut");
}

bool FakeWebView::loadURL(const std::string& url, std::chrono::seconds timeout) {
  if (!PageAddress::onThisMachine(url)) return false;
  journal_.push_back("loadURL " + url + " " + std::to_string(timeout.count()));
  return true;
}

void FakeWebView::loadFile(const std::filesystem::path& file,
                           const std::filesystem::path& readable) {
  journal_.push_back("loadFile " + file.string() + " " + readable.string());
}

void FakeWebView::loadHTML(const std::string& html) {
  journal_.push_back("loadHTML " + html);
}

void FakeWebView::evaluate(const std::string& script) {
  scripts_.push_back(script);
  journal_.push_back("evaluate " + script);
  if (onEvaluate) onEvaluate(script);
}

std::vector<RunningApplication> FakeWorkspace::runningApplications(
    const std::string& identifier) const {
  std::vector<RunningApplication> found;
  std::copy_if(running.begin(), running.end(), std::back_inserter(found),
               [&](const RunningApplication& one) { return one.identifier == identifier; });
  return found;
}

void FakeWorkspace::activate(const RunningApplication& application) {
  journal_.push_back("activate " + std::to_string(application.processIdentifier));
  askedFor_ = application;
}

void FakeWorkspace::bringForwardWhatWasAskedFor() {
  const auto asked = std::exchange(askedFor_, std::nullopt);
  if (asked && std::find(running.begin(), running.end(), *asked) != running.end())
    bringToFront(*asked);
}

bool FakeWorkspace::openURL(const std::string& url) {
  journal_.push_back("openURL " + url);
  return opens && (url.starts_with("mailto:") || url.starts_with("https:"));
}

bool FakeWorkspace::openFile(const std::filesystem::path& file) {
  journal_.push_back("openFile " + file.string());
  return opens;
}

void FakeWorkspace::bringToFront(const RunningApplication& application) {
  frontmost = application;
  const ActivationHandler handler = handler_;  // which may replace itself
  if (handler) handler(application);
}

void FakeAlerts::show(const Alert& alert, Answer answer) {
  journal_.push_back("alert " + alert.message);
  shown.push_back(alert);
  open_.push_back(std::move(answer));
}

void FakeAlerts::press(std::size_t button) {
  if (open_.empty()) throw std::logic_error("no alert is open");
  const Answer answer = std::move(open_.front());
  open_.pop_front();
  answer(button);
}

std::optional<std::string> FakeDefaults::string(const std::string& key) const {
  const auto found = texts.find(key);
  return found == texts.end() ? std::nullopt : std::optional(found->second);
}

std::string FakeBundle::infoString(const std::string& key) const {
  const auto found = info.find(key);
  return found == info.end() ? std::string() : found->second;
}

HotKeyService::Status FakeHotKeyService::install(Handler handler) {
  journal_.push_back("installHotKeyHandler");
  handler_ = std::move(handler);
  return installStatus;
}

HotKeyService::Status FakeHotKeyService::add(HotKeyID id, std::uint32_t keyCode,
                                             std::uint32_t modifiers) {
  std::ostringstream out;
  out << "addHotKey " << id.id << ' ' << keyCode << ' ' << modifiers;
  journal_.push_back(out.str());
  signatures.push_back(id.signature);
  const std::pair combination{keyCode, modifiers};
  const bool isHeld = std::any_of(held.begin(), held.end(),
                                  [&](const auto& each) { return each.second == combination; });
  if (isHeld || taken.contains(combination)) return alreadyExists;
  const auto found = refused.find(id.id);
  if (found != refused.end()) return found->second;
  held[id.id] = combination;
  return noError;
}

void FakeHotKeyService::remove(HotKeyID id) {
  held.erase(id.id);
  journal_.push_back("removeHotKey " + std::to_string(id.id));
}

FakeStatusItem::FakeStatusItem(std::string given, std::vector<FakeStatusItem*>& shown)
    : image(std::move(given)), shown_(shown) {
  shown_.push_back(this);
}

bool FakeStatusItem::offers(const std::string& title) const {
  return std::any_of(items.begin(), items.end(),
                     [&](const MenuItem& item) { return item.title == title && item.enabled; });
}

void FakeStatusItem::choose(const std::string& title) {
  const auto found = std::find_if(items.begin(), items.end(),
                                  [&](const MenuItem& item) { return item.title == title; });
  if (found == items.end()) throw std::logic_error("no item " + title);
  if (delegate) delegate->menuItemChosen(static_cast<std::size_t>(found - items.begin()));
}

int FakeArchiver::zip(const std::filesystem::path& folder, const std::filesystem::path& file) {
  if (onZip) onZip(folder, file);
  if (onZip || status != 0) return status;
  if (!std::filesystem::is_directory(folder)) return 1;
  std::ofstream names(file);
  for (const auto& each : std::filesystem::recursive_directory_iterator(folder))
    names << each.path().lexically_relative(folder.parent_path()).generic_string() << '\n';
  return names.flush() ? 0 : 1;
}

std::optional<std::string> FakeLoginItem::registerItem() {
  journal_.push_back("registerLoginItem");
  if (!error) current = afterRegistering;
  return error;
}

std::optional<std::string> FakeLoginItem::unregisterItem() {
  journal_.push_back("unregisterLoginItem");
  if (!error) current = LoginItemStatus::notRegistered;
  return error;
}

std::unique_ptr<StatusItem> FakeAppPlatform::makeStatusItem(const std::string& imageName) {
  if (!hasStatusBar) return nullptr;
  return std::make_unique<FakeStatusItem>(imageName, bar_);
}

std::unique_ptr<PanelWindow> FakeAppPlatform::makePanelWindow(const PanelWindowOptions& options) {
  auto window = std::make_unique<FakePanelWindow>(options, defaults_, journal);
  window_ = window.get();
  return window;
}

std::unique_ptr<WebView> FakeAppPlatform::makeWebView(const WebViewOptions& options) {
  auto view = std::make_unique<FakeWebView>(options, journal);
  webView_ = view.get();
  return view;
}

std::unique_ptr<AppPlatform> makePlatform() {
  return std::make_unique<FakeAppPlatform>();
}

}  // namespace quorin
