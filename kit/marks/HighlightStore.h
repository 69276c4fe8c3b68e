// HighlightStore: the record on disk of every highlight painted into the spreadsheet and not yet
// removed. Written before painting, so that highlights can be taken back after a crash. A small
// value without state or lock, used by the bridge's work.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "kit/marks/RecordFile.h"

namespace quorin {

class HighlightStore {
 public:
  // One painted group of cells on one sheet.
  struct Record {
    std::string book;  // the workbook's name as Excel reports it
    std::string sheet;
    std::vector<std::string> addrs;  // in the order of first recording, without duplicates
    std::optional<std::vector<std::int64_t>> rgb = std::nullopt;
    // True when this record is the whole of a paint request that named one sheet.
    std::optional<bool> single = std::nullopt;

    bool operator==(const Record&) const = default;
  };
  using Records = std::vector<Record>;

  // highlights.json in the folder of QXConfig::defaultURL.
  static std::filesystem::path defaultURL();

  explicit HighlightStore(std::filesystem::path url = defaultURL(),
                          FileSystem& files = FileSystem::real(), DiagLog* log = nullptr);

  const std::filesystem::path& url() const { return file_.url(); }

  // Never fails. A file that cannot be read is empty; so is a malformed one, which stays as it is
  // and is reported to the log.
  Records load() const;

  // The same for who is going to write back what it gives: throws FileError where a file is there
  // that cannot be read, for what it holds would be lost.
  Records loadToReplace() const;

  // Replaces the whole content, atomically. Records without addresses are dropped; when none
  // remain the file goes. Throws FileError, and RecordError for text that is not valid UTF-8.
  void recordApplied(const Records& records) const;

  // Removes the file if it can.
  void clear() const { file_.clear(); }

  // The union: addresses go to the first record of the same workbook and sheet, which is then no
  // longer `single` and keeps its colour; other records are appended.
  static Records merge(const Records& incoming, Records existing);

  // Consecutive pieces of at most `size` elements. A size of 0 stops the process.
  static std::vector<std::vector<std::string>> chunks(const std::vector<std::string>& list,
                                                      std::size_t size);

 private:
  Records load(RecordFile::Unreadable unreadable) const;

  RecordFile file_;
};

}  // namespace quorin
