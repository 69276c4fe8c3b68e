#import "app/macos/MacWebView.h"

#include <utility>

#include "app/macos/Edge.h"
#import "app/macos/ObjectValue.h"
#import "app/macos/Text.h"
#include "app/shell/PageAddress.h"
#include "kit/value/Marshal.h"

// What the web view calls. The content controller keeps its message handler for as long as it lives
// itself, so that this object must keep nothing: it knows the receiver until that goes.
@interface QXPageObserver : NSObject <WKScriptMessageHandler, WKNavigationDelegate, WKUIDelegate>
@property(nonatomic, assign, nullable) quorin::WebViewDelegate* receiver;
@property(nonatomic, assign) std::string page;  // the address of what was loaded last
@end

namespace {

template <typename Call>
void tell(QXPageObserver* observer, const char* what, const Call& call) {
  quorin::WebViewDelegate* receiver = observer.receiver;
  if (receiver) quorin::atEdge(what, [&] { call(*receiver); });
}

void tellRefused(QXPageObserver* observer, const char* what) {
  tell(observer, "refusal", [&](auto& receiver) { receiver.webViewDidRefuse(what); });
}

bool isOwnPage(QXPageObserver* observer, NSURL* address) {
  return quorin::PageAddress::isSamePage(quorin::fromNSString(address.absoluteString),
                                         observer.page);
}

}  // namespace

@implementation QXPageObserver

- (void)userContentController:(WKUserContentController*)userContentController
      didReceiveScriptMessage:(WKScriptMessage*)message {
  if (!message.frameInfo.mainFrame) return;
  id body = message.body;
  tell(self, "message", [&](auto& receiver) {
    receiver.webViewDidReceiveMessage(quorin::Marshal::fromAny(quorin::ObjectValue(body)));
  });
}

// Redirections and frames are asked about here, too; a new window has no frame yet.
- (void)webView:(WKWebView*)webView
    decidePolicyForNavigationAction:(WKNavigationAction*)navigationAction
                    decisionHandler:(void (^)(WKNavigationActionPolicy))decisionHandler {
  const bool own = navigationAction.targetFrame && isOwnPage(self, navigationAction.request.URL);
  decisionHandler(own ? WKNavigationActionPolicyAllow : WKNavigationActionPolicyCancel);
  if (!own) tellRefused(self, navigationAction.targetFrame ? "navigation" : "window");
}

// A page that WebKit cannot show would be fetched as a file.
- (void)webView:(WKWebView*)webView
    decidePolicyForNavigationResponse:(WKNavigationResponse*)navigationResponse
                      decisionHandler:(void (^)(WKNavigationResponsePolicy))decisionHandler {
  const bool shown = navigationResponse.canShowMIMEType;
  decisionHandler(shown ? WKNavigationResponsePolicyAllow : WKNavigationResponsePolicyCancel);
  if (!shown) tellRefused(self, "download");
}

- (nullable WKWebView*)webView:(WKWebView*)webView
    createWebViewWithConfiguration:(WKWebViewConfiguration*)configuration
               forNavigationAction:(WKNavigationAction*)navigationAction
                    windowFeatures:(WKWindowFeatures*)windowFeatures {
  tellRefused(self, "window");
  return nil;
}

- (void)webView:(WKWebView*)webView
    requestMediaCapturePermissionForOrigin:(WKSecurityOrigin*)origin
                          initiatedByFrame:(WKFrameInfo*)frame
                                      type:(WKMediaCaptureType)type
                           decisionHandler:(void (^)(WKPermissionDecision))decisionHandler {
  decisionHandler(WKPermissionDecisionDeny);
  tellRefused(self, "permission");
}

- (void)webView:(WKWebView*)webView didStartProvisionalNavigation:(WKNavigation*)navigation {
  tell(self, "navigation", [](auto& receiver) { receiver.webViewDidStartProvisionalNavigation(); });
}

