// Autorelease pools: one stack for each thread. A thread that ends drains what it never drained.
#include <vector>

#include "tests/macos/runtime/objc/Runtime.h"

namespace quorin::objc {
namespace {

struct Stack {
  std::vector<Object*> objects;

  void drainTo(std::size_t size) {
    while (objects.size() > size) {
      Object* last = objects.back();
      objects.pop_back();
      objc_release(last);
    }
  }
  ~Stack() { drainTo(0); }
};

thread_local Stack stack;

}  // namespace
}  // namespace quorin::objc

using namespace quorin::objc;

extern "C" {
// A pool is known by the size of the stack where it begins.
void* objc_autoreleasePoolPush() {
  return reinterpret_cast<void*>(stack.objects.size());
}
void objc_autoreleasePoolPop(void* pool) {
  const auto size = reinterpret_cast<std::size_t>(pool);
  if (size > stack.objects.size()) breach("an autorelease pool of another thread, or popped twice");
  stack.drainTo(size);
}
Object* objc_autorelease(Object* object) {
  if (object) stack.objects.push_back(object);
  return object;
}
Object* objc_retainAutorelease(Object* object) {
  return objc_autorelease(objc_retain(object));
}
Object* objc_autoreleaseReturnValue(Object* object) {
  return objc_autorelease(object);
}
Object* objc_retainAutoreleaseReturnValue(Object* object) {
  return objc_retainAutorelease(object);
}
Object* objc_retainAutoreleasedReturnValue(Object* object) {
  return objc_retain(object);
}
Object* objc_unsafeClaimAutoreleasedReturnValue(Object* object) {
  return object;
}
Object* objc_claimAutoreleasedReturnValue(Object* object) {
  return objc_retain(object);
}
}
