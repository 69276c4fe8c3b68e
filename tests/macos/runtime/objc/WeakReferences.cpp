// Weak references: places that become nothing when their object goes.
#include <mutex>
#include <unordered_map>
#include <unordered_set>

#include "tests/macos/runtime/objc/Runtime.h"

extern "C" quorin::objc::Object* quorin_retainIfAlive(quorin::objc::Object* object);

namespace quorin::objc {
namespace {

struct Places {
  std::recursive_mutex lock;  // reading one may release the last reference to another
  std::unordered_map<Object*, std::unordered_set<Object**>> of;
};

Places& places() {
  static Places& all = *new Places;
  return all;
}

void forget(Object** place) {
  const auto found = places().of.find(*place);
  if (found == places().of.end()) return;
  found->second.erase(place);
  if (found->second.empty()) places().of.erase(found);
}

void remember(Object** place, Object* object) {
  *place = object;
  if (object && !isImmortal(object)) places().of[object].insert(place);
}

}  // namespace

void clearWeakReferences(Object* object) {
  const std::lock_guard guard(places().lock);
  const auto found = places().of.find(object);
  if (found == places().of.end()) return;
  for (Object** place : found->second) *place = nullptr;
  places().of.erase(found);
}

}  // namespace quorin::objc

using namespace quorin::objc;

extern "C" {
Object* objc_initWeak(Object** place, Object* object) {
  const std::lock_guard guard(places().lock);
  remember(place, object);
  return object;
}
Object* objc_storeWeak(Object** place, Object* object) {
  const std::lock_guard guard(places().lock);
  forget(place);
  remember(place, object);
  return object;
}
void objc_destroyWeak(Object** place) {
  const std::lock_guard guard(places().lock);
  forget(place);
  *place = nullptr;
}
Object* objc_loadWeakRetained(Object** place) {
  const std::lock_guard guard(places().lock);
  return *place ? quorin_retainIfAlive(*place) : nullptr;
}
Object* objc_loadWeak(Object** place) {
  return objc_autorelease(objc_loadWeakRetained(place));
}
void objc_copyWeak(Object** to, Object** from) {
  const std::lock_guard guard(places().lock);
  remember(to, *from);
}
void objc_moveWeak(Object** to, Object** from) {
  objc_copyWeak(to, from);
  objc_destroyWeak(from);
}
}
