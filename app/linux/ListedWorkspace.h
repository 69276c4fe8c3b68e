// ListedWorkspace: the workspace port over a compositor's list of windows. LibreOffice Calc goes by
// Excel's identifier; other applications go by their application id. Process ids are not told.
//
// Windows of our own never come to the front: while one has the keyboard, the application that had
// it before counts as the one in front.
#pragma once

#include <optional>

#include "app/linux/GLibHandles.h"
#include "app/linux/GtkWorkspace.h"
#include "app/linux/WindowList.h"

namespace quorin {

class ListedWorkspace : public GtkWorkspace {
 public:
  // `own` is this program's application id; `hasKeyboard` tells whether one of its windows has the
  // keyboard, also one that is not listed. The list must outlive the object.
  ListedWorkspace(WindowList& list, std::string own, std::function<bool()> hasKeyboard);
  ~ListedWorkspace() override;
  ListedWorkspace(const ListedWorkspace&) = delete;
  ListedWorkspace& operator=(const ListedWorkspace&) = delete;

  std::vector<RunningApplication> runningApplications(const std::string& identifier) const override;
  std::optional<RunningApplication> frontmostApplication() const override;
  void activate(const RunningApplication& application) override;
  void observeActivation(ActivationHandler handler) override { handler_ = std::move(handler); }

  // Gives the keyboard back to the window that had it before one of ours.
  void reactivate();

  // Brings our own window forward, where it is listed.
  void activateOwn();

 private:
  RunningApplication applicationOf(const ListedWindow& window) const;
  RunningApplication runningAs(const ListedWindow& window) const;
  const ListedWindow* find(std::uint32_t id) const;
  const ListedWindow* active() const;
  void listChanged();
  void settle();
  static gboolean settled(gpointer self);

  WindowList& list_;
  const std::string own_;
  const std::function<bool()> hasKeyboard_;
  ActivationHandler handler_;
  std::vector<ListedWindow> windows_;
  std::vector<std::uint32_t> recent_;  // windows that were active, the last one last
  std::optional<RunningApplication> front_, told_;
  GSourceHandle settling_;
};

}  // namespace quorin
