// The feed of versions, as text and as values. Pure functions for any thread.
//
// A feed is an RSS document, as Sparkle reads it too, with an item for each version:
//
//   <rss version="2.0" xmlns:dc="http://purl.org/dc/elements/1.1/"
//        xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle">
//     <channel>
//       <dc:date>2026-11-15T11:02:28Z</dc:date>
//       <item>
//         <sparkle:version>1.3.0</sparkle:version>
//         <description sparkle:descriptionFormat="plain-text">What is new</description>
//         <enclosure url="https://…/quorin_1.3.0_amd64.deb" sparkle:os="linux-amd64"
//                    length="2481730" type="application/vnd.debian.binary-package"
//                    sparkle:edSignature="…"/>
//       </item>
//     </channel>
//   </rss>
//
// The date is that of the feed's own signature (FeedSignature.h). The signature of an item is
// Ed25519 over the file of the enclosure, in base64. Items for other systems, and those without
// sparkle:os, which are the Mac's, are passed over.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "app/linux/updates/UpdateFailure.h"
#include "app/linux/updates/VersionNumber.h"
#include "kit/support/ISO.h"

namespace quorin {

// The longest package that is fetched.
constexpr std::uint64_t longestPackage = 256ull << 20;

struct Update {
  std::string version;
  VersionNumber number;
  std::string notes;  // plain text, cut to what an alert can show
  std::string url;
  std::uint64_t length = 0;
  std::string signature;  // its 64 bytes
  bool operator==(const Update&) const = default;
};

struct Feed {
  ISO::Date date;
  // The newest version for the system. An item for the system that lacks something is a failure
  // even when there is a better one: whoever made the feed erred.
  std::variant<Update, UpdateFailure> newest;
};

// What the feed has for the system ("linux-amd64"). A failure when it is no feed, or has no date.
std::variant<Feed, UpdateFailure> readFeed(std::string_view feed, std::string_view system);

// The notes as an alert shows them: without markup when they have some, at most 25 lines and about
// 1,500 characters, with an ellipsis where more was left out.
std::string readableNotes(std::string_view notes, bool markup);

}  // namespace quorin
