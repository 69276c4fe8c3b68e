#include "app/linux/FileDefaults.h"

#include "kit/support/AtomicFile.h"
#include "kit/value/JSONText.h"
#include "kit/value/Marshal.h"

namespace quorin {

namespace {

constexpr std::size_t largestFile = 64 * 1024;

}  // namespace

FileDefaults::FileDefaults(std::filesystem::path file) : file_(std::move(file)) {
  try {
    const ParsedJSON parsed = parseJSON(FileSystem::real().read(file_, 0, largestFile));
    if (!parsed || !parsed.value->object()) return;
    for (const auto& [key, value] : *parsed.value->object()) {
      if (value.string()) texts_[key] = *value.string();
    }
  } catch (const FileError&) {
    // There are no defaults yet.
  }
}

std::optional<std::string> FileDefaults::string(const std::string& key) const {
  const auto found = texts_.find(key);
  return found == texts_.end() ? std::nullopt : std::optional(found->second);
}

void FileDefaults::setString(const std::string& key, const std::string& value) {
  texts_[key] = value;
  JSONValue::Object object;
  for (const auto& [name, text] : texts_) object[name] = text;
  try {
    FileSystem::real().makeFolders(file_.parent_path());
    AtomicFile::write(FileSystem::real(), file_, Marshal::encode(object) + "\n");
  } catch (const FileError&) {
    // The value counts for this run.
  }
}

}  // namespace quorin
