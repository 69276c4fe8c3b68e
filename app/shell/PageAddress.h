// Which addresses the panel's web view may show. Pure functions; any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorin::PageAddress {

inline constexpr const char* inlinePage = "about:blank";  // the address of a page given as text

// The address of a file of this machine, or of a page that a server on its loopback interface has,
// without its fragment and in one spelling; none for all others, and for what a browser could read
// in another way than this does.
std::optional<std::string> onThisMachine(std::string_view address);

// True if `address` leads to `page`, the page that was asked for, or to a place in it.
bool isSamePage(std::string_view address, std::string_view page);

}  // namespace quorin::PageAddress
