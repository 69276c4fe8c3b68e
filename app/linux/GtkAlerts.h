// GtkAlerts: the alerts port over GTK message dialogs. An alert takes the keyboard when it comes up
// and answers later, from the main loop; a second one waits for the first.
#pragma once

#include <deque>
#include <gtk/gtk.h>

#include "app/linux/X11Session.h"
#include "app/shell/ports/Alerts.h"

namespace quorin {

class GtkAlerts : public Alerts {
 public:
  // Without an X11 session the compositor gives new windows the keyboard.
  explicit GtkAlerts(X11Session* session) : session_(session) {}
  ~GtkAlerts() override;
  GtkAlerts(const GtkAlerts&) = delete;
  GtkAlerts& operator=(const GtkAlerts&) = delete;

  void show(const Alert& alert, Answer answer) override;

  // The one on the screen; for inspection.
  const Alert* shown() const { return dialog_ ? &waiting_.front().alert : nullptr; }

 private:
  struct Waiting {
    Alert alert;
    Answer answer;
  };

  void showNext();
  static gboolean mapped(GtkWidget* dialog, GdkEvent*, gpointer self);
  static void responded(GtkDialog*, int response, gpointer self);

  X11Session* const session_;
  std::deque<Waiting> waiting_;  // the first one is on the screen
  GtkWidget* dialog_ = nullptr;
};

}  // namespace quorin
