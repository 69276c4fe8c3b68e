#include <gtest/gtest.h>

#include "kit/marks/HighlightStore.h"
#include "kit/platform/Platform.h"
#include "kit/platform/XDGFolders.h"
#include "tests/fakes/FaultyFileSystem.h"
#include "tests/fakes/Files.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin {
namespace {

namespace fs = std::filesystem;
using Record = HighlightStore::Record;
using Records = HighlightStore::Records;
using Names = std::vector<std::string>;

TEST(HighlightStoreMerge, DropsDuplicatesOfANewRecord) {
  EXPECT_EQ(HighlightStore::merge({{"B", "S", {"$A$1", "$A$1", "$B$2"}}}, {}),
            (Records{{"B", "S", {"$A$1", "$B$2"}}}));
}

TEST(HighlightStoreMerge, ChangesNothingWhereNothingIsNew) {
  const Records existing{{"B", "S", {"$A$1"}, std::nullopt, true}};
  EXPECT_EQ(HighlightStore::merge(existing, existing), existing);
  EXPECT_EQ(HighlightStore::merge({}, existing), existing);
}

TEST(HighlightStoreMerge, EndsSingleWhereAnAddressIsNew) {
  const Records existing{{"B", "S", {"$A$1"}, {{1, 2, 3}}, true}};
  EXPECT_EQ(HighlightStore::merge({{"B", "S", {"$C$3"}}}, existing),
            (Records{{"B", "S", {"$A$1", "$C$3"}, {{1, 2, 3}}, std::nullopt}}));
  EXPECT_EQ(HighlightStore::merge({{"B", "S", {"$C$3"}, {{9, 9, 9}}, true}}, existing),
            (Records{{"B", "S", {"$A$1", "$C$3"}, {{1, 2, 3}}, std::nullopt}}));
}

TEST(HighlightStoreMerge, TakesColourAndSingleOfANewRecord) {
  const Records incoming{{"B", "S", {"$A$1"}, {{1, 2, 3}}, true}};
  EXPECT_EQ(HighlightStore::merge(incoming, {}), incoming);
}

TEST(HighlightStoreMerge, MergesIncomingRecordsWithEachOther) {
  EXPECT_EQ(HighlightStore::merge({{"B", "S", {"$A$1"}, std::nullopt, true},
                                   {"B", "T", {"$A$1"}},
                                   {"B", "S", {"$B$2", "$A$1", "$B$2"}}},
                                  {}),
            (Records{{"B", "S", {"$A$1", "$B$2"}}, {"B", "T", {"$A$1"}}}));
}

TEST(HighlightStoreMerge, KeepsOtherSheetsAndWorkbooksApart) {
  const Records all{{"B", "Q1", {"$A$1"}}, {"B", "q1", {"$A$1"}}, {"b", "Q1", {"$A$1"}}};
  EXPECT_EQ(HighlightStore::merge(all, {}), all);
}

TEST(HighlightStoreMerge, KeepsPlacesAndAppendsNewRecords) {
  const Records existing{{"B", "1", {"a"}}, {"B", "2", {"a"}}, {"B", "3", {"a"}}};
  EXPECT_EQ(
      HighlightStore::merge({{"B", "5", {"a"}}, {"B", "2", {"b"}}, {"B", "4", {"a"}}}, existing),
      (Records{{"B", "1", {"a"}},
               {"B", "2", {"a", "b"}},
               {"B", "3", {"a"}},
               {"B", "5", {"a"}},
               {"B", "4", {"a"}}}));
}

TEST(HighlightStoreMerge, UsesTheFirstOfTwoRecordsOfOneSheet) {
  EXPECT_EQ(
      HighlightStore::merge({{"B", "S", {"$C$3"}}}, {{"B", "S", {"$A$1"}}, {"B", "S", {"$C$3"}}}),
      (Records{{"B", "S", {"$A$1", "$C$3"}}, {"B", "S", {"$C$3"}}}));
}

TEST(HighlightStoreChunks, CutsConsecutivePieces) {
  using Pieces = std::vector<std::vector<std::string>>;
  EXPECT_EQ(HighlightStore::chunks({"1", "2", "3", "4", "5"}, 2),
            (Pieces{{"1", "2"}, {"3", "4"}, {"5"}}));
  EXPECT_EQ(HighlightStore::chunks({"1", "2", "3", "4"}, 2), (Pieces{{"1", "2"}, {"3", "4"}}));
  EXPECT_EQ(HighlightStore::chunks({"1"}, 40), (Pieces{{"1"}}));
  EXPECT_EQ(HighlightStore::chunks({"1", "2"}, 1), (Pieces{{"1"}, {"2"}}));
  EXPECT_EQ(HighlightStore::chunks({}, 2), Pieces{});
}

TEST(HighlightStoreChunksDeathTest, StopsForASizeOfZero) {
  EXPECT_DEATH(HighlightStore::chunks({"1"}, 0), "pieces of at least one element");
}

class HighlightStoreTest : public testing::Test {
 protected:
  TemporaryFolder folder;
  const fs::path file = folder / "Quorin/highlights.json";
  const fs::path logFile = folder / "quorin.log";
  FaultyFileSystem files;
  DiagLog log{logFile, 1'000'000, 500'000};
  const HighlightStore store{file, files, &log};
  const Records one{{"Plan.xlsx", "Q1", {"$B$2", "$C$3:$D$9"}, {{255, 0, 255}}, true}};
  const std::string oneText =
      R"([{"addrs":["$B$2","$C$3:$D$9"],"book":"Plan.xlsx","rgb":[255,0,255],"sheet":"Q1",)"
      R"("single":true}])";

  void put(const std::string& text) {
    fs::create_directories(file.parent_path());
    writeFile(file, text);
  }
  // The one log line without its time, if any.
  std::string logged() {
    log.flush();
    const std::string text = readFile(logFile);
    fs::remove(logFile);
    return text.size() > 25 ? text.substr(25) : text;
  }
};

TEST_F(HighlightStoreTest, IsEmptyWithoutAFile) {
  EXPECT_EQ(store.load(), Records{});
  EXPECT_EQ(logged(), "");
  EXPECT_FALSE(fs::exists(file.parent_path()));
}

TEST_F(HighlightStoreTest, WritesCompactJSONAndReadsItAgain) {
  store.recordApplied(one);
  EXPECT_EQ(readFile(file), oneText);
  EXPECT_EQ(store.load(), one);
  EXPECT_EQ(filesIn(file.parent_path()), Names{"highlights.json"});
}

TEST_F(HighlightStoreTest, WritesColourAndSingleOnlyWhenPresent) {
  const Records records{{"B", "a/b \"c\" \u00E9", {"$A$1"}},
                        {"B", "T", {"$A$1"}, std::vector<std::int64_t>{}, false}};
  store.recordApplied(records);
  EXPECT_EQ(readFile(file),
            R"([{"addrs":["$A$1"],"book":"B","sheet":"a\/b \"c\" )"
            "\u00E9"
            R"("},{"addrs":["$A$1"],"book":"B","rgb":[],"sheet":"T","single":false}])");
  EXPECT_EQ(store.load(), records);
}

