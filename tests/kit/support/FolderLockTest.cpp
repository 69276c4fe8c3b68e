#include <gmock/gmock.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "kit/support/FileSystem.h"
#include "kit/support/FolderLock.h"

namespace quorin {
namespace {

class FolderLockTest : public testing::Test {
 protected:
  FolderLockTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "quorin-lock-XXXXXX").string();
    folder = mkdtemp(pattern.data());
  }
  ~FolderLockTest() override { std::filesystem::remove_all(folder); }

  std::filesystem::path folder;
};

TEST_F(FolderLockTest, MakesTheFolderAndKeepsOthersOut) {
  const auto first = FolderLock::acquire(folder / "data");
  ASSERT_TRUE(first);
  EXPECT_FALSE(FolderLock::acquire(folder / "data"));
  EXPECT_TRUE(FolderLock::acquire(folder / "other"));
}

TEST_F(FolderLockTest, KeepsTheFolderForTheUserAloneWhateverTheUmask) {
  const mode_t mask = umask(0);
  const auto made = FolderLock::acquire(folder / "a/b");
  umask(mask);
  const auto openTo = [](const std::filesystem::path& path) {
    return static_cast<unsigned>(std::filesystem::status(path).permissions());
  };
  EXPECT_EQ(openTo(folder / "a"), 0700u);
  EXPECT_EQ(openTo(folder / "a/b"), 0700u);
  EXPECT_EQ(openTo(folder / "a/b/lock"), 0600u);
  std::filesystem::create_directory(folder / "old");
  std::filesystem::permissions(folder / "old", std::filesystem::perms(0777));
  const auto old = FolderLock::acquire(folder / "old");
  EXPECT_EQ(openTo(folder / "old"), 0700u);
}

TEST_F(FolderLockTest, LetsTheNextOneInWhenItIsGivenUp) {
  { const auto first = FolderLock::acquire(folder); }
  auto second = FolderLock::acquire(folder);
  ASSERT_TRUE(second);
  FolderLock moved = std::move(*second);
  second.reset();
  EXPECT_FALSE(FolderLock::acquire(folder)) << "it moved with its owner";
}

TEST_F(FolderLockTest, GoesWithAProcessThatIsKilled) {
  int ready[2];
  ASSERT_EQ(pipe(ready), 0);
  const pid_t child = fork();
  if (child == 0) {
    const auto lock = FolderLock::acquire(folder);
    const char told = lock ? 'y' : 'n';
    if (write(ready[1], &told, 1) != 1) _exit(1);
    for (;;) pause();
  }
  char told = 0;
  ASSERT_EQ(read(ready[0], &told, 1), 1);
  EXPECT_EQ(told, 'y');
  EXPECT_FALSE(FolderLock::acquire(folder));
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  EXPECT_TRUE(FolderLock::acquire(folder));
  close(ready[0]);
  close(ready[1]);
}

TEST_F(FolderLockTest, SaysWhatCannotBeMade) {
  const std::filesystem::path file = folder / "file";
  { const auto made = FileSystem::real().create(file, 0600); }
  EXPECT_THROW(FolderLock::acquire(file), FileError);
}

}  // namespace
}  // namespace quorin
