// QXConfig's dealings with the file: loading, merging, and every way in which they go wrong.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "kit/support/DiagLog.h"
#include "kit/support/QXConfig.h"
#include "tests/fakes/FaultyFileSystem.h"
#include "tests/fakes/Files.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

const std::string defaults =
    R"({"debounceMs":150,"depsKeyCode":1,"depsModifiers":2560,"highlightRGB":[255,0,255],)"
    R"("mapKeyCode":2,"mapModifiers":2560,"pollMs":300,"summonKeyCode":0,"summonModifiers":2560})";

class QXConfigFile : public testing::Test {
 protected:
  TemporaryFolder folder;
  const fs::path file = folder / "Quorin/config.json";
  const fs::path logFile = folder / "quorin.log";
  FaultyFileSystem files;

  void put(const std::string& text) {
    fs::create_directories(file.parent_path());
    writeFile(file, text);
  }
  void openToAll() {
    fs::permissions(folder.path(), fs::perms(0777));
    fs::permissions(file.parent_path(), fs::perms(0777));
  }
  QXConfig load() {
    DiagLog log(logFile, 100000, 50000);
    return QXConfig::load(file, files, log);
  }
  // What was logged, without the times.
  std::string logged() const {
    std::string text = readFile(logFile);
    if (text.size() > 25) text.erase(0, 25);
    return text;
  }
  int mergeError(const QXConfig::Patch& patch) {
    try {
      QXConfig::merge(patch, file, files);
    } catch (const FileError& error) {
      return error.code().value();
    }
    return 0;
  }
};

const std::string malformedLine = "CONFIG malformed config at load, using defaults\n";

TEST_F(QXConfigFile, LoadWritesTheDefaultsWhereThereIsNoFile) {
  EXPECT_EQ(load(), QXConfig());
  EXPECT_EQ(readFile(file), defaults);
  EXPECT_EQ(filesIn(file.parent_path()), Names{"config.json"});
  EXPECT_EQ(logged(), "");
}

TEST_F(QXConfigFile, LoadReadsTheFileAndLeavesItAlone) {
  put(R"({"pollMs": 20, "other": 1.0})");
  EXPECT_EQ(load(), QXConfig());
  EXPECT_EQ(readFile(file), R"({"pollMs": 20, "other": 1.0})");
  EXPECT_EQ(logged(), "");
}

TEST_F(QXConfigFile, LoadReportsAMalformedFileAndLeavesItAlone) {
  for (const char* text : {"[1,2", "", "[]", R"({"pollMs": "fast"})", "{\"a\": \"\xFF\"}"}) {
    fs::remove(logFile);
    put(text);
    EXPECT_EQ(load(), QXConfig()) << text;
    EXPECT_EQ(readFile(file), text);
    EXPECT_EQ(logged(), malformedLine) << text;
  }
}

