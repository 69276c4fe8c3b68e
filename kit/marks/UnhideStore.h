// UnhideStore: the record on disk of the rows and columns that were unhidden and not yet hidden
// again. A plain value that knows where the file is.
#pragma once

#include <filesystem>
#include <utility>

namespace quorin {

class UnhideStore {
 public:
  explicit UnhideStore(std::filesystem::path url) : url_(std::move(url)) {}
  const std::filesystem::path& url() const { return url_; }

 private:
  std::filesystem::path url_;
};

}  // namespace quorin
