// ShownRowsFile: "shown-lines.json", where a spreadsheet keeps what tells the rows that it has
// shown after their workbook was closed and opened again. What is in it is the spreadsheet's
// affair.
#pragma once

#include <filesystem>

#include "kit/marks/RecordFile.h"

namespace quorin {

class ShownRowsFile {
 public:
  // As a RecordFile.
  ShownRowsFile(const std::filesystem::path& folder, FileSystem& files, DiagLog* log)
      : file_(folder / name, name, files, log) {}

  const std::filesystem::path& url() const { return file_.url(); }
  JSONValue::Array load() const { return file_.records(); }
  // Does not wait for the disk: rows whose traces are lost are told by their numbers. Throws as
  // RecordFile::replace does.
  void save(const JSONValue::Array& all) const { file_.replace(all, AtomicFile::Sync::none); }
  void clear() const { file_.clear(); }

 private:
  static constexpr const char* name = "shown-lines.json";

  RecordFile file_;
};

}  // namespace quorin
