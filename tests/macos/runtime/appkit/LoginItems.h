// What SMAppService answers with. A test that changes it puts it back.
#pragma once

#include <string>

namespace quorin {

struct LoginItems {
  int status = 3;  // SMAppServiceStatusNotFound
  std::string refusal;
  bool refusesWithoutAWord = false;
};

LoginItems& loginItems();

}  // namespace quorin
