// What the compiler calls for properties. The atomic ones share one lock: they are few.
#include <cstring>
#include <mutex>

#include "tests/macos/runtime/objc/Runtime.h"

using namespace quorin::objc;

namespace {

std::mutex& lock() {
  static std::mutex& one = *new std::mutex;
  return one;
}

Object** placeIn(Object* object, std::ptrdiff_t offset) {
  return reinterpret_cast<Object**>(reinterpret_cast<char*>(object) + offset);
}

// Takes over the counted reference.
void store(Object** place, Object* value) {
  Object* old = nullptr;
  {
    const std::lock_guard guard(lock());
    old = *place;
    *place = value;
  }
  objc_release(old);
}

Object* copied(Object* value) {
  if (!value) return nullptr;
  if (isBlock(value)) return static_cast<Object*>(_Block_copy(value));
  return send<Object*>(value, selector("copy"));
}

}  // namespace

extern "C" {
Object* objc_getProperty(Object* object, Selector, std::ptrdiff_t offset, bool) {
  const std::lock_guard guard(lock());
  return objc_autorelease(objc_retain(*placeIn(object, offset)));
}
void objc_setProperty_atomic(Object* object, Selector, Object* value, std::ptrdiff_t offset) {
  store(placeIn(object, offset), objc_retain(value));
}
void objc_setProperty_nonatomic(Object* object, Selector, Object* value, std::ptrdiff_t offset) {
  store(placeIn(object, offset), objc_retain(value));
}
void objc_setProperty_atomic_copy(Object* object, Selector, Object* value, std::ptrdiff_t offset) {
  store(placeIn(object, offset), copied(value));
}
void objc_setProperty_nonatomic_copy(Object* object, Selector, Object* value,
                                     std::ptrdiff_t offset) {
  store(placeIn(object, offset), copied(value));
}
void objc_copyStruct(void* to, const void* from, std::ptrdiff_t size, bool, bool) {
  const std::lock_guard guard(lock());
  std::memmove(to, from, static_cast<std::size_t>(size));
}
void objc_enumerationMutation(Object*) {
  breach("a collection was changed while it was enumerated");
}
}
