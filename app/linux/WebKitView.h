// WebKitView: the web view port over WebKitGTK. The page is kept in memory only: no cache, no
// cookies, no storage on disk.
#pragma once

#include <functional>
#include <webkit2/webkit2.h>

#include "app/linux/GLibHandles.h"
#include "app/shell/ports/WebView.h"

namespace quorin {

class WebKitView : public WebView {
 public:
  // With `inspectable`, the page's inspector and context menu are there and its console goes to
  // standard output.
  WebKitView(const WebViewOptions& options, bool inspectable);
  ~WebKitView() override;
  WebKitView(const WebKitView&) = delete;
  WebKitView& operator=(const WebKitView&) = delete;

  void setDelegate(WebViewDelegate* delegate) override { delegate_ = delegate; }
  bool loadURL(const std::string& url, std::chrono::seconds timeout) override;
  void loadFile(const std::filesystem::path& file, const std::filesystem::path& readable) override;
  void loadHTML(const std::string& html) override;
  void reload() override;
  void evaluate(const std::string& script) override;

  // Ends the page's process at once: one that hangs would go on for ten seconds after us. Nothing
  // is told to the delegate any more.
  void endProcess();

  GtkWidget* widget() const { return GTK_WIDGET(view_.get()); }

  // For inspection from outside: the script's result as JSON text, or the error's text.
  using Result = std::function<void(bool ok, const std::string& text)>;
  void evaluate(const std::string& script, Result result);

 private:
  void disconnect();
  static void loadChanged(WebKitWebView*, WebKitLoadEvent event, gpointer self);
  static gboolean loadFailed(WebKitWebView*, WebKitLoadEvent event, char* uri, GError* error,
                             gpointer self);
  static void processTerminated(WebKitWebView*, WebKitWebProcessTerminationReason, gpointer self);
  static void messageReceived(WebKitUserContentManager*, WebKitJavascriptResult* message,
                              gpointer self);
  static gboolean timedOut(gpointer self);
  static gboolean decidePolicy(WebKitWebView*, WebKitPolicyDecision*, WebKitPolicyDecisionType,
                               gpointer self);
  static gboolean permissionRequested(WebKitWebView*, WebKitPermissionRequest*, gpointer self);
  static void downloadStarted(WebKitWebContext*, WebKitDownload*, gpointer self);
  gboolean refuse(const char* what);

  WebViewDelegate* delegate_ = nullptr;
  GObjectPtr<WebKitWebContext> context_;
  GObjectPtr<WebKitUserContentManager> content_;
  GObjectPtr<WebKitWebView> view_;
  std::string page_;       // the address of what was loaded last
  bool failed_ = false;    // the load under way has failed
  bool timedOut_ = false;  // because it took too long
  std::chrono::seconds timeout_{0};
  GSourceHandle timeoutSource_;
};

}  // namespace quorin
