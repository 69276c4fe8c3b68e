// A web view: it asks and tells its delegates in WebKit's order, on the main thread, never inside
// the call that caused it. The page is one in a page engine where there is one (PageEngine.h), or
// else what a test says (Page.h).
#import <WebKit/WebKit.h>
#include <cmath>
#include <utility>

#include "tests/macos/page_engine/Wire.h"
#import "tests/macos/runtime/appkit/Shown.h"
#include "tests/macos/runtime/foundation/Loop.h"
#include "tests/macos/runtime/foundation/Raise.h"
#import "tests/macos/runtime/foundation/Strings.h"
#include "tests/macos/runtime/objc/Runtime.h"
#import "tests/macos/runtime/webkit/Content.h"
#include "tests/macos/runtime/webkit/Page.h"
#include "tests/macos/runtime/webkit/PageEngine.h"

using namespace quorin;

@implementation WKFrameInfo

- (instancetype)initWithMainFrame:(BOOL)main {
  _mainFrame = main;
  return self;
}
- (id)copyWithZone:(NSZone*)zone {
  return self;
}

@end

@implementation WKScriptMessage

- (instancetype)initWithBody:(id)body name:(NSString*)name mainFrame:(BOOL)mainFrame {
  _body = body;
  _name = name;
  _frameInfo = [[WKFrameInfo alloc] initWithMainFrame:mainFrame];
  return self;
}

@end

@implementation WKNavigationAction

- (instancetype)initWithURL:(NSURL*)url hasFrame:(BOOL)hasFrame {
  _request = [NSURLRequest requestWithURL:url
                              cachePolicy:NSURLRequestUseProtocolCachePolicy
                          timeoutInterval:60];
  if (hasFrame) _targetFrame = [[WKFrameInfo alloc] initWithMainFrame:YES];
  return self;
}

@end

@implementation WKNavigationResponse

- (instancetype)initShown:(BOOL)shown {
  _canShowMIMEType = shown;
  return self;
}

@end

@implementation WKWebView {
 @public
  std::string _loaded;
  std::string _address;
  std::vector<std::string> _evaluated;
  Failure _failure;
  std::string _reason;
  std::unique_ptr<PageEngine> _engine;
  std::string _window;  // where the engine shows the page
}
@synthesize navigationDelegate = _navigationDelegate, UIDelegate = _UIDelegate,
            inspectable = _inspectable;

static WKWebView* __weak last = nil;

