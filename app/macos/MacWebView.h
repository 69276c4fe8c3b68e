// MacWebView: the page in a WKWebView. Main thread only.
#pragma once

#import <WebKit/WebKit.h>

#include "app/shell/ports/WebView.h"

NS_ASSUME_NONNULL_BEGIN

@class QXPageObserver;

namespace quorin {

class MacWebView : public WebView {
 public:
  // `inspectable` lets Safari's inspector look at the page.
  MacWebView(const WebViewOptions& options, bool inspectable);
  ~MacWebView() override;
  MacWebView(const MacWebView&) = delete;
  MacWebView& operator=(const MacWebView&) = delete;

  void setDelegate(WebViewDelegate* _Nullable delegate) override;
  bool loadURL(const std::string& url, std::chrono::seconds timeout) override;
  void loadFile(const std::filesystem::path& file, const std::filesystem::path& readable) override;
  void loadHTML(const std::string& html) override;
  void reload() override;
  void evaluate(const std::string& script) override;

  NSView* view() const { return view_; }

 private:
  NSString* handlerName_;
  QXPageObserver* observer_;
  WKWebView* view_;
};

}  // namespace quorin

NS_ASSUME_NONNULL_END
