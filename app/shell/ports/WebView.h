// WebView: shows one page, runs scripts in it and takes its messages. Main thread only.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>

#include "kit/value/JSONValue.h"

namespace quorin {

struct WebViewOptions {
  std::string messageHandlerName;  // the page posts to window.webkit.messageHandlers.<name>
  std::string startScript;         // runs at the start of every document, in the main frame
};

class WebViewDelegate {
 public:
  virtual ~WebViewDelegate() = default;

  // The body of a message as Marshal::fromAny gives it: of the platform's object tree.
  virtual void webViewDidReceiveMessage(const JSONValue& body) = 0;

  virtual void webViewDidStartProvisionalNavigation() = 0;
  virtual void webViewDidFinishNavigation() = 0;  // never after a failure of the same navigation
  virtual void webViewDidFailProvisionalNavigation(const std::string& description) = 0;
  virtual void webViewDidFailNavigation(const std::string& description) = 0;

  // The page wanted something that it may not have: "navigation", "window", "download" or
  // "permission".
  virtual void webViewDidRefuse(const std::string& what) = 0;

  // The process that runs the page is gone; nothing is shown until the page is loaded again.
  virtual void webViewWebProcessDidTerminate() = 0;
};

// It shows the page that was loaded last and nothing else: every navigation elsewhere is refused,
// in frames too, and so are windows, downloads, and what pages ask a user's permission for.
class WebView {
 public:
  virtual ~WebView() = default;

  virtual void setDelegate(WebViewDelegate* delegate) = 0;  // none while null

  // False when the text is not the URL of a file or of a server on this machine
  // (PageAddress::onThisMachine); then nothing is loaded.
  virtual bool loadURL(const std::string& url, std::chrono::seconds timeout) = 0;

  // Loads a file; the page may read the files of that folder.
  virtual void loadFile(const std::filesystem::path& file,
                        const std::filesystem::path& readable) = 0;

  // Inline, with no base URL.
  virtual void loadHTML(const std::string& html) = 0;

  virtual void reload() = 0;

  // Runs a script in the page. Its result and its errors are dropped.
  virtual void evaluate(const std::string& script) = 0;
};

}  // namespace quorin
