#include "app/linux/updates/Address.h"

#include <glib.h>
#include <memory>
#include <string_view>

namespace quorin {

namespace {

struct UriUnref {
  void operator()(GUri* uri) const { g_uri_unref(uri); }
};
using UriPtr = std::unique_ptr<GUri, UriUnref>;

// With the port written out and the host in small letters.
constexpr GUriFlags flags =
    static_cast<GUriFlags>(G_URI_FLAGS_ENCODED | G_URI_FLAGS_SCHEME_NORMALIZE);

UriPtr parsed(const std::string& url) {
  return UriPtr(g_uri_parse(url.c_str(), flags, nullptr));
}

bool isSecure(GUri* uri) {
  const char* const host = g_uri_get_host(uri);
  return std::string_view(g_uri_get_scheme(uri)) == "https" && host && *host;
}

int port(GUri* uri) {
  constexpr int standard = 443;
  const int given = g_uri_get_port(uri);
  return given < 0 ? standard : given;
}

}  // namespace

bool isSecure(const std::string& url) {
  const UriPtr uri = parsed(url);
  return uri && isSecure(uri.get());
}

std::optional<std::string> redirection(const std::string& from, const std::string& to) {
  const UriPtr base = parsed(from);
  if (!base || !isSecure(base.get())) return std::nullopt;
  const UriPtr target(g_uri_parse_relative(base.get(), to.c_str(), flags, nullptr));
  if (!target || !isSecure(target.get()) || port(base.get()) != port(target.get())) {
    return std::nullopt;
  }
  if (g_ascii_strcasecmp(g_uri_get_host(base.get()), g_uri_get_host(target.get())) != 0) {
    return std::nullopt;
  }
  char* const text = g_uri_to_string(target.get());
  std::string address = text;
  g_free(text);
  return address;
}

}  // namespace quorin
