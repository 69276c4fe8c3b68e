// Bar: a bar of the desktop, a program of its own on the same bus, which shows the status item's
// menu.
#pragma once

#include <gio/gio.h>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "app/linux/GLibHandles.h"
#include "app/shell/ports/StatusItem.h"

namespace quorin {

struct GVariantUnref {
  void operator()(GVariant* value) const { g_variant_unref(value); }
};
using GVariantPtr = std::unique_ptr<GVariant, GVariantUnref>;

// An item of the menu as a bar gets it.
struct Shown {
  int id = 0;
  std::string label;
  bool enabled = true, checkable = false, checked = false;
};

inline bool operator==(const Shown& one, const MenuItem& item) {
  return one.label == item.title && one.enabled == item.enabled &&
         one.checkable == item.checkable && one.checked == item.checked;
}

inline std::ostream& operator<<(std::ostream& out, const Shown& one) {
  return out << one.label << (one.enabled ? "" : " disabled") << (one.checked ? " checked" : "");
}

inline Shown shownOf(GVariant* node) {
  Shown shown;
  GVariant* properties = nullptr;
  GVariant* children = nullptr;
  g_variant_get(node, "(i@a{sv}@av)", &shown.id, &properties, &children);
  const GVariantPtr owned(properties);
  const GVariantPtr ownedToo(children);
  const char* text = nullptr;
  if (g_variant_lookup(properties, "label", "&s", &text)) shown.label = text;
  gboolean enabled = TRUE;
  if (g_variant_lookup(properties, "enabled", "b", &enabled)) shown.enabled = enabled;
  shown.checkable = g_variant_lookup(properties, "toggle-type", "&s", &text);
  int state = 0;
  shown.checked = g_variant_lookup(properties, "toggle-state", "i", &state) && state == 1;
  if (g_variant_lookup(properties, "type", "&s", &text) && std::string(text) == "separator") {
    shown.label.clear();
  }
  return shown;
}

// A bar of the desktop: a program of its own on the same bus.
class Bar {
 public:
  static constexpr const char* item = "/org/ayatana/NotificationItem/quorin";
  static constexpr const char* menu = "/org/ayatana/NotificationItem/quorin/Menu";

  // As the service that items register with, or as one that only asks.
  explicit Bar(bool takesItems) {
    connection_.reset(g_dbus_connection_new_for_address_sync(
        g_getenv("DBUS_SESSION_BUS_ADDRESS"),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr));
    own_.reset(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    peer_ = g_dbus_connection_get_unique_name(own_.get());
    if (takesItems) takeItems();
  }
  ~Bar() {
    g_dbus_connection_close_sync(connection_.get(), nullptr, nullptr);
    if (information_) g_dbus_node_info_unref(information_);
  }
  Bar(const Bar&) = delete;
  Bar& operator=(const Bar&) = delete;

  // Null where the call fails. The main loop runs meanwhile.
  GVariantPtr call(const char* path, const char* interface, const char* method, GVariant* words) {
    struct Reply {
      bool came = false;
      GVariantPtr value;
    } reply;
    g_dbus_connection_call(
        connection_.get(), peer_.c_str(), path, interface, method, words, nullptr,
        G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
        [](GObject* source, GAsyncResult* result, gpointer data) {
          auto& to = *static_cast<Reply*>(data);
          to.value.reset(g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, nullptr));
          to.came = true;
        },
        &reply);
    while (!reply.came) g_main_context_iteration(nullptr, TRUE);
    return std::move(reply.value);
  }

  std::vector<Shown> layout() {
    const GVariantPtr reply =
        call(menu, "com.canonical.dbusmenu", "GetLayout", g_variant_new("(iias)", 0, -1, nullptr));
    std::vector<Shown> found;
    if (!reply) return found;
    GVariantIter* children = nullptr;
    g_variant_get(reply.get(), "(u(ia{sv}av))", nullptr, nullptr, nullptr, &children);
    for (GVariant* boxed = nullptr; g_variant_iter_loop(children, "v", &boxed);) {
      found.push_back(shownOf(boxed));
    }
    g_variant_iter_free(children);
    return found;
  }

  void click(int id) {
    call(menu, "com.canonical.dbusmenu", "Event",
         g_variant_new("(isvu)", id, "clicked", g_variant_new_int32(0), 0));
  }

  // Opens the menu.
  void open() { call(menu, "com.canonical.dbusmenu", "AboutToShow", g_variant_new("(i)", 0)); }

  std::string property(const char* name) {
    const GVariantPtr reply = call(item, "org.freedesktop.DBus.Properties", "Get",
                                   g_variant_new("(ss)", "org.kde.StatusNotifierItem", name));
    if (!reply) return {};
    GVariant* value = nullptr;
    g_variant_get(reply.get(), "(v)", &value);
    const GVariantPtr owned(value);
    return g_variant_get_string(value, nullptr);
  }

  const std::vector<std::string>& registered() const { return registered_; }

 private:
  void takeItems() {
    information_ = g_dbus_node_info_new_for_xml(
        "<node><interface name='org.kde.StatusNotifierWatcher'>"
        "<method name='RegisterStatusNotifierItem'><arg type='s' direction='in'/></method>"
        "<property name='IsStatusNotifierHostRegistered' type='b' access='read'/>"
        "</interface></node>",
        nullptr);
    static constexpr GDBusInterfaceVTable table{
        [](GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* words,
           GDBusMethodInvocation* invocation, gpointer data) {
          const char* path = nullptr;
          g_variant_get(words, "(&s)", &path);
          static_cast<Bar*>(data)->registered_.emplace_back(path);
          g_dbus_method_invocation_return_value(invocation, nullptr);
        },
        [](GDBusConnection*, const char*, const char*, const char*, const char*, GError**,
           gpointer) { return g_variant_new_boolean(TRUE); },
        nullptr,
        {}};
    g_dbus_connection_register_object(connection_.get(), "/StatusNotifierWatcher",
                                      information_->interfaces[0], &table, this, nullptr, nullptr);
    const GVariantPtr owned(g_dbus_connection_call_sync(
        connection_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "RequestName", g_variant_new("(su)", "org.kde.StatusNotifierWatcher", 0), nullptr,
        G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
  }

  GObjectPtr<GDBusConnection> connection_;
  GObjectPtr<GDBusConnection> own_;  // this process's as the item shares it
  GDBusNodeInfo* information_ = nullptr;
  std::string peer_;
  std::vector<std::string> registered_;
};

}  // namespace quorin
