#include "kit/platform/XDGFolders.h"

#include <algorithm>
#include <fstream>
#include <string_view>
#include <system_error>

namespace quorin {
namespace fs = std::filesystem;
namespace {

// The value of a line NAME="value" as a shell would read it, for the two forms that user-dirs.dirs
// may have: "$HOME/relative" and "/absolute". Empty for anything else.
std::string quotedPath(std::string_view line, std::string_view name, const std::string& home) {
  line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
  if (!line.starts_with(name)) return {};
  line.remove_prefix(name.size());
  if (!line.starts_with("=\"")) return {};
  line.remove_prefix(2);
  std::string value;
  constexpr std::string_view variable = "$HOME";
  if (line.starts_with(variable)) {
    value = home;
    line.remove_prefix(variable.size());
  }
  for (std::size_t i = 0; i < line.size() && line[i] != '"'; ++i) {
    if (line[i] == '\\' && i + 1 < line.size()) ++i;
    value += line[i];
  }
  return value.starts_with('/') ? value : std::string();
}

bool isFolder(const fs::path& path) {
  std::error_code ignored;
  return !path.empty() && fs::is_directory(path, ignored);
}

}  // namespace

fs::path XDGFolders::absolute(const char* variable) const {
  const auto found = environment_.find(variable);
  if (found == environment_.end() || !found->second.starts_with('/')) return {};
  return found->second;
}

fs::path XDGFolders::inHome(const char* relative) const {
  const fs::path home = absolute("HOME");
  return home.empty() ? fs::path() : home / relative;
}

fs::path XDGFolders::applicationSupport() const {
  const fs::path data = absolute("XDG_DATA_HOME");
  return data.empty() ? inHome(".local/share") : data;
}

fs::path XDGFolders::library() const {
  const fs::path state = absolute("XDG_STATE_HOME");
  return state.empty() ? inHome(".local/state") : state;
}

fs::path XDGFolders::configuration() const {
  const fs::path config = absolute("XDG_CONFIG_HOME");
  return config.empty() ? inHome(".config") : config;
}

fs::path XDGFolders::configuredDesktop() const {
  std::ifstream file(configuration() / "user-dirs.dirs");
  std::string desktop;
  std::string line;
  while (std::getline(file, line)) {
    const std::string value = quotedPath(line, "XDG_DESKTOP_DIR", absolute("HOME").string());
    if (!value.empty()) desktop = value;
  }
  return desktop;
}

fs::path XDGFolders::desktop() const {
  const fs::path configured = configuredDesktop();
  if (isFolder(configured)) return configured;
  const fs::path usual = inHome("Desktop");
  if (configured.empty() && isFolder(usual)) return usual;
  return absolute("HOME");
}

fs::path XDGFolders::temporary() const {
  const fs::path given = absolute("TMPDIR");
  return given.empty() ? fs::path("/tmp") : given;
}

}  // namespace quorin
