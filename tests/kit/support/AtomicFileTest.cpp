#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "kit/support/AtomicFile.h"
#include "tests/fakes/FaultyFileSystem.h"
#include "tests/fakes/Files.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

unsigned modeOf(const fs::path& path) {
  return static_cast<unsigned>(fs::status(path).permissions());
}

int errorOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const FileError& error) {
    return error.code().value();
  }
  return 0;
}

class AtomicFileTest : public testing::Test {
 protected:
  TemporaryFolder folder;
  const fs::path file = folder / "a.json";
  FaultyFileSystem files;
};

TEST_F(AtomicFileTest, MakesANewFileForTheUserAlone) {
  AtomicFile::write(files, file, "new");
  EXPECT_EQ(readFile(file), "new");
  EXPECT_EQ(modeOf(file), 0600u);
  EXPECT_EQ(filesIn(folder.path()), Names{"a.json"});
}

TEST_F(AtomicFileTest, ReplacesTheContentAndKeepsThePermissions) {
  writeFile(file, "a much longer old content");
  fs::permissions(file, fs::perms(0640));
  AtomicFile::write(files, file, "new");
  EXPECT_EQ(readFile(file), "new");
  EXPECT_EQ(modeOf(file), 0640u);
}

TEST_F(AtomicFileTest, SyncsTheFileBeforeAndTheFolderAfterTheRenaming) {
  AtomicFile::write(files, file, "new");
  EXPECT_EQ(files.steps(),
            (Names{"status", "create", "append", "sync", "close", "rename", "syncFolder"}));
}

TEST_F(AtomicFileTest, KeepsTheOldFileWhateverStepFails) {
  for (std::size_t step = 0; step < 6; ++step) {
    for (const int number : {ENOSPC, EIO, EACCES}) {
      writeFile(file, "old");
      FaultyFileSystem faulty;
      faulty.failAt(step, number);
      EXPECT_EQ(errorOf([&] { AtomicFile::write(faulty, file, "new content"); }), number) << step;
      EXPECT_EQ(readFile(file), "old") << step;
      EXPECT_EQ(filesIn(folder.path()), Names{"a.json"}) << step;
    }
  }
}

TEST_F(AtomicFileTest, ReportsThatTheFolderCouldNotBeSynced) {
  writeFile(file, "old");
  files.failAt(6, EIO);
  EXPECT_EQ(errorOf([&] { AtomicFile::write(files, file, "new"); }), EIO);
  EXPECT_EQ(readFile(file), "new");
  EXPECT_EQ(filesIn(folder.path()), Names{"a.json"});
}

TEST_F(AtomicFileTest, HasTheOldOrTheNewContentWhereverTheProcessDies) {
  for (std::size_t step = 0; step < 7; ++step) {
    writeFile(file, "old");
    EXPECT_TRUE(killedDuring([&] {
      files.killAt(step);
      AtomicFile::write(files, file, "new content");
    }));
    EXPECT_EQ(readFile(file), step < 6 ? "old" : "new content") << step;
    // The next write takes away what the dead process left.
    FaultyFileSystem healthy;
    AtomicFile::write(healthy, file, "next");
    EXPECT_EQ(readFile(file), "next");
    EXPECT_EQ(filesIn(folder.path()), Names{"a.json"}) << step;
  }
}

TEST_F(AtomicFileTest, LeavesTheTemporaryFilesOfOthersAlone) {
  const std::string own = ".a.json." + std::to_string(::getpid()) + "-77777.tmp";
  const std::string ofInit = ".a.json.1-1.tmp";
  const Names others{own, ofInit, ".a.json.x-1.tmp", ".a.json.99.tmp", ".b.json.0-1.tmp"};
  for (const std::string& name : others) writeFile(folder / name, "");
  AtomicFile::write(files, file, "new");
  for (const std::string& name : others) EXPECT_TRUE(fs::exists(folder / name)) << name;
}

TEST_F(AtomicFileTest, FollowsSymbolicLinksAndKeepsThem) {
  fs::create_directories(folder / "elsewhere");
  writeFile(folder / "elsewhere/real.json", "old");
  fs::create_symlink("elsewhere/middle.json", file);
  fs::create_symlink(folder / "elsewhere/real.json", folder / "elsewhere/middle.json");
  AtomicFile::write(files, file, "new");
  EXPECT_TRUE(fs::is_symlink(file));
  EXPECT_TRUE(fs::is_symlink(folder / "elsewhere/middle.json"));
  EXPECT_EQ(readFile(folder / "elsewhere/real.json"), "new");
  EXPECT_EQ(filesIn(folder / "elsewhere"), (Names{"middle.json", "real.json"}));
}

TEST_F(AtomicFileTest, MakesTheFileThatALinkLeadsTo) {
  fs::create_directories(folder / "elsewhere");
  fs::create_symlink("elsewhere/real.json", file);
  AtomicFile::write(files, file, "new");
  EXPECT_TRUE(fs::is_symlink(file));
  EXPECT_EQ(readFile(folder / "elsewhere/real.json"), "new");
}

TEST_F(AtomicFileTest, RefusesLinksThatLeadInACircle) {
  fs::create_symlink("b", folder / "a.json");
  fs::create_symlink("a.json", folder / "b");
  EXPECT_EQ(errorOf([&] { AtomicFile::write(files, file, "new"); }), ELOOP);
}

