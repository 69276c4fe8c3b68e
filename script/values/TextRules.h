// How text is compared and split at a moment: what `considering` and `ignoring` say, and
// AppleScript's text item delimiters.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace quorin::script {

struct TextRules {
  bool ignoreCase = true;
  bool ignoreDiacriticals = false;
  bool ignoreHyphens = false;
  bool ignorePunctuation = false;
  bool ignoreWhiteSpace = false;
  bool numericStrings = false;
  std::vector<std::string> delimiters = {""};
  std::size_t maximumText = std::size_t{256} << 20;  // bytes
  std::size_t maximumItems = std::size_t{16} << 20;
};

}  // namespace quorin::script