- (void)webView:(WKWebView*)webView didFinishNavigation:(WKNavigation*)navigation {
  tell(self, "navigation", [](auto& receiver) { receiver.webViewDidFinishNavigation(); });
}

- (void)webView:(WKWebView*)webView
    didFailProvisionalNavigation:(WKNavigation*)navigation
                       withError:(NSError*)error {
  tell(self, "navigation", [&](auto& receiver) {
    receiver.webViewDidFailProvisionalNavigation(quorin::fromNSString(error.localizedDescription));
  });
}

- (void)webView:(WKWebView*)webView
    didFailNavigation:(WKNavigation*)navigation
            withError:(NSError*)error {
  tell(self, "navigation", [&](auto& receiver) {
    receiver.webViewDidFailNavigation(quorin::fromNSString(error.localizedDescription));
  });
}

- (void)webViewWebContentProcessDidTerminate:(WKWebView*)webView {
  tell(self, "web process", [](auto& receiver) { receiver.webViewWebProcessDidTerminate(); });
}

@end

namespace quorin {
namespace {

WKUserScript* startScript(const std::string& source) {
  return [[WKUserScript alloc] initWithSource:toNSString(source)
                                injectionTime:WKUserScriptInjectionTimeAtDocumentStart
                             forMainFrameOnly:YES];
}

WKWebView* makeView(const WebViewOptions& options, QXPageObserver* observer, NSString* name) {
  WKUserContentController* content = [[WKUserContentController alloc] init];
  [content addUserScript:startScript(options.startScript)];
  [content addScriptMessageHandler:observer name:name];
  WKWebViewConfiguration* configuration = [[WKWebViewConfiguration alloc] init];
  configuration.userContentController = content;
  return [[WKWebView alloc] initWithFrame:NSMakeRect(0, 0, 0, 0) configuration:configuration];
}

}  // namespace

MacWebView::MacWebView(const WebViewOptions& options, bool inspectable)
    : handlerName_(toNSString(options.messageHandlerName)),
      observer_([[QXPageObserver alloc] init]),
      view_(makeView(options, observer_, handlerName_)) {
  view_.navigationDelegate = observer_;
  view_.UIDelegate = observer_;
  if (@available(macOS 13.3, *)) view_.inspectable = inspectable;
}

MacWebView::~MacWebView() {
  observer_.receiver = nullptr;
  view_.navigationDelegate = nil;
  view_.UIDelegate = nil;
  [view_.configuration.userContentController removeScriptMessageHandlerForName:handlerName_];
}

void MacWebView::setDelegate(WebViewDelegate* delegate) {
  observer_.receiver = delegate;
}

bool MacWebView::loadURL(const std::string& url, std::chrono::seconds timeout) {
  NSURL* target = [NSURL URLWithString:toNSString(url)];
  if (!target || !PageAddress::onThisMachine(url)) return false;
  observer_.page = url;
  const NSTimeInterval seconds = std::chrono::duration<double>(timeout).count();
  [view_ loadRequest:[NSURLRequest requestWithURL:target
                                      cachePolicy:NSURLRequestUseProtocolCachePolicy
                                  timeoutInterval:seconds]];
  return true;
}

void MacWebView::loadFile(const std::filesystem::path& file,
                          const std::filesystem::path& readable) {
  observer_.page = fromNSString(toFileURL(file).absoluteString);
  [view_ loadFileURL:toFileURL(file) allowingReadAccessToURL:toFileURL(readable)];
}

void MacWebView::loadHTML(const std::string& html) {
  observer_.page = PageAddress::inlinePage;
  [view_ loadHTMLString:toNSString(html) baseURL:nil];
}

void MacWebView::reload() {
  [view_ reload];
}

void MacWebView::evaluate(const std::string& script) {
  [view_ evaluateJavaScript:toNSString(script) completionHandler:nil];
}

}  // namespace quorin
