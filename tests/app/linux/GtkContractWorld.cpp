// The hands and the main loop of the contract suites on a display of the test's own.
#include <cmath>
#include <stdexcept>
#include <thread>

#include "kit/platform/XDGFolders.h"
#include "tests/app/contract/ContractWorld.h"
#include "tests/app/linux/GtkFixture.h"

namespace quorin::contract {
namespace {

using ui::ChildProcess;

struct Press {
  std::string title;
  guint attempts = 0;
  GtkWidget* pressed = nullptr;  // only compared: it may be gone
};

void findButton(GtkWidget* widget, gpointer data) {
  auto& found = *static_cast<std::pair<std::string, GtkWidget*>*>(data);
  if (GTK_IS_BUTTON(widget)) {
    const char* label = gtk_button_get_label(GTK_BUTTON(widget));
    if (label && found.first == label) found.second = widget;
  } else if (GTK_IS_CONTAINER(widget)) {
    gtk_container_forall(GTK_CONTAINER(widget), findButton, data);
  }
}

gboolean pressNow(gpointer data) {
  auto& press = *static_cast<Press*>(data);
  GList* windows = gtk_window_list_toplevels();
  std::pair<std::string, GtkWidget*> found{press.title, nullptr};
  for (const GList* each = windows; each; each = each->next) {
    if (GTK_IS_DIALOG(each->data) && gtk_widget_get_visible(GTK_WIDGET(each->data)))
      findButton(GTK_WIDGET(each->data), &found);
  }
  g_list_free(windows);
  if (press.pressed && found.second != press.pressed) return G_SOURCE_REMOVE;
  if (found.second) gtk_button_clicked(GTK_BUTTON(found.second));
  // A file chooser that is still reading its folder lets a press go by.
  press.pressed = found.second;
  return ++press.attempts < 500 ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
}

std::string keysOf(std::uint32_t keyCode, std::uint32_t modifiers) {
  std::string keys;
  if (modifiers & 256) keys += "super+";
  if (modifiers & 4096) keys += "ctrl+";
  if (modifiers & 2048) keys += "alt+";
  if (modifiers & 512) keys += "shift+";
  switch (keyCode) {
    case 38:
      return keys + "j";
    case 40:
      return keys + "k";
    default:
      throw std::logic_error("no key for this code");
  }
}

}  // namespace

AppPlatform& platform() {
  return *GtkFixture::platform;
}

Folders& folders() {
  static XDGFolders all(processEnvironment());
  return all;
}

void turn() {
  const GSourceHandle wakeUp(g_timeout_add(
      5, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr));
  g_main_context_iteration(nullptr, TRUE);
}

void stall(std::chrono::milliseconds time) {
  std::this_thread::sleep_for(time);
}

void pressHotKey(HotKeyID, std::uint32_t keyCode, std::uint32_t modifiers) {
  ChildProcess::run({"xdotool", "key", keysOf(keyCode, modifiers)});
}

void pressAlertButtonSoon(const std::string& title) {
  g_timeout_add_full(G_PRIORITY_DEFAULT, 20, pressNow, new Press{title},
                     [](gpointer data) { delete static_cast<Press*>(data); });
}

// The button at the right end of the title bar.
void pressCloseButton(PanelWindow& window) {
  const ScreenFrame frame = window.frame();
  const double screenHeight = window.screens().front().frame.height;
  ChildProcess::run({"xdotool", "mousemove", std::to_string(std::lround(frame.maxX() - 11)),
                     std::to_string(std::lround(screenHeight - frame.maxY() + 11)), "click", "1"});
}

void forgetDefault(const std::string& key) {
  platform().defaults().setString(key, "");
}

}  // namespace quorin::contract
