#include "kit/support/QXConfig.h"

#include <cerrno>
#include <utility>

#include "kit/platform/Fatal.h"
#include "kit/platform/Platform.h"
#include "kit/support/AtomicFile.h"
#include "kit/support/DiagLog.h"
#include "kit/support/LosslessJSON.h"
#include "kit/value/Unicode.h"

namespace quorin {
namespace {

std::string readWhole(FileSystem& files, const std::filesystem::path& url) {
  // One byte more than may be parsed: longer text is malformed, not unreadable.
  return files.read(url, 0, JSONLimits{}.bytes + 1);
}

bool mayNotChangeFolder(const FileError& error) {
  const int number = error.code().value();
  return number == EACCES || number == EPERM || number == EROFS;
}

// A file that may not be written is left alone, though its folder may allow to replace it. Where
// only the file may be written, it is written in its place.
void writeWhole(FileSystem& files, const std::filesystem::path& url, const std::string& text) {
  try {
    AtomicFile::write(files, url, text, AtomicFile::ReadOnly::refuse);
  } catch (const FileError& error) {
    if (!mayNotChangeFolder(error)) throw;
    const auto status = files.status(url);
    if (!status || status->kind != FileStatus::Kind::regular || !status->writable) throw;
    const auto file = files.openToOverwrite(url);
    file->append(text);
    files.truncate(url, text.size());
    file->sync();
    file->close();
  }
}

}  // namespace

std::filesystem::path QXConfig::defaultURL() {
  const std::filesystem::path support = platformFolders().applicationSupport();
  if (support.empty()) fatal("this user has no application-support folder for config.json");
  return support / "Quorin/config.json";
}

QXConfig QXConfig::load(const std::filesystem::path& url) {
  return load(url, FileSystem::real(), DiagLog::shared());
}

QXConfig QXConfig::load(const std::filesystem::path& url, FileSystem& files, DiagLog& log) {
  std::string text;
  try {
    text = readWhole(files, url);
  } catch (const std::system_error&) {
    const QXConfig defaults;
    try {
      files.makeFolders(url.parent_path());
      writeWhole(files, url, defaults.encode());
    } catch (const std::system_error&) {
      // The defaults hold without the file.
    }
    return defaults;
  }
  try {
    return decode(text);
  } catch (const QXConfigError&) {
    log.log("CONFIG", "malformed config at load, using defaults");
    return {};
  }
}

QXConfig QXConfig::readStrictly(const std::filesystem::path& url, FileSystem& files) {
  return decode(readWhole(files, url));
}

void QXConfig::merge(const Patch& patch, const std::filesystem::path& url, FileSystem& files) {
  std::optional<std::string> text;
  try {
    text = readWhole(files, url);
  } catch (const std::system_error&) {
    // Starts from nothing.
  }
  LosslessJSON document = LosslessJSON::Object{};
  if (text) {
    try {
      document = LosslessJSON::parse(*text);
    } catch (const std::invalid_argument&) {
      document = LosslessJSON::Array{};
    }
  }
  LosslessJSON::Object* members = document.object();
  if (!members) {
    throw QXConfigError(QXConfigError::malformed, "config.json is not valid JSON; left untouched");
  }
  for (const auto& [key, value] : patch) {
    if (!isValidUTF8(key)) throw std::invalid_argument("The key is not valid UTF-8.");
    if (value) {
      members->insert_or_assign(key, LosslessJSON::from(*value));
    } else {
      members->erase(key);
    }
  }
  files.makeFolders(url.parent_path());
  writeWhole(files, url, document.text(LosslessJSON::Style::pretty) + "\n");
}

void QXConfig::saveHighlightRGB(const std::vector<std::int64_t>& rgb,
                                const std::filesystem::path& url, FileSystem& files) {
  JSONValue::Array array;
  for (const std::int64_t part : rgb) array.push_back(static_cast<double>(part));
  merge({{"highlightRGB", std::move(array)}}, url, files);
}

}  // namespace quorin
