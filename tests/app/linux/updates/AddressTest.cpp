#include <gtest/gtest.h>

#include "app/linux/updates/Address.h"

namespace quorin {
namespace {

TEST(Address, IsSecureOnlyWithEncryptionAndAHost) {
  for (const char* url :
       {"https://quorin.com/appcast.xml", "HTTPS://quorin.com", "https://a:8/b"}) {
    EXPECT_TRUE(isSecure(url)) << url;
  }
  for (const char* url :
       {"http://quorin.com/appcast.xml", "ftp://quorin.com/a", "file:///etc/passwd", "https:///a",
        "https:a", "quorin.com/a", "", "https//a", "javascript:1"}) {
    EXPECT_FALSE(isSecure(url)) << url;
  }
}

TEST(Address, FollowsAServerToItself) {
  const auto from = [](const char* to) { return redirection("https://a.org/x/feed.xml?y", to); };
  EXPECT_EQ(from("https://a.org/new.xml"), "https://a.org/new.xml");
  EXPECT_EQ(from("https://A.ORG:443/new.xml").has_value(), true);
  EXPECT_EQ(from("/new.xml"), "https://a.org/new.xml");
  EXPECT_EQ(from("new.xml"), "https://a.org/x/new.xml");
}

TEST(Address, FollowsItNowhereElse) {
  for (const char* to :
       {"https://b.org/new.xml", "http://a.org/new.xml", "https://a.org:8443/new.xml",
        "//b.org/new.xml", "https://a.org.b.org/", "https://a.org@b.org/", "file:///new.xml",
        "https://", "https://[", "ftp:new.xml"}) {
    EXPECT_EQ(redirection("https://a.org/feed.xml", to), std::nullopt) << to;
  }
  EXPECT_EQ(redirection("http://a.org/feed.xml", "http://a.org/new.xml"), std::nullopt);
}

}  // namespace
}  // namespace quorin
