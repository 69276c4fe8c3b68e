#include <algorithm>
#include <arpa/inet.h>
#include <fstream>
#include <netinet/in.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

#include "kit/value/Marshal.h"
#include "tests/app/contract/ContractWorld.h"
#include "tests/app/contract/WebViewRecorder.h"

namespace quorin::contract {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

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

  // True if anyone has connected since it listens.
  bool wasAsked() const {
    pollfd state{descriptor_, POLLIN, 0};
    return poll(&state, 1, 0) == 1;
  }

  // Accepts one connection, reads a request, sends the text and closes.
  std::thread answerOnce(std::string text) const {
    return std::thread([descriptor = descriptor_, text = std::move(text)] {
      const int client = accept(descriptor, nullptr, nullptr);
      char request[4096];
      if (recv(client, request, sizeof request, 0) > 0) send(client, text.data(), text.size(), 0);
      close(client);
    });
  }
  std::string url() const {
    return "http://127.0.0.1:" + std::to_string(ntohs(address_.sin_port)) + "/";
  }

 private:
  const int descriptor_ = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address_{};
};

class WebViewContract : public PortContract {
 protected:
  using Journal = std::vector<std::string>;

  WebViewContract() {
    std::string pattern = (std::filesystem::temp_directory_path() / "quorin-view-XXXXXX").string();
    folder = mkdtemp(pattern.data());
    // As in the panel: a view in a window that is not shown.
    window->setContent(*view);
    view->setDelegate(&recorder);
  }
  ~WebViewContract() override {
    view->setDelegate(nullptr);
    std::filesystem::remove_all(folder);
  }

  void load(const std::string& html) {
    const std::filesystem::path file = folder / "index.html";
    std::ofstream(file) << "<!doctype html><meta charset=utf-8>" << html;
    recorder.calls.clear();
    view->loadFile(file, folder);
    ASSERT_TRUE(waitUntil([&] { return recorder.calls == Journal{"start", "finish"}; }));
  }

  // What a script gives, as JSON text; the page tells it in a message.
  std::string valueOf(const std::string& script) {
    recorder.bodies.clear();
    view->evaluate("window.webkit.messageHandlers.qx.postMessage(JSON.stringify(" + script + "))");
    if (!receives(1) || !recorder.bodies[0].string()) return "nothing";
    return *recorder.bodies[0].string();
  }

  bool receives(std::size_t count) {
    return waitUntil([&] { return recorder.bodies.size() >= count; });
  }

  std::filesystem::path folder;
  WebViewRecorder recorder;
  const std::unique_ptr<WebView> view =
      platform().makeWebView({"qx", "window.__qxApp = \"Calc\";"});
  const std::unique_ptr<PanelWindow> window =
      platform().makePanelWindow({"Quorin", {0, 0, 460, 560}, {320, 320}, "ContractView"});
};

TEST_F(WebViewContract, TellsTheStartAndTheEndOfALoad) {
  load("<p>hello");
  EXPECT_EQ(valueOf("document.querySelector('p').textContent"), "\"hello\"");
  EXPECT_EQ(valueOf("window.__qxApp"), "\"Calc\"") << "the start script has run";
}

TEST_F(WebViewContract, RunsTheStartScriptBeforeThePagesOwn) {
  load("<script>window.seen = window.__qxApp</script>");
  EXPECT_EQ(valueOf("window.seen"), "\"Calc\"");
}

TEST_F(WebViewContract, ReadsFilesWhosePathNeedsEscaping) {
  const std::filesystem::path odd = folder / "a b#c%d é";
  std::filesystem::create_directories(odd);
  std::ofstream(odd / "index.html") << "<p>odd";
  view->loadFile(odd / "index.html", odd);
  ASSERT_TRUE(waitUntil([&] { return recorder.calls == Journal{"start", "finish"}; }));
  EXPECT_EQ(valueOf("document.querySelector('p').textContent"), "\"odd\"");
}

TEST_F(WebViewContract, TellsAServerThatIsNotThereAsAProvisionalFailureOnly) {
  ASSERT_TRUE(view->loadURL(LocalPort().url(), 60s));
  ASSERT_TRUE(waitUntil([&] { return recorder.calls.size() >= 2; }));
  runFor(200ms);
  EXPECT_THAT(recorder.calls, ElementsAre("start", StartsWith("provisional failure: ")));
}

TEST_F(WebViewContract, RefusesTextThatIsNoURL) {
  for (const char* text : {"", "not a url", "localhost", "/index.html", "http://192.0.2.1/",
                           "http://localhost.example.org/", "file://example.org/index.html"}) {
    EXPECT_FALSE(view->loadURL(text, 60s)) << text;
  }
  runFor(100ms);
  EXPECT_THAT(recorder.calls, IsEmpty());
}

