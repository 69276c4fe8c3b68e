#include "app/linux/PortalHotKeys.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <gdk/gdk.h>
#include <optional>
#include <utility>

#include "app/linux/KeyCodes.h"

namespace quorin {

namespace {

constexpr const char* portal = "org.freedesktop.portal.Desktop";
constexpr const char* object = "/org/freedesktop/portal/desktop";
constexpr const char* shortcutsInterface = "org.freedesktop.portal.GlobalShortcuts";
constexpr const char* requestInterface = "org.freedesktop.portal.Request";
constexpr const char* sessionInterface = "org.freedesktop.portal.Session";

struct GVariantUnref {
  void operator()(GVariant* value) const { g_variant_unref(value); }
};
using GVariantPtr = std::unique_ptr<GVariant, GVariantUnref>;

// What the desktop shows its user, by the number of the combination.
constexpr std::array<std::pair<std::uint32_t, const char*>, 5> descriptions{
    {{1, "Show what the selected cell is made of"},
     {2, "Step back in the panel"},
     {3, "Step on in the panel"},
     {4, "Show the map of the workbook"},
     {5, "Show what depends on the selected cell"}}};

const char* description(std::uint32_t id) {
  const auto found = std::find_if(descriptions.begin(), descriptions.end(),
                                  [id](const auto& one) { return one.first == id; });
  return found == descriptions.end() ? "Quorin" : found->second;
}

// The key's name on this keyboard.
std::optional<std::string> triggerOf(std::uint32_t keyCode, std::uint32_t modifiers) {
  const auto key = xKeyCode(keyCode);
  const auto held = modifiersOf(modifiers);
  if (!key || !held) return std::nullopt;
  GdkDisplay* const display = gdk_display_get_default();
  if (!display) return std::nullopt;
  const GdkKeymapKey place{*key, 0, 0};
  const char* const name =
      gdk_keyval_name(gdk_keymap_lookup_key(gdk_keymap_get_for_display(display), &place));
  if (!name) return std::nullopt;
  std::string trigger;
  if (held->control) trigger += "CTRL+";
  if (held->alt) trigger += "ALT+";
  if (held->shift) trigger += "SHIFT+";
  if (held->super) trigger += "LOGO+";
  return trigger + name;
}

}  // namespace

PortalHotKeys::PortalHotKeys(std::function<void(const std::string&)> unavailable)
    : unavailable_(std::move(unavailable)), cancelled_(g_cancellable_new()) {}

PortalHotKeys::~PortalHotKeys() {
  g_cancellable_cancel(cancelled_.get());
  for (const guint one : subscriptions_) g_dbus_connection_signal_unsubscribe(bus_.get(), one);
}

HotKeyService::Status PortalHotKeys::install(Handler handler) {
  if (handler_) return alreadyInstalled;
  handler_ = std::move(handler);
  return noError;
}

HotKeyService::Status PortalHotKeys::add(HotKeyID id, std::uint32_t keyCode,
                                         std::uint32_t modifiers) {
  std::optional<std::string> trigger = triggerOf(keyCode, modifiers);
  if (!trigger) return badParameter;
  shortcuts_.push_back({id, std::move(*trigger)});
  bindSoon();
  return noError;
}

void PortalHotKeys::remove(HotKeyID id) {
  std::erase_if(shortcuts_, [id](const Shortcut& one) { return one.id == id; });
  bindSoon();
}

void PortalHotKeys::bindSoon() {
  if (!binding_) binding_.reset(g_idle_add(bindAll, this));
}

gboolean PortalHotKeys::bindAll(gpointer data) {
  auto& self = *static_cast<PortalHotKeys*>(data);
  self.binding_.forget();
  if (self.asking_ || self.shortcuts_.empty() || self.shortcuts_ == self.asked_) {
    return G_SOURCE_REMOVE;
  }
  self.asking_ = true;
  self.asked_ = self.shortcuts_;
  if (self.bus_) {
    self.createSession();
  } else {
    g_bus_get(G_BUS_TYPE_SESSION, self.cancelled_.get(), connected, data);
  }
  return G_SOURCE_REMOVE;
}

void PortalHotKeys::connected(GObject*, GAsyncResult* result, gpointer data) {
  GError* error = nullptr;
  GObjectPtr<GDBusConnection> bus(g_bus_get_finish(result, &error));
  const GErrorPtr owned(error);
  if (error && g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED)) return;  // we are gone
  auto& self = *static_cast<PortalHotKeys*>(data);
  if (!bus) return self.fail("there is no session bus");
  self.bus_ = std::move(bus);
  self.subscriptions_ = {g_dbus_connection_signal_subscribe(
                             self.bus_.get(), portal, requestInterface, "Response", nullptr,
                             nullptr, G_DBUS_SIGNAL_FLAGS_NONE, answered, data, nullptr),
                         g_dbus_connection_signal_subscribe(
                             self.bus_.get(), portal, shortcutsInterface, "Activated", nullptr,
                             nullptr, G_DBUS_SIGNAL_FLAGS_NONE, activated, data, nullptr)};
  self.createSession();
}

