#include <gtest/gtest.h>

#include "app/linux/updates/FeedSignature.h"
#include "app/linux/updates/PackageSignature.h"
#include "tests/app/linux/updates/Release.h"

namespace quorin {
namespace {

const std::string text = "<rss><channel/></rss>\n";

class FeedSignatureTest : public testing::Test {
 protected:
  std::optional<UpdateFault> fault(const std::string& feed) const {
    const auto found = signedFeed(feed, key);
    const auto* const failure = std::get_if<UpdateFailure>(&found);
    return failure ? std::optional(failure->fault) : std::nullopt;
  }

  const Release release;
  const std::string key = publicKeyFromText(release.publicKey()).value();
  const std::string whole = release.signedFeed(text);
};

TEST_F(FeedSignatureTest, GivesWhatStandsBeforeIt) {
  const auto found = signedFeed(whole, key);
  EXPECT_EQ(std::get<std::string_view>(found), text);
}

TEST_F(FeedSignatureTest, IsWantedAtTheVeryEnd) {
  for (const std::string& feed :
       {std::string(), text, whole + "\n", whole + "<item/>", whole.substr(0, whole.size() - 1),
        whole.substr(1 + text.size()), text + "<!-- signature: -->\n",
        text + "<!-- signature: " + std::string(88, '?') + " -->\n",
        text + "<!-- signed by: " + whole.substr(text.size() + 16)}) {
    EXPECT_EQ(fault(feed), UpdateFault::unsignedFeed) << feed;
  }
}

TEST_F(FeedSignatureTest, CoversEveryByte) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    std::string changed = whole;
    changed[at] ^= 1;
    EXPECT_EQ(fault(changed), UpdateFault::changedFeed) << at;
  }
  EXPECT_EQ(fault("<!-- -->" + whole), UpdateFault::changedFeed);
  EXPECT_EQ(fault(whole.substr(1)), UpdateFault::changedFeed);
  EXPECT_EQ(fault(whole + whole.substr(text.size())), UpdateFault::changedFeed);
}

TEST_F(FeedSignatureTest, IsThatOfTheBuildsKey) {
  EXPECT_EQ(fault(Release().signedFeed(text)), UpdateFault::changedFeed);
}

}  // namespace
}  // namespace quorin
