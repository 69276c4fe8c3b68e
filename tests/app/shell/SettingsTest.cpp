#include <algorithm>

#include "app/shell/Settings.h"
#include "kit/value/Marshal.h"
#include "tests/app/shell/AppDelegateFixture.h"

namespace quorin {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Object = JSONValue::Object;
using Array = JSONValue::Array;

constexpr HotKeyID summonKey{0x51584E53, 1};

class SettingsTest : public AppDelegateFixture {
 protected:
  SettingsTest() {
    platform.hasHotKeys = true;
    platform.hasStatusBar = true;
  }

  void begin(const std::string& file = R"({"mine":[1.50,{}],"pollMs":300})") {
    writeFile(config, file);
    launched();
  }

  // The reply's script, as of every request of the panel's own at once.
  std::string ask(const char* verb, Array args = {}) {
    platform.webView().takeScripts();
    platform.webView().post(Object{{"id", 1}, {"verb", verb}, {"args", std::move(args)}});
    const std::vector<std::string> scripts = platform.webView().takeScripts();
    for (const std::string& one : scripts) {
      if (one.starts_with("window.__qxResolve")) return one;
    }
    return "";
  }
  std::string set(const char* name, JSONValue value) {
    return ask("setSetting", {name, std::move(value)});
  }
  static JSONValue key(int code, int modifiers) {
    return Object{{"code", code}, {"modifiers", modifiers}};
  }
  static std::string refused(const std::string& text) {
    return R"(window.__qxResolve(1, {"ok":false,"payload":")" + text + "\"})";
  }
  Journal hotKeyCalls() {
    Journal calls = takeJournal();
    std::erase_if(calls,
                  [](const std::string& line) { return line.find("HotKey") == std::string::npos; });
    return calls;
  }
};

TEST_F(SettingsTest, TellsAllThatIsInForce) {
  platform.hotKeyService.refused[4] = -9878;
  platform.hotKeyService.reason = "this desktop has no portal for them";
  platform.updates.reason = "no feed";
  platform.login.current = LoginItemStatus::enabled;
  begin(R"({"depsKeyCode":65535,"depsModifiers":0,"pollMs":500,"highlightRGB":[1,2,3]})");
  EXPECT_EQ(ask("getSettings"),
            R"(window.__qxResolve(1, {"ok":true,"payload":{"file":)" +
                Marshal::encode(config.string()) +
                R"(,"fileTrouble":"","following":true,"highlightRGB":[1,2,3],"keys":{)"
                R"("depsKey":{"code":null,"modifiers":null,"trouble":""},)"
                R"("mapKey":{"code":2,"modifiers":2560,)"
                R"("trouble":"Another program or the desktop has this key."},)"
                R"("summonKey":{"code":0,"modifiers":2560,"trouble":""}},)"
                R"("keysTrouble":"this desktop has no portal for them",)"
                R"("login":{"on":true,"unavailable":""},"pollMs":500,)"
                R"("updates":{"unavailable":"no feed"}}}))");
}

TEST_F(SettingsTest, ChangesAHotKeyAtOnceAndWritesItsTwoKeysAlone) {
  begin();
  EXPECT_THAT(set("summonKey", key(38, 4352)),
              HasSubstr(R"("summonKey":{"code":38,"modifiers":4352,"trouble":""})"));
  EXPECT_THAT(hotKeyCalls(), ElementsAre("removeHotKey 1", "addHotKey 1 38 4352"));
  EXPECT_EQ(platform.hotKeyService.press(summonKey), 0);
  const std::string written = readFile(config);
  EXPECT_THAT(written, HasSubstr(R"("summonKeyCode": 38)"));
  EXPECT_THAT(written, HasSubstr(R"("summonModifiers": 4352)"));
  EXPECT_THAT(written, HasSubstr("1.50"));
  EXPECT_THAT(written, Not(HasSubstr("mapKeyCode")));
}

TEST_F(SettingsTest, CanHaveNoHotKey) {
  begin();
  EXPECT_THAT(set("mapKey", nullptr), HasSubstr(R"("mapKey":{"code":null)"));
  EXPECT_THAT(hotKeyCalls(), ElementsAre("removeHotKey 4"));
  EXPECT_EQ(QXConfig::readStrictly(config).mapKey(), KeyCombination{});
  EXPECT_THAT(set("mapKey", key(2, 2560)), HasSubstr(R"("mapKey":{"code":2)"));
  EXPECT_THAT(hotKeyCalls(), ElementsAre("addHotKey 4 2 2560"));
}

TEST_F(SettingsTest, RegistersNoneAtTheStart) {
  begin(R"({"mapKeyCode":65535,"mapModifiers":0})");
  EXPECT_EQ(platform.hotKeyService.signatures.size(), 4U);
  EXPECT_THAT(logged(), Not(Contains(HasSubstr("register failed"))));
}

