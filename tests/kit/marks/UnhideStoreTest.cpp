#include <gtest/gtest.h>

#include "kit/marks/UnhideStore.h"
#include "kit/platform/Platform.h"
#include "kit/platform/XDGFolders.h"
#include "tests/fakes/FaultyFileSystem.h"
#include "tests/fakes/Files.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin {
namespace {

namespace fs = std::filesystem;
using Record = UnhideStore::Record;
using Records = UnhideStore::Records;
using Names = std::vector<std::string>;

TEST(UnhideStoreRecord, IsEmptyWithoutRowsAndColumns) {
  EXPECT_TRUE((Record{"B", "S", {}, {}}.isEmpty()));
  EXPECT_FALSE((Record{"B", "S", {{1, 2}}, {}}.isEmpty()));
  EXPECT_FALSE((Record{"B", "S", {}, {{1, 2}}}.isEmpty()));
}

TEST(UnhideStoreRecord, GivesItsRuns) {
  EXPECT_EQ((Record{"B", "S", {{1, 2}}, {{3, 3}}}.runs()),
            (BridgeShapes::HiddenRuns{{{1, 2}}, {{3, 3}}}));
}

TEST(UnhideStoreMerge, JoinsRunsThatTouch) {
  EXPECT_EQ(UnhideStore::merge({"B", "S", {{5, 7}}, {}}, {{"B", "S", {{8, 9}}, {}}}),
            (Records{{"B", "S", {{5, 9}}, {}}}));
}

TEST(UnhideStoreMerge, SortsAndJoinsRowsAndColumnsEach) {
  EXPECT_EQ(UnhideStore::merge({"B", "S", {{1, 2}, {11, 12}}, {{4, 4}}},
                               {{"B", "S", {{20, 20}, {10, 11}}, {{2, 2}, {3, 3}}}}),
            (Records{{"B", "S", {{1, 2}, {10, 12}, {20, 20}}, {{2, 4}}}}));
}

TEST(UnhideStoreMerge, AppendsTheRecordOfAnotherSheetAsItIs) {
  const Records existing{{"A", "S", {{1, 1}}, {}}, {"B", "s", {{1, 1}}, {}}};
  EXPECT_EQ(UnhideStore::merge({"B", "S", {{8, 9}, {5, 7}}, {}}, existing),
            (Records{existing[0], existing[1], {"B", "S", {{8, 9}, {5, 7}}, {}}}));
}

TEST(UnhideStoreMerge, KeepsThePlaceOfARecord) {
  EXPECT_EQ(UnhideStore::merge({"A", "S", {{2, 2}}, {}},
                               {{"A", "S", {{1, 1}}, {}}, {"B", "S", {{1, 1}}, {}}}),
            (Records{{"A", "S", {{1, 2}}, {}}, {"B", "S", {{1, 1}}, {}}}));
}

class UnhideStoreTest : public testing::Test {
 protected:
  TemporaryFolder folder;
  const fs::path file = folder / "Quorin/unhidden.json";
  const fs::path logFile = folder / "quorin.log";
  FaultyFileSystem files;
  DiagLog log{logFile, 1'000'000, 500'000};
  const UnhideStore store{file, files, &log};
  const Records one{{"Plan.xlsx", "Q1", {{12, 14}}, {}}};
  const std::string oneText = R"([{"book":"Plan.xlsx","cols":[],"rows":[[12,14]],"sheet":"Q1"}])";

  void put(const std::string& text) {
    fs::create_directories(file.parent_path());
    writeFile(file, text);
  }
  std::string logged() {
    log.flush();
    const std::string text = readFile(logFile);
    fs::remove(logFile);
    return text.size() > 25 ? text.substr(25) : text;
  }
};

TEST_F(UnhideStoreTest, IsEmptyWithoutAFile) {
  EXPECT_EQ(store.load(), Records{});
  EXPECT_EQ(logged(), "");
}

TEST_F(UnhideStoreTest, WritesCompactJSONAndReadsItAgain) {
  store.record(one);
  EXPECT_EQ(readFile(file), oneText);
  EXPECT_EQ(store.load(), one);
}

TEST_F(UnhideStoreTest, ReadsTheKeysInAnyOrderAndIgnoresOthers) {
  put(R"([{"rows":[[12,14.0]],"version":2,"sheet":"Q1","cols":[],"book":"Plan.xlsx"}])");
  EXPECT_EQ(store.load(), one);
}

TEST_F(UnhideStoreTest, KeepsOneSheetNameOfTwoWorkbooksApart) {
  const Records two{{"A", "S", {{1, 1}}, {{2, 3}}}, {"B", "S", {}, {{16384, 16384}}}};
  store.record(two);
  EXPECT_EQ(store.load(), two);
}

TEST_F(UnhideStoreTest, DropsEmptyRecordsAndDeletesTheFileWithTheLastOne) {
  store.record({{"B", "S", {}, {}}, one[0]});
  EXPECT_EQ(store.load(), one);
  store.record({{"B", "S", {}, {}}});
  EXPECT_FALSE(fs::exists(file));
  put(oneText);
  store.record({});
  EXPECT_FALSE(fs::exists(file));
}

TEST_F(UnhideStoreTest, DropsMoreRowsThanOneSheetCanHave) {
  put(R"([{"book":"B","sheet":"S","rows":[[2,40000]],"cols":[[1,200]]},)"
      R"({"book":"Plan.xlsx","sheet":"Q1","rows":[[12,14]],"cols":[[1,100],[300,400]]}])");
  const Records left{{"B", "S", {}, {{1, 200}}}, one[0]};
  EXPECT_EQ(store.load(), left);
  EXPECT_EQ(logged().find("ERROR unhidden.json: dropped rows of sheet=S: 39999 of at most 200"),
            0U);
  EXPECT_EQ(store.load(), left);
  EXPECT_EQ(logged(), "") << "still in the file";
  put(R"([{"book":"B","sheet":"S","rows":[[1,100],[101,201]],"cols":[]}])");
  EXPECT_EQ(store.loadToReplace(), Records());
  EXPECT_FALSE(fs::exists(file));
}

TEST_F(UnhideStoreTest, TakesAMalformedFileForEmptyAndKeepsIt) {
  const std::pair<const char*, const char*> cases[] = {
      {"{}", "the top level is not an array"},
      {R"([{"book":"B","sheet":"S","rows":[]}])", "a record lacks \"cols\""},
      {R"([{"book":"B","sheet":"S","cols":[]}])", "a record lacks \"rows\""},
      {R"([{"book":"B","rows":[],"cols":[]}])", "a record lacks \"sheet\""},
      {R"([{"sheet":"S","rows":[],"cols":[]}])", "a record lacks \"book\""},
      {R"([{"book":"B","sheet":"S","rows":null,"cols":[]}])", "\"rows\" is not an array"},
      {R"([{"book":"B","sheet":"S","rows":[1],"cols":[]}])", "a run in \"rows\" is not an array"},
      {R"([{"book":"B","sheet":"S","rows":[[1]],"cols":[]}])",
       "a run in \"rows\" has not two ends"},
      {R"([{"book":"B","sheet":"S","rows":[],"cols":[[1,2,3]]}])",
       "a run in \"cols\" has not two ends"},
      {R"([{"book":"B","sheet":"S","rows":[],"cols":[[1,"2"]]}])",
       "an end of a run in \"cols\" is not an integer"},
      {R"([{"book":"B","sheet":"S","rows":[[1,2.5]],"cols":[]}])",
       "an end of a run in \"rows\" is not an integer"},
      {R"([{"book":"B","sheet":"S","rows":[[0,1]],"cols":[]}])",
       "a run in \"rows\" is outside of every sheet"},
      {R"([{"book":"B","sheet":"S","rows":[[1,1e15]],"cols":[]}])",
       "a run in \"rows\" is outside of every sheet"},
      {R"([{"book":"B","sheet":"S","rows":[],"cols":[[3,2]]}])",
       "a run in \"cols\" is outside of every sheet"},
      {R"([{"book":"B","sheet":"S","rows":[],"cols":[[1,16385]]}])",
       "a run in \"cols\" is outside of every sheet"},
  };
  for (const auto& [text, why] : cases) {
    put(text);
    EXPECT_EQ(store.load(), Records{}) << text;
    EXPECT_EQ(readFile(file), text);
    EXPECT_EQ(logged(), std::string("ERROR unhidden.json malformed: ") + why + "\n") << text;
  }
}

TEST_F(UnhideStoreTest, ThrowsWhateverStepFailsAndKeepsTheFile) {
  store.record(one);
  const Names steps = files.steps();
  EXPECT_EQ(steps.size(), 8u);
  for (std::size_t step = 0; step + 1 < steps.size(); ++step) {
    put(oneText);
    FaultyFileSystem faulty;
    faulty.failAt(step, EIO);
    EXPECT_THROW(UnhideStore(file, faulty, &log).record({{"New", "S", {{1, 1}}, {}}}), FileError);
    EXPECT_EQ(store.load(), one) << steps[step];
    EXPECT_EQ(filesIn(file.parent_path()), Names{"unhidden.json"}) << steps[step];
  }
}

TEST_F(UnhideStoreTest, HasTheOldOrTheNewRecordsWhereverTheProcessDies) {
  for (std::size_t step = 0; step < 8; ++step) {
    fs::remove_all(file.parent_path());
    put(oneText);
    EXPECT_TRUE(killedDuring([&] {
      FaultyFileSystem deadly;
      deadly.killAt(step);
      UnhideStore(file, deadly, &log).record({{"New", "S", {{1, 1}}, {}}});
    }));
    EXPECT_EQ(store.load(), step < 7 ? one : (Records{{"New", "S", {{1, 1}}, {}}})) << step;
  }
}

TEST_F(UnhideStoreTest, TakesAHugeFileForMalformed) {
  put("[");
  fs::resize_file(file, std::uintmax_t{1} << 36);  // a hole: takes no room
  EXPECT_EQ(store.load(), Records{});
  EXPECT_EQ(logged(),
            "ERROR unhidden.json malformed: The JSON text is longer than 16777216 bytes.\n");
}

TEST_F(UnhideStoreTest, ReplacesAReadOnlyFileButNotInAReadOnlyFolder) {
  put("[]");
  fs::permissions(folder.path(), fs::perms(0777));
  fs::permissions(file.parent_path(), fs::perms(0777));
  fs::permissions(file, fs::perms(0444));
  {
    const OrdinaryUser user;
    store.record(one);
  }
  EXPECT_EQ(store.load(), one);
  fs::permissions(file, fs::perms(0644));
  fs::permissions(file.parent_path(), fs::perms(0555));
  const OrdinaryUser user;
  EXPECT_THROW(store.record({{"New", "S", {{1, 1}}, {}}}), FileError);
  store.record({});
  EXPECT_EQ(store.load(), one);
}

TEST_F(UnhideStoreTest, WritesThroughASymbolicLink) {
  fs::create_directories(file.parent_path());
  writeFile(folder / "shared.json", "[]");
  fs::create_symlink("../shared.json", file);
  store.record(one);
  EXPECT_TRUE(fs::is_symlink(file));
  EXPECT_EQ(readFile(folder / "shared.json"), oneText);
  store.clear();
  EXPECT_EQ(store.load(), Records{});
}

TEST_F(UnhideStoreTest, ClearsWithoutAWord) {
  put(oneText);
  store.clear();
  store.clear();
  EXPECT_FALSE(fs::exists(file));
  EXPECT_EQ(logged(), "");
}

TEST_F(UnhideStoreTest, ThrowsForTextThatIsNotValidUTF8) {
  EXPECT_THROW(store.record({{"B", "\xFF", {{1, 1}}, {}}}), RecordError);
  EXPECT_FALSE(fs::exists(file));
}

TEST_F(UnhideStoreTest, DoesNotGiveWayToAFileThatCannotBeRead) {
  EXPECT_EQ(store.loadToReplace(), Records{}) << "no file";
  put(oneText);
  EXPECT_EQ(store.loadToReplace(), one);
  FaultyFileSystem unreadable;
  unreadable.failEvery("read", EIO);
  EXPECT_THROW(UnhideStore(file, unreadable, &log).loadToReplace(), FileError);
  put("{}");
  EXPECT_EQ(store.loadToReplace(), Records{});
  EXPECT_NE(logged(), "");
}

TEST_F(UnhideStoreTest, KnowsTheRecordsOfANewerVersion) {
  std::string newer = oneText;
  newer.insert(newer.size() - 2, R"(,"since":{"version":[9,"x",null]})");
  put(newer);
  EXPECT_EQ(store.load(), one);
  EXPECT_EQ(logged(), "");
  put(R"({"version":9,"records":[]})");
  EXPECT_EQ(store.load(), Records{});
  EXPECT_NE(logged(), "");
  EXPECT_TRUE(fs::exists(file)) << "it stays for who can read it";
}

TEST(UnhideStore, LivesBesideTheSettings) {
  auto platform = std::make_unique<Platform>();
  platform->folders = std::make_unique<XDGFolders>(Environment{{"XDG_DATA_HOME", "/data"}});
  auto before = Platform::install(std::move(platform));
  EXPECT_EQ(UnhideStore().url(), "/data/Quorin/unhidden.json");
  Platform::install(std::move(before));
}

}  // namespace
}  // namespace quorin
