#include "app/linux/GtkPlatform.h"

#include <gtk/gtk.h>
#include <stdexcept>
#include <system_error>

#include "app/linux/Desktops.h"
#include "app/linux/LinuxVersions.h"
#include "kit/platform/XDGFolders.h"
#ifdef QUORIN_STATUS_ITEM
#include "app/linux/GtkStatusItem.h"
#endif

namespace quorin {

namespace {

// The page's process takes these from its environment. WebKit keeps the compiled form of every
// script for when it comes again, and each message to the page is a script that does not. And code
// compiled for speed takes more memory than the whole rest of a page that mostly waits for its
// user.
void spareMemoryOfThePage() {
  g_setenv("JSC_useCodeCache", "0", FALSE);
  g_setenv("JSC_useDFGJIT", "0", FALSE);
}

std::filesystem::path ownProgram() {
  std::error_code ignored;
  return std::filesystem::read_symlink("/proc/self/exe", ignored);
}

}  // namespace

GtkPlatform::GtkPlatform(std::unique_ptr<Desktop> desktop)
    : desktop_(std::move(desktop)),
      defaults_(XDGFolders(environment_).library() / "Quorin" / "defaults.json"),
      bundle_(ownProgram()),
      loginItem_(ownProgram(), XDGFolders(environment_).configuration()),
      updater_(
          {updateTransport_, updateProgress_, alerts_, workspace(), loop_, updateQueue_, clock_},
          {bundle_.infoString("SUFeedURL"), bundle_.infoString("SUPublicEDKey"),
           bundle_.infoString("CFBundleShortVersionString"), bundle_.infoString("QXArchitecture")},
          {XDGFolders(environment_).applicationSupport() / "Quorin" / "updates",
           XDGFolders(environment_).applicationSupport() / "Quorin" / "feed-date"}) {}

SystemVersions GtkPlatform::systemVersions() const {
  return linuxVersions(environment_, "/etc/os-release");
}

#ifdef QUORIN_STATUS_ITEM
// All programs share the icon theme: the image goes by the program's name there. A program that is
// not installed has its icons in a folder of its own.
std::unique_ptr<StatusItem> GtkPlatform::makeStatusItem(const std::string&) {
  const std::filesystem::path folder =
      bundle_.resourceFolder().value_or(std::filesystem::path()) / "icons";
  std::error_code ignored;
  const bool own = std::filesystem::is_directory(folder, ignored);
  return std::make_unique<GtkStatusItem>("quorin-symbolic", own ? folder : std::filesystem::path());
}
#else
std::unique_ptr<StatusItem> GtkPlatform::makeStatusItem(const std::string&) {
  return nullptr;  // built without the library
}
#endif

std::unique_ptr<PanelWindow> GtkPlatform::makePanelWindow(const PanelWindowOptions& options) {
  auto window = desktop_->makePanelWindow(options, defaults_);
  panelWindow_ = window.get();
  return window;
}

std::unique_ptr<WebView> GtkPlatform::makeWebView(const WebViewOptions& options) {
  auto view = std::make_unique<WebKitView>(options, environment_.count("QX_DEV_URL") > 0);
  webView_ = view.get();
  return view;
}

std::unique_ptr<AppPlatform> makePlatform() {
  spareMemoryOfThePage();
  std::unique_ptr<Desktop> desktop = makeDesktop(processEnvironment());
  if (!desktop) throw std::runtime_error("there is no display to show the panel on");
  return std::make_unique<GtkPlatform>(std::move(desktop));
}

}  // namespace quorin
