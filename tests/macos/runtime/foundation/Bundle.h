// What NSBundle.mainBundle answers with. A test that changes it puts it back.
#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace quorin {

struct MainBundle {
  std::filesystem::path folder;
  std::map<std::string, std::string> info;
  std::map<std::string, int> numbers = {};  // values that are no texts
};

MainBundle& mainBundle();

}  // namespace quorin