TEST_F(QXConfigFile, LoadTakesHugeAndDeepFilesForMalformed) {
  const std::string deep = "{\"a\":" + std::string(100'000, '[') + std::string(100'000, ']') + "}";
  put(deep);
  EXPECT_EQ(load(), QXConfig());
  EXPECT_EQ(readFile(file), deep);
  put("{}");
  fs::resize_file(file, std::uintmax_t{1} << 36);  // a hole: takes no room
  EXPECT_EQ(load(), QXConfig());
  EXPECT_EQ(fs::file_size(file), std::uintmax_t{1} << 36);
  EXPECT_EQ(logged().substr(0, malformedLine.size()), malformedLine);
}

TEST_F(QXConfigFile, LoadGivesTheDefaultsWhateverStepFails) {
  for (std::size_t step = 0; step < 10; ++step) {
    fs::remove_all(file.parent_path());
    FaultyFileSystem faulty;
    faulty.failAt(step, ENOSPC);
    DiagLog log(logFile, 100000, 50000);
    EXPECT_EQ(QXConfig::load(file, faulty, log), QXConfig());
    if (fs::exists(file)) {
      EXPECT_EQ(readFile(file), defaults) << step;
    }
    if (fs::exists(file.parent_path())) {
      EXPECT_LE(filesIn(file.parent_path()).size(), 1u) << step;
    }
  }
  EXPECT_EQ(logged(), "");
}

TEST_F(QXConfigFile, LoadLeavesAnUnreadableFileAlone) {
  put("{\"pollMs\": 500}");
  openToAll();
  fs::permissions(file, fs::perms(0));
  {
    const OrdinaryUser user;
    DiagLog log(logFile, 100000, 50000);
    EXPECT_EQ(QXConfig::load(file, files, log), QXConfig());
  }
  fs::permissions(file, fs::perms(0600));
  EXPECT_EQ(readFile(file), "{\"pollMs\": 500}");
  EXPECT_EQ(logged(), "");
}

TEST_F(QXConfigFile, LoadGivesTheDefaultsWhereAFolderOrAPipeStandsInItsPlace) {
  fs::create_directories(file);
  EXPECT_EQ(load(), QXConfig());
  EXPECT_TRUE(fs::is_directory(file));
  fs::remove(file);
  ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
  EXPECT_EQ(load(), QXConfig());
  EXPECT_TRUE(fs::is_fifo(file));
  EXPECT_EQ(logged(), "");
}

TEST_F(QXConfigFile, LoadGivesTheDefaultsWhereTheFolderIsAFile) {
  writeFile(folder / "Quorin", "");
  EXPECT_EQ(load(), QXConfig());
  EXPECT_TRUE(fs::is_regular_file(folder / "Quorin"));
}

TEST_F(QXConfigFile, MergeMakesTheFolderAndTheFile) {
  QXConfig::merge({{"pollMs", 400}, {"a/b", "x/y"}, {"absent", std::nullopt}}, file, files);
  EXPECT_EQ(readFile(file), "{\n  \"a\\/b\": \"x\\/y\",\n  \"pollMs\": 400\n}\n");
}

TEST_F(QXConfigFile, MergeKeepsEveryOtherKeyAsItWas) {
  put(R"({"zebra": 9007199254740993, "price": 0.10, "big": 123456789012345678901234567890,)"
      R"( "exp": 1E+05, "flag": true, "none": null, "nest": {"b": [1.0, -0.0], "a": "\u00e9"},)"
      R"( "pollMs": 500})");
  QXConfig::merge({{"pollMs", 250}}, file, files);
  EXPECT_EQ(readFile(file),
            "{\n"
            "  \"big\": 123456789012345678901234567890,\n"
            "  \"exp\": 1E+05,\n"
            "  \"flag\": true,\n"
            "  \"nest\": {\n"
            "    \"a\": \"\u00E9\",\n"
            "    \"b\": [\n"
            "      1.0,\n"
            "      -0.0\n"
            "    ]\n"
            "  },\n"
            "  \"none\": null,\n"
            "  \"pollMs\": 250,\n"
            "  \"price\": 0.10,\n"
            "  \"zebra\": 9007199254740993\n"
            "}\n");
}

TEST_F(QXConfigFile, MergeRemovesAKeyWhoseValueIsAbsent) {
  put(R"({"lastLaunchedAt": "x", "other": 1})");
  QXConfig::merge({{"lastLaunchedAt", std::nullopt}, {"never there", std::nullopt}}, file, files);
  EXPECT_EQ(readFile(file), "{\n  \"other\": 1\n}\n");
}

TEST_F(QXConfigFile, MergeWritesTextNumbersArraysAndDictionaries) {
  put("{}");
  QXConfig::merge({{"a", JSONValue::Array{1, 2.5}},
                   {"d", JSONValue::Object{{"k", "v"}}},
                   {"n", -3},
                   {"t", "text"}},
                  file, files);
  EXPECT_EQ(readFile(file),
            "{\n  \"a\": [\n    1,\n    2.5\n  ],\n  \"d\": {\n    \"k\": \"v\"\n  },\n"
            "  \"n\": -3,\n  \"t\": \"text\"\n}\n");
}

TEST_F(QXConfigFile, MergeLeavesABrokenFileUntouched) {
  for (const char* text : {"[1,2", "[1,2]", "\"x\"", "", "{\"a\": 1,}", "{\"a\": \"\xFF\"}"}) {
    put(text);
    try {
      QXConfig::saveHighlightRGB({1, 2, 3}, file, files);
      ADD_FAILURE() << text;
    } catch (const QXConfigError& error) {
      EXPECT_STREQ(QXConfigError::domain, "QXConfig");
      EXPECT_EQ(error.code(), 1);
      EXPECT_STREQ(error.what(), "config.json is not valid JSON; left untouched");
    }
    EXPECT_EQ(readFile(file), text);
  }
}

TEST_F(QXConfigFile, MergeRefusesTextThatIsNotValidUTF8) {
  put("{}");
  EXPECT_THROW(QXConfig::merge({{"a", "\xFF"}}, file, files), std::invalid_argument);
  EXPECT_THROW(QXConfig::merge({{"\xFF", 1}}, file, files), std::invalid_argument);
  EXPECT_EQ(readFile(file), "{}");
}

TEST_F(QXConfigFile, SavingAColourKeepsOtherKeysAndIsLoadedAgain) {
  put(R"({"mine": {"deep": [1.50]}, "pollMs": 500})");
  QXConfig::saveHighlightRGB({1, 2, 3}, file, files);
  EXPECT_EQ(readFile(file),
            "{\n  \"highlightRGB\": [\n    1,\n    2,\n    3\n  ],\n"
            "  \"mine\": {\n    \"deep\": [\n      1.50\n    ]\n  },\n  \"pollMs\": 500\n}\n");
  const QXConfig config = load();
  EXPECT_EQ(config.highlightRGB, (std::vector<std::int64_t>{1, 2, 3}));
  EXPECT_EQ(config.pollMs, 500);
}

TEST_F(QXConfigFile, SavingDoesNotValidateTheColour) {
  QXConfig::saveHighlightRGB({1, 300}, file, files);
  EXPECT_EQ(readFile(file), "{\n  \"highlightRGB\": [\n    1,\n    300\n  ]\n}\n");
  EXPECT_EQ(load().highlightRGB, (std::vector<std::int64_t>{255, 0, 255}));
}

TEST_F(QXConfigFile, MergeThrowsWhateverStepFailsAndKeepsTheFile) {
  put(R"({"a": 1})");
  QXConfig::merge({{"b", 2}}, file, files);
  const Names steps = files.steps();
  EXPECT_EQ(steps, (Names{"read", "makeFolders", "status", "create", "append", "sync", "close",
                          "rename", "syncFolder"}));
  for (std::size_t step = 1; step + 1 < steps.size(); ++step) {
    put(R"({"a": 1})");
    FaultyFileSystem faulty;
    faulty.failAt(step, ENOSPC);
    EXPECT_THROW(QXConfig::merge({{"b", 2}}, file, faulty), FileError) << steps[step];
    EXPECT_EQ(readFile(file), R"({"a": 1})") << steps[step];
    EXPECT_EQ(filesIn(file.parent_path()), Names{"config.json"}) << steps[step];
  }
}

TEST_F(QXConfigFile, MergeHasTheOldOrTheNewFileWhereverTheProcessDies) {
  for (std::size_t step = 0; step < 9; ++step) {
    fs::remove_all(file.parent_path());  // with what the process before left
    put(R"({"a": 1})");
    EXPECT_TRUE(killedDuring([&] {
      FaultyFileSystem deadly;
      deadly.killAt(step);
      QXConfig::merge({{"b", 2}}, file, deadly);
    }));
    EXPECT_EQ(readFile(file), step < 8 ? R"({"a": 1})" : "{\n  \"a\": 1,\n  \"b\": 2\n}\n") << step;
  }
}

TEST_F(QXConfigFile, MergeThrowsWhereAFolderStandsInItsPlace) {
  fs::create_directories(file);
  EXPECT_EQ(mergeError({{"a", 1}}), EISDIR);
  EXPECT_TRUE(fs::is_directory(file));
}

TEST_F(QXConfigFile, MergeThrowsWhereTheFolderCannotBeMade) {
  writeFile(folder / "Quorin", "");
  EXPECT_EQ(mergeError({{"a", 1}}), ENOTDIR);
}

TEST_F(QXConfigFile, MergeThrowsForAReadOnlyFileAndKeepsIt) {
  put(R"({"a": 1})");
  openToAll();
  fs::permissions(file, fs::perms(0444));
  const OrdinaryUser user;
  EXPECT_EQ(mergeError({{"b", 2}}), EACCES);
  EXPECT_EQ(readFile(file), R"({"a": 1})");
}

TEST_F(QXConfigFile, MergeWritesAFileInItsPlaceWhereTheFolderMayNotBeWritten) {
  const std::string longer = R"({"a": 1, "note": ")" + std::string(300, 'n') + "\"}";
  const fs::path link = folder / "linked.json";
  fs::create_symlink("Quorin/config.json", link);
  for (const fs::path& path : {file, link}) {
    put(longer);
    openToAll();
    fs::permissions(file, fs::perms(0666));
    fs::permissions(file.parent_path(), fs::perms(0555));
    {
      const OrdinaryUser user;
      QXConfig::merge({{"b", 2}, {"note", std::nullopt}}, path, files);
    }
    fs::permissions(file.parent_path(), fs::perms(0755));
    EXPECT_EQ(readFile(file), "{\n  \"a\": 1,\n  \"b\": 2\n}\n");
    EXPECT_EQ(filesIn(file.parent_path()), Names{"config.json"});
  }
  EXPECT_TRUE(fs::is_symlink(link));
}

TEST_F(QXConfigFile, MergeThrowsWhereNeitherTheFolderNorTheFileMayBeWritten) {
  put(R"({"a": 1})");
  openToAll();
  fs::permissions(file, fs::perms(0444));
  fs::permissions(file.parent_path(), fs::perms(0555));
  {
    const OrdinaryUser user;
    EXPECT_EQ(mergeError({{"b", 2}}), EACCES);
  }
  fs::permissions(file.parent_path(), fs::perms(0755));
  EXPECT_EQ(readFile(file), R"({"a": 1})");
}

TEST_F(QXConfigFile, MergeKeepsALinkAndChangesWhatItLeadsTo) {
  fs::create_directories(file.parent_path());
  writeFile(folder / "dotfiles.json", R"({"a": 1})");
  fs::create_symlink("../dotfiles.json", file);
  QXConfig::merge({{"b", 2}}, file, files);
  EXPECT_TRUE(fs::is_symlink(file));
  EXPECT_EQ(readFile(folder / "dotfiles.json"), "{\n  \"a\": 1,\n  \"b\": 2\n}\n");
}

}  // namespace
}  // namespace quorin