TEST_F(WebViewContract, GivesUpAServerThatDoesNotAnswer) {
  // Accepts connections, as the system does for it, and never answers them.
  const LocalPort port;
  ASSERT_EQ(listen(port.descriptor(), 4), 0);
  ASSERT_TRUE(view->loadURL(port.url(), 1s));
  ASSERT_TRUE(waitUntil([&] { return recorder.calls.size() >= 2; }));
  EXPECT_THAT(recorder.calls, ElementsAre("start", StartsWith("provisional failure: ")));
}

TEST_F(WebViewContract, ShowsInlineText) {
  view->loadHTML("<h1>web bundle missing</h1>");
  ASSERT_TRUE(waitUntil([&] { return recorder.calls == Journal{"start", "finish"}; }));
  EXPECT_EQ(valueOf("document.querySelector('h1').textContent"), "\"web bundle missing\"");
}

TEST_F(WebViewContract, DeliversObjectBodiesAsValues) {
  load("");
  view->evaluate(R"(window.webkit.messageHandlers.qx.postMessage(
      {id: 7, verb: "readCell", args: [1.5, "é", true, false, 0, 1, null, {a: [[]]}]}))");
  ASSERT_TRUE(receives(1));
  EXPECT_EQ(Marshal::encode(recorder.bodies[0]),
            R"({"args":[1.5,"é",true,false,0,1,null,{"a":[[]]}],"id":7,"verb":"readCell"})");
}

TEST_F(WebViewContract, DeliversBodiesThatAreNoObjects) {
  load("");
  view->evaluate(R"(for (const body of ["text", 7, true, [1, 2]])
      window.webkit.messageHandlers.qx.postMessage(body);)");
  ASSERT_TRUE(receives(4));
  EXPECT_THAT(recorder.bodies,
              ElementsAre(JSONValue("text"), JSONValue(7), JSONValue(true),
                          JSONValue(JSONValue::Array{JSONValue(1), JSONValue(2)})));
}

TEST_F(WebViewContract, TakesTenMegabytes) {
  load("");
  view->evaluate(R"(window.webkit.messageHandlers.qx.postMessage(
      {id: 1, verb: "log", args: ["x".repeat(10 * 1024 * 1024)]}))");
  ASSERT_TRUE(receives(1));
  const JSONValue* args = recorder.bodies[0].member("args");
  ASSERT_TRUE(args && args->array());
  EXPECT_EQ(args->array()->front().string()->size(), 10u * 1024 * 1024);
}

