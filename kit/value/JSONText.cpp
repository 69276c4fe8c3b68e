#include "kit/value/JSONText.h"

#include <cstdint>
#include <rapidjson/error/en.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>
#include <utility>
#include <vector>

#include "kit/value/Unicode.h"

namespace quorin {
namespace {

// Builds the value while RapidJSON reads; false from an event stops the reading.
class Builder : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, Builder> {
 public:
  explicit Builder(const JSONLimits& limits) : limits_(limits) {}

  bool Null() { return add(nullptr); }
  bool Bool(bool value) { return add(value); }
  bool Int(int value) { return add(value); }
  bool Uint(unsigned value) { return add(static_cast<double>(value)); }
  bool Int64(std::int64_t value) { return add(static_cast<double>(value)); }
  bool Uint64(std::uint64_t value) { return add(static_cast<double>(value)); }
  bool Double(double value) { return add(value); }
  bool String(const char* text, rapidjson::SizeType length, bool) {
    return add(std::string(text, length));
  }
  bool Key(const char* text, rapidjson::SizeType length, bool) {
    open_.back().key.assign(text, length);
    return true;
  }
  bool StartArray() { return start(JSONValue::Array{}); }
  bool StartObject() { return start(JSONValue::Object{}); }
  bool EndArray(rapidjson::SizeType) { return finish(); }
  bool EndObject(rapidjson::SizeType) { return finish(); }

  JSONValue take() { return std::move(root_); }
  const std::string& refusal() const { return refusal_; }

 private:
  struct Frame {
    JSONValue container;
    std::string key;
  };

  bool count() {
    if (++values_ <= limits_.values) return true;
    refusal_ = "The JSON text holds more than " + std::to_string(limits_.values) + " values.";
    return false;
  }

  void place(JSONValue value) {
    if (open_.empty()) {
      root_ = std::move(value);
    } else if (auto* array = open_.back().container.array()) {
      array->push_back(std::move(value));
    } else {
      open_.back().container.object()->insert_or_assign(std::move(open_.back().key),
                                                        std::move(value));
    }
  }

  bool add(JSONValue value) {
    if (!count()) return false;
    place(std::move(value));
    return true;
  }

  bool start(JSONValue container) {
    if (!count()) return false;
    if (open_.size() == limits_.depth) {
      refusal_ =
          "The JSON text is nested more than " + std::to_string(limits_.depth) + " levels deep.";
      return false;
    }
    open_.push_back({std::move(container), {}});
    return true;
  }

  bool finish() {
    JSONValue value = std::move(open_.back().container);
    open_.pop_back();
    place(std::move(value));
    return true;
  }

  const JSONLimits& limits_;
  std::size_t values_ = 0;
  std::vector<Frame> open_;
  JSONValue root_;
  std::string refusal_;
};

}  // namespace

ParsedJSON parseJSON(std::string_view text, const JSONLimits& limits) {
  if (text.size() > limits.bytes) {
    return {std::nullopt,
            "The JSON text is longer than " + std::to_string(limits.bytes) + " bytes.",
            limits.bytes};
  }
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  const std::size_t skipped = text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
  text.remove_prefix(skipped);

  if (!isValidUTF8(text)) return {std::nullopt, "The JSON text is not valid UTF-8.", skipped};

  constexpr unsigned flags = rapidjson::kParseIterativeFlag | rapidjson::kParseFullPrecisionFlag;
  Builder builder(limits);
  rapidjson::MemoryStream stream(text.data(), text.size());
  rapidjson::Reader reader;
  const auto result = reader.Parse<flags>(stream, builder);
  if (!result.IsError()) {
    // A zero byte looks like the end of the text to the reader.
    if (stream.Tell() == text.size()) return {builder.take(), {}, 0};
    return {std::nullopt, "The JSON text goes on after its value.", stream.Tell() + skipped};
  }
  return {
      std::nullopt,
      builder.refusal().empty() ? rapidjson::GetParseError_En(result.Code()) : builder.refusal(),
      result.Offset() + skipped};
}

}  // namespace quorin
