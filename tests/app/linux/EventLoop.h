// Runs GLib's main loop, as the program does, until something has happened.
#pragma once

#include <functional>
#include <glib.h>

#include "app/linux/GLibHandles.h"

namespace quorin {

// False when it has not happened within half a minute.
inline bool runUntil(const std::function<bool()>& condition) {
  const gint64 end = g_get_monotonic_time() + 30 * G_USEC_PER_SEC;
  const GSourceHandle wakeUp(g_timeout_add(
      10, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr));
  while (!condition()) {
    if (g_get_monotonic_time() > end) return false;
    g_main_context_iteration(nullptr, TRUE);
  }
  return true;
}

}  // namespace quorin
