// Objects' lives: counted references, as ARC's calls take and give them. An object that is gone
// stays in memory as a dead one for a while, so that who still uses it is told instead of reading
// what another object has written there.
#include <cstdlib>
#include <cstring>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "tests/macos/runtime/objc/Census.h"
#include "tests/macos/runtime/objc/Runtime.h"

namespace quorin::objc {
namespace {

constexpr std::size_t deadKept = 20'000;

// What stands before each object.
struct Count {
  std::atomic<long> references;
  Class* deadKind;  // once it is deallocated
};

static_assert(sizeof(Count) == 16);  // objects are aligned as malloc aligns

Count* countOf(Object* object) {
  return reinterpret_cast<Count*>(object) - 1;
}

Class deadClass{};  // what a dead object's isa points to

struct Lives {
  std::mutex lock;
  std::map<std::string, long> alive;
  std::deque<Object*> dead;
};

Lives& lives() {
  static Lives& all = *new Lives;
  return all;
}

void callEach(Object* object, Selector name, bool rootFirst) {
  std::vector<Implementation> found;
  for (Class* kind = object->isa; kind; kind = kind->super) {
    if (const Implementation own = ownImplementationOf(kind, name)) found.push_back(own);
  }
  const auto call = [&](Implementation each) {
    reinterpret_cast<void (*)(Object*, Selector)>(each)(object, name);
  };
  if (rootFirst) {
    for (auto each = found.rbegin(); each != found.rend(); ++each) call(*each);
  } else {
    for (const Implementation each : found) call(each);
  }
}

}  // namespace

const char* nameOfDeallocated(const Object* object) {
  return object->isa == &deadClass ? countOf(const_cast<Object*>(object))->deadKind->data->name
                                   : nullptr;
}

void destroy(Object* object) {
  static const Selector destruct = selector(".cxx_destruct");
  callEach(object, destruct, false);
  clearWeakReferences(object);
  Count* count = countOf(object);
  count->deadKind = object->isa;
  object->isa = &deadClass;
  Lives& all = lives();
  const std::lock_guard guard(all.lock);
  --all.alive[count->deadKind->data->name];
  all.dead.push_back(object);
  if (all.dead.size() <= deadKept) return;
  std::free(countOf(all.dead.front()));
  all.dead.pop_front();
}

std::map<std::string, long> aliveByClass() {
  Lives& all = lives();
  const std::lock_guard guard(all.lock);
  return all.alive;
}

void exemptFromCensus(Object* object) {
  Lives& all = lives();
  const std::lock_guard guard(all.lock);
  --all.alive[object->isa->data->name];
}

}  // namespace quorin::objc

using namespace quorin::objc;

extern "C" {
Object* objc_alloc(Class* kind) {
  static const Selector construct = selector(".cxx_construct");
  auto* count = static_cast<Count*>(std::calloc(1, sizeof(Count) + kind->data->size + 16));
  count->references = 1;
  auto* object = reinterpret_cast<Object*>(count + 1);
  object->isa = kind;
  callEach(object, construct, true);
  Lives& all = lives();
  const std::lock_guard guard(all.lock);
  ++all.alive[kind->data->name];
  return object;
}

Object* objc_alloc_init(Class* kind) {
  return send<Object*>(objc_alloc(kind), selector("init"));
}
Object* objc_opt_new(Class* kind) {
  return objc_alloc_init(kind);
}

Object* objc_retain(Object* object) {
  if (isImmortal(object)) return object;
  // One in its frame is left there: only a copy moves it.
  if (isBlock(object)) return isOnHeap(object) ? static_cast<Object*>(_Block_copy(object)) : object;
  if (const char* dead = nameOfDeallocated(object)) breach("a deallocated %s is retained", dead);
  ++countOf(object)->references;
  return object;
}

void objc_release(Object* object) {
  if (isImmortal(object)) return;
  if (isBlock(object)) return _Block_release(object);
  if (const char* dead = nameOfDeallocated(object))
    breach("a deallocated %s is released once more", dead);
  if (--countOf(object)->references == 0) send<void>(object, selector("dealloc"));
}

// For a weak reference: nothing once the last counted reference is gone.
Object* quorin_retainIfAlive(Object* object) {
  if (isImmortal(object)) return object;
  std::atomic<long>& references = countOf(object)->references;
  long now = references;
  while (now > 0) {
    if (references.compare_exchange_weak(now, now + 1)) return object;
  }
  return nullptr;
}

void objc_storeStrong(Object** place, Object* object) {
  objc_retain(object);
  Object* old = *place;
  *place = object;
  objc_release(old);
}
Object* objc_retainBlock(Object* block) {
  return static_cast<Object*>(_Block_copy(block));
}
}