TEST_F(AtomicFileTest, NeverReplacesWhatIsNoRegularFile) {
  fs::create_directories(file);
  EXPECT_EQ(errorOf([&] { AtomicFile::write(files, file, "new"); }), EISDIR);
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(errorOf([&] { AtomicFile::write(files, folder / "pipe", "new"); }), EINVAL);
  EXPECT_TRUE(fs::is_fifo(folder / "pipe"));
  fs::create_symlink("/dev/full", folder / "device");
  EXPECT_EQ(errorOf([&] { AtomicFile::write(files, folder / "device", "new"); }), EINVAL);
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

TEST_F(AtomicFileTest, NeedsTheFolder) {
  EXPECT_EQ(errorOf([&] { AtomicFile::write(files, folder / "none/a.json", "new"); }), ENOENT);
}

TEST_F(AtomicFileTest, ReplacesOrRefusesAReadOnlyFile) {
  fs::permissions(folder.path(), fs::perms(0777));
  writeFile(file, "old");
  fs::permissions(file, fs::perms(0444));
  const OrdinaryUser user;
  EXPECT_EQ(errorOf([&] { AtomicFile::write(files, file, "new", AtomicFile::ReadOnly::refuse); }),
            EACCES);
  EXPECT_EQ(readFile(file), "old");
  AtomicFile::write(files, file, "new", AtomicFile::ReadOnly::replace);
  EXPECT_EQ(readFile(file), "new");
  EXPECT_EQ(modeOf(file), 0444u);
}

TEST_F(AtomicFileTest, WritesWhatCanBeReadAgain) {
  fs::permissions(folder.path(), fs::perms(0777));
  writeFile(file, "old");
  fs::permissions(file, fs::perms(0200));
  const OrdinaryUser user;
  AtomicFile::write(files, file, "new");
  EXPECT_EQ(readFile(file), "new");
  EXPECT_EQ(modeOf(file), 0600u);
}

TEST_F(AtomicFileTest, FailsInAReadOnlyFolder) {
  writeFile(file, "old");
  fs::permissions(folder.path(), fs::perms(0555));
  const OrdinaryUser user;
  EXPECT_EQ(errorOf([&] { AtomicFile::write(files, file, "new"); }), EACCES);
  EXPECT_EQ(readFile(file), "old");
}

TEST_F(AtomicFileTest, KeepsTheOldFileWhenTheRealDiskTakesOnlyAPart) {
  writeFile(file, "old");
  const auto before = std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
  const rlimit tight{100, limit.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &tight), 0);
  const int error =
      errorOf([&] { AtomicFile::write(FileSystem::real(), file, std::string(1000, 'x')); });
  ::setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, before);
  EXPECT_EQ(error, EFBIG);
  EXPECT_EQ(readFile(file), "old");
  EXPECT_EQ(filesIn(folder.path()), Names{"a.json"});
}

TEST(FileError, SaysWhatFailedWhereAndWhy) {
  const FileError error(ENOSPC, "write", "/data/config.json");
  EXPECT_STREQ(error.what(), "cannot write /data/config.json: No space left on device");
  EXPECT_EQ(error.code(), std::errc::no_space_on_device);
}

class RealFileSystem : public testing::Test {
 protected:
  TemporaryFolder folder;
  FileSystem& files = FileSystem::real();
};

TEST_F(RealFileSystem, ReadsRangesOfRegularFilesOnly) {
  writeFile(folder / "a", "0123456789");
  EXPECT_EQ(files.read(folder / "a", 0, 100), "0123456789");
  EXPECT_EQ(files.read(folder / "a", 3, 4), "3456");
  EXPECT_EQ(files.read(folder / "a", 20, 4), "");
  EXPECT_EQ(errorOf([&] { files.read(folder / "none", 0, 1); }), ENOENT);
  EXPECT_EQ(errorOf([&] { files.read(folder.path(), 0, 1); }), EISDIR);
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(errorOf([&] { files.read(folder / "pipe", 0, 1); }), EINVAL);
}

TEST_F(RealFileSystem, CreatesOnlyWhatIsNew) {
  writeFile(folder / "a", "old");
  EXPECT_EQ(errorOf([&] { files.create(folder / "a", 0600); }), EEXIST);
  EXPECT_EQ(readFile(folder / "a"), "old");
}

TEST_F(RealFileSystem, TellsWhatIsThere) {
  writeFile(folder / "a", "12345");
  const auto status = files.status(folder / "a");
  ASSERT_TRUE(status);
  EXPECT_EQ(status->kind, FileStatus::Kind::regular);
  EXPECT_EQ(status->size, 5u);
  EXPECT_TRUE(status->writable);
  EXPECT_EQ(files.status(folder.path())->kind, FileStatus::Kind::folder);
  EXPECT_EQ(files.status("/dev/full")->kind, FileStatus::Kind::other);
  EXPECT_FALSE(files.status(folder / "none"));
  EXPECT_FALSE(files.status(folder / "a/below a file"));
}

#ifdef __linux__
// Nothing lies at the beginning of a process's memory.
TEST(RealFiles, SayThatTheyCannotBeRead) {
  EXPECT_EQ(errorOf([] { FileSystem::real().read("/proc/self/mem", 0, 16); }), EIO);
}
#endif

}  // namespace
}  // namespace quorin
