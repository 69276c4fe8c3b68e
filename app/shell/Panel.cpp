#include "app/shell/Panel.h"

#include <algorithm>
#include <system_error>

#include "kit/platform/Thread.h"
#include "kit/value/Marshal.h"

namespace quorin {

namespace {

constexpr ScreenFrame initialContentFrame{0, 0, 460, 560};
constexpr ScreenSize minimumContentSize{320, 320};
constexpr double wideningWidth = 340;
constexpr std::chrono::seconds developmentPageTimeout{60};
constexpr const char* bundleMissing =
    "<h1 style='font:14px system-ui;padding:16px'>Quorin: web bundle missing</h1>";

// A page whose process ends again and again within this time is not loaded for ever.
constexpr std::chrono::seconds soundPageAge{10};
constexpr int reloadsInARow = 3;

std::string trueOrFalse(bool value) {
  return value ? "true" : "false";
}

}  // namespace

Panel::Panel(Parts parts)
    : parts_(std::move(parts)),
      webView_(parts_.platform.makeWebView(
          {"qx", "window.__qxApp = " + Marshal::encode(parts_.platform.spreadsheetName()) + ";"})),
      window_(parts_.platform.makePanelWindow(
          {"Quorin", initialContentFrame, minimumContentSize, "QuorinPanel"})),
      page_(*webView_),
      reviews_({ReviewStore(parts_.config.parent_path() / "reviews.json", FileSystem::real(),
                            &parts_.log),
                parts_.fileQueue, parts_.platform.mainLoop(), parts_.platform.saveDialog(),
                parts_.log}) {
  requireMainThread("Panel::Panel");
  webView_->setDelegate(this);
  window_->setDelegate(this);
  window_->setContent(*webView_);
  loadWeb();
}

Panel::~Panel() {
  window_->setDelegate(nullptr);
  webView_->setDelegate(nullptr);
}

void Panel::loadWeb() {
  const auto page = parts_.environment.find("QX_DEV_URL");
  if (page != parts_.environment.end()) {
    if (webView_->loadURL(page->second, developmentPageTimeout)) return;
    parts_.log.log("ERROR", "QX_DEV_URL is not an address on this machine, showing the own page");
  }
  if (const auto resources = parts_.platform.bundle().resourceFolder()) {
    const std::filesystem::path file = *resources / "web" / "index.html";
    std::error_code ignored;
    if (std::filesystem::exists(file, ignored)) {
      webView_->loadFile(file, file.parent_path());
      return;
    }
  }
  webView_->loadHTML(bundleMissing);
}

bool Panel::hasSavedFrame() const {
  return parts_.platform.defaults().string(frameDefaultsKey).has_value();
}

void Panel::positionBeside(const BridgeShapes::WindowBounds& excel) {
  requireMainThread("Panel::positionBeside");
  if (hasSavedFrame()) return;
  const std::vector<Screen> screens = window_->screens();
  if (screens.empty()) return;
  const Screen& main = screens.front();
  window_->setFrame(BridgeShapes::panelFrameBesideExcel(excel, main.frame.height, main.visibleFrame,
                                                        window_->frame().size()));
}

void Panel::show(const std::optional<BridgeShapes::WindowBounds>& beside, const Event& event) {
  requireMainThread("Panel::show");
  enabled_ = true;
  recoverPage();
  if (beside) positionBeside(*beside);
  window_->makeKeyAndOrderFront();
  if (onSummon_) onSummon_();
  sendEvent(event.name, event.payload);
}

void Panel::makeKey() {
  requireMainThread("Panel::makeKey");
  window_->makeKeyAndOrderFront();
}

void Panel::summon() {
  show(std::nullopt, {"summon", JSONValue::Object{}});
}

void Panel::showCompanion() {
  requireMainThread("Panel::showCompanion");
  recoverPage();
  window_->orderFront();
  parts_.log.log("SHOWN",
                 "companion visible=" + trueOrFalse(isVisible()) + " key=" + trueOrFalse(isKey()));
  if (onSummon_) onSummon_();
  sendEvent("summon", JSONValue::Object{{"resume", true}});
}

void Panel::relinquishKey() {
  requireMainThread("Panel::relinquishKey");
  Workspace& workspace = parts_.platform.workspace();
  const std::vector<RunningApplication> excel = workspace.runningApplications(excelIdentifier);
  if (!excel.empty()) workspace.activate(excel.front());
  if (isKey()) {
    window_->resignKey();
    window_->orderFront();
  }
  parts_.log.log("SHOWN", "relinquish key=" + trueOrFalse(isKey()));
}

void Panel::setWidth(bool expanded) {
  requireMainThread("Panel::setWidth");
  if (expanded == expanded_) return;
  expanded_ = expanded;
  ScreenFrame frame = window_->frame();
  if (expanded) {
    frame.width += wideningWidth;
    std::optional<Screen> screen = window_->screen();
    if (!screen) screen = window_->mainScreen();
    if (screen) {
      const ScreenFrame& visible = screen->visibleFrame;
      const double overflow = std::max(0.0, frame.maxX() - visible.maxX());
      const double room = std::max(0.0, frame.x - visible.x);
      expandShift_ = std::min(overflow, room);
    }
    frame.x -= expandShift_;
    window_->setWidening(wideningWidth, expandShift_);
  } else {
    frame.width = std::max(frame.width - wideningWidth, window_->minimumContentSize().width);
    frame.x += expandShift_;
    expandShift_ = 0;
    window_->setWidening(0, 0);
  }
  window_->setFrame(frame);
}

void Panel::close() {
  requireMainThread("Panel::close");
  hideCompanion();
}

void Panel::hideCompanion() {
  requireMainThread("Panel::hideCompanion");
  sendEvent("cleanHide", JSONValue::Object{});
  window_->orderOut();
}

void Panel::sendEvent(const std::string& name, const JSONValue& payload) {
  requireMainThread("Panel::sendEvent");
  page_.sendEvent(name, payload);
}

void Panel::webViewDidStartProvisionalNavigation() {
  page_.pageLeft();
}

void Panel::webViewDidFinishNavigation() {
  loadedAt_ = parts_.platform.clock().steadyNow();
  page_.pageFinished();
}

void Panel::webViewDidFailProvisionalNavigation(const std::string& description) {
  parts_.log.log("ERROR", "web load failed: " + description);
}

void Panel::webViewDidFailNavigation(const std::string& description) {
  parts_.log.log("ERROR", "web navigation failed: " + description);
}

void Panel::webViewDidRefuse(const std::string& what) {
  parts_.log.log("ERROR", "web view refused a " + what);
}

// The page's process is restarted by loading the page again. A page that takes its process down
// each time is given up, until the panel is shown the next time.
void Panel::webViewWebProcessDidTerminate() {
  page_.pageLeft();
  const bool sound = parts_.platform.clock().steadyNow() - loadedAt_ >= soundPageAge;
  deathsInARow_ = sound ? 1 : deathsInARow_ + 1;
  pageGivenUp_ = deathsInARow_ > reloadsInARow;
  parts_.log.log("ERROR", pageGivenUp_ ? "web process ended again, not reloading"
                                       : "web process ended, reloading");
  if (!pageGivenUp_) webView_->reload();
}

void Panel::recoverPage() {
  if (!pageGivenUp_) return;
  pageGivenUp_ = false;
  deathsInARow_ = 0;
  loadWeb();
}

void Panel::requireMainThread(const char* what) const {
  if (!parts_.platform.mainLoop().isMainThread()) stopForWrongThread(what, "main");
}

}  // namespace quorin
