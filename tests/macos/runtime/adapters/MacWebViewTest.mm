// The page's adapter over a web view without a page engine: what is asked of WebKit and what its
// delegate answers. What pages really do is for WebViewContract, on a Mac and beside WebKitGTK.
#import "app/macos/MacWebView.h"
#include "kit/value/Marshal.h"
#include "tests/app/contract/ContractWorld.h"
#include "tests/app/contract/WebViewRecorder.h"
#include "tests/macos/runtime/webkit/Page.h"

namespace quorin {
namespace {

using Texts = std::vector<std::string>;
using testing::IsEmpty;

class MacWebViewTest : public contract::PortContract {
 protected:
  using Journal = std::vector<std::string>;

  MacWebViewTest() { view.setDelegate(&recorder); }

  void load() {
    view.loadFile("/tmp/web/a b.html", "/tmp/web");
    ASSERT_TRUE(waitUntil([&] { return recorder.calls == Journal{"start", "finish"}; }));
    recorder.calls.clear();
  }

  WebViewRecorder recorder;
  MacWebView view{{"qx", "window.__qxApp = 1"}, true};
  WKWebView* const page = lastWebView();
};

TEST_F(MacWebViewTest, LoadsAFileWithItsFolder) {
  load();
  EXPECT_EQ(loaded(page), "file file:///tmp/web/a%20b.html, readable file:///tmp/web");
  EXPECT_EQ(startScripts(page), Texts{"window.__qxApp = 1"});
}

TEST_F(MacWebViewTest, LoadsFromThisMachineAlone) {
  EXPECT_FALSE(view.loadURL("http://192.0.2.1/", std::chrono::seconds(1)));
  EXPECT_TRUE(view.loadURL("http://127.0.0.1:5173/", std::chrono::seconds(1)));
  EXPECT_EQ(loaded(page), "request http://127.0.0.1:5173/, for 1 s");
  EXPECT_TRUE(waitUntil([&] { return recorder.calls == Journal{"start", "finish"}; }));
}

TEST_F(MacWebViewTest, TellsEachKindOfFailureWithItsReason) {
  failNextLoad(page, Failure::provisional, "no server");
  view.loadHTML("<p>");
  EXPECT_TRUE(waitUntil([&] { return recorder.calls.size() == 2; }));
  failNextLoad(page, Failure::late, "cut");
  view.reload();
  EXPECT_TRUE(waitUntil([&] { return recorder.calls.size() == 4; }));
  EXPECT_EQ(recorder.calls,
            (Texts{"start", "provisional failure: no server", "start", "failure: cut"}));
}

TEST_F(MacWebViewTest, TakesMessagesOfTheMainFrame) {
  NSDictionary* body = @{
    @"id" : [NSNumber numberWithInt:7],
    @"args" :
        @[ [NSNumber numberWithBool:YES], [NSNull null], @"é", [NSNumber numberWithDouble:1.5] ]
  };
  EXPECT_TRUE(pagePosts(page, @"qx", body));
  EXPECT_TRUE(pagePosts(page, @"qx", @"from a frame", false));
  EXPECT_FALSE(pagePosts(page, @"other", body));
  ASSERT_EQ(recorder.bodies.size(), 1u);
  EXPECT_EQ(Marshal::encode(recorder.bodies[0]), R"({"args":[true,null,"é",1.5],"id":7})");
}

TEST_F(MacWebViewTest, GoesNowhereElse) {
  load();
  EXPECT_TRUE(pageMayGo(page, "file:///tmp/web/a%20b.html#there"));
  EXPECT_THAT(recorder.calls, IsEmpty());
  EXPECT_FALSE(pageMayGo(page, "https://example.org/"));
  EXPECT_FALSE(pageMayGo(page, "file:///tmp/web/other.html"));
  EXPECT_FALSE(pageMayGo(page, "file:///tmp/web/a%20b.html", false));
  EXPECT_FALSE(pageOpensWindow(page));
  EXPECT_FALSE(pageMayLoadAnswer(page, false));
  EXPECT_FALSE(pageMayUseCamera(page));
  EXPECT_EQ(recorder.calls, (Texts{"refused: navigation", "refused: navigation", "refused: window",
                                   "refused: window", "refused: download", "refused: permission"}));
}

TEST_F(MacWebViewTest, TellsThatThePagesProcessHasEnded) {
  endPageProcess(page);
  EXPECT_EQ(recorder.calls, Texts{"terminated"});
}

TEST_F(MacWebViewTest, RunsScriptsInOrder) {
  view.evaluate("one()");
  view.evaluate("two('é')");
  EXPECT_EQ(evaluatedScripts(page), (Texts{"one()", "two('é')"}));
}

TEST(MacWebViewLife, TellsNobodyAfterItsEnd) {
  WebViewRecorder recorder;
  WKWebView* page = nil;
  id<WKNavigationDelegate> observer = nil;
  {
    MacWebView view({"qx", ""}, false);
    view.setDelegate(&recorder);
    page = lastWebView();
    observer = page.navigationDelegate;
    view.loadHTML("<p>");
  }
  [observer webViewWebContentProcessDidTerminate:page];
  EXPECT_FALSE(pagePosts(page, @"qx", @"late"));
  EXPECT_EQ(page.navigationDelegate, nil);
  EXPECT_EQ(page.UIDelegate, nil);
  for (int i = 0; i < 5; ++i) contract::turn();
  EXPECT_THAT(recorder.calls, IsEmpty());
}

}  // namespace
}  // namespace quorin
