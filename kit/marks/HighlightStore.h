// HighlightStore: the record on disk of the highlights that were painted and not yet removed.
// A plain value that knows where the file is.
#pragma once

#include <filesystem>
#include <utility>

namespace quorin {

class HighlightStore {
 public:
  explicit HighlightStore(std::filesystem::path url) : url_(std::move(url)) {}
  const std::filesystem::path& url() const { return url_; }

 private:
  std::filesystem::path url_;
};

}  // namespace quorin
