// TemporaryFolder: a new folder of this test's own, gone with everything in it at the end.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

namespace quorin {

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "quorin-test-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder can be made");
    path_ = pattern;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    for (auto entry = std::filesystem::recursive_directory_iterator(path_, ignored);
         entry != std::filesystem::recursive_directory_iterator(); entry.increment(ignored)) {
      // A test may have taken the right to enter a folder.
      if (entry->is_directory(ignored) && !entry->is_symlink(ignored)) {
        std::filesystem::permissions(entry->path(), std::filesystem::perms::owner_all, ignored);
      }
    }
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

}  // namespace quorin
