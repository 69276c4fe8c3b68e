#include <ostream>

#include "app/linux/GtkStatusItem.h"
#include "tests/app/linux/GtkFixture.h"
#include "tests/app/linux/OtherClient.h"

namespace quorin {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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

bool operator==(const Shown& one, const MenuItem& item) {
  return one.label == item.title && one.enabled == item.enabled &&
         one.checkable == item.checkable && one.checked == item.checked;
}

std::ostream& operator<<(std::ostream& out, const Shown& one) {
  return out << one.label << (one.enabled ? "" : " disabled") << (one.checked ? " checked" : "");
}

Shown shownOf(GVariant* node) {
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

class User : public StatusItemDelegate {
 public:
  void menuWillOpen() override {
    ++opened;
    if (onOpening) onOpening();
  }
  void menuItemChosen(std::size_t index) override { chosen.push_back(index); }

  int opened = 0;
  std::function<void()> onOpening;
  std::vector<std::size_t> chosen;
};

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

  // Opens the menu; whether its user was told of that before the answer came.
  bool opens(const User& user) {
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
    const int before = user.opened;
    open();
    return user.opened > before;
  }

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

class GtkStatusItemTest : public GtkFixture {
 protected:
  GtkStatusItemTest() { item_.setDelegate(&user_); }

  // The menu over the bus once it has so many items.
  std::vector<Shown> layoutOf(std::size_t count) {
    std::vector<Shown> found;
    waitUntil([&] { return (found = bar_.layout()).size() == count; });
    return found;
  }

  Bar bar_{false};
  User user_;
  GtkStatusItem item_{"quorin-symbolic", "/some/folder"};
};

}  // namespace

TEST_F(GtkStatusItemTest, ShowsItsMenuOverTheBus) {
  const std::vector<MenuItem> items{
      {"Open"}, {"Off", false}, {""}, {"Mark", true, true, true}, {"No mark", true, false, true}};
  item_.setMenu(items);
  const std::vector<Shown> shown = layoutOf(5);
  ASSERT_EQ(shown.size(), items.size());
  for (std::size_t i = 0; i < items.size(); ++i) EXPECT_EQ(shown[i], items[i]) << i;
}

TEST_F(GtkStatusItemTest, ShowsAnotherMenuInItsPlace) {
  item_.setMenu({{"One"}, {"Two"}});
  layoutOf(2);
  item_.setMenu({{"Three"}});
  const std::vector<Shown> shown = layoutOf(1);
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_EQ(shown[0].label, "Three");
  bar_.click(shown[0].id);
  EXPECT_TRUE(waitUntil([&] { return !user_.chosen.empty(); }));
  EXPECT_TRUE(bar_.opens(user_));
}

TEST_F(GtkStatusItemTest, ChangesAnItemInItsPlace) {
  item_.setMenu({{"Pause"}, {"Start", true, false, true}});
  const std::vector<Shown> before = layoutOf(2);
  const MenuItem resumed{"Resume"};
  const MenuItem started{"Start (not here)", false, true, true};
  item_.setItem(0, resumed);
  item_.setItem(1, started);
  item_.setItem(2, {"there is none"});
  const std::vector<Shown> after = layoutOf(2);
  ASSERT_EQ(after.size(), 2U);
  EXPECT_EQ(after[0], resumed);
  EXPECT_EQ(after[1], started);
  EXPECT_EQ(after[0].id, before[0].id);
  EXPECT_THAT(user_.chosen, IsEmpty()) << "to mark an item is not to choose it";
}

TEST_F(GtkStatusItemTest, TellsWhichItemWasChosen) {
  item_.setMenu({{"One"}, {""}, {"Three"}});
  const std::vector<Shown> shown = layoutOf(3);
  ASSERT_EQ(shown.size(), 3U);
  bar_.click(shown[2].id);
  bar_.click(shown[0].id);
  ASSERT_TRUE(waitUntil([&] { return user_.chosen.size() == 2; }));
  EXPECT_THAT(user_.chosen, ElementsAre(2, 0));
  item_.setDelegate(nullptr);
  bar_.click(shown[0].id);
  bar_.open();
  EXPECT_EQ(user_.chosen.size(), 2U);
}

TEST_F(GtkStatusItemTest, LeavesTheMarkToItsOwner) {
  item_.setMenu({{"Start", true, false, true}});
  const std::vector<Shown> shown = layoutOf(1);
  ASSERT_EQ(shown.size(), 1U);
  bar_.click(shown[0].id);
  ASSERT_TRUE(waitUntil([&] { return !user_.chosen.empty(); }));
  EXPECT_FALSE(bar_.layout().at(0).checked);
  EXPECT_THAT(user_.chosen, ElementsAre(0));
}

TEST_F(GtkStatusItemTest, LetsItsOwnerChangeTheMenuWhenItOpens) {
  item_.setMenu({{"Start", true, false, true}});
  layoutOf(1);
  user_.onOpening = [&] { item_.setItem(0, {"Start", true, true, true}); };
  EXPECT_TRUE(bar_.opens(user_));
  EXPECT_TRUE(bar_.layout().at(0).checked);
  const int opened = user_.opened;
  gtk_menu_popup_at_rect(item_.menu(), gdk_screen_get_root_window(gdk_screen_get_default()),
                         std::make_unique<GdkRectangle>().get(), GDK_GRAVITY_NORTH_WEST,
                         GDK_GRAVITY_NORTH_WEST, nullptr);
  EXPECT_GT(user_.opened, opened) << "the tray's menu";
  gtk_menu_popdown(item_.menu());
}

TEST_F(GtkStatusItemTest, RegistersWithTheBarAndSaysWhatItIs) {
  Bar desktop(true);
  ASSERT_TRUE(waitUntil([&] { return !desktop.registered().empty(); }));
  EXPECT_THAT(desktop.registered(), testing::Contains(Bar::item));
  EXPECT_EQ(bar_.property("Id"), "quorin");
  EXPECT_EQ(bar_.property("Title"), "Quorin");
  EXPECT_EQ(bar_.property("Status"), "Active");
  EXPECT_EQ(bar_.property("IconName"), "quorin-symbolic");
  EXPECT_EQ(bar_.property("IconThemePath"), "/some/folder");
}

TEST_F(GtkStatusItemTest, StandsInTheTrayWhereNoBarTakesIt) {
  Tray tray;
  EXPECT_TRUE(waitUntil([&] { return !tray.icons().empty(); }));
}

TEST_F(GtkFixture, TakesTheMenuOfAStatusItemFromTheBus) {
  Bar bar(false);
  {
    GtkStatusItem item("quorin-symbolic", {});
    item.setMenu({{"One"}});
    EXPECT_TRUE(waitUntil([&] { return bar.layout().size() == 1; }));
  }
  EXPECT_THAT(bar.layout(), IsEmpty());
}

}  // namespace quorin
