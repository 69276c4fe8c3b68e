#include <fstream>
#include <sstream>

#include "app/linux/WebKitView.h"
#include "kit/value/Marshal.h"
#include "tests/app/contract/WebViewRecorder.h"
#include "tests/app/linux/GtkFixture.h"
#include "tests/fakes/Files.h"

namespace quorin {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

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
  WebViewRecorder recorder;
  GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  WebKitView view{{"qx", "window.__qxApp = \"Calc\";"}, false};
};

TEST_F(WebKitViewTest, TellsAMissingFileAsAProvisionalFailureOnly) {
  view.loadFile(folder / "nowhere.html", folder);
  ASSERT_TRUE(waitUntil([&] { return recorder.calls.size() >= 2; }));
  runFor(200ms);
  EXPECT_THAT(recorder.calls, ElementsAre("start", StartsWith("provisional failure: ")));
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

TEST_F(WebKitViewTest, DropsWhatIsTooLarge) {
  load("");
  view.evaluate(R"(const post = (body) => window.webkit.messageHandlers.qx.postMessage(body);
      post({id: 1, verb: "log", args: ["x".repeat(20 * 1024 * 1024)]}); post("last");)");
  ASSERT_TRUE(receives(2));
  EXPECT_TRUE(recorder.bodies[0].isNull());
}

TEST_F(WebKitViewTest, SparesMemoryInThePagesProcess) {
  load("");
  std::istringstream processes(
      ui::ChildProcess::run({"pgrep", "-P", std::to_string(getpid()), "WebKitWebProces"}));
  std::string process;
  ASSERT_TRUE(processes >> process);
  const std::string environment = readFile("/proc/" + process + "/environ");
  EXPECT_THAT(environment, HasSubstr("JSC_useCodeCache=0"));
  EXPECT_THAT(environment, HasSubstr("JSC_useDFGJIT=0"));
}

TEST_F(WebKitViewTest, GrantsNoPermission) {
  gtk_widget_show_all(window);
  load("<p>own");
  recorder.bodies.clear();
  view.evaluate(R"(const post = (body) => window.webkit.messageHandlers.qx.postMessage(body);
      (async () => {
        const told = [];
        await new Promise((next) => navigator.geolocation.getCurrentPosition(
            () => { told.push("a place"); next(); }, () => { told.push("no place"); next(); }));
        told.push(await Notification.requestPermission());
        told.push(await navigator.clipboard.readText().then(() => "a text", () => "no text"));
        post(told);
      })().catch((error) => post("failed: " + error));)");
  ASSERT_TRUE(receives(1));
  EXPECT_EQ(Marshal::encode(recorder.bodies[0]), R"(["no place","denied","no text"])");
  EXPECT_THAT(recorder.calls, Contains("refused: permission"));
}

// With a camera and a microphone that WebKit makes up, so that they would be there.
TEST_F(WebKitViewTest, GrantsNoCameraAndNoMicrophone) {
  WebKitSettings* const settings = webkit_web_view_get_settings(WEBKIT_WEB_VIEW(view.widget()));
  webkit_settings_set_enable_media_stream(settings, TRUE);
  webkit_settings_set_enable_mock_capture_devices(settings, TRUE);
  gtk_widget_show_all(window);
  load("<p>own");
  for (const char* wanted : {"{video: true}", "{audio: true}", "{audio: true, video: true}"}) {
    recorder.bodies.clear();
    recorder.calls.clear();
    view.evaluate(std::string("navigator.mediaDevices.getUserMedia(") + wanted + R"().then(
        () => "granted", (error) => error.name).then(
        (told) => window.webkit.messageHandlers.qx.postMessage(told));)");
    ASSERT_TRUE(receives(1)) << wanted;
    EXPECT_EQ(Marshal::encode(recorder.bodies[0]), R"("NotAllowedError")") << wanted;
    EXPECT_THAT(recorder.calls, ElementsAre("refused: permission")) << wanted;
  }
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

}  // namespace
}  // namespace quorin
