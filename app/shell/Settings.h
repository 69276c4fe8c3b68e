// Settings: the user's settings as they are in force. The page looks at them and changes them one
// by one; each change holds at once and is then written to its keys of config.json, of which
// nothing else changes. What the user changed in the file by hand holds from when the panel comes
// up.
//
// A file that cannot be understood leaves in force what was, and stays as it is.
//
// Main thread only; owned by the application delegate.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "app/shell/HotKey.h"
#include "app/shell/MenuBar.h"
#include "app/shell/Panel.h"
#include "app/shell/Poller.h"
#include "kit/support/QXConfig.h"

namespace quorin {

class Settings {
 public:
  static constexpr std::int64_t longestPollMs = 60'000;

  // Everything here must outlive the object.
  struct Parts {
    AppPlatform& platform;
    Panel& panel;
    Poller& poller;
    HotKey& hotKey;
    MenuBar& menuBar;
    DiagLog& log;
    std::filesystem::path config;
    // Excel is to be asked so often from now on.
    std::function<void(std::int64_t pollMs)> setInterval;
  };

  // `inForce` was read from the file when the program started.
  Settings(Parts parts, QXConfig inForce);

  // Takes over what was changed in the file, and tells the page when something was.
  void reread();

  // None for a verb of others. A failure's payload is a sentence.
  //   "getSettings"      []             the settings, see settings() below
  //   "setSetting"       [name, value]  the settings as they are then:
  //       "summonKey", "mapKey", "depsKey"  {"code", "modifiers"}, or null for none
  //       "pollMs"                          a whole number of milliseconds
  //       "following", "login"              a boolean
  //   "pauseHotKeys"     [boolean]      null; the page waits for a combination to be pressed
  //   "checkForUpdates"  []             null
  std::optional<PanelBridge::Reply> answer(const std::string& verb, const JSONValue::Array& args);

 private:
  struct Key;
  static const std::array<Key, 3>& keys();

  PanelBridge::Reply set(const JSONValue::Array& args);
  PanelBridge::Reply setKey(const Key& key, const JSONValue& value);
  PanelBridge::Reply setPollMs(const JSONValue& value);
  PanelBridge::Reply setLogin(const JSONValue& value);
  // What keeps the combination from being this key's; none when nothing does.
  std::optional<std::string> objection(const Key& key, const KeyCombination& combination) const;
  // Why the patch could not be written, which the log tells too; none when it was.
  std::optional<std::string> save(const QXConfig::Patch& patch);
  // The file's settings where they are others; why it cannot be understood stands in trouble_.
  std::optional<QXConfig> readFile();

  // {"keys": {"summonKey": {"code", "modifiers", "trouble"}, …}, "keysTrouble", "pollMs",
  //  "highlightRGB", "following", "login": {"on", "unavailable"}, "updates": {"unavailable"},
  //  "file", "fileTrouble"}; "code" and "modifiers" are null for none, and all that is in the way
  //  of something is a few words, or empty.
  JSONValue settings() const;

  Parts parts_;
  QXConfig inForce_;
  std::string trouble_;  // of the file, as it was read last
};

}  // namespace quorin
