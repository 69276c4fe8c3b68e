// ModuleTable: which module of the process an address lies in, and where in it. It takes no memory
// but its own and may be used in a signal handler; it is large and meant to be static.
#pragma once

#include <array>
#include <cstdint>

#include "app/linux/SafeText.h"

namespace quorin {

class ModuleTable {
 public:
  // Reads what is mapped now. What finds no room is left out.
  void read();

  // "libc.so.6+0x1234"; an address in no module as it is.
  void tell(SafeText& to, std::uintptr_t address) const;

 private:
  struct Mapping {
    std::uintptr_t begin, end;
    std::uintptr_t base;  // where the first mapping of its module begins
    std::size_t name;     // in names_
  };

  void take(char* line);

  std::array<Mapping, 2048> mappings_{};
  std::size_t count_ = 0;
  std::array<char, 64 * 1024> names_{};
  std::size_t used_ = 0;
};

}  // namespace quorin