void PortalHotKeys::createSession() {
  if (const std::string before = std::exchange(session_, {}); !before.empty()) {
    g_dbus_connection_call(bus_.get(), portal, before.c_str(), sessionInterface, "Close", nullptr,
                           nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr, nullptr);
  }
  const std::string number = std::to_string(++sessions_);
  const std::string token = "quorin_create" + number;
  GVariantBuilder options;
  g_variant_builder_init(&options, G_VARIANT_TYPE_VARDICT);
  g_variant_builder_add(&options, "{sv}", "handle_token", g_variant_new_string(token.c_str()));
  g_variant_builder_add(&options, "{sv}", "session_handle_token",
                        g_variant_new_string(("quorin_session" + number).c_str()));
  ask("CreateSession", g_variant_new("(a{sv})", &options), token, &PortalHotKeys::sessionCreated);
}

// The answer comes as a signal of an object whose path follows from our name on the bus and the
// token, so that it can be expected before the call.
void PortalHotKeys::ask(const char* method, GVariant* parameters, const std::string& token,
                        Then then) {
  std::string sender = g_dbus_connection_get_unique_name(bus_.get());
  sender.erase(0, 1);
  std::replace(sender.begin(), sender.end(), '.', '_');
  expected_[std::string(object) + "/request/" + sender + "/" + token] = then;
  g_dbus_connection_call(bus_.get(), portal, object, shortcutsInterface, method, parameters,
                         nullptr, G_DBUS_CALL_FLAGS_NONE, -1, cancelled_.get(), called, this);
}

void PortalHotKeys::called(GObject* connection, GAsyncResult* result, gpointer data) {
  GError* error = nullptr;
  const GVariantPtr answer(
      g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, &error));
  const GErrorPtr owned(error);
  if (!error || g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED)) return;
  static_cast<PortalHotKeys*>(data)->fail("this desktop has no portal for them");
}

void PortalHotKeys::answered(GDBusConnection*, const char*, const char* path, const char*,
                             const char*, GVariant* parameters, gpointer data) {
  auto& self = *static_cast<PortalHotKeys*>(data);
  const auto found = self.expected_.find(path);
  if (found == self.expected_.end() ||
      !g_variant_is_of_type(parameters, G_VARIANT_TYPE("(ua{sv})"))) {
    return;
  }
  const Then then = found->second;
  self.expected_.erase(found);
  guint32 refused = 0;
  GVariant* results = nullptr;
  g_variant_get(parameters, "(u@a{sv})", &refused, &results);
  const GVariantPtr owned(results);
  if (refused != 0) return self.fail("the desktop has refused them");
  (self.*then)(results);
}

void PortalHotKeys::sessionCreated(GVariant* results) {
  const char* session = nullptr;
  if (!g_variant_lookup(results, "session_handle", "&s", &session)) {
    return fail("the desktop gives no session");
  }
  session_ = session;
  const std::string token = "quorin_bind" + std::to_string(sessions_);
  GVariantBuilder all;
  g_variant_builder_init(&all, G_VARIANT_TYPE("a(sa{sv})"));
  for (const Shortcut& one : asked_) {
    GVariantBuilder told;
    g_variant_builder_init(&told, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(&told, "{sv}", "description",
                          g_variant_new_string(description(one.id.id)));
    g_variant_builder_add(&told, "{sv}", "preferred_trigger",
                          g_variant_new_string(one.trigger.c_str()));
    g_variant_builder_add(&all, "(sa{sv})", std::to_string(one.id.id).c_str(), &told);
  }
  GVariantBuilder options;
  g_variant_builder_init(&options, G_VARIANT_TYPE_VARDICT);
  g_variant_builder_add(&options, "{sv}", "handle_token", g_variant_new_string(token.c_str()));
  ask("BindShortcuts", g_variant_new("(oa(sa{sv})sa{sv})", session_.c_str(), &all, "", &options),
      token, &PortalHotKeys::bound);
}

void PortalHotKeys::bound(GVariant*) {
  asking_ = false;
  reason_.reset();
  bindSoon();  // others may be wanted by now
}

void PortalHotKeys::activated(GDBusConnection*, const char*, const char*, const char*, const char*,
                              GVariant* parameters, gpointer data) {
  auto& self = *static_cast<PortalHotKeys*>(data);
  if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(osta{sv})"))) return;
  const char *session = nullptr, *name = nullptr;
  g_variant_get(parameters, "(&o&sta{sv})", &session, &name, nullptr, nullptr);
  if (session != self.session_) return;
  for (const Shortcut& one : self.shortcuts_) {
    if (std::to_string(one.id.id) == name && self.handler_) self.handler_(one.id);
  }
}

void PortalHotKeys::fail(const std::string& reason) {
  asking_ = false;
  reason_ = reason;
  if (const auto unavailable = std::exchange(unavailable_, {})) unavailable(reason);
}

}  // namespace quorin
