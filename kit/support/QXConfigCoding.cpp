// QXConfig's JSON form: decoding with migration and validation, encoding.
#include <charconv>
#include <limits>
#include <tuple>
#include <utility>

#include "kit/support/LosslessJSON.h"
#include "kit/support/QXConfig.h"
#include "kit/value/JSONText.h"
#include "kit/value/WholeNumber.h"

namespace quorin {
namespace {

using Object = LosslessJSON::Object;
using HotKey = std::pair<std::uint32_t, std::uint32_t>;  // key code and modifiers

struct Migration {
  HotKey from;
  HotKey to;
};

// Earlier defaults, oldest first: each rule applies to the result of the one before.
constexpr Migration summonMigrations[] = {{{9, 4096}, {3, 2048}}, {{3, 2048}, {0, 2560}}};
constexpr Migration mapMigrations[] = {{{9, 4608}, {5, 2048}}, {{5, 2048}, {2, 2560}}};
constexpr Migration depsMigrations[] = {{{2, 2048}, {1, 2560}}};

template <std::size_t count>
void migrate(const Migration (&migrations)[count], std::uint32_t& keyCode,
             std::uint32_t& modifiers) {
  for (const Migration& migration : migrations) {
    if (HotKey(keyCode, modifiers) == migration.from) std::tie(keyCode, modifiers) = migration.to;
  }
}

[[noreturn]] void malformed(const std::string& description) {
  throw QXConfigError(QXConfigError::malformed, description);
}

// A number without fraction, however it is spelled: 300, 300.0 and 3e2 are one.
std::int64_t integer(const LosslessJSON& value, const std::string& key) {
  const std::string* text = value.number();
  if (!text) malformed("\"" + key + "\" is not a number");
  const char* end = text->data() + text->size();
  std::int64_t result = 0;
  const auto parsed = std::from_chars(text->data(), end, result);
  if (parsed.ec == std::errc() && parsed.ptr == end) return result;
  const ParsedJSON other = parseJSON(*text);  // with a fraction or an exponent
  const auto whole = other ? wholeNumber(*other.value) : std::nullopt;
  if (!whole || parsed.ec == std::errc::result_out_of_range)
    malformed("\"" + key + "\" is not an integer in range");
  return *whole;
}

// A key with null counts as missing, whichever it is.
const LosslessJSON* find(const Object& object, const std::string& key) {
  const auto found = object.find(key);
  return found == object.end() || found->second.isNull() ? nullptr : &found->second;
}

void read(const Object& object, const std::string& key, std::int64_t& field) {
  if (const LosslessJSON* value = find(object, key)) field = integer(*value, key);
}

void read(const Object& object, const std::string& key, std::uint32_t& field) {
  std::int64_t wide = field;
  read(object, key, wide);
  if (wide < 0 || wide > std::numeric_limits<std::uint32_t>::max()) {
    malformed("\"" + key + "\" is out of range");
  }
  field = static_cast<std::uint32_t>(wide);
}

void read(const Object& object, const std::string& key, std::vector<std::int64_t>& field) {
  const LosslessJSON* value = find(object, key);
  if (!value) return;
  if (!value->array()) malformed("\"" + key + "\" is not an array");
  field.clear();
  for (const LosslessJSON& item : *value->array()) field.push_back(integer(item, key));
}

void read(const Object& object, const std::string& key, std::optional<std::string>& field) {
  const LosslessJSON* value = find(object, key);
  if (!value) return;
  if (!value->string()) malformed("\"" + key + "\" is not text");
  field = *value->string();
}

LosslessJSON parseObject(std::string_view text) {
  try {
    LosslessJSON document = LosslessJSON::parse(text);
    if (document.object()) return document;
  } catch (const std::invalid_argument& error) {
    malformed(error.what());
  }
  malformed("the top level is not an object");
}

}  // namespace

QXConfig QXConfig::decode(std::string_view text) {
  const LosslessJSON document = parseObject(text);
  const Object& object = *document.object();
  QXConfig config;
  read(object, "summonKeyCode", config.summonKeyCode);
  read(object, "summonModifiers", config.summonModifiers);
  read(object, "mapKeyCode", config.mapKeyCode);
  read(object, "mapModifiers", config.mapModifiers);
  read(object, "depsKeyCode", config.depsKeyCode);
  read(object, "depsModifiers", config.depsModifiers);
  read(object, "pollMs", config.pollMs);
  read(object, "debounceMs", config.debounceMs);
  read(object, "highlightRGB", config.highlightRGB);
  read(object, "lastLaunchedAt", config.lastLaunchedAt);
  read(object, "welcomedAt", config.welcomedAt);

  const QXConfig defaults;
  migrate(summonMigrations, config.summonKeyCode, config.summonModifiers);
  migrate(mapMigrations, config.mapKeyCode, config.mapModifiers);
  migrate(depsMigrations, config.depsKeyCode, config.depsModifiers);
  if (config.pollMs < shortestPollMs) config.pollMs = defaults.pollMs;
  if (config.debounceMs < 0) config.debounceMs = defaults.debounceMs;
  if (!isColour(config.highlightRGB)) config.highlightRGB = defaults.highlightRGB;
  return config;
}

std::string QXConfig::encode() const {
  LosslessJSON::Array rgb;
  for (const std::int64_t part : highlightRGB) rgb.push_back(LosslessJSON::integer(part));
  Object object{{"summonKeyCode", LosslessJSON::integer(summonKeyCode)},
                {"summonModifiers", LosslessJSON::integer(summonModifiers)},
                {"mapKeyCode", LosslessJSON::integer(mapKeyCode)},
                {"mapModifiers", LosslessJSON::integer(mapModifiers)},
                {"depsKeyCode", LosslessJSON::integer(depsKeyCode)},
                {"depsModifiers", LosslessJSON::integer(depsModifiers)},
                {"pollMs", LosslessJSON::integer(pollMs)},
                {"debounceMs", LosslessJSON::integer(debounceMs)},
                {"highlightRGB", std::move(rgb)}};
  if (lastLaunchedAt) object.emplace("lastLaunchedAt", *lastLaunchedAt);
  if (welcomedAt) object.emplace("welcomedAt", *welcomedAt);
  return LosslessJSON(std::move(object)).text(LosslessJSON::Style::compact);
}

}  // namespace quorin
