// Owners of GLib and GTK handles: each gives its handle back when it goes.
#pragma once

#include <glib-object.h>
#include <memory>

namespace quorin {

struct GObjectUnref {
  void operator()(void* object) const { g_object_unref(object); }
};
template <typename T>
using GObjectPtr = std::unique_ptr<T, GObjectUnref>;

struct GFree {
  void operator()(void* memory) const { g_free(memory); }
};
using GTextPtr = std::unique_ptr<char, GFree>;

struct GErrorFree {
  void operator()(GError* error) const { g_error_free(error); }
};
using GErrorPtr = std::unique_ptr<GError, GErrorFree>;

// A source of the default main context; taken out of it when this goes.
class GSourceHandle {
 public:
  GSourceHandle() = default;
  explicit GSourceHandle(guint id) : id_(id) {}
  GSourceHandle(const GSourceHandle&) = delete;
  GSourceHandle& operator=(const GSourceHandle&) = delete;
  ~GSourceHandle() { reset(); }

  void reset(guint id = 0) {
    if (id_ != 0) g_source_remove(id_);
    id_ = id;
  }
  // The source has removed itself.
  void forget() { id_ = 0; }
  explicit operator bool() const { return id_ != 0; }

 private:
  guint id_ = 0;
};

}  // namespace quorin
