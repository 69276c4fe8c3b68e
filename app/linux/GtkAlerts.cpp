#include "app/linux/GtkAlerts.h"

#include <algorithm>

namespace quorin {

GtkAlerts::~GtkAlerts() {
  if (dialog_) gtk_widget_destroy(dialog_);
}

void GtkAlerts::show(const Alert& alert, Answer answer) {
  waiting_.push_back({alert, std::move(answer)});
  if (!dialog_) showNext();
}

void GtkAlerts::showNext() {
  if (waiting_.empty()) return;
  Alert& alert = waiting_.front().alert;
  if (alert.buttons.empty()) alert.buttons = {"OK"};
  dialog_ = gtk_message_dialog_new(nullptr, GTK_DIALOG_MODAL, GTK_MESSAGE_INFO, GTK_BUTTONS_NONE,
                                   "%s", alert.message.c_str());
  if (!alert.informativeText.empty()) {
    gtk_message_dialog_format_secondary_text(GTK_MESSAGE_DIALOG(dialog_), "%s",
                                             alert.informativeText.c_str());
  }
  // The default button stands last, as on other windows of the desktop.
  for (std::size_t i = alert.buttons.size(); i-- > 0;) {
    gtk_dialog_add_button(GTK_DIALOG(dialog_), alert.buttons[i].c_str(), static_cast<int>(i));
  }
  gtk_dialog_set_default_response(GTK_DIALOG(dialog_), 0);
  gtk_window_set_title(GTK_WINDOW(dialog_), "Quorin");
  gtk_window_set_keep_above(GTK_WINDOW(dialog_), TRUE);
  gtk_window_set_position(GTK_WINDOW(dialog_), GTK_WIN_POS_CENTER);
  g_signal_connect(dialog_, "map-event", G_CALLBACK(mapped), this);
  g_signal_connect(dialog_, "response", G_CALLBACK(responded), this);
  gtk_window_present(GTK_WINDOW(dialog_));
}

// Another application is in front, as a rule: a window that only asks to be shown stays without the
// keyboard there.
gboolean GtkAlerts::mapped(GtkWidget* dialog, GdkEvent*, gpointer data) {
  X11Session* const session = static_cast<GtkAlerts*>(data)->session_;
  if (session) session->requestActivation(X11Session::idOf(gtk_widget_get_window(dialog)));
  return FALSE;
}

void GtkAlerts::responded(GtkDialog*, int response, gpointer data) {
  auto& self = *static_cast<GtkAlerts*>(data);
  gtk_widget_destroy(self.dialog_);
  self.dialog_ = nullptr;
  const Waiting done = std::move(self.waiting_.front());
  self.waiting_.pop_front();
  // Closed without a button: the last one.
  const auto last = static_cast<int>(done.alert.buttons.size()) - 1;
  done.answer(static_cast<std::size_t>(response < 0 ? last : std::min(response, last)));
  if (!self.dialog_) self.showNext();
}

}  // namespace quorin
