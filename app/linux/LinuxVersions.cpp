#include "app/linux/LinuxVersions.h"

#include <fstream>
#include <sstream>
#include <string_view>
#include <system_error>

namespace quorin {

namespace fs = std::filesystem;

namespace {

std::string prettyName(const fs::path& release) {
  constexpr std::string_view key = "PRETTY_NAME=";
  std::ifstream file(release);
  for (std::string line; std::getline(file, line);) {
    if (!line.starts_with(key)) continue;
    std::string name = line.substr(key.size());
    std::erase(name, '"');
    return name;
  }
  return {};
}

// The folder that holds the starter's own one, "program".
std::optional<fs::path> officeFolder(const Environment& environment) {
  const auto path = environment.find("PATH");
  std::istringstream folders(path == environment.end() ? std::string() : path->second);
  for (std::string folder; std::getline(folders, folder, ':');) {
    std::error_code failed;
    const fs::path starter = fs::canonical(fs::path(folder) / "soffice", failed);
    if (!failed) return starter.parent_path().parent_path();
  }
  return std::nullopt;
}

// Where the box "About" takes it from. The settings are described before their values are given.
std::optional<std::string> officeVersion(const fs::path& office) {
  std::ifstream file(office / "share" / "registry" / "main.xcd", std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  const std::string settings = text.str();
  constexpr std::string_view opening = "<value>";
  std::size_t at = settings.rfind("\"ooSetupVersionAboutBox\"");
  if (at != std::string::npos) at = settings.find(opening, at);
  if (at == std::string::npos) return std::nullopt;
  at += opening.size();
  const std::string version = settings.substr(at, settings.find('<', at) - at);
  return version.empty() ? std::nullopt : std::optional(version);
}

}  // namespace

SystemVersions linuxVersions(const Environment& environment, const fs::path& release) {
  const std::optional<fs::path> office = officeFolder(environment);
  return {"Linux", prettyName(release), "LibreOffice",
          office ? officeVersion(*office) : std::nullopt};
}

}  // namespace quorin