- (instancetype)initWithFrame:(CGRect)frame configuration:(WKWebViewConfiguration*)configuration {
  self = [super initWithFrame:frame];
  _configuration = [configuration copy];
  last = self;
  if (!PageEngine::used().empty()) [self startEngine];
  return self;
}
- (void)startEngine {
  WKWebView* __weak view = self;
  _engine = std::make_unique<PageEngine>(PageEngine::used(),
                                         [view](const std::string& word, std::string text) {
                                           WKWebView* told = view;
                                           if (told) [told engine:word tells:std::move(text)];
                                         });
  WKUserContentController* content = _configuration.userContentController;
  for (const std::string& script : content.scripts) _engine->send("script", script);
  for (const auto& [name, handler] : content.handlers) _engine->send("handler", name);
}
- (void)setFrame:(NSRect)frame {
  [super setFrame:frame];
  [self tellWhereItIsShown];
}
- (void)windowChanged {
  [self tellWhereItIsShown];
}
- (void)tellWhereItIsShown {
  if (!_engine) return;
  NSWindow* window = windowOf(self);
  const std::string now = std::to_string(static_cast<int>(self.frame.size.width)) + " " +
                          std::to_string(static_cast<int>(self.frame.size.height)) +
                          (window.visible ? " 1" : " 0") + (window.keyWindow ? " 1" : " 0");
  if (std::exchange(_window, now) != now) _engine->send("window", now);
}
- (WKNavigation*)loadRequest:(NSURLRequest*)request {
  if (_engine)
    _engine->send("load",
                  std::to_string(secondsOf(request)) + " " + read(request.URL.absoluteString));
  return [self load:"request " + read(request.URL.absoluteString) + ", for " +
                    std::to_string(std::lround(secondsOf(request))) + " s"
                 at:request.URL];
}
// "readAccessURL: the URL of a file or directory"; the page must be inside.
- (WKNavigation*)loadFileURL:(NSURL*)url allowingReadAccessToURL:(NSURL*)readable {
  if (!url.fileURL || !read(url.path).starts_with(read(readable.path)))
    raise("NSInvalidArgumentException", "the file is outside of what may be read");
  if (_engine) _engine->send("load", "0 " + read(url.absoluteString));
  return
      [self load:"file " + read(url.absoluteString) + ", readable " + read(readable.absoluteString)
              at:url];
}
- (WKNavigation*)loadHTMLString:(NSString*)text baseURL:(NSURL*)base {
  if (!text) raise("NSInvalidArgumentException", "loadHTMLString: of nil");
  if (_engine) _engine->send("html", read(text));
  return [self load:"html " + read(text) at:[NSURL URLWithString:@"about:blank"]];
}
- (WKNavigation*)reload {
  if (_engine) _engine->send("reload");
  return [self load:_loaded at:[NSURL URLWithString:made(_address)]];
}
- (WKNavigation*)load:(const std::string&)what at:(NSURL*)url {
  onMainThread("a load");
  _loaded = what;
  _address = read(url.absoluteString);
  if (_engine) return nil;
  WKWebView* __weak view = self;
  const std::string address = _address;
  Loop::main()->perform({Loop::commonModes}, [=] {
    WKWebView* loading = view;
    if (loading && pageMayGo(loading, address)) [loading tellOfLoad];
  });
  return nil;
}
// "didStart" comes before "didFinish" or one of the failures, and only one of these comes.
- (void)tellOfLoad {
  id<WKNavigationDelegate> delegate = self.navigationDelegate;
  const Failure failure = std::exchange(_failure, Failure::none);
  NSError* error = [NSError errorWithDomain:NSCocoaErrorDomain
                                       code:1
                                   userInfo:@{NSLocalizedDescriptionKey : made(_reason)}];
  [delegate webView:self didStartProvisionalNavigation:nil];
  if (failure == Failure::provisional) {
    [delegate webView:self didFailProvisionalNavigation:nil withError:error];
  } else if (failure == Failure::late) {
    [delegate webView:self didFailNavigation:nil withError:error];
  } else {
    [delegate webView:self didFinishNavigation:nil];
  }
}
- (void)evaluateJavaScript:(NSString*)script completionHandler:(void (^)(id, NSError*))completion {
  onMainThread("evaluateJavaScript:");
  if (!script) raise("NSInvalidArgumentException", "evaluateJavaScript: of nil");
  if (!_engine) {
    _evaluated.push_back(read(script));
    return;
  }
  if (completion) raise("NSInvalidArgumentException", "this fake has no values of scripts");
  _engine->send("run", read(script));
}
- (void)engine:(const std::string&)word tells:(std::string)text {
  id<WKNavigationDelegate> delegate = self.navigationDelegate;
  NSError* error = [NSError errorWithDomain:NSCocoaErrorDomain
                                       code:1
                                   userInfo:@{NSLocalizedDescriptionKey : made(text)}];
  if (word == "started") {
    [delegate webView:self didStartProvisionalNavigation:nil];
  } else if (word == "finished") {
    [delegate webView:self didFinishNavigation:nil];
  } else if (word == "failed") {
    [delegate webView:self didFailProvisionalNavigation:nil withError:error];
  } else if (word == "cut") {
    [delegate webView:self didFailNavigation:nil withError:error];
  } else if (word == "gone") {
    endPageProcess(self);
  } else if (word == "message") {
    [self pagePosts:bodyOfJSON(text)];
  } else if (word == "window") {
    if (pageOpensWindow(self)) objc::breach("a window that the page opened has a view");
  } else {
    [self engine:word asks:std::move(text)];
  }
}
- (void)engine:(const std::string&)word asks:(std::string)text {
  const std::string number = wire::takeWord(text);
  bool allowed = false;
  if (word == "go") {
    const bool hasFrame = wire::takeWord(text) == "1";
    allowed = pageMayGo(self, text, hasFrame);
  } else if (word == "shown") {
    allowed = pageMayLoadAnswer(self, text == "1");
  } else if (word == "device") {
    allowed = pageMayUseCamera(self);
  } else {
    objc::breach("the page engine says %s", word.c_str());
  }
  _engine->send("answer", number + (allowed ? " 1" : " 0"));
}
// The engine knows one handler.
- (void)pagePosts:(id)body {
  const auto& handlers = _configuration.userContentController.handlers;
  if (!handlers.empty()) ::quorin::pagePosts(self, made(handlers.begin()->first), body);
}

