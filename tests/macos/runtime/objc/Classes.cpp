// The program's classes: found in the sections where the compiler put them, before any constructor
// of a static object runs, and read-only from then on.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "tests/macos/runtime/objc/Runtime.h"

namespace {
using quorin::objc::Category;
using quorin::objc::Class;
using quorin::objc::Object;
using quorin::objc::Selector;
}  // namespace

extern "C" {
// The linker's names for the ends of the sections.
extern Class* __start_objc_classlist[];
extern Class* __stop_objc_classlist[];
extern Category* __start_objc_catlist[] __attribute__((weak));
extern Category* __stop_objc_catlist[] __attribute__((weak));
extern Selector __start_objc_selrefs[];
extern Selector __stop_objc_selrefs[];

// The class that the compiler gives its constant strings; NSConstantString's after start-up.
extern Class __CFConstantStringClassReference;
Class __CFConstantStringClassReference;
extern char _dispatch_main_q;  // which the compiler counts references to, too
void* _objc_empty_cache;
void* _objc_empty_vtable;
}

namespace quorin::objc {
namespace {

using Methods = std::unordered_map<Selector, Implementation>;

struct Known {
  std::unordered_map<Class*, Methods> methods;
  std::unordered_map<std::string, Class*> names;
  std::unordered_set<const void*> ready;
};

Known& known() {
  static Known& all = *new Known;
  return all;
}

void addMethods(Class* kind, const List<Method>* list) {
  Methods& methods = known().methods[kind];
  for (std::uint32_t i = 0; list && i < list->count; ++i) {
    methods[selector((*list)[i].name)] = (*list)[i].implementation;
  }
}

// A superclass may have become larger than it was when the class was compiled: its variables move.
void moveVariables(Class* kind) {
  ClassData& data = *kind->data;
  if (kind->isMeta() || !kind->super || kind->super->data->size <= data.start) return;
  const std::uint32_t by = (kind->super->data->size - data.start + 15) & ~15u;
  for (std::uint32_t i = 0; data.variables && i < data.variables->count; ++i) {
    *(*data.variables)[i].offset += by;
  }
  data.start += by;
  data.size += by;
}

void prepare(Class* kind) {
  if (!kind || !known().ready.insert(kind).second) return;
  prepare(kind->super);
  moveVariables(kind);
  addMethods(kind, kind->data->methods);
  if (kind->isMeta()) return;
  known().names[kind->data->name] = kind;
  prepare(kind->isa);
}

__attribute__((constructor(101))) void start() {
  for (Class** each = __start_objc_classlist; each < __stop_objc_classlist; ++each) prepare(*each);
  for (Category** each = __start_objc_catlist; each < __stop_objc_catlist; ++each) {
    addMethods((*each)->extended, (*each)->methods);
    addMethods((*each)->extended->isa, (*each)->classMethods);
  }
  for (Selector* each = __start_objc_selrefs; each < __stop_objc_selrefs; ++each) {
    *each = selector(*each);
  }
  Class* strings = classNamed("NSConstantString");
  if (!strings) breach("there is no NSConstantString");
  __CFConstantStringClassReference = *strings;
  const Methods methods = known().methods[strings];
  known().methods[&__CFConstantStringClassReference] = methods;
}

}  // namespace

void breach(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::fputs("Objective-C: ", stderr);
  std::vfprintf(stderr, format, arguments);
  std::fputs("\n", stderr);
  va_end(arguments);
  std::abort();
}

Selector selector(const char* name) {
  static std::mutex& lock = *new std::mutex;
  static auto& all = *new std::unordered_set<std::string>;
  const std::lock_guard guard(lock);
  return all.insert(name).first->c_str();
}

Class* classNamed(const char* name) {
  const auto found = known().names.find(name);
  return found == known().names.end() ? nullptr : found->second;
}

bool isClass(const void* pointer) {
  return known().ready.contains(pointer);
}

bool isKind(Class* kind, const Class* of) {
  for (; kind; kind = kind->super) {
    if (kind == of) return true;
  }
  return false;
}

Implementation ownImplementationOf(Class* kind, Selector selector) {
  const auto methods = known().methods.find(kind);
  if (methods == known().methods.end()) return nullptr;
  const auto found = methods->second.find(selector);
  return found == methods->second.end() ? nullptr : found->second;
}

Implementation implementationOf(Class* kind, Selector selector) {
  for (; kind; kind = kind->super) {
    if (const Implementation found = ownImplementationOf(kind, selector)) return found;
  }
  return nullptr;
}

bool isImmortal(const Object* object) {
  return !object || object == reinterpret_cast<const Object*>(&_dispatch_main_q) ||
         object->isa == &__CFConstantStringClassReference || isClass(object);
}

}  // namespace quorin::objc

using namespace quorin::objc;

extern "C" {
Class* objc_getClass(const char* name) {
  return classNamed(name);
}
Selector sel_registerName(const char* name) {
  return selector(name);
}
Object* objc_opt_self(Object* object) {
  return object;
}
Class* objc_opt_class(Object* object) {
  if (!object) return nullptr;
  return object->isa->isMeta() ? reinterpret_cast<Class*>(object) : object->isa;
}
bool objc_opt_isKindOfClass(Object* object, Class* kind) {
  return object && isKind(object->isa, kind);
}
bool objc_opt_respondsToSelector(Object* object, Selector name) {
  return object && implementationOf(object->isa, name);
}
}
