#include "app/linux/GtkUpdateProgress.h"

namespace quorin {

namespace {

constexpr int width = 360, margin = 12;

}  // namespace

void GtkUpdateProgress::make() {
  window_ = gtk_dialog_new_with_buttons("Quorin", nullptr, GTK_DIALOG_DESTROY_WITH_PARENT, "Cancel",
                                        GTK_RESPONSE_CANCEL, nullptr);
  gtk_window_set_resizable(GTK_WINDOW(window_), FALSE);
  gtk_window_set_keep_above(GTK_WINDOW(window_), TRUE);
  gtk_window_set_position(GTK_WINDOW(window_), GTK_WIN_POS_CENTER);
  GtkWidget* const content = gtk_dialog_get_content_area(GTK_DIALOG(window_));
  gtk_container_set_border_width(GTK_CONTAINER(content), margin);
  gtk_box_set_spacing(GTK_BOX(content), margin);
  gtk_widget_set_size_request(content, width, -1);
  label_ = gtk_label_new(nullptr);
  gtk_label_set_xalign(GTK_LABEL(label_), 0);
  bar_ = gtk_progress_bar_new();
  gtk_container_add(GTK_CONTAINER(content), label_);
  gtk_container_add(GTK_CONTAINER(content), bar_);
  g_signal_connect(window_, "response", G_CALLBACK(responded), this);
  gtk_widget_show_all(window_);
  gtk_window_present(GTK_WINDOW(window_));
}

void GtkUpdateProgress::show(const std::string& text, std::optional<double> done) {
  if (!window_) make();
  gtk_label_set_text(GTK_LABEL(label_), text.c_str());
  gtk_progress_bar_set_fraction(GTK_PROGRESS_BAR(bar_), done.value_or(0));
  gtk_widget_set_visible(bar_, done.has_value());
}

void GtkUpdateProgress::hide() {
  if (window_) gtk_widget_destroy(window_);
  window_ = label_ = bar_ = nullptr;
}

std::optional<std::string> GtkUpdateProgress::shown() const {
  if (!window_) return std::nullopt;
  return gtk_label_get_text(GTK_LABEL(label_));
}

void GtkUpdateProgress::responded(GtkDialog*, int, gpointer data) {
  auto& self = *static_cast<GtkUpdateProgress*>(data);
  self.hide();
  if (self.cancelled_) self.cancelled_();
}

}  // namespace quorin
