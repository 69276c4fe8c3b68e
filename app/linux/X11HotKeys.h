// X11HotKeys: global key combinations on X11, by passive grabs on the root window. They reach this
// application whichever window has the keyboard, and whether Caps Lock or Num Lock is on or not. A
// combination that another program holds is refused. A key held down counts once. Main thread only.
#pragma once

#include <gdk/gdk.h>
#include <map>
#include <vector>

#include "app/shell/ports/HotKeyService.h"

namespace quorin {

class X11HotKeys : public HotKeyService {
 public:
  static constexpr Status alreadyInstalled = -9860;

  explicit X11HotKeys(GdkDisplay* display);
  ~X11HotKeys() override;
  X11HotKeys(const X11HotKeys&) = delete;
  X11HotKeys& operator=(const X11HotKeys&) = delete;

  Status install(Handler handler) override;
  Status add(HotKeyID id, std::uint32_t keyCode, std::uint32_t modifiers) override;
  void remove(HotKeyID id) override;

 private:
  struct Combination {
    HotKeyID id;
    unsigned keyCode = 0;         // X's
    GdkModifierType modifiers{};  // Super as such, not as the modifier it is mapped to
  };
  struct Grab {
    int keyCode = 0;
    unsigned mask = 0;
  };

  static GdkFilterReturn filter(void* xevent, GdkEvent*, gpointer self);
  static void keysChanged(GdkKeymap*, gpointer self);
  GdkFilterReturn pressed(unsigned keyCode, unsigned state, std::uint32_t time);
  bool repeats(unsigned keyCode, std::uint32_t time) const;
  bool grab(const Combination& combination);
  void release(const std::vector<Grab>& grabs);
  void releaseAll();
  void grabAnew();
  unsigned realMask(GdkModifierType modifiers) const;
  unsigned numLockMask() const;

  GdkDisplay* display_;
  GdkWindow* root_;
  Handler handler_;
  std::vector<Combination> combinations_;
  std::vector<Grab> grabs_;
  std::map<unsigned, std::uint32_t> down_;  // key codes; when each was last pressed
};

}  // namespace quorin
