#include "kit/marks/RecordFile.h"

#include <cerrno>

#include "kit/value/JSONText.h"
#include "kit/value/Marshal.h"
#include "kit/value/WholeNumber.h"

namespace quorin {
namespace {

// The size alone limits how many addresses a file may hold.
constexpr JSONLimits limits{.bytes = JSONLimits{}.bytes, .values = JSONLimits{}.bytes};

std::string quoted(std::string_view key) {
  return "\"" + std::string(key) + "\"";
}

const JSONValue& requiredMember(const JSONValue& record, std::string_view key) {
  const JSONValue* member = record.member(std::string(key));
  if (!member) throw RecordError("a record lacks " + quoted(key));
  return *member;
}

}  // namespace

bool RecordFile::load(const std::function<void(const JSONValue&)>& decode,
                      Unreadable unreadable) const {
  std::string text;
  try {
    text = files_->read(url_, 0, limits.bytes + 1);
  } catch (const FileError& error) {
    const bool isThere = error.code() != std::errc::no_such_file_or_directory;
    if (isThere && unreadable == Unreadable::isError) throw;
    return false;
  }
  try {
    const ParsedJSON parsed = parseJSON(text, limits);
    if (!parsed) throw RecordError(parsed.error);
    decode(*parsed.value);
    return true;
  } catch (const RecordError& error) {
    log().log("ERROR", name_ + " malformed: " + error.what());
    return false;
  }
}

JSONValue::Array RecordFile::records() const {
  JSONValue::Array records;
  load([&records](const JSONValue& document) { records = arrayOf(document, "the top level"); },
       Unreadable::isNone);
  return records;
}

void RecordFile::replace(const JSONValue::Array& records, AtomicFile::Sync sync) const {
  if (records.empty()) {
    clear();
    return;
  }
  files_->makeFolders(url_.parent_path());
  const std::string text = Marshal::encode(records);
  if (text == "null") throw RecordError("a record holds text that is not valid UTF-8");
  if (text.size() > limits.bytes) throw FileError(EFBIG, "write", url_);
  AtomicFile::write(*files_, url_, text, AtomicFile::ReadOnly::replace, sync);
}

void RecordFile::clear() const {
  try {
    files_->remove(url_);
  } catch (const std::system_error&) {
    // Gone already, or not to be removed: either way there is nothing to do about it.
  }
}

const JSONValue::Array& arrayOf(const JSONValue& value, std::string_view what) {
  if (!value.array()) throw RecordError(std::string(what) + " is not an array");
  return *value.array();
}

const JSONValue::Array& arrayMember(const JSONValue& record, std::string_view key) {
  return arrayOf(requiredMember(record, key), quoted(key));
}

const std::string& textMember(const JSONValue& record, std::string_view key) {
  const JSONValue& member = requiredMember(record, key);
  if (!member.string()) throw RecordError(quoted(key) + " is not text");
  return *member.string();
}

std::int64_t integerOf(const JSONValue& value, std::string_view what) {
  const std::optional<std::int64_t> number = wholeNumber(value);
  if (!number) throw RecordError(std::string(what) + " is not an integer");
  return *number;
}

const JSONValue* optionalMember(const JSONValue& record, std::string_view key) {
  const JSONValue* member = record.member(std::string(key));
  return member && !member->isNull() ? member : nullptr;
}

}  // namespace quorin
