// Objective-C's exceptions as C++ ones: they pass through each other's frames, and each language's
// catch-all catches both. What is caught is decided by the class in an Objective-C handler's type,
// which to the unwinder looks like a std::type_info.
#include <cxxabi.h>
#include <exception>
#include <typeinfo>

#include "tests/macos/runtime/objc/Runtime.h"

using quorin::objc::Class;
using quorin::objc::Object;

namespace {

struct HandlerType {
  void** functions;  // objc_ehtype_vtable + 2
  const char* name;
  Class* kind;  // none for "id"
};

void nothing(const HandlerType*) {}
bool yes(const HandlerType*) {
  return true;
}
bool no(const HandlerType*) {
  return false;
}
bool catches(const HandlerType* handler, const std::type_info* thrown, void** object, unsigned);
bool upcast(const HandlerType*, const void*, void**) {
  return false;
}

}  // namespace

extern "C" {
// In the order of the virtual functions of libstdc++'s std::type_info: two destructors, "is a
// pointer", "is a function", "catches what was thrown", "converts upwards".
void* objc_ehtype_vtable[] = {nullptr,
                              nullptr,
                              reinterpret_cast<void*>(&nothing),
                              reinterpret_cast<void*>(&nothing),
                              reinterpret_cast<void*>(&yes),
                              reinterpret_cast<void*>(&no),
                              reinterpret_cast<void*>(&catches),
                              reinterpret_cast<void*>(&upcast)};
extern HandlerType OBJC_EHTYPE_id;
HandlerType OBJC_EHTYPE_id{objc_ehtype_vtable + 2, "id", nullptr};
}

namespace {

bool catches(const HandlerType* handler, const std::type_info* thrown, void** object, unsigned) {
  if (reinterpret_cast<const HandlerType*>(thrown) != &OBJC_EHTYPE_id) return false;
  auto* exception = static_cast<Object*>(*object);
  return !handler->kind || quorin::objc::isKind(exception->isa, handler->kind);
}

}  // namespace

extern "C" {
[[noreturn]] void objc_exception_throw(Object* exception) {
  auto* place = static_cast<Object**>(abi::__cxa_allocate_exception(sizeof(Object*)));
  *place = objc_retain(exception);
  abi::__cxa_throw(place, reinterpret_cast<std::type_info*>(&OBJC_EHTYPE_id),
                   [](void* thrown) { objc_release(*static_cast<Object**>(thrown)); });
}
void objc_exception_rethrow() {
  abi::__cxa_rethrow();
}
void* objc_begin_catch(void* exception) {
  return abi::__cxa_begin_catch(exception);
}
void objc_end_catch() {
  abi::__cxa_end_catch();
}
void objc_terminate() {
  std::terminate();
}
}

asm(".text\n.globl __objc_personality_v0\n.type __objc_personality_v0,@function\n"
    "__objc_personality_v0: jmp __gxx_personality_v0@PLT\n");
