// The runtime's own parts for each other and for the fakes. Any thread.
#pragma once

#include "tests/macos/runtime/objc/Layout.h"

namespace quorin::objc {

// What Apple's frameworks would answer with a crash, or with damage that shows later: says it and
// ends the program.
[[noreturn]] void breach(const char* format, ...) __attribute__((format(printf, 1, 2)));

Selector selector(const char* name);
Class* classNamed(const char* name);  // none: nullptr
bool isClass(const void* pointer);
bool isKind(Class* kind, const Class* of);

// Of instances of the class; nothing when neither it nor a superclass has the method.
Implementation implementationOf(Class* kind, Selector selector);
// The class's own alone.
Implementation ownImplementationOf(Class* kind, Selector selector);

bool isBlock(const Object* object);
bool isOnHeap(const Object* block);

// Frees the object's variables and its memory, after dealloc of every class.
void destroy(Object* object);

// No weak reference reads the object from now on.
void clearWeakReferences(Object* object);

// An object without the beginning that counted ones have: constant strings, classes.
bool isImmortal(const Object* object);

template <typename Answer, typename... Arguments>
Answer send(Object* receiver, Selector selector, Arguments... arguments) {
  using Message = Answer (*)(Object*, Selector, Arguments...);
  return reinterpret_cast<Message>(&objc_msgSend)(receiver, selector, arguments...);
}

}  // namespace quorin::objc

extern "C" {
quorin::objc::Object* objc_retain(quorin::objc::Object* object);
void objc_release(quorin::objc::Object* object);
quorin::objc::Object* objc_alloc(quorin::objc::Class* kind);
quorin::objc::Object* objc_autorelease(quorin::objc::Object* object);
void* _Block_copy(const void* block);
void _Block_release(const void* block);
}
