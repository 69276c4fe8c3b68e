// PortalHotKeys: global key combinations by the desktop portal, for sessions in which no program
// can take keys of its own accord. The desktop asks its user and may choose other keys. Nothing
// waits for it: every combination is taken, and what cannot be had is told later. Main thread only.
#pragma once

#include <functional>
#include <gio/gio.h>
#include <map>
#include <string>
#include <vector>

#include "app/linux/GLibHandles.h"
#include "app/shell/ports/HotKeyService.h"

namespace quorin {

class PortalHotKeys : public HotKeyService {
 public:
  static constexpr Status badParameter = -50;  // no such key or modifier
  static constexpr Status alreadyInstalled = -9860;

  // `unavailable` is told once, and why, where there is no portal or it binds nothing.
  explicit PortalHotKeys(std::function<void(const std::string& reason)> unavailable);
  ~PortalHotKeys() override;
  PortalHotKeys(const PortalHotKeys&) = delete;
  PortalHotKeys& operator=(const PortalHotKeys&) = delete;

  Status install(Handler handler) override;
  // Those that are added in one go are bound together.
  Status add(HotKeyID id, std::uint32_t keyCode, std::uint32_t modifiers) override;

 private:
  struct Shortcut {
    HotKeyID id;
    std::string trigger;  // as the portal writes keys: "ALT+SHIFT+a"
  };
  using Then = void (PortalHotKeys::*)(GVariant* results);

  static gboolean bindAll(gpointer self);
  static void connected(GObject*, GAsyncResult* result, gpointer self);
  static void answered(GDBusConnection*, const char*, const char* path, const char*, const char*,
                       GVariant* parameters, gpointer self);
  static void activated(GDBusConnection*, const char*, const char*, const char*, const char*,
                        GVariant* parameters, gpointer self);
  static void called(GObject* connection, GAsyncResult* result, gpointer self);

  void ask(const char* method, GVariant* parameters, const std::string& token, Then then);
  void sessionCreated(GVariant* results);
  void bound(GVariant* results);
  void fail(const std::string& reason);

  std::function<void(const std::string&)> unavailable_;
  Handler handler_;
  std::vector<Shortcut> shortcuts_;
  GSourceHandle binding_;
  GObjectPtr<GCancellable> cancelled_;
  GObjectPtr<GDBusConnection> bus_;
  std::vector<guint> subscriptions_;
  std::map<std::string, Then> expected_;  // answers, by the path of the request
  std::string session_;
};

}  // namespace quorin
