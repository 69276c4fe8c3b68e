// FileDefaults: the defaults port over one JSON file. A missing or malformed file holds nothing and
// is replaced at the next change; a change that cannot be written is kept for this run. Main
// thread.
#pragma once

#include <filesystem>
#include <map>

#include "app/shell/ports/Defaults.h"

namespace quorin {

class FileDefaults : public Defaults {
 public:
  explicit FileDefaults(std::filesystem::path file);

  std::optional<std::string> string(const std::string& key) const override;
  void setString(const std::string& key, const std::string& value) override;

 private:
  const std::filesystem::path file_;
  std::map<std::string, std::string> texts_;
};

}  // namespace quorin
