#include "app/shell/Settings.h"

#include <algorithm>
#include <array>
#include <exception>
#include <system_error>
#include <utility>

#include "app/shell/Views.h"
#include "kit/value/WholeNumber.h"

namespace quorin {

// One of the three combinations that the user chooses.
struct Settings::Key {
  const char* name;  // of the setting
  const SummonedView& view;
  const char *codeKey, *modifiersKey;  // of config.json
  std::uint32_t QXConfig::*code;
  std::uint32_t QXConfig::*modifiers;
};

namespace {

constexpr std::uint32_t command = 256, shift = 512, option = 2048, control = 4096;
constexpr std::uint32_t highestKeyCode = 127;

// F1 to F20.
constexpr std::array<std::uint32_t, 20> functionKeys{
    122, 120, 99, 118, 96, 97, 98, 100, 101, 109, 103, 111, 105, 107, 113, 106, 64, 79, 80, 90};

const PanelBridge::Reply badArguments{false, "bad args"};

PanelBridge::Reply refused(const std::string& sentence) {
  return {false, sentence};
}

std::optional<std::int64_t> atMost(const JSONValue* value, std::int64_t highest) {
  const auto number = value ? wholeNumber(*value) : std::nullopt;
  return number && *number >= 0 && *number <= highest ? number : std::nullopt;
}

// None for what is no combination.
std::optional<KeyCombination> combinationOf(const JSONValue& value) {
  if (value.isNull()) return KeyCombination{};
  if (!value.object() || value.object()->size() != 2) return std::nullopt;
  constexpr std::int64_t known = command | shift | option | control;
  const auto code = atMost(value.member("code"), highestKeyCode);
  const auto modifiers = atMost(value.member("modifiers"), known);
  if (!code || !modifiers || (*modifiers & ~known) != 0) return std::nullopt;
  return KeyCombination{static_cast<std::uint32_t>(*code), static_cast<std::uint32_t>(*modifiers)};
}

// Without one of these the key could not be typed any more, in any program.
bool isTyped(const KeyCombination& combination) {
  const bool isFunctionKey = std::find(functionKeys.begin(), functionKeys.end(),
                                       combination.keyCode) != functionKeys.end();
  return !isFunctionKey && (combination.modifiers & (command | option | control)) == 0;
}

std::string trouble(HotKeyService::Status status) {
  switch (status) {
    case HotKeyService::noError:
      return "";
    case HotKeyService::alreadyExists:
      return "Another program or the desktop has this key.";
    case HotKeyService::badParameter:
      return "This keyboard has no such key.";
    default:
      return "The system refuses this key (" + std::to_string(status) + ").";
  }
}

// Without the path, which the page tells anyway.
std::string reasonOf(const std::exception& error) {
  const auto* const file = dynamic_cast<const FileError*>(&error);
  return file ? file->code().message() : error.what();
}

bool startsAtLogin(LoginItem* login) {
  return login && login->status() == LoginItemStatus::enabled;
}

// Empty when it can be set to start.
std::string whyNotAtLogin(LoginItem* login) {
  if (!login) return "not on this system";
  return login->isInstalled() ? "" : "installed app only";
}

}  // namespace

Settings::Settings(Parts parts, QXConfig inForce)
    : parts_(std::move(parts)), inForce_(std::move(inForce)) {
  readFile();
}

const std::array<Settings::Key, 3>& Settings::keys() {
  static constexpr std::array<Key, 3> all{{
      {"summonKey", views::tree, "summonKeyCode", "summonModifiers", &QXConfig::summonKeyCode,
       &QXConfig::summonModifiers},
      {"depsKey", views::dependents, "depsKeyCode", "depsModifiers", &QXConfig::depsKeyCode,
       &QXConfig::depsModifiers},
      {"mapKey", views::map, "mapKeyCode", "mapModifiers", &QXConfig::mapKeyCode,
       &QXConfig::mapModifiers},
  }};
  return all;
}

std::optional<QXConfig> Settings::readFile() {
  try {
    std::error_code ignored;
    // A file that is gone is written anew, as at the start.
    QXConfig read = std::filesystem::exists(parts_.config, ignored)
                        ? QXConfig::readStrictly(parts_.config)
                        : QXConfig::load(parts_.config, FileSystem::real(), parts_.log);
    trouble_.clear();
    return read;
  } catch (const std::exception& error) {
    const std::string told = reasonOf(error);
    if (told != trouble_) parts_.log.log("CONFIG", "settings kept as they were: " + told);
    trouble_ = told;
    return std::nullopt;
  }
}

void Settings::reread() {
  const std::string before = trouble_;
  std::optional<QXConfig> read = readFile();
  if (read) read->lastLaunchedAt = inForce_.lastLaunchedAt;  // no setting
  const bool changed = read && *read != inForce_;
  if (changed) {
    const bool otherInterval = read->pollMs != inForce_.pollMs;
    inForce_ = std::move(*read);
    parts_.hotKey.apply(inForce_);
    if (otherInterval) parts_.setInterval(inForce_.pollMs);
  }
  if (changed || trouble_ != before) {
    parts_.panel.sendEvent("settingsChanged", JSONValue::Object{});
  }
}

std::optional<PanelBridge::Reply> Settings::answer(const std::string& verb,
                                                   const JSONValue::Array& args) {
  if (verb == "setSetting") return set(args);
  if (verb == "getSettings") {
    if (!args.empty()) return badArguments;
    reread();
    return PanelBridge::Reply{true, settings()};
  }
  if (verb == "pauseHotKeys") {
    if (args.size() != 1 || !args[0].boolean()) return badArguments;
    parts_.hotKey.setPaused(*args[0].boolean());
    return PanelBridge::Reply{true, nullptr};
  }
  if (verb == "checkForUpdates") {
    if (!args.empty()) return badArguments;
    parts_.menuBar.checkForUpdates();
    return PanelBridge::Reply{true, nullptr};
  }
  return std::nullopt;
}

PanelBridge::Reply Settings::set(const JSONValue::Array& args) {
  if (args.size() != 2 || !args[0].string()) return badArguments;
  const std::string& name = *args[0].string();
  const JSONValue& value = args[1];
  for (const Key& key : keys()) {
    if (name == key.name) return setKey(key, value);
  }
  if (name == "pollMs") return setPollMs(value);
  if (name == "login") return setLogin(value);
  if (name == "following" && value.boolean()) {
    parts_.menuBar.setFollowing(*value.boolean());
    return {true, settings()};
  }
  return badArguments;
}

PanelBridge::Reply Settings::setKey(const Key& key, const JSONValue& value) {
  const std::optional<KeyCombination> combination = combinationOf(value);
  if (!combination) return badArguments;
  if (const auto text = objection(key, *combination)) return refused(*text);
  const KeyCombination before{inForce_.*key.code, inForce_.*key.modifiers};
  const HotKeyService::Status status = parts_.hotKey.change(key.view.hotKey, *combination);
  if (status != HotKeyService::noError) return refused(trouble(status));
  const auto number = [](std::uint32_t part) { return JSONValue(static_cast<double>(part)); };
  if (const auto text = save({{key.codeKey, number(combination->keyCode)},
                              {key.modifiersKey, number(combination->modifiers)}})) {
    parts_.hotKey.change(key.view.hotKey, before);
    return refused(*text);
  }
  inForce_.*key.code = combination->keyCode;
  inForce_.*key.modifiers = combination->modifiers;
  return {true, settings()};
}

std::optional<std::string> Settings::objection(const Key& key,
                                               const KeyCombination& combination) const {
  if (combination.isNone()) return std::nullopt;
  if (isTyped(combination)) {
    return "This key is typed in every program: hold another one with it.";
  }
  const std::optional<std::uint32_t> held = parts_.hotKey.idOf(combination);
  if (!held || *held == key.view.hotKey) return std::nullopt;
  for (const Key& other : keys()) {
    if (other.view.hotKey == *held)
      return "This is the key for " + std::string(other.view.content) + ".";
  }
  return "This key steps through the formula.";
}

PanelBridge::Reply Settings::setPollMs(const JSONValue& value) {
  const std::optional<std::int64_t> pollMs = atMost(&value, longestPollMs);
  if (!pollMs || *pollMs < QXConfig::shortestPollMs) return badArguments;
  if (const auto text = save({{"pollMs", JSONValue(static_cast<double>(*pollMs))}})) {
    return refused(*text);
  }
  inForce_.pollMs = *pollMs;
  parts_.setInterval(*pollMs);
  return {true, settings()};
}

PanelBridge::Reply Settings::setLogin(const JSONValue& value) {
  LoginItem* const login = parts_.platform.loginItem();
  if (!value.boolean()) return badArguments;
  if (const std::string why = whyNotAtLogin(login); !why.empty()) return refused(why);
  if (*value.boolean() != startsAtLogin(login)) {
    const std::optional<std::string> error = parts_.menuBar.setLogin(*value.boolean());
    if (error) return refused("Could not change the login item: " + *error);
  }
  return {true, settings()};
}

std::optional<std::string> Settings::save(const QXConfig::Patch& patch) {
  try {
    QXConfig::merge(patch, parts_.config);
  } catch (const std::exception& error) {
    parts_.log.log("ERROR", std::string("setting not saved: ") + error.what());
    return "Not saved, and left as it was: " + reasonOf(error);
  }
  readFile();  // what was wrong with the file may be so no more
  return std::nullopt;
}

JSONValue Settings::settings() const {
  JSONValue::Object combinations;
  for (const Key& key : keys()) {
    const KeyCombination one{inForce_.*key.code, inForce_.*key.modifiers};
    const auto part = [&](std::uint32_t number) {
      return one.isNone() ? JSONValue() : JSONValue(static_cast<double>(number));
    };
    combinations[key.name] =
        JSONValue::Object{{"code", part(one.keyCode)},
                          {"modifiers", part(one.modifiers)},
                          {"trouble", trouble(parts_.hotKey.status(key.view.hotKey))}};
  }
  JSONValue::Array rgb;
  for (const std::int64_t component : inForce_.highlightRGB) {
    rgb.emplace_back(static_cast<double>(component));
  }
  HotKeyService* const service = parts_.platform.hotKeys();
  LoginItem* const login = parts_.platform.loginItem();
  Updater* const updater = parts_.platform.updater();
  return JSONValue::Object{
      {"keys", std::move(combinations)},
      {"keysTrouble",
       service ? service->unavailable().value_or("") : "this desktop has no global keys"},
      {"pollMs", static_cast<double>(inForce_.pollMs)},
      {"highlightRGB", std::move(rgb)},
      {"following", !parts_.poller.paused()},
      {"login",
       JSONValue::Object{{"on", startsAtLogin(login)}, {"unavailable", whyNotAtLogin(login)}}},
      {"updates", JSONValue::Object{{"unavailable", updater ? updater->unavailable().value_or("")
                                                            : std::string("not in this build")}}},
      {"file", parts_.config.string()},
      {"fileTrouble", trouble_}};
}

}  // namespace quorin
