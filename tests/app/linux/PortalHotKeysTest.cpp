#include <algorithm>
#include <gmock/gmock.h>

#include "app/linux/PortalHotKeys.h"
#include "tests/app/linux/GtkFixture.h"

namespace quorin {
namespace {

using testing::ElementsAre;

constexpr const char* portalInterfaces = R"xml(<node>
<interface name="org.freedesktop.portal.GlobalShortcuts">
<method name="CreateSession"><arg type="a{sv}" direction="in"/>
<arg type="o" direction="out"/></method>
<method name="BindShortcuts"><arg type="o" direction="in"/><arg type="a(sa{sv})" direction="in"/>
<arg type="s" direction="in"/><arg type="a{sv}" direction="in"/>
<arg type="o" direction="out"/></method></interface>
<interface name="org.freedesktop.portal.Session"><method name="Close"/></interface></node>)xml";

// A portal on a connection of its own, which binds what it is asked to, or refuses.
class FakePortal {
 public:
  explicit FakePortal(guint32 response = 0) : response_(response) {
    connection_.reset(g_dbus_connection_new_for_address_sync(
        g_getenv("DBUS_SESSION_BUS_ADDRESS"),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr));
    node_ = g_dbus_node_info_new_for_xml(portalInterfaces, nullptr);
    static const GDBusInterfaceVTable table{called, nullptr, nullptr, {}};
    g_dbus_connection_register_object(connection_.get(), "/org/freedesktop/portal/desktop",
                                      node_->interfaces[0], &table, this, nullptr, nullptr);
    static const GDBusInterfaceVTable sessions{closing, nullptr, nullptr, {}};
    for (const char* session : {"/session/1", "/session/2"}) {
      g_dbus_connection_register_object(connection_.get(), session, node_->interfaces[1], &sessions,
                                        this, nullptr, nullptr);
    }
    owned_ = g_bus_own_name_on_connection(
        connection_.get(), "org.freedesktop.portal.Desktop", G_BUS_NAME_OWNER_FLAGS_NONE,
        [](GDBusConnection*, const char*, gpointer self) {
          static_cast<FakePortal*>(self)->there = true;
        },
        nullptr, this, nullptr);
  }
  ~FakePortal() {
    g_bus_unown_name(owned_);
    g_dbus_connection_close_sync(connection_.get(), nullptr, nullptr);
    g_dbus_node_info_unref(node_);
  }
  FakePortal(const FakePortal&) = delete;
  FakePortal& operator=(const FakePortal&) = delete;

  void press(const char* id, const char* session = "/session/1") {
    GVariantBuilder options;
    g_variant_builder_init(&options, G_VARIANT_TYPE_VARDICT);
    emit("/org/freedesktop/portal/desktop", "org.freedesktop.portal.GlobalShortcuts", "Activated",
         g_variant_new("(osta{sv})", session, id, guint64{1}, &options));
  }

  bool there = false;
  std::vector<std::string> bound;   // number, preferred keys
  std::vector<std::string> closed;  // sessions

 private:
  void emit(const char* path, const char* interface, const char* name, GVariant* parameters) {
    g_dbus_connection_emit_signal(connection_.get(), nullptr, path, interface, name, parameters,
                                  nullptr);
  }

  static void closing(GDBusConnection*, const char*, const char* path, const char*, const char*,
                      GVariant*, GDBusMethodInvocation* call, gpointer self) {
    static_cast<FakePortal*>(self)->closed.emplace_back(path);
    g_dbus_method_invocation_return_value(call, nullptr);
  }

  static void called(GDBusConnection*, const char* sender, const char*, const char*,
                     const char* method, GVariant* parameters, GDBusMethodInvocation* call,
                     gpointer data) {
    auto& self = *static_cast<FakePortal*>(data);
    const bool creates = std::string(method) == "CreateSession";
    GVariant* const options = g_variant_get_child_value(parameters, creates ? 0 : 3);
    const char* token = "";
    g_variant_lookup(options, "handle_token", "&s", &token);
    std::string name = sender + 1;
    std::replace(name.begin(), name.end(), '.', '_');
    const std::string request = "/org/freedesktop/portal/desktop/request/" + name + "/" + token;
    g_variant_unref(options);
    if (!creates) self.note(parameters);
    g_dbus_method_invocation_return_value(call, g_variant_new("(o)", request.c_str()));
    GVariantBuilder results;
    g_variant_builder_init(&results, G_VARIANT_TYPE_VARDICT);
    if (creates) {
      const std::string session = "/session/" + std::to_string(++self.sessions_);
      g_variant_builder_add(&results, "{sv}", "session_handle",
                            g_variant_new_string(session.c_str()));
    }
    self.emit(request.c_str(), "org.freedesktop.portal.Request", "Response",
              g_variant_new("(ua{sv})", creates ? 0U : self.response_, &results));
  }

