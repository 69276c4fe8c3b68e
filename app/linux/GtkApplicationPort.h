// GtkApplicationPort: the application port over GTK's main loop. Signals that ask the process to
// end (EndingSignals) end the application like the user does.
#pragma once

#include <list>

#include "app/linux/GLibHandles.h"
#include "app/shell/ports/Application.h"

namespace quorin {

class GtkApplicationPort : public Application {
 public:
  GtkApplicationPort();

  void setAccessory() override {}  // the windows' own hints keep them out of the task bar
  void setDelegate(ApplicationDelegate& delegate) override { delegate_ = &delegate; }
  void run() override;
  void terminate() override;
  void activate() override {}  // alerts present themselves

 private:
  static gboolean signalled(gpointer self);
  static gboolean launch(gpointer self);
  static gboolean ask(gpointer self);
  static gboolean end(gpointer self);
  void goOn();

  ApplicationDelegate* delegate_ = nullptr;
  bool terminating_ = false, goesOn_ = false;
  GSourceHandle patience_, end_;
  std::list<GSourceHandle> signals_;
};

}  // namespace quorin
