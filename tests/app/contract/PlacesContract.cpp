// What is kept for the user and what came with the program: Defaults and Bundle.
#include "tests/app/contract/ContractWorld.h"

namespace quorin::contract {
namespace {

class DefaultsContract : public PortContract {
 protected:
  ~DefaultsContract() override { forgetDefault(key); }
  static inline int keys = 0;
  const std::string key = "Contract Suite " + std::to_string(++keys);
  Defaults& defaults = platform().defaults();
};

TEST_F(DefaultsContract, KeepsTheLastText) {
  EXPECT_EQ(defaults.string(key), std::nullopt);
  defaults.setString(key, "1 2 3 4 ");
  EXPECT_EQ(defaults.string(key), "1 2 3 4 ");
  defaults.setString(key, "5");
  EXPECT_EQ(defaults.string(key), "5");
  EXPECT_EQ(defaults.string("Contract Suite that nobody has"), std::nullopt);
}

TEST_F(DefaultsContract, KeepsEveryText) {
  for (const char* text : {"", "\"quoted\"", "é\n\t–", "{1, 2}"}) {
    defaults.setString(key, text);
    EXPECT_EQ(defaults.string(key), text);
  }
}

class BundleContract : public PortContract {
 protected:
  Bundle& bundle = platform().bundle();
};

TEST_F(BundleContract, KnowsItsVersionAndIdentifier) {
  EXPECT_THAT(bundle.infoString("CFBundleShortVersionString"),
              testing::MatchesRegex("[0-9]+\\.[0-9]+\\.[0-9]+"));
  EXPECT_THAT(bundle.infoString("CFBundleIdentifier"), testing::StartsWith("com.quorin."));
}

TEST_F(BundleContract, GivesTheEmptyTextForAKeyThatItLacks) {
  EXPECT_EQ(bundle.infoString("QXNothing"), "");
  EXPECT_EQ(bundle.infoString(""), "");
}

TEST_F(BundleContract, HasAResourceFolderThatIsThereOrNone) {
  const auto folder = bundle.resourceFolder();
  EXPECT_TRUE(!folder || (folder->is_absolute() && std::filesystem::is_directory(*folder)));
}

}  // namespace
}  // namespace quorin::contract
