// Carbon's event manager, as far as hot keys go: combinations registered at a target, handlers
// installed at a target, events sent to it. Both have to be at the same one.
#include "tests/macos/runtime/carbon/HotKeys.h"

#import <Carbon/Carbon.h>
#include <algorithm>
#include <cstring>
#include <vector>

#include "tests/macos/runtime/foundation/Raise.h"
#include "tests/macos/runtime/objc/Runtime.h"

struct OpaqueEventTargetRef {
  int unused;
};
struct OpaqueEventHandlerRef {
  EventTargetRef target;
  EventHandlerUPP handler;
  EventTypeSpec kind;
  void* data;
};
struct OpaqueEventHotKeyRef {
  EventTargetRef target;
  UInt32 code, modifiers;
  EventHotKeyID id;
};
struct OpaqueEventRef {
  OSType kind;
  UInt32 number;
  std::vector<char> direct;
};

namespace {

OpaqueEventTargetRef application, dispatcher;
std::vector<EventHandlerRef> handlers;
std::vector<EventHotKeyRef> hotKeys;

constexpr OSStatus parameterMissing = -9870;  // eventParameterNotFoundErr

template <typename Reference>
OSStatus take(std::vector<Reference>& all, Reference one, const char* what) {
  const auto found = std::find(all.begin(), all.end(), one);
  if (found == all.end()) quorin::objc::breach("%s is removed that is not there", what);
  all.erase(found);
  delete one;
  return noErr;
}

}  // namespace

extern "C" {

EventTargetRef GetApplicationEventTarget() {
  return &application;
}
EventTargetRef GetEventDispatcherTarget() {
  return &dispatcher;
}
OSStatus InstallEventHandler(EventTargetRef target, EventHandlerUPP handler, ItemCount count,
                             const EventTypeSpec* kinds, void* data, EventHandlerRef* made) {
  quorin::onMainThread("InstallEventHandler");
  if (count != 1) quorin::objc::breach("this fake's handlers are of one kind");
  handlers.push_back(new OpaqueEventHandlerRef{target, handler, kinds[0], data});
  if (made) *made = handlers.back();
  return noErr;
}
OSStatus RemoveEventHandler(EventHandlerRef handler) {
  return take(handlers, handler, "an event handler");
}
// "eventHotKeyExistsErr: a hot key with this combination is registered already".
OSStatus RegisterEventHotKey(UInt32 code, UInt32 modifiers, EventHotKeyID id, EventTargetRef target,
                             OptionBits, EventHotKeyRef* made) {
  quorin::onMainThread("RegisterEventHotKey");
  for (EventHotKeyRef each : hotKeys) {
    if (each->code == code && each->modifiers == modifiers) return eventHotKeyExistsErr;
  }
  hotKeys.push_back(new OpaqueEventHotKeyRef{target, code, modifiers, id});
  *made = hotKeys.back();
  return noErr;
}
OSStatus UnregisterEventHotKey(EventHotKeyRef hotKey) {
  return take(hotKeys, hotKey, "a hot key");
}
OSStatus CreateEvent(CFAllocatorRef, OSType kind, UInt32 number, EventTime, EventAttributes,
                     EventRef* made) {
  *made = new OpaqueEventRef{kind, number, {}};
  return noErr;
}
void ReleaseEvent(EventRef event) {
  delete event;
}
OSStatus SetEventParameter(EventRef event, EventParamName name, EventParamType, ByteCount size,
                           const void* data) {
  if (name != kEventParamDirectObject) return parameterMissing;
  const char* bytes = static_cast<const char*>(data);
  event->direct.assign(bytes, bytes + size);
  return noErr;
}
OSStatus GetEventParameter(EventRef event, EventParamName name, EventParamType type,
                           EventParamType*, ByteCount size, ByteCount*, void* data) {
  if (name != kEventParamDirectObject || type != typeEventHotKeyID || event->direct.size() != size)
    return parameterMissing;
  std::memcpy(data, event->direct.data(), size);
  return noErr;
}
// The newest handler is asked first; one that does not handle the event passes it on.
OSStatus SendEventToEventTarget(EventRef event, EventTargetRef target) {
  const auto all = handlers;
  for (auto each = all.rbegin(); each != all.rend(); ++each) {
    const EventTypeSpec& kind = (*each)->kind;
    if ((*each)->target != target || kind.eventClass != event->kind ||
        kind.eventKind != event->number)
      continue;
    const OSStatus answer = (*each)->handler(nullptr, event, (*each)->data);
    if (answer != eventNotHandledErr) return answer;
  }
  return eventNotHandledErr;
}
}

namespace quorin {

std::size_t installedHandlers() {
  return handlers.size();
}

// The event goes where the combination was registered.
bool userPresses(std::uint32_t code, std::uint32_t modifiers) {
  for (EventHotKeyRef each : hotKeys) {
    if (each->code != code || each->modifiers != modifiers) continue;
    OpaqueEventRef event{kEventClassKeyboard, kEventHotKeyPressed, {}};
    SetEventParameter(&event, kEventParamDirectObject, typeEventHotKeyID, sizeof each->id,
                      &each->id);
    return SendEventToEventTarget(&event, each->target) == noErr;
  }
  return false;
}

std::size_t registeredHotKeys() {
  return hotKeys.size();
}

}  // namespace quorin