@end

namespace quorin {

WKWebView* lastWebView() {
  return last;
}

bool pagePosts(WKWebView* view, NSString* handler, id body, bool fromMainFrame) {
  WKUserContentController* content = view.configuration.userContentController;
  const auto& all = content.handlers;
  const auto found = all.find(read(handler));
  if (found == all.end()) return false;
  WKScriptMessage* message = [[WKScriptMessage alloc] initWithBody:body
                                                              name:handler
                                                         mainFrame:fromMainFrame];
  [found->second userContentController:content didReceiveScriptMessage:message];
  return true;
}

// WebKit raises when a decision handler is not called, and when it is called twice.
bool pageMayGo(WKWebView* view, const std::string& url, bool inOwnFrame) {
  __block int calls = 0;
  __block bool allowed = false;
  id<WKNavigationDelegate> delegate = view.navigationDelegate;
  if (!delegate) return true;
  [delegate webView:view
      decidePolicyForNavigationAction:[[WKNavigationAction alloc]
                                          initWithURL:[NSURL URLWithString:made(url)]
                                             hasFrame:inOwnFrame]
                      decisionHandler:^(WKNavigationActionPolicy policy) {
                        ++calls;
                        allowed = policy == WKNavigationActionPolicyAllow;
                      }];
  if (calls != 1) objc::breach("a decision handler was called %d times", calls);
  return allowed;
}

bool pageMayLoadAnswer(WKWebView* view, bool canShow) {
  __block int calls = 0;
  __block bool allowed = false;
  id<WKNavigationDelegate> delegate = view.navigationDelegate;
  if (!delegate) return canShow;
  [delegate webView:view
      decidePolicyForNavigationResponse:[[WKNavigationResponse alloc] initShown:canShow]
                        decisionHandler:^(WKNavigationResponsePolicy policy) {
                          ++calls;
                          allowed = policy != WKNavigationResponsePolicyCancel;
                        }];
  if (calls != 1) objc::breach("a decision handler was called %d times", calls);
  return allowed;
}

bool pageOpensWindow(WKWebView* view) {
  return [view.UIDelegate webView:view
             createWebViewWithConfiguration:view.configuration
                        forNavigationAction:[[WKNavigationAction alloc] initWithURL:nil hasFrame:NO]
                             windowFeatures:nil] != nil;
}

bool pageMayUseCamera(WKWebView* view) {
  __block bool allowed = false;
  [view.UIDelegate webView:view
      requestMediaCapturePermissionForOrigin:nil
                            initiatedByFrame:nil
                                        type:WKMediaCaptureTypeCamera
                             decisionHandler:^(WKPermissionDecision decision) {
                               allowed = decision != WKPermissionDecisionDeny;
                             }];
  return allowed;
}

void endPageProcess(WKWebView* view) {
  [view.navigationDelegate webViewWebContentProcessDidTerminate:view];
}

void failNextLoad(WKWebView* view, Failure failure, const std::string& reason) {
  view->_failure = failure;
  view->_reason = reason;
}

void askPage(WKWebView* view, const std::string& script, PageEngine::Value value) {
  if (!view || !view->_engine) return value(false, "there is no page");
  view->_engine->ask(script, std::move(value));
}

void userActsInPage(WKWebView* view, const std::string& word, const std::string& what) {
  if (view && view->_engine) view->_engine->send(word, what);
}

int engineProcess(WKWebView* view) {
  return view && view->_engine ? view->_engine->process() : 0;
}

std::vector<std::string> evaluatedScripts(WKWebView* view) {
  return view->_evaluated;
}

std::vector<std::string> startScripts(WKWebView* view) {
  return view.configuration.userContentController.scripts;
}

std::string loaded(WKWebView* view) {
  return view->_loaded;
}

}  // namespace quorin
