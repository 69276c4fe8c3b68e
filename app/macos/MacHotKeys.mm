#include "app/macos/MacHotKeys.h"

#include <utility>

#include "app/macos/Edge.h"

namespace quorin {

MacHotKeys::~MacHotKeys() {
  for (const auto& [id, hotKey] : registered_) UnregisterEventHotKey(hotKey);
  if (installed_) RemoveEventHandler(installed_);
}

// Handled and registered at the same target; elsewhere the presses would not be told.
HotKeyService::Status MacHotKeys::install(Handler handler) {
  handler_ = std::move(handler);
  const EventTypeSpec kind = {kEventClassKeyboard, kEventHotKeyPressed};
  return InstallEventHandler(GetApplicationEventTarget(), pressed, 1, &kind, this, &installed_);
}

HotKeyService::Status MacHotKeys::add(HotKeyID id, std::uint32_t keyCode, std::uint32_t modifiers) {
  EventHotKeyRef hotKey = nullptr;
  const OSStatus status =
      RegisterEventHotKey(keyCode, modifiers, EventHotKeyID{id.signature, id.id},
                          GetApplicationEventTarget(), kEventHotKeyNoOptions, &hotKey);
  if (hotKey) registered_.emplace_back(id, hotKey);
  return status;
}

void MacHotKeys::remove(HotKeyID id) {
  std::erase_if(registered_, [id](const auto& one) {
    if (one.first != id) return false;
    UnregisterEventHotKey(one.second);
    return true;
  });
}

OSStatus MacHotKeys::pressed(EventHandlerCallRef, EventRef event, void* self) {
  EventHotKeyID id = {};
  const OSStatus read = GetEventParameter(event, kEventParamDirectObject, typeEventHotKeyID,
                                          nullptr, sizeof id, nullptr, &id);
  OSStatus answer = eventNotHandledErr;
  if (read != noErr) return answer;
  atEdge("hot key", [&] {
    answer = static_cast<MacHotKeys*>(self)->handler_({id.signature, id.id});
  });
  return answer;
}

}  // namespace quorin
