// GtkSaveDialog: the save dialog's port over GTK's file chooser. It takes the keyboard when it
// comes up and answers later, from the main loop.
#pragma once

#include <gtk/gtk.h>

#include "app/linux/X11Session.h"
#include "app/shell/ports/SaveDialog.h"

namespace quorin {

class GtkSaveDialog : public SaveDialog {
 public:
  // Without an X11 session the compositor gives new windows the keyboard.
  explicit GtkSaveDialog(X11Session* session) : session_(session) {}
  ~GtkSaveDialog() override;
  GtkSaveDialog(const GtkSaveDialog&) = delete;
  GtkSaveDialog& operator=(const GtkSaveDialog&) = delete;

  void ask(const std::string& name, Answer answer) override;

  // The one on the screen; for inspection.
  GtkFileChooser* shown() const { return dialog_ ? GTK_FILE_CHOOSER(dialog_) : nullptr; }

 private:
  static gboolean mapped(GtkWidget* dialog, GdkEvent*, gpointer self);
  static void responded(GtkDialog*, int response, gpointer self);

  X11Session* const session_;
  Answer answer_;
  GtkWidget* dialog_ = nullptr;
};

}  // namespace quorin
