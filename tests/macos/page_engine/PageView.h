// PageView: one page in WebKitGTK, in a window of its own on the display, asked and asking by the
// words of Wire.h. It decides nothing: what WKWebView's delegate decides is asked of the other
// side. Main thread only.
#pragma once

#include <map>
#include <string>
#include <webkit2/webkit2.h>

#include "app/linux/GLibHandles.h"

namespace quorin {

class PageView {
 public:
  explicit PageView(int socket);

  void told(const std::string& word, std::string text);

 private:
  void tell(const std::string& word, const std::string& text = {}) const;
  std::string ask(const char* word, GObject* about, const std::string& text);
  void answered(std::string text);
  void load(std::string text);
  void evaluate(std::string text);
  void show(const std::string& text);
  void takeFocus(bool focused);
  void click(const std::string& text);
  void key(const std::string& text);
  void refuseWhatNobodyAsks();

  static void loadChanged(WebKitWebView*, WebKitLoadEvent event, gpointer self);
  static gboolean loadFailed(WebKitWebView*, WebKitLoadEvent event, char*, GError* error,
                             gpointer self);
  static gboolean decide(WebKitWebView*, WebKitPolicyDecision* decision,
                         WebKitPolicyDecisionType type, gpointer self);
  static gboolean permission(WebKitWebView*, WebKitPermissionRequest* request, gpointer self);
  static void message(WebKitUserContentManager*, WebKitJavascriptResult* body, gpointer self);

  const int socket_;
  GObjectPtr<WebKitUserContentManager> content_;
  WebKitWebView* view_ = nullptr;  // the window's
  GtkWidget* window_ = nullptr;
  int asked_ = 0;
  std::map<std::string, GObjectPtr<GObject>> open_;  // questions, by their numbers
  guint seconds_ = 0;
  GSourceHandle timeout_;
  bool failed_ = false, timedOut_ = false, focused_ = false;
};

}  // namespace quorin
