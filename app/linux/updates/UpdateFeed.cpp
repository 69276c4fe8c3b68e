#include "app/linux/updates/UpdateFeed.h"

#include <array>
#include <charconv>
#include <optional>
#include <pugixml.hpp>
#include <utility>

#include "app/linux/updates/Address.h"
#include "app/linux/updates/PackageSignature.h"
#include "kit/value/Unicode.h"

namespace quorin {

namespace {

constexpr std::size_t mostLines = 25, mostBytes = 1500;

using Markup = std::pair<std::string_view, std::string_view>;
constexpr std::array<Markup, 6> entities{{{"&lt;", "<"},
                                          {"&gt;", ">"},
                                          {"&quot;", "\""},
                                          {"&#39;", "'"},
                                          {"&nbsp;", " "},
                                          {"&amp;", "&"}}};

std::optional<UpdateFailure> lacking(const std::string& what) {
  return UpdateFailure{UpdateFault::incomplete, what};
}

// Where a tag stands for a new line; none where it stands for nothing.
std::string_view meaning(std::string_view tag) {
  const std::string_view name = tag.substr(0, tag.find_first_of(" \t\n/", 1));
  if (name == "li") return "\n• ";
  for (const std::string_view block : {"br", "p", "/p", "div", "h1", "h2", "h3", "ul", "/ul"}) {
    if (name == block) return "\n";
  }
  return {};
}

std::string withoutMarkup(std::string_view text) {
  std::string plain;
  while (!text.empty()) {
    if (text.front() == '<') {
      const std::size_t end = text.find('>');
      if (end == std::string_view::npos) break;
      plain += meaning(text.substr(1, end - 1));
      text.remove_prefix(end + 1);
      continue;
    }
    bool entity = false;
    for (const auto& [written, meant] : entities) {
      if (!text.starts_with(written)) continue;
      plain += meant;
      text.remove_prefix(written.size());
      entity = true;
      break;
    }
    if (entity) continue;
    const bool space = text.front() == '\n' || text.front() == '\r' || text.front() == '\t';
    plain += space ? ' ' : text.front();
    text.remove_prefix(1);
  }
  return plain;
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view space = " \t\r\n";
  const std::size_t begin = text.find_first_not_of(space);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(space) - begin + 1);
}

// The version of an item, which Sparkle looks for in two places.
std::string versionOf(const pugi::xml_node& item, const pugi::xml_node& enclosure) {
  const std::string_view element = trimmed(item.child_value("sparkle:version"));
  return element.empty() ? enclosure.attribute("sparkle:version").value() : std::string(element);
}

std::optional<std::uint64_t> number(std::string_view text) {
  std::uint64_t value = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (text.empty() || stop != end || error != std::errc()) return std::nullopt;
  return value;
}

// Fills in the update; what the item lacks is the answer.
std::optional<UpdateFailure> readItem(const pugi::xml_node& item, const pugi::xml_node& enclosure,
                                      Update& update) {
  update.version = versionOf(item, enclosure);
  if (update.version.empty()) return lacking("a version is missing");
  const std::optional<VersionNumber> version = VersionNumber::parse(update.version);
  if (!version) return lacking("“" + update.version + "” is no version");
  update.number = *version;

  const std::string of = " of version " + update.version;
  update.url = enclosure.attribute("url").value();
  if (update.url.empty()) return lacking("the address" + of + " is missing");
  if (!isSecure(update.url)) return UpdateFailure{UpdateFault::insecure, update.url};

  const std::optional<std::uint64_t> length = number(enclosure.attribute("length").value());
  if (!length || *length == 0) return lacking("the length" + of + " is missing");
  if (*length > longestPackage) return lacking("the length" + of + " cannot be right");
  update.length = *length;

  const std::optional<std::string> signature =
      signatureFromText(enclosure.attribute("sparkle:edSignature").value());
  if (!signature) return lacking("the signature" + of + " is missing");
  update.signature = *signature;

  const pugi::xml_node notes = item.child("description");
  const std::string_view format = notes.attribute("sparkle:descriptionFormat").value();
  update.notes = readableNotes(notes.child_value(), format != "plain-text");
  return std::nullopt;
}

std::variant<Update, UpdateFailure> newestUpdate(const pugi::xml_node& channel,
                                                 std::string_view system) {
  std::optional<Update> newest;
  for (const pugi::xml_node item : channel.children("item")) {
    for (const pugi::xml_node enclosure : item.children("enclosure")) {
      if (enclosure.attribute("sparkle:os").value() != system) continue;
      Update update;
      if (auto failure = readItem(item, enclosure, update)) return std::move(*failure);
      if (!newest || newest->number < update.number) newest = std::move(update);
    }
  }
  if (!newest) return UpdateFailure{UpdateFault::nothingForSystem, {}};
  return std::move(*newest);
}

}  // namespace

std::string readableNotes(std::string_view notes, bool markup) {
  const std::string text = markup ? withoutMarkup(notes) : std::string(notes);
  std::string shown;
  std::size_t lines = 0;
  bool cut = false;
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t end = rest.find('\n');
    const std::string_view line = trimmed(rest.substr(0, end));
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    if (line.empty()) continue;
    if (lines == mostLines || shown.size() + line.size() > mostBytes) {
      cut = true;
      // Of a single long line its beginning, in whole letters.
      for (std::string_view more = lines == mostLines ? std::string_view() : line; !more.empty();) {
        const std::size_t next = sequenceLength(more.data(), more.data() + more.size());
        if (next == 0 || shown.size() + next > mostBytes) break;
        if (more.data() == line.data() && lines > 0) shown += '\n';
        shown += more.substr(0, next);
        more.remove_prefix(next);
      }
      break;
    }
    if (lines++ > 0) shown += '\n';
    shown += line;
  }
  return cut ? shown + "…" : shown;
}

std::variant<Feed, UpdateFailure> readFeed(std::string_view feed, std::string_view system) {
  if (!isValidUTF8(feed)) return UpdateFailure{UpdateFault::unreadable, "it is not UTF-8"};
  pugi::xml_document document;
  const pugi::xml_parse_result read =
      document.load_buffer(feed.data(), feed.size(), pugi::parse_default, pugi::encoding_utf8);
  if (!read) return UpdateFailure{UpdateFault::unreadable, read.description()};
  const pugi::xml_node channel = document.child("rss").child("channel");
  if (!channel) return UpdateFailure{UpdateFault::unreadable, "it is not an RSS feed"};
  const std::optional<ISO::Date> date =
      ISO::date(std::string(trimmed(channel.child_value("dc:date"))));
  if (!date) return UpdateFailure{UpdateFault::undatedFeed, {}};
  return Feed{*date, newestUpdate(channel, system)};
}

}  // namespace quorin
