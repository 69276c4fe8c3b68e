#include "kit/platform/Fatal.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace quorin {

void fatal(std::string_view message) {
  std::string line = "quorin: ";
  line.append(message).push_back('\n');
  std::fwrite(line.data(), 1, line.size(), stderr);
  std::fflush(stderr);
  std::abort();
}

}  // namespace quorin