TEST_F(HighlightStoreTest, ReadsTheKeysInAnyOrderAndIgnoresOthers) {
  put(R"([{"single":true,"rgb":[255,0,255.0],"sheet":"Q1","addrs":["$B$2","$C$3:$D$9"],)"
      R"("book":"Plan.xlsx","version":7,"later":{"x":[1]}}])");
  EXPECT_EQ(store.load(), one);
  put(R"([{"book":"B","sheet":"S","addrs":[],"rgb":null,"single":null}])");
  EXPECT_EQ(store.load(), (Records{{"B", "S", {}}}));
  EXPECT_EQ(logged(), "");
}

TEST_F(HighlightStoreTest, ReplacesTheWholeContent) {
  put(R"([{"book":"Old","sheet":"S","addrs":["$A$1"]}])");
  store.recordApplied(one);
  EXPECT_EQ(store.load(), one);
}

TEST_F(HighlightStoreTest, DropsRecordsWithoutAddresses) {
  store.recordApplied({{"B", "S", {}}, one[0], {"B", "T", {}}});
  EXPECT_EQ(store.load(), one);
}

TEST_F(HighlightStoreTest, DeletesTheFileWithTheLastRecord) {
  put(oneText);
  store.recordApplied({{"B", "S", {}}});
  EXPECT_FALSE(fs::exists(file));
  put(oneText);
  store.recordApplied({});
  EXPECT_FALSE(fs::exists(file));
  store.recordApplied({});
}

TEST_F(HighlightStoreTest, ClearsWithoutAWord) {
  put(oneText);
  store.clear();
  EXPECT_FALSE(fs::exists(file));
  store.clear();
  FaultyFileSystem failing;
  failing.failEvery("remove", EACCES);
  put(oneText);
  HighlightStore(file, failing, &log).clear();
  EXPECT_EQ(readFile(file), oneText);
  EXPECT_EQ(logged(), "");
}

