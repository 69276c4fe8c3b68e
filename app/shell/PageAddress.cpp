#include "app/shell/PageAddress.h"

#include <algorithm>
#include <charconv>
#include <filesystem>

namespace quorin::PageAddress {

namespace {

constexpr std::string_view digits = "0123456789";

std::string lowerCase(std::string_view text) {
  std::string result(text);
  for (char& one : result) {
    if (one >= 'A' && one <= 'Z') one = static_cast<char>(one - 'A' + 'a');
  }
  return result;
}

// Browsers drop or replace these in places, so that an address with them is not what it looks like.
bool isPlain(char one) {
  const auto byte = static_cast<unsigned char>(one);
  return byte > ' ' && byte != 0x7f && one != '\\';
}

// 127.x.x.x, each part a plain decimal number: 127.1 and 0177.0.0.1 are read in other ways.
bool isLoopbackNumber(std::string_view host) {
  constexpr std::string_view first = "127.";
  if (!host.starts_with(first)) return false;
  host.remove_prefix(first.size());
  for (int part = 0; part < 3; ++part) {
    const std::size_t length = std::min(host.find('.'), host.size());
    const std::string_view number = host.substr(0, length);
    if (number.empty() || number.size() > 3 || (number.size() > 1 && number[0] == '0')) {
      return false;
    }
    int value = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + length, value);
    if (error != std::errc() || end != number.data() + length || value > 255) return false;
    host.remove_prefix(std::min(length + 1, host.size()));
    if ((part < 2) == host.empty()) return false;
  }
  return true;
}

// The path with escaped characters as they are.
std::string plainPath(std::string_view path) {
  std::string result;
  for (std::size_t i = 0; i < path.size(); ++i) {
    unsigned char byte = 0;
    if (path[i] == '%' && i + 2 < path.size()) {
      const char* const two = path.data() + i + 1;
      const auto [end, error] = std::from_chars(two, two + 2, byte, 16);
      if (error == std::errc() && end == two + 2) {
        result += static_cast<char>(byte);
        i += 2;
        continue;
      }
    }
    result += path[i];
  }
  return result;
}

std::optional<std::string> file(std::string_view rest) {
  if (rest.starts_with("//")) {
    rest.remove_prefix(2);
    const std::size_t path = rest.find('/');
    if (path == std::string_view::npos) return std::nullopt;
    const std::string host = lowerCase(rest.substr(0, path));
    if (!host.empty() && host != "localhost") return std::nullopt;
    rest.remove_prefix(path);
  }
  // Two signs in front of a path name another machine in places.
  if (!rest.starts_with('/') || rest.starts_with("//")) return std::nullopt;
  const std::size_t query = std::min(rest.find('?'), rest.size());
  const std::string path = plainPath(rest.substr(0, query));
  if (path.starts_with("//")) return std::nullopt;
  return "file://" + std::filesystem::path(path).lexically_normal().string() +
         std::string(rest.substr(query));
}

std::optional<std::string> server(const std::string& scheme, std::string_view rest) {
  if (!rest.starts_with("//")) return std::nullopt;
  rest.remove_prefix(2);
  const std::size_t end = std::min(rest.find_first_of("/?"), rest.size());
  const std::string place = lowerCase(rest.substr(0, end));
  std::string path(rest.substr(end));
  if (!path.starts_with('/')) path.insert(0, "/");
  const std::size_t colon = place.find(':', place.starts_with('[') ? place.find(']') : 0);
  const std::string host = place.substr(0, colon);
  std::string port = colon == std::string::npos ? std::string() : place.substr(colon + 1);
  if (port.size() > 5 || port.find_first_not_of(digits) != std::string::npos) return std::nullopt;
  if (port == (scheme == "http" ? "80" : "443")) port.clear();
  if (host != "localhost" && host != "[::1]" && !isLoopbackNumber(host)) return std::nullopt;
  return scheme + "://" + host + (port.empty() ? "" : ":" + port) + path;
}

}  // namespace

std::optional<std::string> onThisMachine(std::string_view address) {
  if (!std::all_of(address.begin(), address.end(), isPlain)) return std::nullopt;
  address = address.substr(0, address.find('#'));
  const std::size_t colon = address.find(':');
  if (colon == std::string_view::npos) return std::nullopt;
  const std::string scheme = lowerCase(address.substr(0, colon));
  const std::string_view rest = address.substr(colon + 1);
  if (scheme == "file") return file(rest);
  if (scheme == "http" || scheme == "https") return server(scheme, rest);
  return std::nullopt;
}

bool isSamePage(std::string_view address, std::string_view page) {
  if (page == inlinePage) return address.substr(0, address.find('#')) == inlinePage;
  const std::optional<std::string> wanted = onThisMachine(page);
  return wanted && onThisMachine(address) == wanted;
}

}  // namespace quorin::PageAddress
