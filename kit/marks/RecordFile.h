// RecordFile: a JSON file that holds an array of records and lives only as long as there are any.
// What the stores have in common. No state in memory, no lock; used by the bridge's work.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "kit/support/AtomicFile.h"
#include "kit/support/DiagLog.h"
#include "kit/support/FileSystem.h"
#include "kit/value/JSONValue.h"

namespace quorin {

// Why a file is malformed, or why records cannot be put into one.
class RecordError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class RecordFile {
 public:
  // `name` stands in log lines. A null log is the shared one.
  RecordFile(std::filesystem::path url, std::string name, FileSystem& files, DiagLog* log)
      : url_(std::move(url)), name_(std::move(name)), files_(&files), log_(log) {}

  const std::filesystem::path& url() const { return url_; }
  DiagLog& log() const { return log_ ? *log_ : DiagLog::shared(); }

  // What a file means that is there and cannot be read: none, or FileError.
  enum class Unreadable { isNone, isError };

  // Hands the parsed document to `decode`, which throws RecordError when it is not what it should
  // be; that or text that is no JSON is logged under "ERROR" and false. Where there is no file it
  // is false without a word. The file stays as it is.
  bool load(const std::function<void(const JSONValue&)>& decode, Unreadable unreadable) const;

  // The records as they stand there; none where load() would be false.
  JSONValue::Array records() const;

  // Replaces the file; of an empty array removes it. Throws FileError, and RecordError for text
  // that is not valid UTF-8.
  void replace(const JSONValue::Array& records,
               AtomicFile::Sync sync = AtomicFile::Sync::full) const;

  // Removes the file if it can.
  void clear() const;

 private:
  std::filesystem::path url_;
  std::string name_;
  FileSystem* files_;
  DiagLog* log_;
};

// Parts of a record, for decoding. Each throws RecordError naming the key when it is missing or of
// another type.
const JSONValue::Array& arrayOf(const JSONValue& value, std::string_view what);
const JSONValue::Array& arrayMember(const JSONValue& record, std::string_view key);
const std::string& textMember(const JSONValue& record, std::string_view key);
std::int64_t integerOf(const JSONValue& value, std::string_view what);
// None when the key is missing or null.
const JSONValue* optionalMember(const JSONValue& record, std::string_view key);

}  // namespace quorin
