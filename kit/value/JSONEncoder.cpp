// Marshal::encode. Written by hand rather than over a library's writer because the text is the hot
// path of every reply: one pass over a string both checks its encoding and finds what to escape.
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>
#include <variant>
#include <vector>

#include "kit/value/Marshal.h"
#include "kit/value/Unicode.h"

namespace quorin::Marshal {
namespace {

enum class Kind : unsigned char { plain, escaped, control, wide };

constexpr std::array<Kind, 256> makeKinds() {
  std::array<Kind, 256> kinds{};
  for (std::size_t c = 0; c < 256; ++c) {
    kinds[c] = c < 0x20 ? Kind::control : c < 0x80 ? Kind::plain : Kind::wide;
  }
  for (const char c : {'"', '\\', '/', '\b', '\f', '\n', '\r', '\t'}) {
    kinds[static_cast<unsigned char>(c)] = Kind::escaped;
  }
  return kinds;
}

constexpr std::array<Kind, 256> kinds = makeKinds();

char escapeLetter(char c) {
  switch (c) {
    case '\b':
      return 'b';
    case '\f':
      return 'f';
    case '\n':
      return 'n';
    case '\r':
      return 'r';
    case '\t':
      return 't';
    default:
      return c;
  }
}

// Writes a tree without recursion: one frame for each open container.
class Encoder {
 public:
  // False: some text is not valid UTF-8.
  bool write(const JSONValue& root) {
    if (!writeStart(root)) return false;
    while (!open_.empty()) {
      const bool went = std::visit([this](auto& frame) { return step(frame); }, open_.back());
      if (!went) return false;
    }
    return true;
  }

  std::string take() { return std::move(text_); }

 private:
  struct ArrayFrame {
    const JSONValue* next;
    const JSONValue* end;
    bool first = true;
  };
  struct ObjectFrame {
    JSONValue::Object::const_iterator next;
    JSONValue::Object::const_iterator end;
    bool first = true;
  };

  // Writes the scalars that follow, up to the next container or the end of this one. A frame is
  // not touched after writeStart opened another one: it may have moved.
  bool step(ArrayFrame& frame) {
    while (frame.next != frame.end) {
      if (!frame.first) text_ += ',';
      frame.first = false;
      const JSONValue& item = *frame.next++;
      if (item.isContainer()) return writeStart(item);
      if (!writeStart(item)) return false;
    }
    text_ += ']';
    open_.pop_back();
    return true;
  }

  bool step(ObjectFrame& frame) {
    while (frame.next != frame.end) {
      if (!frame.first) text_ += ',';
      frame.first = false;
      const auto& [key, member] = *frame.next++;
      if (!writeString(key)) return false;
      text_ += ':';
      if (member.isContainer()) return writeStart(member);
      if (!writeStart(member)) return false;
    }
    text_ += '}';
    open_.pop_back();
    return true;
  }

  bool writeStart(const JSONValue& value) {
    switch (value.type()) {
      case JSONValue::Case::boolean:
        text_ += *value.boolean() ? "true" : "false";
        return true;
      case JSONValue::Case::number:
        writeNumber(*value.number());
        return true;
      case JSONValue::Case::string:
        return writeString(*value.string());
      case JSONValue::Case::array: {
        const JSONValue::Array& array = *value.array();
        text_ += '[';
        open_.emplace_back(ArrayFrame{array.data(), array.data() + array.size()});
        return true;
      }
      case JSONValue::Case::object:
        text_ += '{';
        open_.emplace_back(ObjectFrame{value.object()->begin(), value.object()->end()});
        return true;
      case JSONValue::Case::null:
        text_ += "null";
        return true;
    }
    return true;
  }

  void writeNumber(double value) {
    if (!std::isfinite(value)) {
      text_ += "null";
      return;
    }
    std::array<char, 32> digits;
    // Up to here an integral double has at most 17 digits; larger ones are written with an
    // exponent where that is shorter. The integer form also makes 0 of negative zero.
    const bool integral = std::abs(value) < 1e17 && value == std::trunc(value);
    const auto end = integral ? std::to_chars(digits.data(), digits.data() + digits.size(),
                                              static_cast<long long>(value))
                              : std::to_chars(digits.data(), digits.data() + digits.size(), value);
    text_.append(digits.data(), end.ptr);
  }

  bool writeString(std::string_view string) {
    text_ += '"';
    bool wide = false;
    std::size_t start = 0;
    for (std::size_t i = 0; i < string.size(); ++i) {
      const auto c = static_cast<unsigned char>(string[i]);
      const Kind kind = kinds[c];
      if (kind == Kind::plain) continue;
      if (kind == Kind::wide) {
        wide = true;
        continue;
      }
      text_.append(string, start, i - start);
      start = i + 1;
      if (kind == Kind::escaped) {
        text_ += '\\';
        text_ += escapeLetter(string[i]);
      } else {
        constexpr std::string_view hex = "0123456789abcdef";
        text_ += "\\u00";
        text_ += hex[c >> 4];
        text_ += hex[c & 0xF];
      }
    }
    text_.append(string, start);
    text_ += '"';
    return !wide || isValidUTF8(string);
  }

  std::string text_;
  std::vector<std::variant<ArrayFrame, ObjectFrame>> open_;
};

}  // namespace

std::string encode(const JSONValue& value) {
  Encoder encoder;
  return encoder.write(value) ? encoder.take() : "null";
}

}  // namespace quorin::Marshal
