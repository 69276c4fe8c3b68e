#include "app/linux/X11Desktop.h"

#include <cstdint>
#include <utility>

#include "app/linux/GtkPanelWindow.h"

namespace quorin {

HotKeyService::Status TwoHotKeyServices::install(Handler handler) {
  portal_.install(handler);
  return x11_.install(std::move(handler));
}

HotKeyService::Status TwoHotKeyServices::add(HotKeyID id, std::uint32_t keyCode,
                                             std::uint32_t modifiers) {
  portal_.add(id, keyCode, modifiers);
  return x11_.add(id, keyCode, modifiers);
}

void TwoHotKeyServices::remove(HotKeyID id) {
  portal_.remove(id);
  x11_.remove(id);
}

X11Desktop::X11Desktop(std::optional<WaylandSession> wayland)
    : session_(gdk_display_get_default()),
      hotKeys_(gdk_display_get_default()),
      userInput_(gdk_display_get_default()) {
  if (!wayland) return;
  shared_ = std::make_unique<XWaylandWorkspace>(workspace_, std::move(wayland->calcRuns));
  twoHotKeys_ = std::make_unique<TwoHotKeyServices>(hotKeys_, std::move(wayland->withoutHotKeys));
}

HotKeyService* X11Desktop::hotKeys() {
  return twoHotKeys_ ? static_cast<HotKeyService*>(twoHotKeys_.get()) : &hotKeys_;
}

Workspace& X11Desktop::workspace() {
  return shared_ ? static_cast<Workspace&>(*shared_) : workspace_;
}

std::string X11Desktop::note() const {
  if (!shared_) return {};
  return "Wayland session: nobody tells whether a LibreOffice that does not use X11 is in front; "
         "the "
         "panel follows its selection, and stays when another program comes forward that does not "
         "use "
         "X11 either";
}

std::unique_ptr<PanelWindow> X11Desktop::makePanelWindow(const PanelWindowOptions& options,
                                                         Defaults& defaults) {
  return std::make_unique<GtkPanelWindow>(options, session_, defaults);
}

}  // namespace quorin
