#include "app/linux/WaylandDesktop.h"

#include <gtk/gtk.h>

#include "app/linux/UntoldWorkspace.h"
#include "app/linux/WaylandPanelWindow.h"

namespace quorin {

namespace {

struct GListFree {
  void operator()(GList* list) const { g_list_free(list); }
};

// True if a window of this program has the keyboard.
bool hasKeyboard() {
  const std::unique_ptr<GList, GListFree> windows(gtk_window_list_toplevels());
  for (const GList* one = windows.get(); one; one = one->next) {
    if (gtk_window_is_active(GTK_WINDOW(one->data))) return true;
  }
  return false;
}

}  // namespace

WaylandDesktop::WaylandDesktop(std::unique_ptr<WaylandConnection> connection,
                               std::optional<LayerShell> layer, const std::string& program,
                               std::function<bool()> calcRuns,
                               std::function<void(const std::string&)> withoutHotKeys)
    : connection_(std::move(connection)),
      list_(WaylandWindowList::open(*connection_)),
      layer_(std::move(layer)),
      hotKeys_(std::move(withoutHotKeys)) {
  if (list_) {
    auto listed = std::make_unique<ListedWorkspace>(*list_, program, hasKeyboard);
    listed_ = listed.get();
    workspace_ = std::move(listed);
  } else {
    workspace_ = std::make_unique<UntoldWorkspace>(std::move(calcRuns));
  }
}

std::unique_ptr<PanelWindow> WaylandDesktop::makePanelWindow(const PanelWindowOptions& options,
                                                             Defaults&) {
  WaylandPanelWindow::Keyboard keyboard;
  if (listed_) {
    keyboard.take = [listed = listed_] { listed->activateOwn(); };
    keyboard.giveBack = [listed = listed_] { listed->reactivate(); };
  }
  return std::make_unique<WaylandPanelWindow>(options, layer_, std::move(keyboard));
}

std::string WaylandDesktop::note() const {
  std::string text = "Wayland session: ";
  text += listed_
              ? "the compositor tells which program is in front"
              : "nobody tells which program is in front; the panel follows Calc's selection and "
                "stays when another program comes forward";
  text +=
      layer_ ? "; the panel stands at the side of the screen" : "; the compositor places the panel";
  return text;
}

}  // namespace quorin
