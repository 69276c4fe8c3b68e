// WebViewRecorder: everything that a web view tells its delegate, in order.
#pragma once

#include <string>
#include <vector>

#include "app/shell/ports/WebView.h"

namespace quorin {

class WebViewRecorder : public WebViewDelegate {
 public:
  void webViewDidReceiveMessage(const JSONValue& body) override { bodies.push_back(body); }
  void webViewDidStartProvisionalNavigation() override { calls.push_back("start"); }
  void webViewDidFinishNavigation() override { calls.push_back("finish"); }
  void webViewDidFailProvisionalNavigation(const std::string& text) override {
    calls.push_back("provisional failure: " + text);
  }
  void webViewDidFailNavigation(const std::string& text) override {
    calls.push_back("failure: " + text);
  }
  void webViewDidRefuse(const std::string& what) override { calls.push_back("refused: " + what); }
  void webViewWebProcessDidTerminate() override { calls.push_back("terminated"); }

  std::vector<JSONValue> bodies;
  std::vector<std::string> calls;
};

}  // namespace quorin
