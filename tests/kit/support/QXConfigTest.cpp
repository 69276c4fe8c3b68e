#include <gtest/gtest.h>
#include <map>

#include "kit/platform/Platform.h"
#include "kit/platform/XDGFolders.h"
#include "kit/support/QXConfig.h"

namespace quorin {
namespace {

std::pair<std::uint32_t, std::uint32_t> summon(const char* text) {
  const QXConfig config = QXConfig::decode(text);
  return {config.summonKeyCode, config.summonModifiers};
}

std::pair<std::uint32_t, std::uint32_t> map(const char* text) {
  const QXConfig config = QXConfig::decode(text);
  return {config.mapKeyCode, config.mapModifiers};
}

std::pair<std::uint32_t, std::uint32_t> deps(const char* text) {
  const QXConfig config = QXConfig::decode(text);
  return {config.depsKeyCode, config.depsModifiers};
}

using HotKey = std::pair<std::uint32_t, std::uint32_t>;

TEST(QXConfigDecode, GivesEveryMissingKeyItsDefault) {
  const QXConfig config = QXConfig::decode("{}");
  EXPECT_EQ(config.summonKeyCode, 0u);
  EXPECT_EQ(config.summonModifiers, 2560u);
  EXPECT_EQ(config.mapKeyCode, 2u);
  EXPECT_EQ(config.mapModifiers, 2560u);
  EXPECT_EQ(config.depsKeyCode, 1u);
  EXPECT_EQ(config.depsModifiers, 2560u);
  EXPECT_EQ(config.pollMs, 300);
  EXPECT_EQ(config.debounceMs, 150);
  EXPECT_EQ(config.highlightRGB, (std::vector<std::int64_t>{255, 0, 255}));
  EXPECT_EQ(config.lastLaunchedAt, std::nullopt);
}

TEST(QXConfigDecode, ReadsEveryKey) {
  const QXConfig config = QXConfig::decode(R"({
    "summonKeyCode": 11, "summonModifiers": 256, "mapKeyCode": 12, "mapModifiers": 512,
    "depsKeyCode": 13, "depsModifiers": 4096, "pollMs": 1000, "debounceMs": 0,
    "highlightRGB": [1, 2, 3], "lastLaunchedAt": "2026-11-15T11:02:28Z",
    "welcomedAt": "2026-11-16T09:00:00Z", "other": {"x": 1}})");
  QXConfig expected;
  expected.summonKeyCode = 11;
  expected.summonModifiers = 256;
  expected.mapKeyCode = 12;
  expected.mapModifiers = 512;
  expected.depsKeyCode = 13;
  expected.depsModifiers = 4096;
  expected.pollMs = 1000;
  expected.debounceMs = 0;
  expected.highlightRGB = {1, 2, 3};
  expected.lastLaunchedAt = "2026-11-15T11:02:28Z";
  expected.welcomedAt = "2026-11-16T09:00:00Z";
  EXPECT_EQ(config, expected);
}

TEST(QXConfigDecode, MovesEarlierSummonKeysToThePresentOne) {
  EXPECT_EQ(summon(R"({"summonKeyCode": 9, "summonModifiers": 4096})"), HotKey(0, 2560));
  EXPECT_EQ(summon(R"({"summonKeyCode": 3, "summonModifiers": 2048})"), HotKey(0, 2560));
  EXPECT_EQ(summon(R"({"summonKeyCode": 3})"), HotKey(3, 2560));
  EXPECT_EQ(summon(R"({"summonKeyCode": 9})"), HotKey(9, 2560));
  EXPECT_EQ(summon(R"({"summonModifiers": 4096})"), HotKey(0, 4096));
  EXPECT_EQ(summon(R"({"summonKeyCode": 9, "summonModifiers": 4608})"), HotKey(9, 4608));
  EXPECT_EQ(summon(R"({"summonKeyCode": 5, "summonModifiers": 2048})"), HotKey(5, 2048));
}

TEST(QXConfigDecode, MovesEarlierMapKeysToThePresentOne) {
  EXPECT_EQ(map(R"({"mapKeyCode": 9, "mapModifiers": 4608})"), HotKey(2, 2560));
  EXPECT_EQ(map(R"({"mapKeyCode": 5, "mapModifiers": 2048})"), HotKey(2, 2560));
  EXPECT_EQ(map(R"({"mapKeyCode": 9, "mapModifiers": 4096})"), HotKey(9, 4096));
  EXPECT_EQ(map(R"({"mapKeyCode": 3, "mapModifiers": 2048})"), HotKey(3, 2048));
}

TEST(QXConfigDecode, MovesTheEarlierDependentsKeyToThePresentOne) {
  EXPECT_EQ(deps(R"({"depsKeyCode": 2, "depsModifiers": 2048})"), HotKey(1, 2560));
  EXPECT_EQ(deps(R"({"depsModifiers": 2048})"), HotKey(1, 2048));
  EXPECT_EQ(deps(R"({"depsKeyCode": 2})"), HotKey(2, 2560));
}

TEST(QXConfigDecode, ReplacesValuesOutOfRange) {
  QXConfig expected;
  EXPECT_EQ(QXConfig::decode(R"({"pollMs": 20})"), expected);
  EXPECT_EQ(QXConfig::decode(R"({"pollMs": 49})").pollMs, 300);
  EXPECT_EQ(QXConfig::decode(R"({"pollMs": 50})").pollMs, 50);
  EXPECT_EQ(QXConfig::decode(R"({"pollMs": -1})").pollMs, 300);
  EXPECT_EQ(QXConfig::decode(R"({"pollMs": 9223372036854775807})").pollMs, INT64_MAX);
  EXPECT_EQ(QXConfig::decode(R"({"debounceMs": -1})").debounceMs, 150);
  EXPECT_EQ(QXConfig::decode(R"({"debounceMs": 0})").debounceMs, 0);
}

TEST(QXConfigDecode, TakesOnlyThreePartsOf0To255AsAColour) {
  const std::vector<std::int64_t> magenta{255, 0, 255};
  for (const char* text :
       {"[10, 20]", "[10, 20, 300]", "[10, 20, 256]", "[-1, 0, 0]", "[]", "[1, 2, 3, 4]"}) {
    EXPECT_EQ(QXConfig::decode("{\"highlightRGB\": " + std::string(text) + "}").highlightRGB,
              magenta)
        << text;
  }
  EXPECT_EQ(QXConfig::decode(R"({"highlightRGB": [0, 0, 0]})").highlightRGB,
            (std::vector<std::int64_t>{0, 0, 0}));
  EXPECT_EQ(QXConfig::decode(R"({"highlightRGB": [255, 255, 255]})").highlightRGB,
            (std::vector<std::int64_t>{255, 255, 255}));
}

TEST(QXConfigDecode, TakesIntegersHoweverTheyAreSpelled) {
  EXPECT_EQ(QXConfig::decode(R"({"pollMs": 400.0})").pollMs, 400);
  EXPECT_EQ(QXConfig::decode(R"({"pollMs": 4e2})").pollMs, 400);
  EXPECT_EQ(QXConfig::decode(R"({"summonKeyCode": 4294967295})").summonKeyCode, 4294967295u);
}

TEST(QXConfigDecode, FailsForAKeyOfTheWrongType) {
  for (const char* text :
       {R"({"pollMs": "fast"})", R"({"pollMs": true})", R"({"pollMs": 300.5})",
        R"({"pollMs": [300]})", R"({"pollMs": 9223372036854775808})", R"({"pollMs": 1e300})",
        R"({"debounceMs": {}})", R"({"summonKeyCode": -1})", R"({"summonKeyCode": 4294967296})",
        R"({"mapKeyCode": 0.5})", R"({"depsModifiers": "2048"})", R"({"highlightRGB": "red"})",
        R"({"highlightRGB": [1, 2, "3"]})", R"({"highlightRGB": [1, 2, 2.5]})",
        R"({"highlightRGB": {"r": 1}})", R"({"lastLaunchedAt": 5})"}) {
    EXPECT_THROW(QXConfig::decode(text), QXConfigError) << text;
  }
}

TEST(QXConfigDecode, TakesNullForAMissingKeyWhicheverItIs) {
  for (const char* key :
       {"summonKeyCode", "summonModifiers", "mapKeyCode", "mapModifiers", "depsKeyCode",
        "depsModifiers", "pollMs", "debounceMs", "highlightRGB", "lastLaunchedAt"}) {
    EXPECT_EQ(QXConfig::decode("{\"" + std::string(key) + "\": null}"), QXConfig()) << key;
  }
}

TEST(QXConfigDecode, FailsForWhatIsNoObject) {
  for (const char* text : {"", "[1,2", "[]", "1", "null", "{\"pollMs\": }", "{} {}"}) {
    EXPECT_THROW(QXConfig::decode(text), QXConfigError) << text;
  }
}

TEST(QXConfigDecode, TakesTheLaunchTimeAsItIs) {
  EXPECT_EQ(QXConfig::decode(R"({"lastLaunchedAt": "whenever"})").lastLaunchedAt, "whenever");
  EXPECT_EQ(QXConfig::decode(R"({"lastLaunchedAt": null})").lastLaunchedAt, std::nullopt);
}

TEST(QXConfigEncode, WritesTheNineKeysAlways) {
  EXPECT_EQ(QXConfig().encode(),
            R"({"debounceMs":150,"depsKeyCode":1,"depsModifiers":2560,)"
            R"("highlightRGB":[255,0,255],"mapKeyCode":2,"mapModifiers":2560,"pollMs":300,)"
            R"("summonKeyCode":0,"summonModifiers":2560})");
}

TEST(QXConfigEncode, WritesTheLaunchTimeWhenPresent) {
  QXConfig config;
  config.lastLaunchedAt = "2026-11-15T11:02:28Z";
  config.pollMs = 9007199254740993;
  EXPECT_NE(config.encode().find(R"("lastLaunchedAt":"2026-11-15T11:02:28Z")"), std::string::npos);
  EXPECT_EQ(QXConfig::decode(config.encode()), config);
}

TEST(QXConfig, ComparesEveryField) {
  QXConfig changed[10];
  changed[0].summonKeyCode = 9;
  changed[1].summonModifiers = 9;
  changed[2].mapKeyCode = 9;
  changed[3].mapModifiers = 9;
  changed[4].depsKeyCode = 9;
  changed[5].depsModifiers = 9;
  changed[6].pollMs = 9;
  changed[7].debounceMs = 9;
  changed[8].highlightRGB = {0, 255, 255};
  changed[9].lastLaunchedAt = "";
  for (const QXConfig& config : changed) EXPECT_FALSE(config == QXConfig());
  EXPECT_TRUE(QXConfig() == QXConfig());
}

TEST(QXConfig, LivesInTheApplicationSupportFolder) {
  auto platform = std::make_unique<Platform>();
  platform->folders = std::make_unique<XDGFolders>(Environment{{"HOME", "/home/nobody-here"}});
  auto before = Platform::install(std::move(platform));
  EXPECT_EQ(QXConfig::defaultURL(), "/home/nobody-here/.local/share/Quorin/config.json");
  Platform::install(std::move(before));
}

TEST(QXConfigDeathTest, StopsWhereThereIsNoApplicationSupportFolder) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        auto platform = std::make_unique<Platform>();
        platform->folders = std::make_unique<XDGFolders>(Environment{});
        Platform::install(std::move(platform));
        QXConfig::defaultURL();
      },
      "this user has no application-support folder for config.json");
}

}  // namespace
}  // namespace quorin
