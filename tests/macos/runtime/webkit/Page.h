// What a page in the fake WKWebView does, as a test says it where there is no page engine, and how
// a test looks into the page where there is one. Main thread only.
#pragma once

#import <WebKit/WebKit.h>
#include <string>
#include <vector>

#include "tests/macos/runtime/webkit/PageEngine.h"

namespace quorin {

// The view that was made last, for tests that know adapters alone.
WKWebView* lastWebView();

// The page posts the body to the handler of that name; from the main frame or another one. False
// when no handler has the name.
bool pagePosts(WKWebView* view, NSString* handler, id body, bool fromMainFrame = true);

// The page wants to go elsewhere, in its own frame or in a new window. What the delegate answers.
bool pageMayGo(WKWebView* view, const std::string& url, bool inOwnFrame = true);

// The answer to a load is one that WebKit can show, or one that it cannot. What the delegate
// answers.
bool pageMayLoadAnswer(WKWebView* view, bool canShow);

// window.open(): whether a view was given for it.
bool pageOpensWindow(WKWebView* view);

// The page asks for the camera.
bool pageMayUseCamera(WKWebView* view);

// The page's process ends.
void endPageProcess(WKWebView* view);

// The load that is on its way will fail before or after the page has come.
enum class Failure { none, provisional, late };
void failNextLoad(WKWebView* view, Failure failure, const std::string& reason);

// With a page engine: the value of a script, and what the user does there ("click" or "key", and
// where or which as tests/macos/page_engine/Wire.h says).
void askPage(WKWebView* view, const std::string& script, PageEngine::Value value);
void userActsInPage(WKWebView* view, const std::string& word, const std::string& what);
int engineProcess(WKWebView* view);  // 0: none

// The scripts that were run in a page without an engine, in order, and what is in every page from
// its start.
std::vector<std::string> evaluatedScripts(WKWebView* view);
std::vector<std::string> startScripts(WKWebView* view);

// What was loaded last: "request URL, for N s", "file URL, readable URL" or "html TEXT".
std::string loaded(WKWebView* view);

}  // namespace quorin
