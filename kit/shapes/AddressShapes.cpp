#include "kit/shapes/AddressShapes.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace quorin::BridgeShapes {

int selectionAreaCount(std::string_view address) {
  if (address.empty()) return 0;
  int areas = 1;
  int brackets = 0;
  bool quoted = false;
  for (const char c : address) {
    if (c == '\'') {
      quoted = !quoted;
    } else if (quoted) {
      continue;
    } else if (c == '[') {
      ++brackets;
    } else if (c == ']') {
      brackets = std::max(0, brackets - 1);
    } else if ((c == ',' || c == ';') && brackets == 0) {
      ++areas;
    }
  }
  return areas;
}

SheetAddress parseSheetAddr(std::string_view address) {
  const SheetAddress bare{std::nullopt, std::string(address)};
  if (!address.starts_with('\'')) {
    const std::size_t bang = address.find('!');
    if (bang == std::string_view::npos) return bare;
    return {std::string(address.substr(0, bang)), std::string(address.substr(bang + 1))};
  }
  std::string sheet;
  for (std::size_t i = 1; i < address.size(); ++i) {
    const std::string_view rest = address.substr(i);
    if (rest.starts_with("''")) {
      ++i;
    } else if (rest.starts_with("'!")) {
      return {sheet, std::string(rest.substr(2))};
    }
    sheet += address[i];
  }
  return bare;
}

std::vector<SheetGroup> groupBySheet(const std::vector<std::string>& addrs,
                                     const std::string& active) {
  std::vector<SheetAddress> parsed;
  for (const std::string& addr : addrs) parsed.push_back(parseSheetAddr(addr));
  const auto named = std::find_if(parsed.begin(), parsed.end(),
                                  [](const SheetAddress& one) { return one.sheet.has_value(); });
  const std::string standing = named == parsed.end() ? active : *named->sheet;
  std::vector<SheetGroup> groups;
  for (SheetAddress& one : parsed) {
    const std::string sheet = one.sheet.value_or(standing);
    auto group = std::find_if(groups.begin(), groups.end(),
                              [&sheet](const SheetGroup& other) { return other.sheet == sheet; });
    if (group == groups.end()) group = groups.insert(groups.end(), {sheet, {}});
    group->addrs.push_back(std::move(one.addr));
  }
  return groups;
}

std::string stripDollars(std::string_view address) {
  std::string bare;
  bare.reserve(address.size());
  std::copy_if(address.begin(), address.end(), std::back_inserter(bare),
               [](char c) { return c != '$'; });
  return bare;
}

}  // namespace quorin::BridgeShapes
