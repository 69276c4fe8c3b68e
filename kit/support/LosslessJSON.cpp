#include "kit/support/LosslessJSON.h"

#include <rapidjson/error/en.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>
#include <stdexcept>
#include <utility>

#include "kit/value/Marshal.h"
#include "kit/value/Unicode.h"

namespace quorin {
namespace {

using Array = LosslessJSON::Array;
using Object = LosslessJSON::Object;
using Literal = LosslessJSON::Literal;

class Builder : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, Builder> {
 public:
  explicit Builder(std::size_t depth) : depth_(depth) {}

  bool Null() { return place(Literal{"null"}); }
  bool Bool(bool value) { return place(Literal{value ? "true" : "false"}); }
  bool RawNumber(const char* text, rapidjson::SizeType length, bool) {
    return place(Literal{std::string(text, length)});
  }
  bool String(const char* text, rapidjson::SizeType length, bool) {
    return place(std::string(text, length));
  }
  bool Key(const char* text, rapidjson::SizeType length, bool) {
    open_.back().key.assign(text, length);
    return true;
  }
  bool StartArray() { return start(Array{}); }
  bool StartObject() { return start(Object{}); }
  bool EndArray(rapidjson::SizeType) { return finish(); }
  bool EndObject(rapidjson::SizeType) { return finish(); }

  LosslessJSON take() { return std::move(root_); }
  bool tooDeep() const { return tooDeep_; }

 private:
  struct Frame {
    std::variant<Array, Object> container;
    std::string key;
  };

  bool place(LosslessJSON value) {
    if (open_.empty()) {
      root_ = std::move(value);
    } else if (auto* array = std::get_if<Array>(&open_.back().container)) {
      array->push_back(std::move(value));
    } else {
      std::get<Object>(open_.back().container)
          .insert_or_assign(std::move(open_.back().key), std::move(value));
    }
    return true;
  }

  bool start(std::variant<Array, Object> container) {
    tooDeep_ = open_.size() == depth_;
    if (!tooDeep_) open_.push_back({std::move(container), {}});
    return !tooDeep_;
  }

  bool finish() {
    auto container = std::move(open_.back().container);
    open_.pop_back();
    return std::visit([this](auto& items) { return place(std::move(items)); }, container);
  }

  std::size_t depth_;
  std::vector<Frame> open_;
  LosslessJSON root_ = Literal{"null"};
  bool tooDeep_ = false;
};

void indent(std::string& out, LosslessJSON::Style style, std::size_t level) {
  if (style == LosslessJSON::Style::compact) return;
  out += '\n';
  out.append(2 * level, ' ');
}

}  // namespace

LosslessJSON LosslessJSON::from(const JSONValue& value) {
  const std::string text = Marshal::encode(value);
  if (text == "null" && !value.isNull() && !value.number()) {
    throw std::invalid_argument("The value holds text that is not valid UTF-8.");
  }
  return parse(text);
}

LosslessJSON LosslessJSON::parse(std::string_view text, const JSONLimits& limits) {
  if (text.size() > limits.bytes) throw std::invalid_argument("The JSON text is too long.");
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  if (!isValidUTF8(text)) throw std::invalid_argument("The JSON text is not valid UTF-8.");
  Builder builder(limits.depth);
  rapidjson::MemoryStream stream(text.data(), text.size());
  rapidjson::Reader reader;
  const auto result =
      reader.Parse<rapidjson::kParseIterativeFlag | rapidjson::kParseNumbersAsStringsFlag>(stream,
                                                                                           builder);
  if (builder.tooDeep()) throw std::invalid_argument("The JSON text is nested too deeply.");
  if (result.IsError()) throw std::invalid_argument(rapidjson::GetParseError_En(result.Code()));
  if (stream.Tell() != text.size()) {
    throw std::invalid_argument("The JSON text goes on after its value.");
  }
  return builder.take();
}

const std::string* LosslessJSON::number() const {
  const auto* literal = std::get_if<Literal>(&data_);
  // The other literals begin with a letter.
  return literal && literal->text[0] <= '9' ? &literal->text : nullptr;
}

bool LosslessJSON::isNull() const {
  const auto* literal = std::get_if<Literal>(&data_);
  return literal && literal->text == "null";
}

std::string LosslessJSON::text(Style style) const {
  std::string out;
  write(out, style, 0);
  return out;
}

void LosslessJSON::write(std::string& out, Style style, std::size_t level) const {
  const auto separate = [&, first = true]() mutable {
    if (!first) out += ',';
    first = false;
    indent(out, style, level + 1);
  };
  if (const auto* literal = std::get_if<Literal>(&data_)) {
    out += literal->text;
  } else if (const std::string* characters = string()) {
    out += Marshal::encode(*characters);
  } else if (const Array* items = array()) {
    out += '[';
    auto next = separate;
    for (const LosslessJSON& item : *items) {
      next();
      item.write(out, style, level + 1);
    }
    if (!items->empty()) indent(out, style, level);
    out += ']';
  } else {
    out += '{';
    auto next = separate;
    for (const auto& [key, member] : *object()) {
      next();
      out += Marshal::encode(key);
      out += style == Style::pretty ? ": " : ":";
      member.write(out, style, level + 1);
    }
    if (!object()->empty()) indent(out, style, level);
    out += '}';
  }
}

}  // namespace quorin
