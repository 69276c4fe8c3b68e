#include "tools/quorinctl/AuditFiles.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <set>
#include <system_error>

#include "kit/support/ISO.h"

namespace quorin::ctl {

namespace {

using std::filesystem::path;

bool isWorkbook(const path& file) {
  static const std::set<std::string> suffixes{".xlsx", ".xlsm", ".xls", ".xlsb", ".ods", ".fods"};
  std::string suffix = file.extension().string();
  std::transform(suffix.begin(), suffix.end(), suffix.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return suffixes.contains(suffix);
}

std::vector<path> workbooksIn(const path& folder) {
  std::vector<path> found;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(
           folder, std::filesystem::directory_options::skip_permission_denied)) {
    const std::string name = entry.path().filename().string();
    const bool isLock = name.starts_with("~$") || name.starts_with(".~lock.");
    if (entry.is_regular_file() && !isLock && isWorkbook(entry.path()))
      found.push_back(entry.path());
  }
  std::sort(found.begin(), found.end());
  return found;
}

}  // namespace

std::vector<path> workbooksOf(const std::vector<path>& given) {
  std::vector<path> files;
  std::set<path> known;
  for (const path& one : given) {
    const bool isFolder = std::filesystem::is_directory(one);
    for (path& file : isFolder ? workbooksIn(one) : std::vector<path>{one})
      if (known.insert(file).second) files.push_back(std::move(file));
  }
  return files;
}

JSONValue::Object stampOf(const path& file) {
  std::error_code failure;
  const auto modified = std::filesystem::last_write_time(file, failure);
  if (failure) return {};
  const auto size = std::filesystem::file_size(file, failure);
  if (failure) return {};
  const auto date = std::chrono::floor<ISO::Date::duration>(
      std::filesystem::file_time_type::clock::to_sys(modified));
  return {{"modified", ISO::stringWithMilliseconds(date)}, {"size", static_cast<double>(size)}};
}

}  // namespace quorin::ctl
