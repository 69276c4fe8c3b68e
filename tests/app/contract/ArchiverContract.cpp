#include <fstream>
#include <thread>

#include "tests/app/contract/ContractWorld.h"
#include "tests/fakes/Files.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin::contract {
namespace {

using testing::HasSubstr;
using testing::Not;

class ArchiverContract : public PortContract {
 protected:
  void SetUp() override { ASSERT_TRUE(platform().archiver()); }

  int zip(const std::filesystem::path& packed) { return platform().archiver()->zip(packed, file); }

  TemporaryFolder folder;
  const std::filesystem::path report = folder / "Quorin report 2026";
  const std::filesystem::path file = folder / "report.zip";
};

// A zip file holds the names of what is in it as they are.
TEST_F(ArchiverContract, PacksTheFolderItselfWithAllThatIsInIt) {
  std::filesystem::create_directories(report / "more");
  writeFile(report / "system.txt", "Quorin 1.0\n");
  writeFile(report / "empty.log", "");
  writeFile(report / "more" / "a b.txt", "deeper");
  ASSERT_EQ(zip(report), 0);
  const std::string packed = readFile(file);
  EXPECT_THAT(packed, HasSubstr("Quorin report 2026/system.txt"));
  EXPECT_THAT(packed, HasSubstr("Quorin report 2026/empty.log"));
  EXPECT_THAT(packed, HasSubstr("Quorin report 2026/more/a b.txt"));
  EXPECT_THAT(packed, Not(HasSubstr(folder.path().string()))) << "and nothing of where it lay";
}

TEST_F(ArchiverContract, HasPackedWhenItAnswers) {
  std::filesystem::create_directories(report);
  const std::string text(1 << 20, 'x');
  for (int i = 0; i < 8; ++i) writeFile(report / ("log" + std::to_string(i)), text);
  ASSERT_EQ(zip(report), 0);
  const auto size = std::filesystem::file_size(file);
  EXPECT_GT(size, 0u);
  runFor(std::chrono::milliseconds(100));
  EXPECT_EQ(std::filesystem::file_size(file), size);
  EXPECT_THAT(readFile(file), HasSubstr("log7"));
}

TEST_F(ArchiverContract, SaysThatItFailed) {
  EXPECT_NE(zip(folder / "nowhere"), 0);
  std::filesystem::create_directories(report);
  EXPECT_NE(platform().archiver()->zip(report, folder / "nowhere" / "report.zip"), 0);
}

TEST_F(ArchiverContract, PacksOnEveryThread) {
  std::filesystem::create_directories(report);
  writeFile(report / "system.txt", "Quorin 1.0\n");
  int status = -1;
  std::thread([&] { status = zip(report); }).join();
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(std::filesystem::exists(file));
}

}  // namespace
}  // namespace quorin::contract
