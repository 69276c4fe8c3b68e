#include "kit/platform/Environment.h"

#include <pwd.h>
#include <string_view>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace quorin {
namespace {

std::string homeFromUserDatabase() {
  std::vector<char> buffer(16384);
  passwd entry{};
  passwd* found = nullptr;
  if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found) return {};
  return found->pw_dir ? found->pw_dir : "";
}

}  // namespace

Environment processEnvironment() {
  Environment result;
  for (char** each = environ; each && *each; ++each) {
    const std::string_view variable = *each;
    const auto equals = variable.find('=');
    if (equals == std::string_view::npos) continue;
    result.emplace(variable.substr(0, equals), variable.substr(equals + 1));
  }
  std::string& home = result["HOME"];
  if (home.empty()) home = homeFromUserDatabase();
  return result;
}

}  // namespace quorin
