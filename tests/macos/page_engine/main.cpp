// The page engine of the fake WKWebView: speaks by its standard input, and ends when the other one
// hangs up. Only what WebKit itself prints comes out of it.
#include <glib-unix.h>
#include <gtk/gtk.h>
#include <unistd.h>

#include "tests/macos/page_engine/PageView.h"
#include "tests/macos/page_engine/Wire.h"

int main(int argc, char** argv) {
  gtk_init(&argc, &argv);
  // Never taken down: the processes of the page end with this one.
  auto& view = *new quorin::PageView(STDIN_FILENO);
  g_unix_fd_add(
      STDIN_FILENO, static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR),
      [](gint socket, GIOCondition, gpointer data) -> gboolean {
        auto message = quorin::wire::receive(socket);
        if (!message) ::_exit(0);
        static_cast<quorin::PageView*>(data)->told(message->word, std::move(message->text));
        return G_SOURCE_CONTINUE;
      },
      &view);
  gtk_main();
  return 0;
}
