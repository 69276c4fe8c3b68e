// MacHotKeys: global key combinations, through Carbon's event manager. Main thread only. Handler
// and combinations end with the object.
#pragma once

#import <Carbon/Carbon.h>
#include <utility>
#include <vector>

#include "app/shell/ports/HotKeyService.h"

namespace quorin {

class MacHotKeys : public HotKeyService {
 public:
  MacHotKeys() = default;
  ~MacHotKeys() override;
  MacHotKeys(const MacHotKeys&) = delete;
  MacHotKeys& operator=(const MacHotKeys&) = delete;

  Status install(Handler handler) override;
  Status add(HotKeyID id, std::uint32_t keyCode, std::uint32_t modifiers) override;
  void remove(HotKeyID id) override;

 private:
  static OSStatus pressed(EventHandlerCallRef next, EventRef event, void* self);

  Handler handler_;
  EventHandlerRef installed_ = nullptr;
  std::vector<std::pair<HotKeyID, EventHotKeyRef>> registered_;
};

}  // namespace quorin
