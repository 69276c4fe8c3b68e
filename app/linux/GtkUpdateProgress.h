// GtkUpdateProgress: the progress of an update in a small window with a bar and "Cancel".
#pragma once

#include <gtk/gtk.h>

#include "app/linux/updates/UpdateProgress.h"

namespace quorin {

class GtkUpdateProgress : public UpdateProgress {
 public:
  GtkUpdateProgress() = default;
  ~GtkUpdateProgress() override { hide(); }
  GtkUpdateProgress(const GtkUpdateProgress&) = delete;
  GtkUpdateProgress& operator=(const GtkUpdateProgress&) = delete;

  void show(const std::string& text, std::optional<double> done) override;
  void hide() override;
  void onCancel(std::function<void()> handler) override { cancelled_ = std::move(handler); }

  // What the window says, while there is one; for inspection.
  std::optional<std::string> shown() const;

 private:
  void make();
  static void responded(GtkDialog*, int response, gpointer self);

  GtkWidget* window_ = nullptr;
  GtkWidget* label_ = nullptr;
  GtkWidget* bar_ = nullptr;
  std::function<void()> cancelled_;
};

}  // namespace quorin
