// ShownLinesFile: "shown-lines.json", where a spreadsheet keeps what tells the lines that it has
// shown after their workbook was closed and opened again. What is in it is the spreadsheet's
// affair.
#pragma once

#include <filesystem>

#include "kit/marks/RecordFile.h"

namespace quorin {

class ShownLinesFile {
 public:
  // As a RecordFile.
  ShownLinesFile(const std::filesystem::path& folder, FileSystem& files, DiagLog* log)
      : file_(folder / name, name, files, log) {}

  const std::filesystem::path& url() const { return file_.url(); }
  JSONValue::Array load() const { return file_.records(); }
  // Does not wait for the disk: lines whose traces are lost are told by their numbers. Throws as
  // RecordFile::replace does.
  void save(const JSONValue::Array& all) const { file_.replace(all, AtomicFile::Sync::none); }
  void clear() const { file_.clear(); }

 private:
  static constexpr const char* name = "shown-lines.json";

  RecordFile file_;
};

}  // namespace quorin
