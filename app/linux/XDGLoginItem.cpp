#include "app/linux/XDGLoginItem.h"

#include <string_view>
#include <system_error>

#include "kit/support/AtomicFile.h"

namespace quorin {

namespace {

constexpr std::size_t largestFile = 64 * 1024;

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\r";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// True if the entry's main group says Hidden=true, which switches it off.
bool isHidden(std::string_view text) {
  bool inGroup = false;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    const std::string_view line = trimmed(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.starts_with('[')) inGroup = line == "[Desktop Entry]";
    const std::size_t equals = line.find('=');
    if (!inGroup || equals == std::string_view::npos) continue;
    if (trimmed(line.substr(0, equals)) == "Hidden") {
      return trimmed(line.substr(equals + 1)) == "true";
    }
  }
  return false;
}

// A program's path as the key Exec takes it: quoted, and the quoted text escaped once more as every
// text of a desktop file is.
std::string execOf(const std::string& program) {
  std::string text = "\"";
  for (const char letter : program) {
    if (letter == '\\') {
      text += R"(\\\\)";
    } else if (letter == '"' || letter == '`' || letter == '$') {
      text += R"(\\)";
      text += letter;
    } else if (letter == '%') {
      text += "%%";
    } else {
      text += letter;
    }
  }
  return text + '"';
}

}  // namespace

XDGLoginItem::XDGLoginItem(std::filesystem::path program,
                           const std::filesystem::path& configuration)
    : program_(std::move(program)), file_(configuration / "autostart" / "quorin.desktop") {}

// A prefix holds the program and, with it, the program's own folder.
bool XDGLoginItem::isInstalled() const {
  const std::filesystem::path folder = program_.parent_path();
  std::error_code ignored;
  return folder.filename() == "bin" &&
         std::filesystem::is_directory(folder.parent_path() / "share" / "quorin", ignored);
}

LoginItemStatus XDGLoginItem::status() const {
  try {
    if (!FileSystem::real().status(file_)) return LoginItemStatus::notRegistered;
    return isHidden(FileSystem::real().read(file_, 0, largestFile)) ? LoginItemStatus::notRegistered
                                                                    : LoginItemStatus::enabled;
  } catch (const FileError&) {
    return LoginItemStatus::unknown;
  }
}

std::optional<std::string> XDGLoginItem::registerItem() {
  try {
    FileSystem::real().makeFolders(file_.parent_path());
    AtomicFile::write(FileSystem::real(), file_,
                      "[Desktop Entry]\nType=Application\nName=Quorin\n"
                      "Comment=Follows the selected cell beside LibreOffice Calc\nExec=" +
                          execOf(program_.string()) + "\nIcon=quorin\nTerminal=false\n");
    return std::nullopt;
  } catch (const FileError& error) {
    return error.what();
  }
}

std::optional<std::string> XDGLoginItem::unregisterItem() {
  std::error_code failed;
  std::filesystem::remove(file_, failed);
  if (failed) return file_.string() + ": " + failed.message();
  return std::nullopt;
}

}  // namespace quorin
