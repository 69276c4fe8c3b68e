#include <gmock/gmock.h>
#include <zip.h>

#include "app/linux/ZipArchiver.h"
#include "tests/fakes/Files.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin {
namespace {

using testing::Pair;
using testing::UnorderedElementsAre;

using Contents = std::vector<std::pair<std::string, std::string>>;

Contents contentsOf(const std::filesystem::path& file) {
  Contents found;
  zip_t* const archive = zip_open(file.c_str(), ZIP_RDONLY, nullptr);
  for (zip_int64_t i = 0; archive && i < zip_get_num_entries(archive, 0); ++i) {
    const auto index = static_cast<zip_uint64_t>(i);
    zip_file_t* const entry = zip_fopen_index(archive, index, 0);
    std::string text(1000, '\0');
    const zip_int64_t size = zip_fread(entry, text.data(), text.size());
    zip_fclose(entry);
    text.resize(static_cast<std::size_t>(size));
    found.emplace_back(zip_get_name(archive, index, 0), text);
  }
  if (archive) zip_discard(archive);
  return found;
}

class ZipArchiverTest : public testing::Test {
 protected:
  ZipArchiverTest() { std::filesystem::create_directories(report / "more"); }

  TemporaryFolder folder;
  const std::filesystem::path report = folder / "Quorin-report-2026-03-03-0905";
  const std::filesystem::path file = folder / "report.zip";
  ZipArchiver archiver;
};

TEST_F(ZipArchiverTest, KeepsTheFolderAroundItsFiles) {
  writeFile(report / "system.txt", "Quorin 1.0\n");
  writeFile(report / "empty.log", "");
  writeFile(report / "more" / "ä.txt", "deeper");
  EXPECT_EQ(archiver.zip(report, file), 0);
  const std::string name = "Quorin-report-2026-03-03-0905/";
  EXPECT_THAT(contentsOf(file), UnorderedElementsAre(Pair(name, ""), Pair(name + "more/", ""),
                                                     Pair(name + "system.txt", "Quorin 1.0\n"),
                                                     Pair(name + "empty.log", ""),
                                                     Pair(name + "more/ä.txt", "deeper")));
}

TEST_F(ZipArchiverTest, FollowsNoLinks) {
  writeFile(folder / "elsewhere", "not for others");
  std::filesystem::create_symlink(folder / "elsewhere", report / "link");
  EXPECT_EQ(archiver.zip(report, file), 0);
  EXPECT_EQ(contentsOf(file).size(), 2U);
}

TEST_F(ZipArchiverTest, FailsWithAStatus) {
  EXPECT_NE(archiver.zip(report, folder / "none" / "report.zip"), 0);
  EXPECT_NE(archiver.zip(folder / "none", file), 0);
  EXPECT_FALSE(std::filesystem::exists(file));
  writeFile(file, "there is something");
  EXPECT_NE(archiver.zip(report, file), 0);
  EXPECT_EQ(readFile(file), "there is something");
}

}  // namespace
}  // namespace quorin
