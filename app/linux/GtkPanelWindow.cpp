#include "app/linux/GtkPanelWindow.h"

#include <algorithm>
#include <cmath>
#include <gdk/gdkx.h>

#include "app/linux/GtkScreens.h"
#include "app/linux/WebKitView.h"

namespace quorin {

namespace {

constexpr guint settlingMilliseconds = 1000;
constexpr guint savingMilliseconds = 200;

}  // namespace

GtkPanelWindow::GtkPanelWindow(const PanelWindowOptions& options, X11Session& session,
                               Defaults& defaults)
    : session_(session),
      defaults_(defaults),
      frameKey_("NSWindow Frame " + options.frameAutosaveName),
      minimum_(options.minimumContentSize),
      window_(GTK_WINDOW(gtk_window_new(GTK_WINDOW_TOPLEVEL))) {
  gtk_window_set_title(window_, options.title.c_str());
  gtk_window_set_type_hint(window_, GDK_WINDOW_TYPE_HINT_UTILITY);
  gtk_window_set_keep_above(window_, TRUE);
  gtk_window_stick(window_);
  gtk_window_set_skip_taskbar_hint(window_, TRUE);
  gtk_window_set_skip_pager_hint(window_, TRUE);
  GdkGeometry hints{};
  hints.min_width = static_cast<int>(minimum_.width);
  hints.min_height = static_cast<int>(minimum_.height);
  gtk_window_set_geometry_hints(
      window_, nullptr, &hints,
      static_cast<GdkWindowHints>(GDK_HINT_MIN_SIZE | GDK_HINT_USER_POS | GDK_HINT_USER_SIZE));
  g_signal_connect(window_, "delete-event", G_CALLBACK(closeRequested), this);
  g_signal_connect(window_, "map-event", G_CALLBACK(mapped), this);
  g_signal_connect(window_, "configure-event", G_CALLBACK(configured), this);
  g_signal_connect(window_, "notify::is-active", G_CALLBACK(activeChanged), this);

  target_ = options.contentFrame;
  targetIsContent_ = true;
  if (const auto text = defaults_.string(frameKey_)) {
    if (const auto saved = DesktopGeometry::savedFrame(*text)) {
      target_ = *saved;
      targetIsContent_ = false;
    }
  }
  gtk_window_set_default_size(window_, static_cast<int>(options.contentFrame.width),
                              static_cast<int>(options.contentFrame.height));
  gtk_widget_realize(GTK_WIDGET(window_));
  session_.requestDecoration(id());
}

GtkPanelWindow::~GtkPanelWindow() {
  g_signal_handlers_disconnect_by_data(window_, this);
  // The content belongs to the view that was given.
  if (GtkWidget* child = gtk_bin_get_child(GTK_BIN(window_))) {
    gtk_container_remove(GTK_CONTAINER(window_), child);
  }
  gtk_widget_destroy(GTK_WIDGET(window_));
}

void GtkPanelWindow::setContent(WebView& view) {
  GtkWidget* widget = static_cast<WebKitView&>(view).widget();
  gtk_container_add(GTK_CONTAINER(window_), widget);
  gtk_widget_show(widget);
  gtk_widget_grab_focus(widget);
}

X11Session::WindowId GtkPanelWindow::id() const {
  return X11Session::idOf(native());
}

Decoration GtkPanelWindow::decoration() const {
  return session_.decoration(id()).value_or(Decoration{});
}

ScreenFrame GtkPanelWindow::actualFrame() const {
  GdkRectangle extents;
  gdk_window_get_frame_extents(native(), &extents);
  return DesktopGeometry::toPoints(GtkScreens::rectOf(extents), GtkScreens::firstHeight());
}

bool GtkPanelWindow::isMapped() const {
  return gtk_widget_get_mapped(GTK_WIDGET(window_));
}

ScreenFrame GtkPanelWindow::frame() const {
  return isMapped() && !settling_ ? actualFrame() : wantedFrame();
}

ScreenFrame GtkPanelWindow::wantedFrame() const {
  ScreenFrame frame = target_;
  if (targetIsContent_) {
    const Decoration around = decoration();
    frame.width += around.left + around.right;
    frame.height += around.top + around.bottom;
  }
  return DesktopGeometry::constrained(frame, screens());
}

void GtkPanelWindow::setFrame(const ScreenFrame& frame) {
  target_ = frame;
  targetIsContent_ = false;
  apply();
}

void GtkPanelWindow::setWidening(double width, double shift) {
  widening_ = width;
  shift_ = shift;
}

// Asks for the target frame. While the window is hidden GTK forgets where it was told to move, so
// the native window is moved then.
void GtkPanelWindow::apply() {
  settle();
  const DesktopRect frame = DesktopGeometry::toDesktop(wantedFrame(), GtkScreens::firstHeight());
  const Decoration around = decoration();
  const int width = std::max(frame.width - around.left - around.right, 1);
  const int height = std::max(frame.height - around.top - around.bottom, 1);
  gtk_window_resize(window_, width, height);
  if (isMapped()) {
    gtk_window_move(window_, frame.x, frame.y);
  } else {
    gdk_window_move_resize(native(), frame.x, frame.y, width, height);
  }
}

void GtkPanelWindow::settle() {
  settling_.reset(g_timeout_add(settlingMilliseconds, settled, this));
}

void GtkPanelWindow::endSettling() {
  settling_.reset();
  if (isMapped()) rest_ = actualFrame();
}

gboolean GtkPanelWindow::settled(gpointer data) {
  auto& self = *static_cast<GtkPanelWindow*>(data);
  self.settling_.forget();
  self.endSettling();
  return G_SOURCE_REMOVE;
}

bool GtkPanelWindow::isVisible() const {
  return gtk_widget_get_visible(GTK_WIDGET(window_));
}

// While a global key is held down GTK takes the keyboard for lost; the window manager does not.
bool GtkPanelWindow::isKey() const {
  if (resigned_ || !isVisible()) return false;
  return gtk_window_is_active(window_) || session_.activeWindow() == id();
}

void GtkPanelWindow::stayAboveFullScreen() {
  const X11Session::WindowId active = session_.activeWindow();
  const std::optional<X11Session::Window> window = session_.window(active);
  if (active == id()) return;
  session_.setTransientFor(id(), window && window->isFullScreen ? active : 0);
}

void GtkPanelWindow::orderFront() {
  stayAboveFullScreen();
  if (isVisible()) {
    gdk_window_raise(native());
    return;
  }
  gtk_window_set_focus_on_map(window_, FALSE);
  gdk_x11_window_set_user_time(native(), 0);
  apply();
  gtk_widget_show(GTK_WIDGET(window_));
}

void GtkPanelWindow::makeKeyAndOrderFront() {
  stayAboveFullScreen();
  resigned_ = false;
  if (!isVisible()) {
    keyWanted_ = true;
    gtk_window_set_focus_on_map(window_, TRUE);
    apply();
  }
  gtk_window_present_with_time(window_, gdk_x11_get_server_time(native()));
  if (!keyWanted_) session_.requestActivation(id());
}

// Only another window can take the keyboard: the one that was already asked to, or else the
// topmost one.
void GtkPanelWindow::resignKey() {
  resigned_ = true;
  const X11Session::WindowId requested = session_.requestedActivation();
  if (requested != 0 && requested != id()) return;
  for (const X11Session::WindowId other : session_.windowsFromTop()) {
    if (other == id()) continue;
    session_.requestActivation(other);
    return;
  }
}

void GtkPanelWindow::orderOut() {
  if (!isVisible()) return;
  saving_.reset();
  if (isMapped() && !settling_) {
    saveUsersFrame();
    target_ = actualFrame();
    targetIsContent_ = false;
  }
  keyWanted_ = false;
  gtk_widget_hide(GTK_WIDGET(window_));
}

std::vector<Screen> GtkPanelWindow::screens() const {
  return GtkScreens::all();
}

std::optional<Screen> GtkPanelWindow::screen() const {
  return DesktopGeometry::screenOf(frame(), screens());
}

std::optional<Screen> GtkPanelWindow::mainScreen() const {
  const std::vector<Screen> all = screens();
  return all.empty() ? std::nullopt : std::optional(all.front());
}

gboolean GtkPanelWindow::closeRequested(GtkWidget*, GdkEvent*, gpointer data) {
  auto& self = *static_cast<GtkPanelWindow*>(data);
  if (self.delegate_) self.delegate_->panelWindowCloseRequested();
  return TRUE;
}

// Only now are the decoration and where the window manager put the window for certain.
gboolean GtkPanelWindow::mapped(GtkWidget*, GdkEvent*, gpointer data) {
  auto& self = *static_cast<GtkPanelWindow*>(data);
  self.apply();
  if (self.actualFrame() == self.wantedFrame()) self.endSettling();
  if (self.keyWanted_) {
    self.keyWanted_ = false;
    self.session_.requestActivation(self.id());
  }
  return FALSE;
}

gboolean GtkPanelWindow::configured(GtkWidget*, GdkEvent*, gpointer data) {
  auto& self = *static_cast<GtkPanelWindow*>(data);
  if (!self.isMapped()) return FALSE;  // a hidden window is moved without its decoration
  if (!self.settling_) {
    self.saving_.reset(g_timeout_add(savingMilliseconds, save, data));
  } else if (self.actualFrame() == self.wantedFrame()) {
    self.endSettling();
  }
  return FALSE;
}

gboolean GtkPanelWindow::save(gpointer data) {
  auto& self = *static_cast<GtkPanelWindow*>(data);
  self.saving_.forget();
  if (!self.settling_) self.saveUsersFrame();
  return G_SOURCE_REMOVE;
}

void GtkPanelWindow::saveUsersFrame() {
  const ScreenFrame frame = actualFrame();
  if (frame == rest_) return;
  rest_ = frame;
  if (frame == wantedFrame()) return;  // a late answer to what we asked for
  target_ = frame;
  targetIsContent_ = false;
  const ScreenFrame narrow{frame.x + shift_, frame.y, frame.width - widening_, frame.height};
  const Screen on = screen().value_or(Screen{});
  defaults_.setString(frameKey_, DesktopGeometry::savedFrameText(narrow, on.frame));
}

void GtkPanelWindow::activeChanged(GObject*, GParamSpec*, gpointer data) {
  auto& self = *static_cast<GtkPanelWindow*>(data);
  self.resigned_ = false;
}

}  // namespace quorin
