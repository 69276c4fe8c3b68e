#include "app/linux/WaylandPanelWindow.h"

#include <algorithm>
#include <cmath>

#include "app/linux/GtkScreens.h"
#include "app/linux/WebKitView.h"

namespace quorin {

namespace {

constexpr guint settlingMilliseconds = 1000;

}  // namespace

WaylandPanelWindow::WaylandPanelWindow(const PanelWindowOptions& options,
                                       std::optional<LayerShell> layer, Keyboard keyboard)
    : minimum_(options.minimumContentSize),
      layer_(std::move(layer)),
      keyboard_(std::move(keyboard)),
      window_(GTK_WINDOW(gtk_window_new(GTK_WINDOW_TOPLEVEL))),
      box_(GTK_BOX(gtk_box_new(GTK_ORIENTATION_VERTICAL, 0))),
      width_(static_cast<int>(options.contentFrame.width)),
      height_(static_cast<int>(options.contentFrame.height)) {
  gtk_window_set_title(window_, options.title.c_str());
  gtk_container_add(GTK_CONTAINER(window_), GTK_WIDGET(box_));
  gtk_widget_show(GTK_WIDGET(box_));
  if (layer_) {
    layer_->standAtTheSide(window_);
    addTitleBar();
    gtk_widget_set_size_request(GTK_WIDGET(window_), width_, -1);
  } else {
    gtk_widget_set_size_request(GTK_WIDGET(window_), static_cast<int>(minimum_.width),
                                static_cast<int>(minimum_.height));
    gtk_window_set_default_size(window_, width_, height_);
  }
  gtk_widget_add_events(GTK_WIDGET(window_), GDK_LEAVE_NOTIFY_MASK);
  g_signal_connect(window_, "leave-notify-event", G_CALLBACK(pointerLeft), this);
  g_signal_connect(window_, "delete-event", G_CALLBACK(closeRequested), this);
  g_signal_connect(window_, "notify::is-active", G_CALLBACK(activeChanged), this);
}

WaylandPanelWindow::~WaylandPanelWindow() {
  g_signal_handlers_disconnect_by_data(window_, this);
  if (content_) g_signal_handlers_disconnect_by_data(content_, this);
  if (content_) gtk_container_remove(GTK_CONTAINER(box_), content_);
  gtk_widget_destroy(GTK_WIDGET(window_));
}

// Nobody else draws one around a window at the edge of the screen.
void WaylandPanelWindow::addTitleBar() {
  GtkWidget* const bar = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
  GtkWidget* const title = gtk_label_new(gtk_window_get_title(window_));
  GtkWidget* const close =
      gtk_button_new_from_icon_name("window-close-symbolic", GTK_ICON_SIZE_MENU);
  gtk_button_set_relief(GTK_BUTTON(close), GTK_RELIEF_NONE);
  gtk_widget_set_tooltip_text(close, "Close");
  gtk_widget_set_can_focus(close, FALSE);
  g_signal_connect(close, "clicked", G_CALLBACK(closeClicked), this);
  gtk_box_set_center_widget(GTK_BOX(bar), title);
  gtk_box_pack_end(GTK_BOX(bar), close, FALSE, FALSE, 0);
  gtk_box_pack_start(box_, bar, FALSE, FALSE, 0);
  gtk_widget_show_all(bar);
}

void WaylandPanelWindow::setContent(WebView& view) {
  content_ = static_cast<WebKitView&>(view).widget();
  gtk_box_pack_start(box_, content_, TRUE, TRUE, 0);
  gtk_widget_show(content_);
  gtk_widget_grab_focus(content_);
  g_signal_connect(content_, "button-press-event", G_CALLBACK(pressed), this);
}

ScreenFrame WaylandPanelWindow::frame() const {
  const double width = width_;
  if (!layer_) return {0, 0, width, static_cast<double>(height_)};
  const ScreenFrame free = mainScreen().value_or(Screen{}).visibleFrame;
  return {free.maxX() - width, free.y, width, free.height};
}

void WaylandPanelWindow::setFrame(const ScreenFrame& frame) {
  width_ = static_cast<int>(std::lround(std::max(frame.width, minimum_.width)));
  if (layer_) {
    gtk_widget_set_size_request(GTK_WIDGET(window_), width_, -1);
    gtk_window_resize(window_, width_, 1);
    return;
  }
  height_ = static_cast<int>(std::lround(std::max(frame.height, minimum_.height)));
  gtk_window_resize(window_, width_, height_);
}

bool WaylandPanelWindow::isVisible() const {
  return gtk_widget_get_visible(GTK_WIDGET(window_));
}

bool WaylandPanelWindow::isKey() const {
  return isVisible() && !resigned_ && gtk_window_is_active(window_);
}

void WaylandPanelWindow::setKeyboardMode(LayerShell::Keyboard mode) {
  if (layer_) layer_->setKeyboard(window_, mode);
}

void WaylandPanelWindow::orderFront() {
  if (isVisible()) return;
  unasked_.reset(g_timeout_add(settlingMilliseconds, settled, this));
  setKeyboardMode(LayerShell::Keyboard::none);
  gtk_window_set_focus_on_map(window_, FALSE);
  gtk_widget_show(GTK_WIDGET(window_));
}

void WaylandPanelWindow::makeKeyAndOrderFront() {
  unasked_.reset();
  resigned_ = false;
  setKeyboardMode(LayerShell::Keyboard::exclusive);
  gtk_window_set_focus_on_map(window_, TRUE);
  const bool shown = isVisible();
  gtk_window_present(window_);
  if (!shown || layer_) return;
  if (keyboard_.take) keyboard_.take();
}

void WaylandPanelWindow::resignKey() {
  resigned_ = true;
  unasked_.reset();
  setKeyboardMode(LayerShell::Keyboard::none);
  if (keyboard_.giveBack) keyboard_.giveBack();
}

void WaylandPanelWindow::orderOut() {
  unasked_.reset();
  resigned_ = false;
  gtk_widget_hide(GTK_WIDGET(window_));
}

std::vector<Screen> WaylandPanelWindow::screens() const {
  return GtkScreens::all();
}

std::optional<Screen> WaylandPanelWindow::mainScreen() const {
  const std::vector<Screen> all = screens();
  return all.empty() ? std::nullopt : std::optional(all.front());
}

gboolean WaylandPanelWindow::closeRequested(GtkWidget*, GdkEvent*, gpointer data) {
  auto& self = *static_cast<WaylandPanelWindow*>(data);
  if (self.delegate_) self.delegate_->panelWindowCloseRequested();
  return TRUE;
}

void WaylandPanelWindow::closeClicked(GtkButton*, gpointer data) {
  closeRequested(nullptr, nullptr, data);
}

gboolean WaylandPanelWindow::settled(gpointer data) {
  static_cast<WaylandPanelWindow*>(data)->unasked_.forget();
  return G_SOURCE_REMOVE;
}

// What stands at the side has the keyboard only while it insists on it.
gboolean WaylandPanelWindow::pressed(GtkWidget*, GdkEvent*, gpointer data) {
  auto& self = *static_cast<WaylandPanelWindow*>(data);
  if (!self.layer_ || self.isKey()) return FALSE;
  self.clicked_ = true;
  self.resigned_ = false;
  self.setKeyboardMode(LayerShell::Keyboard::exclusive);
  return FALSE;
}

void WaylandPanelWindow::activeChanged(GObject*, GParamSpec*, gpointer data) {
  auto& self = *static_cast<WaylandPanelWindow*>(data);
  self.resigned_ = false;
  if (!gtk_window_is_active(self.window_)) {
    self.clicked_ = false;
    self.setKeyboardMode(LayerShell::Keyboard::none);
  } else if (!self.layer_) {
    // Compositors give the keyboard to an ordinary window that is new, asked or not.
    if (self.unasked_ && self.keyboard_.giveBack) self.keyboard_.giveBack();
    self.unasked_.reset();
  }
}

// A click on another window would not take the keyboard from it.
gboolean WaylandPanelWindow::pointerLeft(GtkWidget*, GdkEventCrossing* event, gpointer data) {
  auto& self = *static_cast<WaylandPanelWindow*>(data);
  if (!self.layer_ || !self.clicked_) return FALSE;
  if (event->detail != GDK_NOTIFY_INFERIOR) self.resignKey();
  return FALSE;
}

}  // namespace quorin
