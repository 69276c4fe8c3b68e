#include <gtest/gtest.h>

#include "app/shell/PageAddress.h"

namespace quorin {
namespace {

using PageAddress::isSamePage;
using PageAddress::onThisMachine;

TEST(PageAddress, TakesFilesAndServersOfThisMachine) {
  for (const char* address :
       {"file:///opt/page/index.html", "file:/opt/page.html", "FILE:///opt/page.html",
        "file://localhost/opt/page.html", "http://127.0.0.1:5173/", "http://localhost:5173",
        "https://localhost/page?a=1#b", "http://127.255.0.9/", "http://[::1]:8080/page",
        "HTTP://LocalHost/"}) {
    EXPECT_TRUE(onThisMachine(address)) << address;
  }
}

TEST(PageAddress, TakesNothingFromElsewhere) {
  for (const char* address : {"",
                              "page",
                              "localhost",
                              "/index.html",
                              "http:",
                              "http://",
                              "http:///page",
                              "http://example.org/",
                              "http://localhost.example.org/",
                              "http://example.org/localhost",
                              "http://localhost@example.org/",
                              "http://example.org\\@localhost/",
                              "http://localhost:1@example.org/",
                              "http://127.0.0.1.example.org/",
                              "http://127.1/",
                              "http://0177.0.0.1/",
                              "http://127.0.0.256/",
                              "http://127.0.0.1.1/",
                              "http://127.0.0./",
                              "http://128.0.0.1/",
                              "http://[::2]/",
                              "http://[::1]x/",
                              "http://[::1/",
                              "http://localhost:80x/",
                              "http://loc\talhost/",
                              "http://localhost /",
                              "//localhost/",
                              "file://server/share/page.html",
                              "file:page.html",
                              "file:////server/share/page.html",
                              "file:///%2Fserver/share",
                              "file://localhost",
                              "ftp://localhost/",
                              "data:text/html,x",
                              "javascript:alert(1)",
                              "blob:null/1",
                              "about:blank",
                              "about:srcdoc"}) {
    EXPECT_FALSE(onThisMachine(address)) << address;
  }
}

TEST(PageAddress, KnowsAPageInEverySpelling) {
  EXPECT_TRUE(isSamePage("file:///a/index.html#map", "file:///a/index.html"));
  EXPECT_TRUE(isSamePage("file:///a%20b/%C3%A9.html", "file:///a%20b/é.html"));
  EXPECT_TRUE(isSamePage("file:///a/b.html", "file:/x/../a/./b.html"));
  EXPECT_TRUE(isSamePage("http://localhost:5173/", "HTTP://LOCALHOST:5173"));
  EXPECT_TRUE(isSamePage("http://localhost/#top", "http://localhost:80/"));
  EXPECT_TRUE(isSamePage("about:blank#top", "about:blank"));
}

TEST(PageAddress, TellsOtherPagesFromIt) {
  const char* const page = "file:///opt/web/index.html";
  for (const char* address :
       {"file:///opt/web/other.html", "file:///opt/web/", "file:///opt/web/index.html?other",
        "about:blank", "http://localhost/opt/web/index.html", "http://example.org/", ""}) {
    EXPECT_FALSE(isSamePage(address, page)) << address;
  }
  EXPECT_FALSE(isSamePage("http://localhost:5174/", "http://localhost:5173/"));
  EXPECT_FALSE(isSamePage("http://127.0.0.1/", "http://localhost/"));
  EXPECT_FALSE(isSamePage("http://example.org/", "http://example.org/"));
  EXPECT_FALSE(isSamePage("", ""));
}

}  // namespace
}  // namespace quorin