TEST_F(HighlightStoreTest, TakesAMalformedFileForEmptyAndKeepsIt) {
  const std::pair<const char*, const char*> cases[] = {
      {"{}", "the top level is not an array"},
      {"null", "the top level is not an array"},
      {"", "The document is empty."},
      {"[1]", "a record lacks \"book\""},
      {R"([{"sheet":"S","addrs":[]}])", "a record lacks \"book\""},
      {R"([{"book":"B","addrs":[]}])", "a record lacks \"sheet\""},
      {R"([{"book":"B","sheet":"S"}])", "a record lacks \"addrs\""},
      {R"([{"book":1,"sheet":"S","addrs":[]}])", "\"book\" is not text"},
      {R"([{"book":"B","sheet":null,"addrs":[]}])", "\"sheet\" is not text"},
      {R"([{"book":"B","sheet":"S","addrs":"$A$1"}])", "\"addrs\" is not an array"},
      {R"([{"book":"B","sheet":"S","addrs":["$A$1",2]}])", "an address in \"addrs\" is not text"},
      {R"([{"book":"B","sheet":"S","addrs":[],"rgb":1}])", "\"rgb\" is not an array"},
      {R"([{"book":"B","sheet":"S","addrs":[],"rgb":[1.5]}])",
       "a part of \"rgb\" is not an integer"},
      {R"([{"book":"B","sheet":"S","addrs":[],"rgb":["1"]}])",
       "a part of \"rgb\" is not an integer"},
      {R"([{"book":"B","sheet":"S","addrs":[],"single":1}])", "\"single\" is not a boolean"},
      {"[\"\xFF\"]", "The JSON text is not valid UTF-8."},
  };
  for (const auto& [text, why] : cases) {
    put(text);
    EXPECT_EQ(store.load(), Records{}) << text;
    EXPECT_EQ(readFile(file), text);
    EXPECT_EQ(logged(), std::string("ERROR highlights.json malformed: ") + why + "\n") << text;
  }
}

TEST_F(HighlightStoreTest, TakesAWholeFileForMalformedWhereOneRecordIs) {
  put(R"([{"book":"B","sheet":"S","addrs":["$A$1"]},{"book":"B","sheet":"T"}])");
  EXPECT_EQ(store.load(), Records{});
  EXPECT_EQ(logged(), "ERROR highlights.json malformed: a record lacks \"addrs\"\n");
}

TEST_F(HighlightStoreTest, ReplacesAMalformedFile) {
  put("[1,2");
  store.recordApplied(one);
  EXPECT_EQ(store.load(), one);
}

TEST_F(HighlightStoreTest, TakesHugeAndDeepFilesForMalformed) {
  put("[");
  fs::resize_file(file, std::uintmax_t{1} << 36);  // a hole: takes no room
  EXPECT_EQ(store.load(), Records{});
  EXPECT_EQ(logged(),
            "ERROR highlights.json malformed: The JSON text is longer than 16777216 bytes.\n");
  fs::remove(file);
  put(std::string(1'000'000, '['));
  EXPECT_EQ(store.load(), Records{});
  EXPECT_EQ(
      logged(),
      "ERROR highlights.json malformed: The JSON text is nested more than 512 levels deep.\n");
}

TEST_F(HighlightStoreTest, NeverWritesWhatItCouldNotReadAgain) {
  put(oneText);
  const Records huge{{"B", "S", std::vector<std::string>(20, std::string(1'000'000, 'A'))}};
  EXPECT_THROW(store.recordApplied(huge), FileError);
  EXPECT_EQ(readFile(file), oneText);
  const Records large{{"B", "S", std::vector<std::string>(1'100'000, "$A$1")}};
  store.recordApplied(large);
  EXPECT_EQ(store.load(), large);
}

TEST_F(HighlightStoreTest, ThrowsForTextThatIsNotValidUTF8AndKeepsTheFile) {
  put(oneText);
  EXPECT_THROW(store.recordApplied({{"\xFF", "S", {"$A$1"}}}), RecordError);
  EXPECT_THROW(store.recordApplied({{"B", "S", {"\xC0\xAF"}}}), RecordError);
  EXPECT_EQ(readFile(file), oneText);
}

