#include <arpa/inet.h>
#include <fstream>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "app/linux/WebKitView.h"
#include "kit/value/Marshal.h"
#include "tests/app/linux/GtkFixture.h"

namespace quorin {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

// Everything that the view tells, in order.
class Recorder : public WebViewDelegate {
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
  void webViewWebProcessDidTerminate() override { calls.push_back("terminated"); }

  std::vector<JSONValue> bodies;
  std::vector<std::string> calls;
};

// A port of this machine that nobody listens on, unless the test does.
class LocalPort {
 public:
  LocalPort() {
    address_.sin_family = AF_INET;
    address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address_;
    auto* address = reinterpret_cast<sockaddr*>(&address_);
    if (bind(descriptor_, address, length) != 0 || getsockname(descriptor_, address, &length) != 0)
      throw std::runtime_error("no free port");
  }
  ~LocalPort() { close(descriptor_); }
  LocalPort(const LocalPort&) = delete;
  LocalPort& operator=(const LocalPort&) = delete;

  int descriptor() const { return descriptor_; }
  std::string url() const {
    return "http://127.0.0.1:" + std::to_string(ntohs(address_.sin_port)) + "/";
  }

 private:
  const int descriptor_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address_{};
};

class WebKitViewTest : public GtkFixture {
 protected:
  WebKitViewTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "quorin-view-XXXXXX").string();
    folder = mkdtemp(pattern.data());
    view.setDelegate(&recorder);
    // As in the panel: a view in a window that is not shown.
    gtk_container_add(GTK_CONTAINER(window), view.widget());
  }
  ~WebKitViewTest() override {
    gtk_container_remove(GTK_CONTAINER(window), view.widget());
    gtk_widget_destroy(window);
    std::filesystem::remove_all(folder);
  }

  void load(const std::string& html) {
    const std::filesystem::path file = folder / "index.html";
    std::ofstream(file) << "<!doctype html><meta charset=utf-8>" << html;
    recorder.calls.clear();
    view.loadFile(file, folder);
    ASSERT_TRUE(waitUntil([&] { return recorder.calls == Journal{"start", "finish"}; }));
  }

  // The script's value as JSON text, or the error.
  std::string valueOf(const std::string& script) {
    std::optional<std::string> told;
    view.evaluate(script, [&](bool, const std::string& text) { told = text; });
    waitUntil([&] { return told.has_value(); });
    return told.value_or("nothing");
  }

  bool receives(std::size_t count) {
    return waitUntil([&] { return recorder.bodies.size() >= count; });
  }

  using Journal = std::vector<std::string>;
  std::filesystem::path folder;
  Recorder recorder;
  GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  WebKitView view{{"qx", "window.__qxApp = \"Calc\";"}, false};
};

TEST_F(WebKitViewTest, TellsTheStartAndTheEndOfALoad) {
  load("<p>hello");
  EXPECT_EQ(valueOf("document.querySelector('p').textContent"), "\"hello\"");
  EXPECT_EQ(valueOf("window.__qxApp"), "\"Calc\"") << "the start script has run";
}

TEST_F(WebKitViewTest, RunsTheStartScriptBeforeThePagesOwn) {
  load("<script>window.seen = window.__qxApp</script>");
  EXPECT_EQ(valueOf("window.seen"), "\"Calc\"");
}

TEST_F(WebKitViewTest, ReadsFilesWhosePathNeedsEscaping) {
  const std::filesystem::path odd = folder / "a b#c%d é";
  std::filesystem::create_directories(odd);
  std::ofstream(odd / "index.html") << "<p>odd";
  view.loadFile(odd / "index.html", odd);
  ASSERT_TRUE(waitUntil([&] { return recorder.calls == Journal{"start", "finish"}; }));
  EXPECT_EQ(valueOf("document.querySelector('p').textContent"), "\"odd\"");
}

TEST_F(WebKitViewTest, TellsAMissingFileAsAProvisionalFailureOnly) {
  view.loadFile(folder / "nowhere.html", folder);
  ASSERT_TRUE(waitUntil([&] { return recorder.calls.size() >= 2; }));
  runFor(200ms);
  EXPECT_THAT(recorder.calls, ElementsAre("start", StartsWith("provisional failure: ")));
}

TEST_F(WebKitViewTest, TellsAServerThatIsNotThereAsAProvisionalFailureOnly) {
  ASSERT_TRUE(view.loadURL(LocalPort().url(), 60s));
  ASSERT_TRUE(waitUntil([&] { return recorder.calls.size() >= 2; }));
  runFor(200ms);
  EXPECT_THAT(recorder.calls, ElementsAre("start", StartsWith("provisional failure: ")));
}

TEST_F(WebKitViewTest, RefusesTextThatIsNoURL) {
  EXPECT_FALSE(view.loadURL("not a url", 60s));
  EXPECT_FALSE(view.loadURL("", 60s));
  runFor(100ms);
  EXPECT_THAT(recorder.calls, IsEmpty());
}

