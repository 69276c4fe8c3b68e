#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "app/linux/updates/PackageFile.h"
#include "tests/app/linux/updates/Release.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin {
namespace {

mode_t mode(const std::filesystem::path& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

TEST(PackageFile, IsSavedForThisUserAloneInAFolderOfItsOwn) {
  const TemporaryFolder folder;
  std::filesystem::create_directories(folder / "updates/old");
  std::ofstream(folder / "updates/old/left") << "left";
  const std::filesystem::path file = PackageFile::save(folder / "updates", "q.deb", "bytes");
  EXPECT_EQ(file, folder / "updates/q.deb");
  EXPECT_EQ(mode(folder / "updates"), 0700u);
  EXPECT_EQ(mode(file), 0600u);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / "updates"), {}), 1);
  std::string bytes;
  std::getline(std::ifstream(file), bytes);
  EXPECT_EQ(bytes, "bytes");
}

TEST(PackageFile, GoesWithItsFolder) {
  const TemporaryFolder folder;
  PackageFile::save(folder / "updates", "q.deb", "bytes");
  PackageFile::discard(folder / "updates");
  EXPECT_FALSE(std::filesystem::exists(folder / "updates"));
  PackageFile::discard(folder / "updates");
}

TEST(PackageFile, FailsWhereNothingCanBeWritten) {
  const TemporaryFolder folder;
  std::ofstream(folder / "file") << "in the way";
  EXPECT_THROW(PackageFile::save(folder / "file/updates", "q.deb", ""), std::exception);
}

TEST(PackageFile, SaysWhichPackageItIs) {
  const TemporaryFolder folder;
  const auto file = PackageFile::save(folder / "updates", "-any name.deb",
                                      Release::package("quorin", "1.2.3", "amd64"));
  EXPECT_EQ(PackageFile::identity(file), (PackageIdentity{"quorin", "1.2.3", "amd64"}));
  EXPECT_EQ(PackageFile::identity(file)->fileName(), "quorin_1.2.3_amd64.deb");
}

TEST(PackageFile, SaysNothingOfOtherFiles) {
  const TemporaryFolder folder;
  EXPECT_EQ(PackageFile::identity(PackageFile::save(folder / "updates", "q.deb", "no package")),
            std::nullopt);
  EXPECT_EQ(PackageFile::identity(folder / "nothing"), std::nullopt);
}

}  // namespace
}  // namespace quorin
