#include "app/linux/ModuleTable.h"

#include <fcntl.h>

namespace quorin {

namespace {

// Moves on behind the number.
std::uintptr_t takeHex(char*& text) {
  std::uintptr_t value = 0;
  for (;; ++text) {
    unsigned digit = 0;
    if (*text >= '0' && *text <= '9') {
      digit = static_cast<unsigned>(*text - '0');
    } else if (*text >= 'a' && *text <= 'f') {
      digit = static_cast<unsigned>(*text - 'a') + 10;
    } else {
      return value;
    }
    value = value * 16 + digit;
  }
}

}  // namespace

void ModuleTable::read() {
  count_ = used_ = 0;
  const int file = open("/proc/self/maps", O_RDONLY | O_CLOEXEC);
  if (file < 0) return;
  char line[512];
  std::size_t length = 0;
  char piece[1024];
  for (ssize_t got; (got = ::read(file, piece, sizeof piece)) > 0;) {
    for (ssize_t i = 0; i < got; ++i) {
      if (piece[i] != '\n') {
        if (length < sizeof line - 1) line[length++] = piece[i];
        continue;
      }
      line[length] = '\0';
      take(line);
      length = 0;
    }
  }
  close(file);
}

// "55d0-55d8 r-xp 00002000 fe:01 1234  /usr/lib/libc.so.6"; mappings of one file stand together.
void ModuleTable::take(char* line) {
  const char* const path = std::strchr(line, '/');
  if (!path || count_ == mappings_.size()) return;
  const char* const name = std::strrchr(path, '/') + 1;
  char* text = line;
  Mapping mapping{};
  mapping.begin = takeHex(text);
  mapping.end = takeHex(++text);
  const std::size_t size = std::strlen(name) + 1;
  const Mapping* const last = count_ > 0 ? &mappings_[count_ - 1] : nullptr;
  if (last && std::strcmp(names_.data() + last->name, name) == 0) {
    mapping.base = last->base;
    mapping.name = last->name;
  } else {
    if (used_ + size > names_.size()) return;
    std::memcpy(names_.data() + used_, name, size);
    mapping.base = mapping.begin;
    mapping.name = used_;
    used_ += size;
  }
  mappings_[count_++] = mapping;
}

void ModuleTable::tell(SafeText& to, std::uintptr_t address) const {
  for (std::size_t i = 0; i < count_; ++i) {
    const Mapping& mapping = mappings_[i];
    if (address < mapping.begin || address >= mapping.end) continue;
    to.add(names_.data() + mapping.name).add("+").hex(address - mapping.base);
    return;
  }
  to.hex(address);
}

}  // namespace quorin
