#include "app/linux/updates/FeedSignature.h"

#include <optional>
#include <string>

#include "app/linux/updates/PackageSignature.h"

namespace quorin {

std::variant<std::string_view, UpdateFailure> signedFeed(std::string_view text,
                                                         std::string_view publicKey) {
  constexpr std::string_view begin = "<!-- signature: ", end = " -->\n";
  constexpr std::size_t signature = 88;  // 64 bytes in base64
  constexpr std::size_t comment = begin.size() + signature + end.size();
  const UpdateFailure unsignedFeed{UpdateFault::unsignedFeed, {}};
  if (text.size() < comment) return unsignedFeed;
  const std::string_view content = text.substr(0, text.size() - comment);
  const std::string_view last = text.substr(content.size());
  if (!last.starts_with(begin) || !last.ends_with(end)) return unsignedFeed;
  const std::optional<std::string> bytes = signatureFromText(last.substr(begin.size(), signature));
  if (!bytes) return unsignedFeed;
  if (!isSigned(content, *bytes, publicKey)) return UpdateFailure{UpdateFault::changedFeed, {}};
  return content;
}

}  // namespace quorin
