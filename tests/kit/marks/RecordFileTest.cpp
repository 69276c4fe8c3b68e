#include <gtest/gtest.h>

#include "kit/marks/RecordFile.h"
#include "tests/fakes/FaultyFileSystem.h"
#include "tests/fakes/Files.h"
#include "tests/fakes/LogLines.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin {
namespace {

class RecordFileTest : public testing::Test {
 protected:
  TemporaryFolder folder;
  fakes::LogLines log;
  RecordFile file{folder / "records.json", "records.json", FileSystem::real(), &log.log()};
};

TEST_F(RecordFileTest, GivesItsRecordsAsTheyStand) {
  EXPECT_EQ(file.records(), JSONValue::Array());
  const JSONValue::Array records{1.0, JSONValue::Object{{"a", JSONValue::Array{"b"}}}};
  file.replace(records);
  EXPECT_EQ(file.records(), records);
  EXPECT_EQ(log.lines(), std::vector<std::string>());
}

TEST_F(RecordFileTest, IsSyncedUnlessThatIsNotAskedFor) {
  FaultyFileSystem files;
  std::string steps;
  files.tellAll(
      [&](const std::string& step, const std::filesystem::path&) { steps += step + " "; });
  const RecordFile told(folder / "told.json", "told.json", files, &log.log());
  told.replace({1.0});
  EXPECT_NE(steps.find("sync"), std::string::npos) << steps;
  steps.clear();
  told.replace({2.0}, AtomicFile::Sync::none);
  EXPECT_EQ(steps.find("sync"), std::string::npos) << steps;
  EXPECT_EQ(told.records(), JSONValue::Array{2.0});
}

TEST_F(RecordFileTest, GivesNoneOfAFileThatHoldsAnythingElse) {
  for (const char* const text : {"{}", "[1", ""}) {
    writeFile(file.url(), text);
    EXPECT_EQ(file.records(), JSONValue::Array()) << text;
  }
  ASSERT_EQ(log.lines().size(), 3U);
  EXPECT_EQ(log.lines().front(), "ERROR records.json malformed: the top level is not an array");
}

}  // namespace
}  // namespace quorin