TEST_F(SettingsTest, LeavesTheOldKeyWhereTheNewOneIsTaken) {
  begin();
  const std::string before = readFile(config);
  platform.hotKeyService.taken = {{38, 2560}};
  EXPECT_EQ(set("summonKey", key(38, 2560)),
            refused("Another program or the desktop has this key."));
  EXPECT_THAT(hotKeyCalls(),
              ElementsAre("removeHotKey 1", "addHotKey 1 38 2560", "addHotKey 1 0 2560"));
  EXPECT_EQ(readFile(config), before);
  EXPECT_THAT(ask("getSettings"),
              HasSubstr(R"("summonKey":{"code":0,"modifiers":2560,"trouble":""})"));
}

TEST_F(SettingsTest, SaysWhichOfItsKeysACombinationIs) {
  begin();
  EXPECT_EQ(set("summonKey", key(2, 2560)), refused("This is the key for the map."));
  EXPECT_EQ(set("mapKey", key(1, 2560)), refused("This is the key for the dependents."));
  EXPECT_EQ(set("depsKey", key(0, 2560)), refused("This is the key for the formula."));
  EXPECT_EQ(set("depsKey", key(123, 6144)), refused("This key steps through the formula."));
  EXPECT_EQ(set("depsKey", key(0, 512)),
            refused("This key is typed in every program: hold another one with it."));
  EXPECT_EQ(set("depsKey", key(49, 0)),
            refused("This key is typed in every program: hold another one with it."));
  EXPECT_THAT(hotKeyCalls(), IsEmpty());
  EXPECT_THAT(set("depsKey", key(122, 0)), HasSubstr("\"ok\":true")) << "F1 types nothing";
  EXPECT_THAT(set("depsKey", key(122, 0)), HasSubstr("\"ok\":true")) << "as it is already";
}

TEST_F(SettingsTest, RefusesOtherArguments) {
  begin();
  const std::string before = readFile(config);
  const std::pair<const char*, Array> cases[] = {
      {"getSettings", {1}},
      {"setSetting", {}},
      {"setSetting", {"pollMs"}},
      {"setSetting", {"pollMs", 300, 1}},
      {"setSetting", {"debounceMs", 300}},
      {"setSetting", {"summonKeyCode", 1}},
      {"setSetting", {nullptr, 1}},
      {"setSetting", {"pollMs", 49}},
      {"setSetting", {"pollMs", 60001}},
      {"setSetting", {"pollMs", 300.5}},
      {"setSetting", {"pollMs", "300"}},
      {"setSetting", {"following", 1}},
      {"setSetting", {"login", nullptr}},
      {"setSetting", {"summonKey", 1}},
      {"setSetting", {"summonKey", Object{}}},
      {"setSetting", {"summonKey", Object{{"code", 1}}}},
      {"setSetting", {"summonKey", Object{{"code", 1}, {"modifiers", 2560}, {"x", 1}}}},
      {"setSetting", {"summonKey", key(128, 2560)}},
      {"setSetting", {"summonKey", key(-1, 2560)}},
      {"setSetting", {"summonKey", key(1, 2561)}},
      {"setSetting", {"summonKey", key(1, 1024)}},
      {"pauseHotKeys", {}},
      {"pauseHotKeys", {1}},
      {"pauseHotKeys", {true, true}},
      {"checkForUpdates", {1}},
  };
  for (const auto& [verb, args] : cases) {
    EXPECT_EQ(ask(verb, args), refused("bad args"))
        << verb << " " << Marshal::encode(JSONValue(args));
  }
  EXPECT_EQ(readFile(config), before);
  EXPECT_THAT(hotKeyCalls(), IsEmpty());
  EXPECT_EQ(ask("GetSettings"), "") << "a verb of the bridge";
}

TEST_F(SettingsTest, PausesTheKeysWhileOneIsPressed) {
  begin();
  EXPECT_THAT(ask("pauseHotKeys", {true}), HasSubstr("\"payload\":null"));
  EXPECT_THAT(hotKeyCalls(), ElementsAre("removeHotKey 1", "removeHotKey 2", "removeHotKey 3",
                                         "removeHotKey 4", "removeHotKey 5"));
  ask("pauseHotKeys", {true});
  EXPECT_THAT(hotKeyCalls(), IsEmpty());
  ask("pauseHotKeys", {false});
  EXPECT_EQ(hotKeyCalls().size(), 5U);
  ask("pauseHotKeys", {true});
  hotKeyCalls();
  platform.mainLoop().advance(std::chrono::seconds(20));
  EXPECT_THAT(hotKeyCalls(), Contains("addHotKey 1 0 2560")) << "the page may be gone";
}

TEST_F(SettingsTest, SetsThePauseAsideForANewKey) {
  begin();
  ask("pauseHotKeys", {true});
  hotKeyCalls();
  set("summonKey", key(38, 2560));
  const Journal calls = hotKeyCalls();
  EXPECT_EQ(calls.back(), "addHotKey 1 38 2560");
  EXPECT_THAT(calls, Contains("addHotKey 5 1 2560"));
  platform.mainLoop().advance(std::chrono::seconds(30));
  EXPECT_THAT(hotKeyCalls(), IsEmpty());
}

