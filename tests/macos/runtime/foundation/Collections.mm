// Arrays, and dictionaries whose keys are texts. A bad index and nothing as an element raise, as
// NSArray and NSDictionary document it.
#import <Foundation/Foundation.h>
#include <map>
#include <vector>

#include "tests/macos/runtime/foundation/Raise.h"
#import "tests/macos/runtime/foundation/Strings.h"

using namespace quorin;

namespace {

// One batch of what is enumerated: the owner keeps the objects.
template <typename At>
NSUInteger enumerate(NSUInteger count, NSFastEnumerationState* state,
                     id __unsafe_unretained _Nullable* buffer, NSUInteger room, const At& at) {
  static unsigned long unchanged = 0;
  state->mutationsPtr = &unchanged;
  state->itemsPtr = buffer;
  NSUInteger given = 0;
  for (; given < room && state->state < count; ++given) buffer[given] = at(state->state++);
  return given;
}

}  // namespace

@implementation NSArray {
 @public
  std::vector<id> _items;
}

+ (instancetype)array {
  return [[self alloc] init];
}
+ (instancetype)arrayWithObject:(id)object {
  id __unsafe_unretained one = object;
  return [self arrayWithObjects:&one count:1];
}
+ (instancetype)arrayWithObjects:(const id __unsafe_unretained*)objects count:(NSUInteger)count {
  NSArray* made = [[self alloc] init];
  for (NSUInteger i = 0; i < count; ++i) {
    if (!objects[i]) raise("NSInvalidArgumentException", "an array of nothing");
    made->_items.push_back(objects[i]);
  }
  return made;
}
- (NSUInteger)count {
  return _items.size();
}
- (id)objectAtIndex:(NSUInteger)index {
  if (index >= _items.size()) raise("NSRangeException", "an index beyond the bounds of an array");
  return _items[index];
}
- (id)objectAtIndexedSubscript:(NSUInteger)index {
  return [self objectAtIndex:index];
}
- (id)firstObject {
  return _items.empty() ? nil : _items.front();
}
- (id)lastObject {
  return _items.empty() ? nil : _items.back();
}
- (BOOL)containsObject:(id)object {
  for (id each : _items) {
    if ([each isEqual:object]) return YES;
  }
  return NO;
}
- (id)copyWithZone:(NSZone*)zone {
  NSArray* copy = [[NSArray alloc] init];
  copy->_items = _items;
  return copy;
}
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained _Nullable[_Nonnull])buffer
                                    count:(NSUInteger)room {
  return enumerate(_items.size(), state, buffer, room,
                   [&](NSUInteger index) { return _items[index]; });
}

@end

@implementation NSMutableArray

- (void)addObject:(id)object {
  if (!object) raise("NSInvalidArgumentException", "nothing is added to an array");
  _items.push_back(object);
}
- (void)removeAllObjects {
  _items.clear();
}

@end

@implementation NSDictionary {
 @public
  std::map<std::string, std::pair<NSString*, id>> _members;
}

static std::string keyText(id key) {
  if (![key isKindOfClass:NSString.class])
    raise("NSInvalidArgumentException", "this fake's dictionaries have texts as keys");
  return read(key);
}

+ (instancetype)dictionary {
  return [[self alloc] init];
}
+ (instancetype)dictionaryWithObjects:(const id __unsafe_unretained*)objects
                              forKeys:(const id<NSCopying> __unsafe_unretained*)keys
                                count:(NSUInteger)count {
  NSDictionary* made = [[self alloc] init];
  for (NSUInteger i = 0; i < count; ++i) {
    if (!objects[i]) raise("NSInvalidArgumentException", "nothing in a dictionary");
    made->_members[keyText(keys[i])] = {(NSString*)keys[i], objects[i]};
  }
  return made;
}
- (NSUInteger)count {
  return _members.size();
}
- (id)objectForKey:(id)key {
  const auto found = _members.find(keyText(key));
  return found == _members.end() ? nil : found->second.second;
}
- (id)objectForKeyedSubscript:(id)key {
  return [self objectForKey:key];
}
- (id)copyWithZone:(NSZone*)zone {
  NSDictionary* copy = [[NSDictionary alloc] init];
  copy->_members = _members;
  return copy;
}
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained _Nullable[_Nonnull])buffer
                                    count:(NSUInteger)room {
  return enumerate(_members.size(), state, buffer, room, [&](NSUInteger index) {
    return std::next(_members.begin(), static_cast<long>(index))->second.first;
  });
}

@end

@implementation NSMutableDictionary

- (void)setObject:(id)object forKey:(id<NSCopying>)key {
  if (!object) raise("NSInvalidArgumentException", "nothing in a dictionary");
  _members[keyText(key)] = {(NSString*)key, object};
}
- (void)setObject:(id)object forKeyedSubscript:(id<NSCopying>)key {
  if (object) {
    [self setObject:object forKey:key];
  } else {
    _members.erase(keyText(key));
  }
}
- (void)removeObjectForKey:(id)key {
  _members.erase(keyText(key));
}

@end

// What the compiler takes for the literals without elements.
id __NSArray0__;
id __NSDictionary0__;

__attribute__((constructor(102))) static void makeEmptyLiterals() {
  __NSArray0__ = [[NSArray alloc] init];
  __NSDictionary0__ = [[NSDictionary alloc] init];
}
