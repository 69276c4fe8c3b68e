// Marshal::encode. Written by hand rather than over a library's writer because the text is the hot
// path of every reply: one pass over a string both checks its encoding and finds what to escape.
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <variant>
#include <vector>

#include "kit/value/Marshal.h"
#include "kit/value/RealText.h"
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

// Text that grows at its end: room is asked for once for several writes.
class Output {
 public:
  Output() { grow(512); }

  // Where at least `count` more bytes may be written; `wrote` says up to where they were.
  char* room(std::size_t count) {
    if (capacity_ - size_ < count) grow(2 * capacity_ + count);
    return text_.get() + size_;
  }
  void wrote(const char* end) { size_ = static_cast<std::size_t>(end - text_.get()); }

  void add(char c) {
    *room(1) = c;
    ++size_;
  }
  void add(std::string_view text) {
    std::memcpy(room(text.size()), text.data(), text.size());
    size_ += text.size();
  }

  std::string take() const { return {text_.get(), size_}; }

 private:
  struct Free {
    void operator()(char* text) const { std::free(text); }
  };

  // A string would clear what is written next, and the system moves large blocks without copying.
  void grow(std::size_t capacity) {
    auto* const grown = static_cast<char*>(std::realloc(text_.get(), capacity));
    if (grown == nullptr) throw std::bad_alloc();
    static_cast<void>(text_.release());
    text_.reset(grown);
    capacity_ = capacity;
  }

  std::unique_ptr<char, Free> text_;
  std::size_t size_ = 0, capacity_ = 0;
};

// True if eight characters at once can stand in JSON text as they are. The arithmetic marks the
// high bit of a byte that is a control character, a quote, a slash, a backslash or beyond ASCII; it
// may mark a plain byte after such a one too, which costs time and nothing else.
bool areEightPlain(const char* text) {
  std::uint64_t chunk;
  std::memcpy(&chunk, text, 8);
  constexpr std::uint64_t ones = 0x0101010101010101u;
  const auto equals = [chunk](unsigned char c) {
    const std::uint64_t difference = chunk ^ (ones * c);
    return difference - ones;  // borrows into the high bit where the byte is c
  };
  const std::uint64_t marks =
      chunk | (chunk - ones * 0x20) | equals('"') | equals('/') | equals('\\');
  return (marks & (ones * 0x80)) == 0;
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

  std::string take() { return out_.take(); }

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
      if (!frame.first) out_.add(',');
      frame.first = false;
      const JSONValue& item = *frame.next++;
      if (item.isContainer()) return writeStart(item);
      if (!writeStart(item)) return false;
    }
    out_.add(']');
    open_.pop_back();
    return true;
  }

  bool step(ObjectFrame& frame) {
    while (frame.next != frame.end) {
      if (!frame.first) out_.add(',');
      frame.first = false;
      const auto& [key, member] = *frame.next++;
      if (!writeString(key)) return false;
      out_.add(':');
      if (member.isContainer()) return writeStart(member);
      if (!writeStart(member)) return false;
    }
    out_.add('}');
    open_.pop_back();
    return true;
  }

  bool writeStart(const JSONValue& value) {
    switch (value.type()) {
      case JSONValue::Case::boolean:
        out_.add(*value.boolean() ? std::string_view("true") : std::string_view("false"));
        return true;
      case JSONValue::Case::number:
        writeNumber(*value.number());
        return true;
      case JSONValue::Case::string:
        return writeString(*value.string());
      case JSONValue::Case::array: {
        const JSONValue::Array& array = *value.array();
        out_.add('[');
        open_.emplace_back(ArrayFrame{array.data(), array.data() + array.size()});
        return true;
      }
      case JSONValue::Case::object:
        out_.add('{');
        open_.emplace_back(ObjectFrame{value.object()->begin(), value.object()->end()});
        return true;
      case JSONValue::Case::null:
        out_.add("null");
        return true;
    }
    return true;
  }

  void writeNumber(double value) {
    if (!std::isfinite(value)) {
      out_.add("null");
      return;
    }
    char* out = out_.room(longestReal);
    char* const end = out + longestReal;
    const double magnitude = std::abs(value);
    if (magnitude <= 0xFFFFFFFFu && static_cast<std::uint32_t>(magnitude) == magnitude) {
      // Most numbers of a sheet; negative zero comes here and loses its sign.
      if (value < 0) *out++ = '-';
      out = std::to_chars(out, end, static_cast<std::uint32_t>(magnitude)).ptr;
    } else if (magnitude < 1e17 && std::trunc(value) == value) {
      // Up to here an integral double has at most 17 digits; larger ones are written with an
      // exponent where that is shorter.
      out = std::to_chars(out, end, static_cast<std::int64_t>(value)).ptr;
    } else {
      out = writeReal(out, end, value);
    }
    out_.wrote(out);
  }

  bool writeString(std::string_view string) {
    // Six characters at most become of one: a control character's escape.
    char* out = out_.room(6 * string.size() + 2);
    const char* next = string.data();
    const char* const end = next + string.size();
    *out++ = '"';
    while (next != end) {
      if (end - next >= 8 && areEightPlain(next)) {
        std::memcpy(out, next, 8);
        out += 8;
        next += 8;
        continue;
      }
      const char c = *next;
      switch (kinds[static_cast<unsigned char>(c)]) {
        case Kind::plain:
          *out++ = c;
          ++next;
          break;
        case Kind::escaped:
          *out++ = '\\';
          *out++ = escapeLetter(c);
          ++next;
          break;
        case Kind::control: {
          constexpr std::string_view hex = "0123456789abcdef";
          std::memcpy(out, "\\u00", 4);
          out[4] = hex[static_cast<unsigned char>(c) >> 4];
          out[5] = hex[static_cast<unsigned char>(c) & 0xF];
          out += 6;
          ++next;
          break;
        }
        case Kind::wide: {
          const std::size_t length = sequenceLength(next, end);
          if (length == 0) return false;
          std::memcpy(out, next, length);
          out += length;
          next += length;
          break;
        }
      }
    }
    *out++ = '"';
    out_.wrote(out);
    return true;
  }

  Output out_;
  std::vector<std::variant<ArrayFrame, ObjectFrame>> open_;
};

}  // namespace

std::string encode(const JSONValue& value) {
  Encoder encoder;
  return encoder.write(value) ? encoder.take() : "null";
}

}  // namespace quorin::Marshal
