#include "app/linux/GtkSaveDialog.h"

#include <utility>

#include "app/linux/GLibHandles.h"
#include "kit/support/Check.h"

namespace quorin {

GtkSaveDialog::~GtkSaveDialog() {
  if (dialog_) gtk_widget_destroy(dialog_);
}

void GtkSaveDialog::ask(const std::string& name, Answer answer) {
  check(!dialog_, "GtkSaveDialog::ask while a dialog is shown");
  answer_ = std::move(answer);
  dialog_ = gtk_file_chooser_dialog_new("Save", nullptr, GTK_FILE_CHOOSER_ACTION_SAVE, "Cancel",
                                        GTK_RESPONSE_CANCEL, "Save", GTK_RESPONSE_ACCEPT, nullptr);
  gtk_file_chooser_set_do_overwrite_confirmation(GTK_FILE_CHOOSER(dialog_), TRUE);
  gtk_file_chooser_set_current_name(GTK_FILE_CHOOSER(dialog_), name.c_str());
  gtk_dialog_set_default_response(GTK_DIALOG(dialog_), GTK_RESPONSE_ACCEPT);
  gtk_window_set_keep_above(GTK_WINDOW(dialog_), TRUE);
  gtk_window_set_position(GTK_WINDOW(dialog_), GTK_WIN_POS_CENTER);
  g_signal_connect(dialog_, "map-event", G_CALLBACK(mapped), this);
  g_signal_connect(dialog_, "response", G_CALLBACK(responded), this);
  gtk_window_present(GTK_WINDOW(dialog_));
}

// Another application is in front, as a rule: a window that only asks to be shown stays without the
// keyboard there.
gboolean GtkSaveDialog::mapped(GtkWidget* dialog, GdkEvent*, gpointer data) {
  X11Session* const session = static_cast<GtkSaveDialog*>(data)->session_;
  if (session) session->requestActivation(X11Session::idOf(gtk_widget_get_window(dialog)));
  return FALSE;
}

void GtkSaveDialog::responded(GtkDialog*, int response, gpointer data) {
  auto& self = *static_cast<GtkSaveDialog*>(data);
  std::optional<std::filesystem::path> file;
  if (response == GTK_RESPONSE_ACCEPT) {
    const GTextPtr name(gtk_file_chooser_get_filename(self.shown()));
    if (name) file = name.get();
  }
  gtk_widget_destroy(self.dialog_);
  self.dialog_ = nullptr;
  std::exchange(self.answer_, nullptr)(file);
}

}  // namespace quorin
