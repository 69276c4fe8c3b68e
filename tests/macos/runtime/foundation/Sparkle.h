// The updater's framework, as far as the adapter speaks to it. It is there when the file "loads"
// lies in the folder Frameworks/Sparkle.framework of the bundle.
#pragma once

namespace quorin {

struct Updates {
  int started = 0;  // controllers that were made
  int alive = 0;
  int asked = 0;
};

Updates& updates();

}  // namespace quorin