TEST_F(SettingsTest, AsksExcelAsOftenAsIsSaid) {
  begin();
  EXPECT_THAT(set("pollMs", 1000), HasSubstr("\"pollMs\":1000"));
  EXPECT_EQ(QXConfig::readStrictly(config).pollMs, 1000);
  platform.workspace().frontmost = excel();
  delegate->panel().showCompanion();
  settle();
  bridge.polls = 0;
  platform.mainLoop().advance(std::chrono::milliseconds(999));
  settle();
  EXPECT_EQ(bridge.polls, 0);
  platform.mainLoop().advance(std::chrono::milliseconds(1));
  settle();
  EXPECT_EQ(bridge.polls, 1);
}

TEST_F(SettingsTest, PausesAndResumesFollowingAsTheMenuDoes) {
  begin();
  EXPECT_THAT(set("following", false), HasSubstr("\"following\":false"));
  EXPECT_EQ(platform.statusItem().items[1].title, "Resume Follow");
  EXPECT_THAT(set("following", true), HasSubstr("\"following\":true"));
  EXPECT_EQ(platform.statusItem().items[1].title, "Pause Follow");
}

TEST_F(SettingsTest, StartsAtLogin) {
  begin();
  EXPECT_THAT(set("login", true), HasSubstr(R"("login":{"on":true)"));
  EXPECT_THAT(takeJournal(), Contains("registerLoginItem"));
  set("login", true);
  EXPECT_THAT(takeJournal(), Not(Contains("registerLoginItem")));
  platform.login.error = "the disk is full";
  EXPECT_EQ(set("login", false), refused("Could not change the login item: the disk is full"));
  platform.login.installed = false;
  EXPECT_EQ(set("login", false), refused("installed app only"));
  EXPECT_THAT(ask("getSettings"), HasSubstr(R"("unavailable":"installed app only")"));
}

TEST_F(SettingsTest, ChecksForUpdates) {
  begin();
  ask("checkForUpdates");
  EXPECT_THAT(takeJournal(), Contains("checkForUpdates"));
}

TEST_F(SettingsTest, LosesNothingOfAFileThatIsNoJSON) {
  begin();
  writeFile(config, "{\"pollMs\": 500,");
  EXPECT_EQ(set("pollMs", 1000), refused("Not saved, and left as it was: config.json is not valid "
                                         "JSON; left untouched"));
  EXPECT_EQ(set("summonKey", key(38, 2560)),
            refused("Not saved, and left as it was: config.json is not valid JSON; left "
                    "untouched"));
  EXPECT_EQ(hotKeyCalls().back(), "addHotKey 1 0 2560") << "the old key is back";
  EXPECT_EQ(readFile(config), "{\"pollMs\": 500,");
  EXPECT_THAT(ask("getSettings"), HasSubstr("\"pollMs\":300"));
}

TEST_F(SettingsTest, SaysWhatIsWrongWithTheFileAndKeepsWhatIsInForce) {
  begin();
  writeFile(config, R"({"pollMs": "fast", "summonKeyCode": 7})");
  EXPECT_THAT(ask("getSettings"), HasSubstr(R"("fileTrouble":"\"pollMs\" is not a number")"));
  ask("getSettings");
  EXPECT_THAT(hotKeyCalls(), IsEmpty());
  const auto lines = logged();
  EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                          [](const std::string& line) { return line.starts_with("CONFIG "); }),
            1);
  EXPECT_THAT(set("pollMs", 400), HasSubstr(R"("fileTrouble":"")")) << "mended with it";
  EXPECT_THAT(readFile(config), HasSubstr(R"("summonKeyCode": 7)"));
}

TEST_F(SettingsTest, TakesOverAFileThatWasChangedByHandWhenThePanelComesUp) {
  begin();
  writeFile(config, R"({"summonKeyCode":2,"mapKeyCode":0,"pollMs":700})");
  EXPECT_THAT(hotKeyCalls(), IsEmpty());
  delegate->panel().showCompanion();
  EXPECT_THAT(hotKeyCalls(), ElementsAre("removeHotKey 1", "removeHotKey 4", "addHotKey 1 2 2560",
                                         "addHotKey 4 0 2560"))
      << "two that change places";
  EXPECT_THAT(platform.webView().takeScripts(),
              Contains(R"(window.__qxEvent && window.__qxEvent("settingsChanged", {}))"));
  delegate->panel().showCompanion();
  EXPECT_THAT(platform.webView().takeScripts(), Not(Contains(HasSubstr("settingsChanged"))));
  EXPECT_THAT(ask("getSettings"), HasSubstr("\"pollMs\":700"));
}

TEST_F(SettingsTest, OpensFromTheMenu) {
  begin();
  platform.statusItem().choose("Settings…");
  EXPECT_THAT(platform.webView().takeScripts(),
              ElementsAre(R"(window.__qxEvent && window.__qxEvent("summon", {}))",
                          R"(window.__qxEvent && window.__qxEvent("showSettings", {}))"));
}

}  // namespace
}  // namespace quorin
