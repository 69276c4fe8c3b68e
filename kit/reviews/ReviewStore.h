// ReviewStore: what reviewers said of the findings in their workbooks, in one file: an array of
// {"book", "path", "marks", "review"}, the workbook that was saved last at its end. What a review
// holds is the page's. It is work of the user's, so that a file that cannot be understood is left
// as it is. A small value without state or lock; used on one queue.
#pragma once

#include <filesystem>
#include <string>

#include "kit/marks/RecordFile.h"

namespace quorin {

// Which workbook a review is of. Books that were kept without path and marks have neither.
struct ReviewedBook {
  std::string name;
  std::string path = {};   // a print of where it lies; empty where that is not known
  std::string marks = {};  // four letters each, dots for none; workbooks that are alike share many
};

class ReviewStore {
 public:
  // The file is never larger: the workbooks that were saved longest ago go first.
  static constexpr std::size_t largestFile = 5'000'000;

  explicit ReviewStore(std::filesystem::path url, FileSystem& files = FileSystem::real(),
                       DiagLog* log = nullptr);

  const std::filesystem::path& url() const { return file_.url(); }

  // The review of the workbook that lies there. Where none is kept, that of the one which is most
  // like it in at least half of all marks, whatever it is called: a copy, or the same file renamed;
  // else of the one that has its name and no marks. Null where there is none of these. Throws
  // FileError for a file that is there and cannot be read, RecordError for a malformed one, which
  // is logged as well.
  JSONValue load(const ReviewedBook& book) const;

  // Replaces the workbook's review, atomically; null takes it away. What was inherited stays with
  // the other workbook as well, unless that has this one's name and it is not known where one of
  // them lies. Throws as load(), FileError
  // where the file cannot be written, and RecordError for a review that is too large for the file
  // or holds text that is not valid UTF-8. The file is then as it was.
  void save(const ReviewedBook& book, const JSONValue& review) const;

 private:
  JSONValue::Array records() const;

  RecordFile file_;
  FileSystem* files_;
};

}  // namespace quorin
