#include <gmock/gmock.h>

#include "app/linux/updates/PackageSignature.h"
#include "app/linux/updates/UpdateFeed.h"

namespace quorin {
namespace {

constexpr const char* system = "linux-amd64";
const std::string signature(86, 'A');

std::string enclosure(const std::string& attributes) {
  return "<enclosure " + attributes + " sparkle:os=\"linux-amd64\"/>";
}

const std::string address = "url=\"https://a.org/q.deb\"";
const std::string length = "length=\"1234\"";
const std::string sealed = "sparkle:edSignature=\"" + signature + "==\"";
const std::string package = enclosure(address + " " + length + " " + sealed);

std::string version(const std::string& number) {
  return "<sparkle:version>" + number + "</sparkle:version>";
}

const std::string date = "<dc:date>2026-11-15T11:02:28Z</dc:date>";

std::string feed(const std::string& items, const std::string& dated = date) {
  return "<?xml version=\"1.0\"?><rss version=\"2.0\" "
         "xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\">"
         "<channel><title>Quorin</title>" +
         dated + items + "</channel></rss>";
}

std::string item(const std::string& content) {
  return feed("<item>" + content + "</item>");
}

std::optional<UpdateFailure> failure(const std::string& text) {
  const auto read = readFeed(text, system);
  if (const auto* const found = std::get_if<UpdateFailure>(&read)) return *found;
  const auto* const found = std::get_if<UpdateFailure>(&std::get<Feed>(read).newest);
  return found ? std::optional(*found) : std::nullopt;
}

Update update(const std::string& text) {
  return std::get<Update>(std::get<Feed>(readFeed(text, system)).newest);
}

TEST(UpdateFeed, GivesTheVersionWithItsNotesAndItsPackage) {
  const Update found = update(
      item(version("1.3.0") +
           "<description sparkle:descriptionFormat=\"plain-text\"><![CDATA[Faster.\n\na < b]]>"
           "</description>" +
           package));
  EXPECT_EQ(found, (Update{"1.3.0", VersionNumber::parse("1.3").value(), "Faster.\na < b",
                           "https://a.org/q.deb", 1234, std::string(64, '\0')}));
}

TEST(UpdateFeed, FindsTheVersionOnTheEnclosureToo) {
  EXPECT_EQ(
      update(item(enclosure("sparkle:version=\"2.1\" " + address + " " + length + " " + sealed)))
          .version,
      "2.1");
}

TEST(UpdateFeed, TakesTheNewestVersionWhereverItStands) {
  std::string items;
  for (const char* number : {"1.2", "1.10", "1.9"}) {
    items += "<item>" + version(number) + package + "</item>";
  }
  EXPECT_EQ(update(feed(items)).version, "1.10");
}

TEST(UpdateFeed, PassesOverItemsForOtherSystems) {
  const std::string mac = "<item>" + version("9.0") +
                          "<enclosure url=\"https://a.org/Quorin.zip\" length=\"1\"/></item>";
  const std::string arm =
      "<item>" + version("9.1") + "<enclosure url=\"x\" sparkle:os=\"linux-arm64\"/></item>";
  EXPECT_EQ(update(feed(mac + "<item>" + version("1.1") + package + "</item>" + arm)).version,
            "1.1");
  EXPECT_EQ(failure(feed(mac + arm)), (UpdateFailure{UpdateFault::nothingForSystem, ""}));
  EXPECT_EQ(failure(feed("")), (UpdateFailure{UpdateFault::nothingForSystem, ""}));
}

TEST(UpdateFeed, RefusesWhatIsNoFeed) {
  const std::string whole = item(version("1.1") + package);
  ASSERT_EQ(failure(whole), std::nullopt);
  for (const std::string& text :
       {std::string(), std::string("404 not found"), std::string("<html><body>Hello</body></html>"),
        whole.substr(0, whole.size() / 2), whole.substr(0, whole.size() - 8),
        std::string("<rss version=\"2.0\"></rss>"), std::string(2000, '<'), std::string("\0\0", 2),
        item(version("1.1") + "<description>\xff</description>" + package)}) {
    const auto found = failure(text);
    ASSERT_TRUE(found) << text;
    EXPECT_EQ(found->fault, UpdateFault::unreadable) << text;
    EXPECT_NE(found->detail, "") << text;
  }
}

TEST(UpdateFeed, SaysWhenItWasSigned) {
  constexpr std::int64_t seconds = 1'794'740'548;
  const ISO::Date expected{std::chrono::seconds(seconds)};
  for (const char* content : {"2026-11-15T11:02:28Z", "\n 2026-11-15T12:02:28+01:00 "}) {
    const auto read = readFeed(feed("", "<dc:date>" + std::string(content) + "</dc:date>"), system);
    EXPECT_EQ(std::get<Feed>(read).date, expected) << content;
  }
}

TEST(UpdateFeed, IsRefusedWithoutADate) {
  const std::string newest = "<item>" + version("1.1") + package + "</item>";
  for (const char* dated :
       {"", "<dc:date/>", "<dc:date>yesterday</dc:date>", "<dc:date>2026-02-30T11:02:28Z</dc:date>",
        "<dc:date>2026</dc:date>", "<date>2026-11-15T11:02:28Z</date>"}) {
    EXPECT_EQ(failure(feed(newest, dated)), (UpdateFailure{UpdateFault::undatedFeed, ""})) << dated;
  }
}

TEST(UpdateFeed, SaysWhichPartIsMissing) {
  const std::string number = version("1.1");
  const std::vector<std::pair<std::string, std::string>> table{
      {package, "a version is missing"},
      {version("") + package, "a version is missing"},
      {version("new") + package, "“new” is no version"},
      {number + enclosure(length + " " + sealed), "the address of version 1.1 is missing"},
      {number + enclosure(address + " " + sealed), "the length of version 1.1 is missing"},
      {number + enclosure(address + " length=\"0\" " + sealed),
       "the length of version 1.1 is missing"},
      {number + enclosure(address + " length=\"-5\" " + sealed),
       "the length of version 1.1 is missing"},
      {number + enclosure(address + " length=\"12 MB\" " + sealed),
       "the length of version 1.1 is missing"},
      {number + enclosure(address + " length=\"99999999999999999999999\" " + sealed),
       "the length of version 1.1 is missing"},
      {number + enclosure(address + " length=\"300000000\" " + sealed),
       "the length of version 1.1 cannot be right"},
      {number + enclosure(address + " " + length), "the signature of version 1.1 is missing"},
      {number + enclosure(address + " " + length + " sparkle:edSignature=\"AAAA\""),
       "the signature of version 1.1 is missing"},
  };
  for (const auto& [content, told] : table) {
    EXPECT_EQ(failure(item(content)), (UpdateFailure{UpdateFault::incomplete, told})) << content;
  }
}

TEST(UpdateFeed, RefusesAddressesWithoutEncryption) {
  EXPECT_EQ(failure(item(version("1.1") +
                         enclosure("url=\"http://a.org/q.deb\" " + length + " " + sealed))),
            (UpdateFailure{UpdateFault::insecure, "http://a.org/q.deb"}));
}

TEST(UpdateFeed, ReadsNoOtherFilesAndExpandsNothing) {
  const std::string declared =
      "<?xml version=\"1.0\"?><!DOCTYPE rss [<!ENTITY a SYSTEM \"file:///etc/passwd\">]>"
      "<rss><channel>" +
      date + "<item>" + version("1.1") +
      "<description sparkle:descriptionFormat=\"plain-text\">&a;</description>" + package +
      "</item></channel></rss>";
  EXPECT_EQ(update(declared).notes, "&a;");
}

TEST(UpdateFeed, SurvivesDeepNesting) {
  constexpr int depth = 50'000;
  std::string deep;
  for (int i = 0; i < depth; ++i) deep += "<a>";
  for (int i = 0; i < depth; ++i) deep += "</a>";
  EXPECT_EQ(update(item(version("1.1") + package + deep)).version, "1.1");
}

TEST(ReadableNotes, LeaveMarkupOut) {
  EXPECT_EQ(readableNotes("<h2>New in 1.3</h2>\n<ul><li>Faster &amp; smaller</li>\n"
                          "<li class=\"x\">a &lt; b</li></ul><p>Thanks</p>",
                          true),
            "New in 1.3\n• Faster & smaller\n• a < b\nThanks");
  EXPECT_EQ(readableNotes("a<br/>b<script>c", true), "a\nbc");
  EXPECT_EQ(readableNotes("never ends <b", true), "never ends");
  EXPECT_EQ(readableNotes("&amp;lt;", true), "&lt;");
  EXPECT_EQ(readableNotes("a <b> c &amp; d", false), "a <b> c &amp; d");
}

TEST(ReadableNotes, AreCutToWhatAnAlertCanShow) {
  EXPECT_EQ(readableNotes("", false), "");
  EXPECT_EQ(readableNotes(" \n\n \n", false), "");
  std::string lines, first;
  for (int i = 0; i < 40; ++i) {
    lines += "line\n";
    if (i < 25) first += i == 0 ? "line" : "\nline";
  }
  EXPECT_EQ(readableNotes(lines, false), first + "…");
  EXPECT_EQ(readableNotes(std::string(1500, 'x'), false), std::string(1500, 'x'));
  EXPECT_EQ(readableNotes(std::string(1501, 'x'), false), std::string(1500, 'x') + "…");
  std::string umlauts;
  for (int i = 0; i < 1000; ++i) umlauts += "ü";
  EXPECT_EQ(readableNotes("x" + umlauts, false), "x" + umlauts.substr(0, 1498) + "…");
  EXPECT_EQ(readableNotes("short\n" + std::string(3000, 'x'), false),
            "short\n" + std::string(1494, 'x') + "…");
}

}  // namespace
}  // namespace quorin