TEST_F(WebKitViewTest, GivesUpAServerThatDoesNotAnswer) {
  // Accepts connections, as the system does for it, and never answers them.
  const LocalPort port;
  ASSERT_EQ(listen(port.descriptor(), 4), 0);
  ASSERT_TRUE(view.loadURL(port.url(), 1s));
  ASSERT_TRUE(waitUntil([&] { return recorder.calls.size() >= 2; }));
  EXPECT_THAT(recorder.calls, ElementsAre("start", "provisional failure: The request timed out."));
}

TEST_F(WebKitViewTest, ShowsInlineText) {
  view.loadHTML("<h1>web bundle missing</h1>");
  ASSERT_TRUE(waitUntil([&] { return recorder.calls == Journal{"start", "finish"}; }));
  EXPECT_EQ(valueOf("document.querySelector('h1').textContent"), "\"web bundle missing\"");
}

TEST_F(WebKitViewTest, DeliversObjectBodiesAsValues) {
  load("");
  view.evaluate(R"(window.webkit.messageHandlers.qx.postMessage(
      {id: 7, verb: "readCell", args: [1.5, "é", true, null, {a: [[]]}]}))");
  ASSERT_TRUE(receives(1));
  EXPECT_EQ(Marshal::encode(recorder.bodies[0]),
            R"({"args":[1.5,"é",true,null,{"a":[[]]}],"id":7,"verb":"readCell"})");
}

TEST_F(WebKitViewTest, DeliversBodiesOfEveryOtherShape) {
  load("");
  view.evaluate(R"(const post = (body) => window.webkit.messageHandlers.qx.postMessage(body);
      for (const body of ["text", 7, true, null, undefined, [1, 2], new Date(0), NaN, {},
                          new Map([[1, 2]]), /x/]) post(body);
      const ring = {id: 1}; ring.self = ring; post(ring);
      let deep = []; for (let i = 0; i < 5000; ++i) deep = [deep]; post({id: 1, args: deep});
      try { post(() => 1); } catch (error) { }
      post("last");)");
  ASSERT_TRUE(waitUntil(
      [&] { return !recorder.bodies.empty() && recorder.bodies.back() == JSONValue("last"); }));
  EXPECT_EQ(recorder.bodies[0], JSONValue("text"));
  for (const JSONValue& body : recorder.bodies) {
    EXPECT_TRUE(!body.member("id")) << "nothing that could be answered";
  }
}

TEST_F(WebKitViewTest, TakesTenMegabytes) {
  load("");
  view.evaluate(R"(window.webkit.messageHandlers.qx.postMessage(
      {id: 1, verb: "log", args: ["x".repeat(10 * 1024 * 1024)]}))");
  ASSERT_TRUE(receives(1));
  const JSONValue* args = recorder.bodies[0].member("args");
  ASSERT_TRUE(args && args->array());
  EXPECT_EQ(args->array()->front().string()->size(), 10u * 1024 * 1024);
}

TEST_F(WebKitViewTest, DropsWhatIsTooLarge) {
  load("");
  view.evaluate(R"(const post = (body) => window.webkit.messageHandlers.qx.postMessage(body);
      post({id: 1, verb: "log", args: ["x".repeat(20 * 1024 * 1024)]}); post("last");)");
  ASSERT_TRUE(receives(2));
  EXPECT_TRUE(recorder.bodies[0].isNull());
}

TEST_F(WebKitViewTest, DeliversTenThousandMessagesInOrder) {
  load("");
  view.evaluate(R"(for (let i = 0; i < 10000; ++i)
      window.webkit.messageHandlers.qx.postMessage({id: i, verb: "log"});)");
  ASSERT_TRUE(receives(10'000));
  for (int i = 0; i < 10'000; ++i) {
    ASSERT_EQ(*recorder.bodies[static_cast<std::size_t>(i)].member("id")->number(), i);
  }
}

TEST_F(WebKitViewTest, EvaluatesWhateverThePageDoesWithIt) {
  load("<script>window.__qxEvent = () => { throw new Error('no') }</script>");
  view.evaluate("window.__qxEvent('x', 1)");
  view.evaluate("this is no script");
  view.evaluate("window.after = 1");
  EXPECT_EQ(valueOf("window.after"), "1");
}

TEST_F(WebKitViewTest, TellsThatTheProcessEndedAndLoadsAgain) {
  load("<p>alive");
  recorder.calls.clear();
  webkit_web_view_terminate_web_process(WEBKIT_WEB_VIEW(view.widget()));
  ASSERT_TRUE(waitUntil([&] { return recorder.calls == Journal{"terminated"}; }));
  view.reload();
  ASSERT_TRUE(waitUntil([&] {
    return recorder.calls == Journal{"terminated", "start", "finish"};
  }));
  EXPECT_EQ(valueOf("document.querySelector('p').textContent"), "\"alive\"");
}

TEST_F(WebKitViewTest, TellsAReload) {
  load("<p>once");
  recorder.calls.clear();
  view.evaluate("location.reload()");
  EXPECT_TRUE(waitUntil([&] { return recorder.calls == Journal{"start", "finish"}; }));
}

}  // namespace
}  // namespace quorin
