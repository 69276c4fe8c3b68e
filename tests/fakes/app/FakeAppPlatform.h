// FakeAppPlatform: every port of the shell in memory. What is asked of the ports is written to one
// journal, in order, in the words of the ports; what they answer is set by the test. Time stands
// still until the test moves it. Tests that link it get it from makePlatform().
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "app/shell/ports/AppPlatform.h"
#include "kit/platform/Folders.h"

namespace quorin {

using Journal = std::vector<std::string>;

class FakeClock : public Clock {
 public:
  std::chrono::system_clock::time_point now() const override {
    return std::chrono::system_clock::time_point(std::chrono::seconds(1'790'000'000)) + elapsed;
  }
  std::chrono::steady_clock::time_point steadyNow() const override {
    return std::chrono::steady_clock::time_point(std::chrono::hours(1)) + elapsed;
  }
  std::chrono::milliseconds elapsed{0};
};

class FakeMainLoop : public MainLoop {
 public:
  explicit FakeMainLoop(FakeClock& clock) : clock_(clock) {}

  bool isMainThread() const override {
    return onMainThread && std::this_thread::get_id() == thread_;
  }
  void post(Action action) override { posted_.push_back(std::move(action)); }
  std::unique_ptr<Timer> startTimer(std::chrono::milliseconds interval, TimerKind kind,
                                    Action action) override;

  // Runs what is posted, including what that posts.
  void runPosted();
  // Moves the time on; fires due timers in order and runs what they post.
  void advance(std::chrono::milliseconds time);

  std::size_t postedCount() const { return posted_.size(); }
  std::size_t timerCount() const { return timers_.size(); }
  bool onMainThread = true;

 private:
  class FakeTimer;
  struct Entry {
    std::chrono::milliseconds due, interval;
    TimerKind kind;
    Action action;
  };
  FakeClock& clock_;
  const std::thread::id thread_ = std::this_thread::get_id();
  std::deque<Action> posted_;
  std::map<int, Entry> timers_;
  int nextTimer_ = 0;
};

class FakePanelWindow : public PanelWindow {
 public:
  // Starts with the frame that the defaults hold for it, if any.
  FakePanelWindow(const PanelWindowOptions& given, const Defaults& defaults, Journal& journal);

  void setDelegate(PanelWindowDelegate* delegate) override { delegate_ = delegate; }
  void setContent(WebView& view) override { content = &view; }
  ScreenFrame frame() const override { return currentFrame; }
  void setFrame(const ScreenFrame& frame) override;
  ScreenSize minimumContentSize() const override { return options.minimumContentSize; }
  void setWidening(double width, double shift) override { widening = {width, shift}; }
  bool isVisible() const override { return visible; }
  bool isKey() const override { return key; }
  void orderFront() override;
  void makeKeyAndOrderFront() override;
  void resignKey() override;
  void orderOut() override;
  std::vector<Screen> screens() const override { return allScreens; }
  std::optional<Screen> screen() const override { return ownScreen; }
  std::optional<Screen> mainScreen() const override { return keyScreen; }

  void pressClose() {
    if (delegate_) delegate_->panelWindowCloseRequested();
  }

  const PanelWindowOptions options;
  WebView* content = nullptr;
  ScreenFrame currentFrame{0, 0, 460, 588};
  std::pair<double, double> widening{0, 0};
  bool visible = false, key = false;
  bool keepsKey = false;            // the system does not take the keyboard away
  std::function<void()> onMakeKey;  // just before the window has the keyboard
  std::vector<Screen> allScreens;
  std::optional<Screen> ownScreen, keyScreen;

 private:
  Journal& journal_;
  PanelWindowDelegate* delegate_ = nullptr;
};

class FakeWebView : public WebView {
 public:
  FakeWebView(WebViewOptions given, Journal& journal)
      : options(std::move(given)), journal_(journal) {}

  void setDelegate(WebViewDelegate* given) override { delegate = given; }
  bool loadURL(const std::string& url, std::chrono::seconds timeout) override;
  void loadFile(const std::filesystem::path& file, const std::filesystem::path& readable) override;
  void loadHTML(const std::string& html) override;
  void reload() override { journal_.push_back("reload"); }
  void evaluate(const std::string& script) override;

  void post(const JSONValue& body) { delegate->webViewDidReceiveMessage(body); }
  void finishLoading() {
    delegate->webViewDidStartProvisionalNavigation();
    delegate->webViewDidFinishNavigation();
  }
  // What was evaluated since the last call.
  std::vector<std::string> takeScripts() { return std::exchange(scripts_, {}); }

  const WebViewOptions options;
  WebViewDelegate* delegate = nullptr;
  std::function<void(const std::string&)> onEvaluate;  // the page's reaction

 private:
  Journal& journal_;
  std::vector<std::string> scripts_;
};

class FakeWorkspace : public Workspace {
 public:
  explicit FakeWorkspace(Journal& journal) : journal_(journal) {}

  std::vector<RunningApplication> runningApplications(const std::string& identifier) const override;
  bool alwaysTellsWhoIsInFront() const override { return tells; }
  bool tellsWhoIsInFront() const override { return tells; }
  std::optional<RunningApplication> frontmostApplication() const override { return frontmost; }
  void activate(const RunningApplication& application) override;
  void observeActivation(ActivationHandler handler) override { handler_ = std::move(handler); }
  bool openURL(const std::string& url) override;
  bool openFile(const std::filesystem::path& file) override;

  // The application comes to the front; the observer hears of it.
  void bringToFront(const RunningApplication& application);
  // The application that was asked for last comes to the front, if it still runs.
  void bringForwardWhatWasAskedFor();

  bool opens = true;  // whether there is a program for files and URLs
  std::vector<RunningApplication> running;
  bool tells = true;
  std::optional<RunningApplication> frontmost;

 private:
  Journal& journal_;
  ActivationHandler handler_;
  std::optional<RunningApplication> askedFor_;
};

class FakeUserInput : public UserInput {
 public:
  void observe(std::function<void()> handler) override { handler_ = std::move(handler); }
  // The user presses something.
  void press() const {
    const std::function<void()> handler = handler_;  // which may replace itself
    if (handler) handler();
  }

 private:
  std::function<void()> handler_;
};

class FakeAlerts : public Alerts {
 public:
  explicit FakeAlerts(Journal& journal) : journal_(journal) {}
  void show(const Alert& alert, Answer answer) override;
  // The user presses a button of the oldest alert.
  void press(std::size_t button);
  // The oldest that is open; none where all are answered.
  const Alert* open() const {
    return open_.empty() ? nullptr : &shown[shown.size() - open_.size()];
  }
  std::vector<Alert> shown;

 private:
  Journal& journal_;
  std::deque<Answer> open_;
};

class FakeSaveDialog : public SaveDialog {
 public:
  explicit FakeSaveDialog(Journal& journal) : journal_(journal) {}
  void ask(const std::string& name, Answer answer) override {
    journal_.push_back("askWhere " + name);
    asked = name;
    answer_ = std::move(answer);
  }
  // The user chooses a file, or none.
  void choose(const std::optional<std::filesystem::path>& file) {
    std::exchange(answer_, nullptr)(file);
  }
  bool isOpen() const { return answer_ != nullptr; }
  std::string asked;  // the name that was last suggested

 private:
  Journal& journal_;
  Answer answer_;
};

class FakeDefaults : public Defaults {
 public:
  std::optional<std::string> string(const std::string& key) const override;
  void setString(const std::string& key, const std::string& value) override { texts[key] = value; }
  std::map<std::string, std::string> texts;
};

class FakeBundle : public Bundle {
 public:
  std::string infoString(const std::string& key) const override;
  std::optional<std::filesystem::path> resourceFolder() const override { return resources; }
  std::map<std::string, std::string> info{{"CFBundleShortVersionString", "1.2.3"}};
  std::optional<std::filesystem::path> resources;
};

class FakeApplication : public Application {
 public:
  explicit FakeApplication(Journal& journal) : journal_(journal) {}
  void setAccessory() override { journal_.push_back("setAccessory"); }
  void setDelegate(ApplicationDelegate&) override { journal_.push_back("setDelegate"); }
  void run() override { journal_.push_back("run"); }
  void terminate() override { journal_.push_back("terminate"); }
  void activate() override { journal_.push_back("activateSelf"); }

 private:
  Journal& journal_;
};

class FakeHotKeyService : public HotKeyService {
 public:
  explicit FakeHotKeyService(Journal& journal) : journal_(journal) {}
  Status install(Handler handler) override;
  Status add(HotKeyID id, std::uint32_t keyCode, std::uint32_t modifiers) override;
  void remove(HotKeyID id) override;
  std::optional<std::string> unavailable() const override { return reason; }

  // The user presses a combination, or another part of the process has one of its own.
  Status press(HotKeyID id) { return handler_(id); }

  Status installStatus = noError;
  std::map<std::uint32_t, Status> refused;                                // by id
  std::map<std::uint32_t, std::pair<std::uint32_t, std::uint32_t>> held;  // by id: key, modifiers
  std::set<std::pair<std::uint32_t, std::uint32_t>> taken;                // by other programs
  std::optional<std::string> reason;
  std::vector<std::uint32_t> signatures;

 private:
  Journal& journal_;
  Handler handler_;
};

class FakeStatusItem : public StatusItem {
 public:
  // `shown` are the items in the bar.
  FakeStatusItem(std::string given, std::vector<FakeStatusItem*>& shown);
  ~FakeStatusItem() override { std::erase(shown_, this); }
  FakeStatusItem(const FakeStatusItem&) = delete;
  FakeStatusItem& operator=(const FakeStatusItem&) = delete;

  void setDelegate(StatusItemDelegate* given) override { delegate = given; }
  void setMenu(const std::vector<MenuItem>& given) override { items = given; }
  void setItem(std::size_t index, const MenuItem& item) override {
    if (index < items.size()) items[index] = item;
  }

  // The user opens the menu, sees whether the item of this title can be chosen, and chooses it.
  void open() {
    if (delegate) delegate->menuWillOpen();
  }
  bool offers(const std::string& title) const;
  void choose(const std::string& title);

  const std::string image;
  std::vector<MenuItem> items;
  StatusItemDelegate* delegate = nullptr;

 private:
  std::vector<FakeStatusItem*>& shown_;
};

class FakeLoginItem : public LoginItem {
 public:
  explicit FakeLoginItem(Journal& journal) : journal_(journal) {}
  bool isInstalled() const override { return installed; }
  LoginItemStatus status() const override { return current; }
  std::optional<std::string> registerItem() override;
  std::optional<std::string> unregisterItem() override;

  bool installed = true;
  LoginItemStatus current = LoginItemStatus::notRegistered;
  std::optional<std::string> error;  // what the next changes fail with
  LoginItemStatus afterRegistering = LoginItemStatus::enabled;

 private:
  Journal& journal_;
};

class FakeUpdater : public Updater {
 public:
  explicit FakeUpdater(Journal& journal) : journal_(journal) {}
  std::optional<std::string> unavailable() const override { return reason; }
  void checkForUpdates() override { journal_.push_back("checkForUpdates"); }
  std::optional<std::string> reason;

 private:
  Journal& journal_;
};

class FakeFolders : public Folders {
 public:
  explicit FakeFolders(std::filesystem::path root) : root_(std::move(root)) {}
  std::filesystem::path applicationSupport() const override { return root_ / "support"; }
  std::filesystem::path library() const override { return root_ / "library"; }
  std::filesystem::path desktop() const override { return root_ / "desktop"; }
  std::filesystem::path temporary() const override { return root_ / "temporary"; }

 private:
  std::filesystem::path root_;
};

// Its files are the names of what they hold. Any thread, as long as nobody else uses it.
class FakeArchiver : public Archiver {
 public:
  int zip(const std::filesystem::path& folder, const std::filesystem::path& file) override;
  int status = 0;
  std::function<void(const std::filesystem::path& folder, const std::filesystem::path& file)> onZip;
};

class FakeAppPlatform : public AppPlatform {
 public:
  FakeApplication& application() override { return application_; }
  FakeMainLoop& mainLoop() override { return loop_; }
  FakeWorkspace& workspace() override { return workspace_; }
  FakeAlerts& alerts() override { return alerts_; }
  FakeSaveDialog* saveDialog() override { return &saveDialog_; }
  FakeDefaults& defaults() override { return defaults_; }
  FakeBundle& bundle() override { return bundle_; }
  FakeClock& clock() override { return clock_; }
  const FakeClock& clock() const { return clock_; }
  std::unique_ptr<StatusItem> makeStatusItem(const std::string& imageName) override;
  LoginItem* loginItem() override { return hasLoginItem ? &login : nullptr; }
  Updater* updater() override { return hasUpdater ? &updates : nullptr; }
  Archiver* archiver() override { return hasPacker ? &packer : nullptr; }
  SystemVersions systemVersions() const override { return {"TestOS", "7", "Sheets", {}}; }
  HotKeyService* hotKeys() override { return hasHotKeys ? &hotKeyService : nullptr; }
  UserInput* userInput() override { return &input; }
  std::unique_ptr<PanelWindow> makePanelWindow(const PanelWindowOptions& options) override;
  std::unique_ptr<WebView> makeWebView(const WebViewOptions& options) override;
  std::string spreadsheetName() const override { return "Test \"Sheets\""; }

  // The window and the view made last.
  FakePanelWindow& window() { return *window_; }
  FakeWebView& webView() { return *webView_; }
  FakeStatusItem& statusItem() { return *bar_.back(); }
  bool hasStatusItem() const { return !bar_.empty(); }
  bool madePanel() const { return window_ != nullptr; }

  Journal journal;
  FakeHotKeyService hotKeyService{journal};
  bool hasHotKeys = false;
  FakeUserInput input;
  FakeArchiver packer;
  bool hasPacker = true;
  FakeLoginItem login{journal};
  FakeUpdater updates{journal};
  bool hasStatusBar = false, hasLoginItem = true, hasUpdater = true;

 private:
  FakeClock clock_;
  FakeMainLoop loop_{clock_};
  FakeApplication application_{journal};
  FakeWorkspace workspace_{journal};
  FakeAlerts alerts_{journal};
  FakeSaveDialog saveDialog_{journal};
  FakeDefaults defaults_;
  FakeBundle bundle_;
  FakePanelWindow* window_ = nullptr;
  FakeWebView* webView_ = nullptr;
  std::vector<FakeStatusItem*> bar_;
};

}  // namespace quorin