TEST_F(WebViewContract, DeliversTenThousandMessagesInOrder) {
  load("");
  view->evaluate(R"(for (let i = 0; i < 10000; ++i)
      window.webkit.messageHandlers.qx.postMessage({id: i, verb: "log"});)");
  ASSERT_TRUE(receives(10'000));
  for (int i = 0; i < 10'000; ++i) {
    ASSERT_EQ(*recorder.bodies[static_cast<std::size_t>(i)].member("id")->number(), i);
  }
}

TEST_F(WebViewContract, EvaluatesWhateverThePageDoesWithIt) {
  load("<script>window.__qxEvent = () => { throw new Error('no') }</script>");
  view->evaluate("window.__qxEvent('x', 1)");
  view->evaluate("this is no script");
  view->evaluate("window.after = 1");
  EXPECT_EQ(valueOf("window.after"), "1");
}

TEST_F(WebViewContract, GoesNowhereElse) {
  const LocalPort elsewhere;
  ASSERT_EQ(listen(elsewhere.descriptor(), 16), 0);
  const std::string url = "\"" + elsewhere.url() + "\"";
  std::ofstream(folder / "other.html") << "<p>other";
  for (const std::string& step :
       {"location.href = " + url, "location.replace(" + url + ")",
        std::string("location.href = 'other.html'"), std::string("location.href = 'about:blank'"),
        "{const a = document.createElement('a'); a.href = " + url +
            "; document.body.append(a); a.click()}",
        "{const a = document.createElement('a'); a.href = " + url +
            "; a.download = 'x'; document.body.append(a); a.click()}",
        "{const f = document.createElement('form'); f.action = " + url +
            "; f.method = 'post'; document.body.append(f); f.submit()}",
        "{const m = document.createElement('meta'); m.httpEquiv = 'refresh'; m.content = '0;url=' "
        "+ " +
            url + "; document.head.append(m)}",
        "{const i = document.createElement('iframe'); i.src = " + url +
            "; document.body.append(i)}"}) {
    load("<p>own");
    recorder.calls.clear();
    view->evaluate(step);
    ASSERT_TRUE(waitUntil([&] { return !recorder.calls.empty(); })) << step;
    runFor(50ms);
    EXPECT_THAT(recorder.calls, ElementsAre("refused: navigation")) << step;
    EXPECT_EQ(valueOf("document.querySelector('p').textContent"), "\"own\"") << step;
    EXPECT_FALSE(elsewhere.wasAsked()) << step;
  }
  EXPECT_FALSE(elsewhere.wasAsked());
}

TEST_F(WebViewContract, GoesToPlacesInItsPage) {
  load("<p id=there>own");
  recorder.calls.clear();
  EXPECT_EQ(valueOf("(location.href = '#there', location.hash)"), "\"#there\"");
  EXPECT_THAT(recorder.calls, IsEmpty());
}

TEST_F(WebViewContract, OpensNoWindow) {
  const LocalPort elsewhere;
  ASSERT_EQ(listen(elsewhere.descriptor(), 16), 0);
  load("<p>own");
  recorder.calls.clear();
  EXPECT_EQ(valueOf("window.open('" + elsewhere.url() + "') === null"), "true");
  view->evaluate(R"(const a = document.createElement('a'); a.target = '_blank';
      a.href = location.href; document.body.append(a); a.click();)");
  runFor(200ms);
  EXPECT_THAT(recorder.calls, AllOf(Each("refused: window"), Not(IsEmpty())));
  EXPECT_FALSE(elsewhere.wasAsked());
}

// Pages without a server, too: none is in a frame, and none has the handler.
TEST_F(WebViewContract, ShowsNoPageInAFrame) {
  const std::string page =
      "`<script>webkit.messageHandlers.qx.postMessage('frame');"
      "top.webkit.messageHandlers.qx.postMessage('frame')<\\/script><p>framed`";
  for (const std::string& step :
       {"f.srcdoc = " + page, "f.src = 'data:text/html,' + encodeURIComponent(" + page + ")",
        "f.src = URL.createObjectURL(new Blob([" + page + "], {type: 'text/html'}))"}) {
    load("<p>own");
    recorder.bodies.clear();
    view->evaluate("{const f = document.createElement('iframe'); " + step +
                   "; f.onload = () => webkit.messageHandlers.qx.postMessage('ended');"
                   " document.body.append(f)}");
    runFor(300ms);
    EXPECT_THAT(recorder.bodies, Not(testing::Contains(JSONValue("frame")))) << step;
    EXPECT_EQ(valueOf("document.querySelector('p').textContent"), "\"own\"") << step;
  }
}

TEST_F(WebViewContract, FetchesNothingForALink) {
  for (const std::string& address :
       {std::string("'data:text/plain,x'"), std::string("URL.createObjectURL(new Blob(['x']))")}) {
    load("<p>own");
    recorder.calls.clear();
    view->evaluate("{const a = document.createElement('a'); a.download = 'thing.txt'; a.href = " +
                   address + "; document.body.append(a); a.click()}");
    ASSERT_TRUE(waitUntil([&] { return !recorder.calls.empty(); })) << address;
    runFor(100ms);
    EXPECT_THAT(recorder.calls, Each(StartsWith("refused: "))) << address;
    EXPECT_EQ(valueOf("document.querySelector('p').textContent"), "\"own\"") << address;
  }
}

TEST_F(WebViewContract, FollowsNoRedirectionToAnotherPage) {
  const LocalPort own, elsewhere;
  ASSERT_EQ(listen(own.descriptor(), 4), 0);
  ASSERT_EQ(listen(elsewhere.descriptor(), 4), 0);
  std::thread server = own.answerOnce("HTTP/1.1 302 Found\r\nLocation: " + elsewhere.url() +
                                      "\r\nContent-Length: 0\r\n\r\n");
  ASSERT_TRUE(view->loadURL(own.url(), 10s));
  EXPECT_TRUE(waitUntil([&] {
    return std::find(recorder.calls.begin(), recorder.calls.end(), "refused: navigation") !=
           recorder.calls.end();
  }));
  server.join();
  runFor(100ms);
  EXPECT_FALSE(elsewhere.wasAsked());
}

TEST_F(WebViewContract, FetchesNoFiles) {
  const LocalPort own;
  ASSERT_EQ(listen(own.descriptor(), 4), 0);
  std::thread server = own.answerOnce(
      "HTTP/1.1 200 OK\r\nContent-Type: application/x-thing\r\nContent-Disposition: attachment; "
      "filename=thing.bin\r\nContent-Length: 5\r\n\r\nthing");
  ASSERT_TRUE(view->loadURL(own.url(), 10s));
  EXPECT_TRUE(waitUntil([&] {
    return std::find(recorder.calls.begin(), recorder.calls.end(), "refused: download") !=
           recorder.calls.end();
  }));
  server.join();
}

TEST_F(WebViewContract, TellsAReload) {
  load("<p>once");
  recorder.calls.clear();
  view->reload();
  EXPECT_TRUE(waitUntil([&] { return recorder.calls == Journal{"start", "finish"}; }));
  recorder.calls.clear();
  view->evaluate("location.reload()");
  EXPECT_TRUE(waitUntil([&] { return recorder.calls == Journal{"start", "finish"}; }));
}

}  // namespace
}  // namespace quorin::contract
