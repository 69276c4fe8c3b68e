// What the compiler writes into a program for each class, category and selector (Apple's
// non-fragile Objective-C ABI, as clang emits it), and the types that this runtime's files share.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace quorin::objc {

struct Class;

struct Object {
  Class* isa;
};

using Selector = const char*;  // interned: equal selectors are the same pointer
using Implementation = void (*)();

struct Method {
  Selector name;
  const char* types;
  Implementation implementation;
};

// The elements of every list follow it, each of `size` bytes.
template <typename Element>
struct List {
  std::uint32_t size, count;

  const Element& operator[](std::uint32_t index) const {
    return *reinterpret_cast<const Element*>(reinterpret_cast<const char*>(this + 1) +
                                             std::size_t{index} * size);
  }
};

struct InstanceVariable {
  std::int64_t* offset;
  const char *name, *type;
  std::uint32_t alignment, size;
};

struct ClassData {
  std::uint32_t flags, start, size, reserved;
  const std::uint8_t* strongLayout;
  const char* name;
  List<Method>* methods;
  void* protocols;
  List<InstanceVariable>* variables;
  const std::uint8_t* weakLayout;
  void* properties;
};

struct Class {
  Class* isa;  // the class's class, which has its class methods
  Class* super;
  void *cache, *table;
  ClassData* data;

  bool isMeta() const { return (data->flags & 1) != 0; }
};

struct Category {
  const char* name;
  Class* extended;
  List<Method>*methods, *classMethods;
};

}  // namespace quorin::objc

extern "C" void objc_msgSend();