  void note(GVariant* parameters) {
    GVariant* const all = g_variant_get_child_value(parameters, 1);
    for (gsize i = 0; i < g_variant_n_children(all); ++i) {
      GVariant* const one = g_variant_get_child_value(all, i);
      const char *id = "", *keys = "";
      GVariant* told = nullptr;
      g_variant_get(one, "(&s@a{sv})", &id, &told);
      g_variant_lookup(told, "preferred_trigger", "&s", &keys);
      bound.push_back(std::string(id) + " " + keys);
      g_variant_unref(told);
      g_variant_unref(one);
    }
    g_variant_unref(all);
  }

  const guint32 response_;
  int sessions_ = 0;
  GObjectPtr<GDBusConnection> connection_;
  GDBusNodeInfo* node_ = nullptr;
  guint owned_ = 0;
};

class PortalHotKeysTest : public GtkFixture {
 protected:
  PortalHotKeysTest() {
    keys.install([this](HotKeyID id) {
      pressed.push_back(id.id);
      return HotKeyService::noError;
    });
  }
  void add() {
    EXPECT_EQ(keys.add({1, 1}, 0, 2048 + 512), HotKeyService::noError);     // A
    EXPECT_EQ(keys.add({1, 2}, 123, 4096 + 2048), HotKeyService::noError);  // left
  }

  std::vector<std::string> reasons;
  std::vector<std::uint32_t> pressed;
  PortalHotKeys keys{[this](const std::string& reason) { reasons.push_back(reason); }};
};

TEST_F(PortalHotKeysTest, AsksForTheKeysTogetherAndHearsOfThem) {
  FakePortal portal;
  ASSERT_TRUE(waitUntil([&] { return portal.there; }));
  add();
  ASSERT_TRUE(waitUntil([&] { return portal.bound.size() == 2; }));
  EXPECT_THAT(portal.bound, ElementsAre("1 ALT+SHIFT+a", "2 CTRL+ALT+Left"));
  portal.press("2", "/session/of/another");
  portal.press("77");
  portal.press("1");
  portal.press("2");
  ASSERT_TRUE(waitUntil([&] { return pressed.size() == 2; }));
  EXPECT_THAT(pressed, ElementsAre(1U, 2U));
  EXPECT_THAT(reasons, testing::IsEmpty());
}

TEST_F(PortalHotKeysTest, BindsOthersInASessionOfTheirOwn) {
  FakePortal portal;
  ASSERT_TRUE(waitUntil([&] { return portal.there; }));
  add();
  ASSERT_TRUE(waitUntil([&] { return portal.bound.size() == 2; }));
  keys.remove({1, 1});
  EXPECT_EQ(keys.add({1, 1}, 2, 2048 + 512), HotKeyService::noError);  // D
  ASSERT_TRUE(waitUntil([&] { return portal.bound.size() == 4; }));
  EXPECT_THAT(portal.bound,
              ElementsAre("1 ALT+SHIFT+a", "2 CTRL+ALT+Left", "2 CTRL+ALT+Left", "1 ALT+SHIFT+d"));
  EXPECT_THAT(portal.closed, ElementsAre("/session/1"));
  portal.press("1", "/session/1");
  portal.press("1", "/session/2");
  ASSERT_TRUE(waitUntil([&] { return !pressed.empty(); }));
  EXPECT_THAT(pressed, ElementsAre(1U));
}

// The desktop asks its user about keys: not for a while in which none is to come.
TEST_F(PortalHotKeysTest, StaysBoundWhileAllAreAway) {
  FakePortal portal;
  ASSERT_TRUE(waitUntil([&] { return portal.there; }));
  add();
  ASSERT_TRUE(waitUntil([&] { return portal.bound.size() == 2; }));
  keys.remove({1, 1});
  keys.remove({1, 2});
  portal.press("1");
  runFor(std::chrono::milliseconds(200));
  EXPECT_THAT(pressed, testing::IsEmpty());
  add();
  portal.press("2");
  ASSERT_TRUE(waitUntil([&] { return !pressed.empty(); }));
  EXPECT_EQ(portal.bound.size(), 2U);
  EXPECT_THAT(portal.closed, testing::IsEmpty());
}

TEST_F(PortalHotKeysTest, SaysOnceThatThereIsNoPortal) {
  EXPECT_EQ(keys.unavailable(), std::nullopt);
  add();
  ASSERT_TRUE(waitUntil([&] { return !reasons.empty(); }));
  EXPECT_EQ(keys.unavailable(), "this desktop has no portal for them");
  EXPECT_THAT(reasons, ElementsAre("this desktop has no portal for them"));
}

TEST_F(PortalHotKeysTest, SaysThatTheDesktopRefuses) {
  FakePortal portal(1);
  ASSERT_TRUE(waitUntil([&] { return portal.there; }));
  add();
  ASSERT_TRUE(waitUntil([&] { return !reasons.empty(); }));
  EXPECT_THAT(reasons, ElementsAre("the desktop has refused them"));
}

TEST_F(PortalHotKeysTest, TakesNoKeyThatThereIsNot) {
  EXPECT_EQ(keys.add({1, 1}, 127, 2048), PortalHotKeys::badParameter);
  EXPECT_EQ(keys.add({1, 1}, 0, 1), PortalHotKeys::badParameter);
}

}  // namespace
}  // namespace quorin