TEST_F(HighlightStoreTest, ThrowsWhateverStepFailsAndKeepsTheFile) {
  store.recordApplied(one);
  const Names steps = files.steps();
  EXPECT_EQ(steps, (Names{"makeFolders", "status", "create", "append", "sync", "close", "rename",
                          "syncFolder"}));
  for (std::size_t step = 0; step < steps.size(); ++step) {
    put(oneText);
    FaultyFileSystem faulty;
    faulty.failAt(step, ENOSPC);
    const HighlightStore failing(file, faulty, &log);
    EXPECT_THROW(failing.recordApplied({{"New", "S", {"$A$1"}}}), FileError) << steps[step];
    // The last step only decides whether the new content outlasts a power failure.
    EXPECT_EQ(store.load(), steps[step] == "syncFolder" ? (Records{{"New", "S", {"$A$1"}}}) : one);
    EXPECT_EQ(filesIn(file.parent_path()), Names{"highlights.json"}) << steps[step];
  }
}

TEST_F(HighlightStoreTest, HasTheOldOrTheNewRecordsWhereverTheProcessDies) {
  for (std::size_t step = 0; step < 8; ++step) {
    fs::remove_all(file.parent_path());
    put(oneText);
    EXPECT_TRUE(killedDuring([&] {
      FaultyFileSystem deadly;
      deadly.killAt(step);
      HighlightStore(file, deadly, &log).recordApplied({{"New", "S", {"$A$1"}}});
    }));
    EXPECT_EQ(store.load(), step < 7 ? one : (Records{{"New", "S", {"$A$1"}}})) << step;
    store.recordApplied(one);
    EXPECT_EQ(filesIn(file.parent_path()), Names{"highlights.json"}) << step;
  }
}

TEST_F(HighlightStoreTest, IsEmptyWithoutAWordWhereTheFileCannotBeRead) {
  fs::create_directories(file);
  EXPECT_EQ(store.load(), Records{});
  EXPECT_EQ(logged(), "");
  EXPECT_THROW(store.recordApplied(one), FileError);
  fs::remove(file);
  put(oneText);
  FaultyFileSystem unreadable;
  unreadable.failEvery("read", EACCES);
  EXPECT_EQ(HighlightStore(file, unreadable, &log).load(), Records{});
  EXPECT_EQ(logged(), "");
}

TEST_F(HighlightStoreTest, ReplacesAReadOnlyFile) {
  put("[]");
  fs::permissions(folder.path(), fs::perms(0777));
  fs::permissions(file.parent_path(), fs::perms(0777));
  fs::permissions(file, fs::perms(0444));
  const OrdinaryUser user;
  store.recordApplied(one);
  EXPECT_EQ(store.load(), one);
}

TEST_F(HighlightStoreTest, ThrowsInAReadOnlyFolderAndClearsNothing) {
  put(oneText);
  fs::permissions(folder.path(), fs::perms(0777));
  fs::permissions(file, fs::perms(0644));
  fs::permissions(file.parent_path(), fs::perms(0555));
  const OrdinaryUser user;
  EXPECT_THROW(store.recordApplied({{"New", "S", {"$A$1"}}}), FileError);
  store.recordApplied({});
  EXPECT_EQ(store.load(), one);
}

TEST_F(HighlightStoreTest, WritesThroughASymbolicLink) {
  fs::create_directories(file.parent_path());
  writeFile(folder / "shared.json", "[]");
  fs::create_symlink("../shared.json", file);
  store.recordApplied(one);
  EXPECT_TRUE(fs::is_symlink(file));
  EXPECT_EQ(readFile(folder / "shared.json"), oneText);
  EXPECT_EQ(store.load(), one);
  store.clear();
  EXPECT_FALSE(fs::is_symlink(file));
  EXPECT_EQ(store.load(), Records{});
}

TEST_F(HighlightStoreTest, DoesNotGiveWayToAFileThatCannotBeRead) {
  EXPECT_EQ(store.loadToReplace(), Records{}) << "no file";
  put(oneText);
  EXPECT_EQ(store.loadToReplace(), one);
  FaultyFileSystem unreadable;
  unreadable.failEvery("read", EIO);
  EXPECT_THROW(HighlightStore(file, unreadable, &log).loadToReplace(), FileError);
  put("{}");
  EXPECT_EQ(store.loadToReplace(), Records{});
  EXPECT_NE(logged(), "");
}

TEST_F(HighlightStoreTest, KnowsTheRecordsOfANewerVersion) {
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

TEST(HighlightStore, LivesBesideTheSettings) {
  auto platform = std::make_unique<Platform>();
  platform->folders = std::make_unique<XDGFolders>(Environment{{"XDG_DATA_HOME", "/data"}});
  auto before = Platform::install(std::move(platform));
  EXPECT_EQ(HighlightStore().url(), "/data/Quorin/highlights.json");
  Platform::install(std::move(before));
}

}  // namespace
}  // namespace quorin
