// UnhideStore: the record on disk of the rows and columns that were unhidden to show a cell and
// are to be hidden again. The twin of HighlightStore: same folder, same rules of loading, writing
// and clearing.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "kit/marks/RecordFile.h"
#include "kit/shapes/HiddenRuns.h"

namespace quorin {

class UnhideStore {
 public:
  // One worksheet.
  struct Record {
    std::string book;
    std::string sheet;
    std::vector<BridgeShapes::Run> rows;
    std::vector<BridgeShapes::Run> cols;

    bool isEmpty() const { return rows.empty() && cols.empty(); }
    BridgeShapes::HiddenRuns runs() const { return {rows, cols}; }
    bool operator==(const Record&) const = default;
  };
  using Records = std::vector<Record>;

  // The most rows, and columns, of one sheet that are unhidden at a time. A record of more is none
  // of ours: hiding that many would take the sheet away and Excel's time with it.
  static constexpr std::int64_t mostRows = 200;

  // unhidden.json in the folder of QXConfig::defaultURL.
  static std::filesystem::path defaultURL();

  explicit UnhideStore(std::filesystem::path url = defaultURL(),
                       FileSystem& files = FileSystem::real(), DiagLog* log = nullptr);

  const std::filesystem::path& url() const { return file_.url(); }

  // Never fails. A file that cannot be read is empty; so is a malformed one, which stays as it is
  // and is reported to the log. The rows or columns of a sheet that are more than mostRows are
  // left out, reported, and go from the file.
  Records load() const;

  // The same for who is going to write back what it gives: throws FileError where a file is there
  // that cannot be read, for what it holds would be lost.
  Records loadToReplace() const;

  // Replaces the whole content, atomically. Empty records are dropped; when none remain the file
  // goes. Throws FileError, and RecordError for text that is not valid UTF-8.
  void record(const Records& records) const;

  // Removes the file if it can.
  void clear() const { file_.clear(); }

  // Joins the runs with those of the first record of the same workbook and sheet, or appends the
  // record as it is.
  static Records merge(const Record& record, Records existing);

 private:
  Records load(RecordFile::Unreadable unreadable) const;

  RecordFile file_;
};

}  // namespace quorin
