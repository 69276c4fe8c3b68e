// ReviewStore: what reviewers said of the findings in their workbooks, in one file: an array of
// {"book", "review"}, the workbook that was saved last at its end. What a review holds is the
// page's. It is work of the user's, so that a file that cannot be understood is left as it is. A
// small value without state or lock; used on one queue.
#pragma once

#include <filesystem>
#include <string>

#include "kit/marks/RecordFile.h"

namespace quorin {

class ReviewStore {
 public:
  // The file is never larger: the workbooks that were saved longest ago go first.
  static constexpr std::size_t largestFile = 5'000'000;

  explicit ReviewStore(std::filesystem::path url, FileSystem& files = FileSystem::real(),
                       DiagLog* log = nullptr);

  const std::filesystem::path& url() const { return file_.url(); }

  // The review of the workbook of this name; null where there is none. Throws FileError for a file
  // that is there and cannot be read, RecordError for a malformed one, which is logged as well.
  JSONValue load(const std::string& book) const;

  // Replaces the workbook's review, atomically; null takes it away. Throws as load(), FileError
  // where the file cannot be written, and RecordError for a review that is too large for the file
  // or holds text that is not valid UTF-8. The file is then as it was.
  void save(const std::string& book, const JSONValue& review) const;

 private:
  JSONValue::Array records() const;

  RecordFile file_;
  FileSystem* files_;
};

}  // namespace quorin
