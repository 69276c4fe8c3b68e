// PortalHotKeys: global key combinations by the desktop portal, for sessions in which no program
// can take keys of its own accord. The desktop asks its user and may choose other keys. Nothing
// waits for it: every combination is taken, and what cannot be had is told later. Main thread only.
#pragma once

#include <functional>
#include <gio/gio.h>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "app/linux/GLibHandles.h"
#include "app/shell/ports/HotKeyService.h"

namespace quorin {

class PortalHotKeys : public HotKeyService {
 public:
  static constexpr Status alreadyInstalled = -9860;

  // `unavailable` is told once, and why, where there is no portal or it binds nothing.
  explicit PortalHotKeys(std::function<void(const std::string& reason)> unavailable);
  ~PortalHotKeys() override;
  PortalHotKeys(const PortalHotKeys&) = delete;
  PortalHotKeys& operator=(const PortalHotKeys&) = delete;

  Status install(Handler handler) override;
  // Those that are added in one go are bound together. A portal binds once a session: when others
  // are wanted later a new session takes the place of the one before. Those that are away for a
  // while, all of them, stay bound and are told to nobody.
  Status add(HotKeyID id, std::uint32_t keyCode, std::uint32_t modifiers) override;
  void remove(HotKeyID id) override;
  std::optional<std::string> unavailable() const override { return reason_; }

 private:
  struct Shortcut {
    HotKeyID id;
    std::string trigger;  // as the portal writes keys: "ALT+SHIFT+a"
    bool operator==(const Shortcut&) const = default;
  };
  using Then = void (PortalHotKeys::*)(GVariant* results);

  static gboolean bindAll(gpointer self);
  static void connected(GObject*, GAsyncResult* result, gpointer self);
  static void answered(GDBusConnection*, const char*, const char* path, const char*, const char*,
                       GVariant* parameters, gpointer self);
  static void activated(GDBusConnection*, const char*, const char*, const char*, const char*,
                        GVariant* parameters, gpointer self);
  static void called(GObject* connection, GAsyncResult* result, gpointer self);

  void bindSoon();
  void createSession();
  void ask(const char* method, GVariant* parameters, const std::string& token, Then then);
  void sessionCreated(GVariant* results);
  void bound(GVariant* results);
  void fail(const std::string& reason);

  std::function<void(const std::string&)> unavailable_;
  Handler handler_;
  std::vector<Shortcut> shortcuts_;
  std::vector<Shortcut> asked_;  // those of the newest session
  bool asking_ = false;          // until the portal has bound them, or has not
  std::optional<std::string> reason_;
  GSourceHandle binding_;
  GObjectPtr<GCancellable> cancelled_;
  GObjectPtr<GDBusConnection> bus_;
  std::vector<guint> subscriptions_;
  std::map<std::string, Then> expected_;  // answers, by the path of the request
  std::string session_;
  int sessions_ = 0;  // so far
};

}  // namespace quorin
