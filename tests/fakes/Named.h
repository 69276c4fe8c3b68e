// Named: what a test with parameters is run with, and the name it is listed by. A function would be
// listed by its address, which differs from one run to the next.
#pragma once

#include <ostream>

namespace quorin::fakes {

template <typename Value>
struct Named {
  const char* name;
  Value value;
};

template <typename Value>
void PrintTo(const Named<Value>& named, std::ostream* out) {
  *out << named.name;
}

}  // namespace quorin::fakes
