// SafeText: text written to a file descriptor with nothing but write(2), through a small buffer in
// place. Safe in a signal handler. What cannot be written is lost. Without a descriptor: a short
// text that is only put together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <unistd.h>

namespace quorin {

class SafeText {
 public:
  explicit SafeText(int descriptor = -1) : descriptor_(descriptor) {}
  ~SafeText() { flush(); }
  SafeText(const SafeText&) = delete;
  SafeText& operator=(const SafeText&) = delete;

  SafeText& add(const char* text) { return add(text, std::strlen(text)); }

  SafeText& add(const char* text, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      if (used_ == capacity) flush();
      buffer_[used_++] = text[i];
    }
    return *this;
  }

  // With leading zeros up to so many digits.
  SafeText& number(std::uint64_t value, unsigned base = 10, int digits = 1) {
    char text[64];
    std::size_t at = sizeof text;
    for (; value != 0 || digits > 0; value /= base, --digits) {
      text[--at] = "0123456789abcdef"[value % base];
    }
    return add(text + at, sizeof text - at);
  }

  SafeText& hex(std::uint64_t value) { return add("0x").number(value, 16); }

  // What is not written yet, ended by a zero.
  const char* held() {
    buffer_[used_] = '\0';
    return buffer_;
  }

  void flush() {
    for (std::size_t done = 0; done < used_;) {
      const ssize_t count = write(descriptor_, buffer_ + done, used_ - done);
      if (count <= 0) break;
      done += static_cast<std::size_t>(count);
    }
    used_ = 0;
  }

 private:
  static constexpr std::size_t capacity = 512;

  int descriptor_;
  std::size_t used_ = 0;
  char buffer_[capacity + 1];
};

}  // namespace quorin
