// QXConfig: the user's settings, kept as config.json. A plain value; no state between calls. Each
// reader loads anew and each writer merges single keys, so that keys it does not know stay. Any
// thread; two merges at one time need a lock of their own.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "kit/support/FileSystem.h"
#include "kit/value/JSONValue.h"

namespace quorin {

class DiagLog;

// The file is there and is not what it should be.
class QXConfigError : public std::runtime_error {
 public:
  static constexpr const char* domain = "QXConfig";
  static constexpr int malformed = 1;

  QXConfigError(int code, const std::string& description)
      : std::runtime_error(description), code_(code) {}
  int code() const { return code_; }

 private:
  int code_;
};

// A global hot key as the settings have it. Its key code is `noKey` where there is to be none.
struct KeyCombination {
  static constexpr std::uint32_t noKey = 0xFFFF;

  std::uint32_t keyCode = noKey;
  std::uint32_t modifiers = 0;

  bool isNone() const { return keyCode == noKey; }
  bool operator==(const KeyCombination&) const = default;
};

struct QXConfig {
  static constexpr std::int64_t shortestPollMs = 50;

  // Virtual key codes of the ANSI layout and Carbon modifier masks: command 256, shift 512, option
  // 2048, control 4096.
  std::uint32_t summonKeyCode = 0;       // A
  std::uint32_t summonModifiers = 2560;  // option + shift
  std::uint32_t mapKeyCode = 2;          // D
  std::uint32_t mapModifiers = 2560;
  std::uint32_t depsKeyCode = 1;  // S
  std::uint32_t depsModifiers = 2560;
  std::int64_t pollMs = 300;      // period of the active-cell poll
  std::int64_t debounceMs = 150;  // stored only: nothing waits for it
  std::vector<std::int64_t> highlightRGB = {255, 0, 255};
  std::optional<std::string> lastLaunchedAt;  // ISO 8601 internet date-time
  std::optional<std::string> welcomedAt;      // when the first card of help was dismissed; likewise

  bool operator==(const QXConfig&) const = default;

  KeyCombination summonKey() const { return {summonKeyCode, summonModifiers}; }
  KeyCombination mapKey() const { return {mapKeyCode, mapModifiers}; }
  KeyCombination depsKey() const { return {depsKeyCode, depsModifiers}; }

  // Quorin/config.json in the application-support folder of the installed platform, whose absence
  // stops the process. Makes no folder.
  static std::filesystem::path defaultURL();

  // Never fails. A file that cannot be read is written with the defaults, if that is possible; a
  // malformed one stays as it is and is reported to the log.
  static QXConfig load(const std::filesystem::path& url);
  static QXConfig load(const std::filesystem::path& url, FileSystem& files, DiagLog& log);

  // The same, telling what is wrong: throws QXConfigError for a malformed file, FileError for one
  // that cannot be read. Writes and logs nothing.
  static QXConfig readStrictly(const std::filesystem::path& url,
                               FileSystem& files = FileSystem::real());

  // An absent value removes the key.
  using Patch = std::map<std::string, std::optional<JSONValue>>;

  // Changes the keys of the patch and leaves every other one exactly as it is. Throws
  // QXConfigError when the file is there and is no JSON object, FileError when the folder cannot be
  // made or the file not be written, std::invalid_argument for text that is not valid UTF-8; the
  // file is untouched then.
  static void merge(const Patch& patch, const std::filesystem::path& url,
                    FileSystem& files = FileSystem::real());

  // A merge of "highlightRGB", which is not validated here.
  static void saveHighlightRGB(const std::vector<std::int64_t>& rgb,
                               const std::filesystem::path& url,
                               FileSystem& files = FileSystem::real());

  // From JSON text: earlier default hot keys become the present ones, values out of range their
  // defaults. Throws QXConfigError when the text is no JSON object or a key has the wrong type.
  static QXConfig decode(std::string_view text);
  std::string encode() const;  // compact
};

}  // namespace quorin
