// Blocks: copied to the heap when they outlive their frame, counted there, and the variables that
// they share (__block) with them. The layout is that of clang's block ABI.
#include <cstdlib>
#include <cstring>

#include "tests/macos/runtime/objc/Census.h"
#include "tests/macos/runtime/objc/Runtime.h"

using namespace quorin::objc;

extern "C" {
void* _NSConcreteStackBlock[32];
void* _NSConcreteGlobalBlock[32];
void* _NSConcreteMallocBlock[32];
}

namespace {

enum Flag : std::int32_t {
  counted = 1 << 24,
  hasHelpers = 1 << 25,
  countMask = 0xffff,
};

enum Kind : std::int32_t { object = 3, block = 7, shared = 8, weak = 16, fromHelper = 128 };

struct Description {
  unsigned long reserved, size;
  void (*copy)(void* to, const void* from);
  void (*dispose)(const void*);
};

struct Block {
  void* isa;
  std::atomic<std::int32_t> flags;
  std::int32_t reserved;
  void (*invoke)();
  Description* description;
};

struct Shared {
  void* isa;
  Shared* forwarding;
  std::atomic<std::int32_t> flags;
  std::uint32_t size;
  void (*keep)(Shared* to, Shared* from);
  void (*destroy)(Shared*);
};

std::atomic<long> alive{0};

Shared* copyShared(Shared* from) {
  Shared* there = from->forwarding;
  if (there->flags & counted) {
    ++there->flags;
    return there;
  }
  auto* made = static_cast<Shared*>(std::malloc(from->size));
  std::memcpy(static_cast<void*>(made), from, from->size);
  made->flags = from->flags | counted | 2;  // the frame's reference and the block's
  made->forwarding = made;
  from->forwarding = made;
  if (from->flags & hasHelpers) made->keep(made, from);
  return made;
}

void releaseShared(Shared* one) {
  one = one->forwarding;
  if (!(one->flags & counted)) return;
  if ((--one->flags & countMask) != 0) return;
  if (one->flags & hasHelpers) one->destroy(one);
  std::free(one);
}

}  // namespace

namespace quorin::objc {

bool isBlock(const Object* candidate) {
  const void* isa = candidate->isa;
  return isa == _NSConcreteMallocBlock || isa == _NSConcreteStackBlock ||
         isa == _NSConcreteGlobalBlock;
}

bool isOnHeap(const Object* block) {
  return reinterpret_cast<const void*>(block->isa) == _NSConcreteMallocBlock;
}

long aliveBlocks() {
  return alive;
}

std::map<std::string, long> census() {
  auto all = aliveByClass();
  all["block"] = alive;
  return all;
}

}  // namespace quorin::objc

extern "C" {
void* _Block_copy(const void* from) {
  auto* one = static_cast<Block*>(const_cast<void*>(from));
  if (!one || one->isa == _NSConcreteGlobalBlock) return one;
  if (one->isa == _NSConcreteMallocBlock) {
    if ((one->flags & countMask) == 0) breach("a block that is gone is retained");
    ++one->flags;
    return one;
  }
  auto* made = static_cast<Block*>(std::malloc(one->description->size));
  std::memcpy(static_cast<void*>(made), one, one->description->size);
  made->isa = _NSConcreteMallocBlock;
  made->flags = (one->flags & ~countMask) | counted | 1;
  if (made->flags & hasHelpers) made->description->copy(made, one);
  ++alive;
  return made;
}

void _Block_release(const void* which) {
  auto* one = static_cast<Block*>(const_cast<void*>(which));
  if (!one || one->isa != _NSConcreteMallocBlock) return;
  if ((one->flags & countMask) == 0) breach("a block is released once more");
  if ((--one->flags & countMask) != 0) return;
  if (one->flags & hasHelpers) one->description->dispose(one);
  --alive;
  std::free(one);
}

void _Block_object_assign(void* to, const void* from, int kind) {
  void* value = const_cast<void*>(from);
  if (kind & fromHelper) {  // a __block variable moves to the heap with what it holds
    *static_cast<void**>(to) = value;
  } else if (kind & shared) {
    *static_cast<Shared**>(to) = copyShared(static_cast<Shared*>(value));
  } else if ((kind & block) == block) {
    *static_cast<void**>(to) = _Block_copy(value);
  } else {
    *static_cast<Object**>(to) = objc_retain(static_cast<Object*>(value));
  }
}

void _Block_object_dispose(const void* which, int kind) {
  void* value = const_cast<void*>(which);
  if (kind & fromHelper) return;
  if (kind & shared) return releaseShared(static_cast<Shared*>(value));
  if ((kind & block) == block) return _Block_release(value);
  objc_release(static_cast<Object*>(value));
}
}
