// The system's AppleScript as a ScriptRunner, and what travels to it and back.
#import "app/macos/AppleScriptRunner.h"
#import "app/macos/Descriptors.h"
#include "app/macos/MacArchiver.h"
#include "tests/fakes/TemporaryFolder.h"
#include "tests/kit/excel/ScriptRunnerContract.h"

namespace quorin {
namespace {

std::unique_ptr<ScriptRunner> makeAppleScriptRunner() {
  return std::make_unique<AppleScriptRunner>();
}

TEST(Descriptors, KeepEveryValueThatIsHandedOver) {
  const JSONValue values[] = {true,
                              false,
                              nullptr,
                              2147483647.0,
                              2147483648.0,
                              -0.5,
                              "",
                              "é",
                              JSONValue::Array{1, JSONValue::Array{}, "x"},
                              JSONValue::Object{{"a", 1}, {"b", JSONValue::Array{true}}}};
  for (const JSONValue& value : values) {
    EXPECT_EQ(Marshal::fromDescriptor(
                  fromEventDescriptor(toEventDescriptor(Marshal::toDescriptor(value)))),
              value)
        << Marshal::encode(value);
  }
}

TEST(Descriptors, GiveTheTypesThatAppleScriptAnswersWith) {
  NSAppleEventDescriptor* list = [NSAppleEventDescriptor listDescriptor];
  [list insertDescriptor:[NSAppleEventDescriptor descriptorWithTypeCode:'msng'] atIndex:1];
  [list insertDescriptor:[NSAppleEventDescriptor descriptorWithString:@"e\u0301"] atIndex:2];
  EXPECT_EQ(Marshal::fromDescriptor(fromEventDescriptor(list)),
            JSONValue(JSONValue::Array{nullptr, "é"}));
  NSAppleEventDescriptor* record = [NSAppleEventDescriptor recordDescriptor];
  [record setDescriptor:[NSAppleEventDescriptor descriptorWithInt32:7] forKeyword:'pnam'];
  EXPECT_EQ(Marshal::fromDescriptor(fromEventDescriptor(record)),
            JSONValue(JSONValue::Object{{"pnam", 7}}));
  EXPECT_EQ(Marshal::fromDescriptor(
                fromEventDescriptor([NSAppleEventDescriptor descriptorWithEnumCode:'yes '])),
            JSONValue(JSONValue::Object{{"__unmarshalled", "enum"}}));
}

TEST(MacArchiver, PacksTheFolderItself) {
  const TemporaryFolder folder;
  std::filesystem::create_directories(folder / "report");
  MacArchiver archiver;
  EXPECT_EQ(archiver.zip(folder / "report", folder / "report.zip"), 0);
  EXPECT_GT(std::filesystem::file_size(folder / "report.zip"), 0u);
  EXPECT_NE(archiver.zip(folder / "nowhere", folder / "nowhere.zip"), 0);
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(AppleScript, ScriptRunnerContract,
                         testing::Values(ScriptRunnerMaker{"NSAppleScript",
                                                           &makeAppleScriptRunner}));

}  // namespace quorin
