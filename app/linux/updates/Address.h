// Addresses of feeds and packages. Pure functions for any thread.
#pragma once

#include <optional>
#include <string>

namespace quorin {

// An absolute https address with a host.
bool isSecure(const std::string& url);

// Where a redirection leads, from the address that was asked and what the server answered; none
// unless that is the same server (scheme, host and port).
std::optional<std::string> redirection(const std::string& from, const std::string& to);

}  // namespace quorin
