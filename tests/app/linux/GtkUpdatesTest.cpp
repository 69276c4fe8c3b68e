// An update as the user sees it: the windows of the desktop over a real server.
#include <fstream>
#include <gmock/gmock.h>

#include "app/linux/GtkUpdateProgress.h"
#include "app/linux/updates/FeedUpdater.h"
#include "app/linux/updates/SoupTransport.h"
#include "kit/support/SerialQueue.h"
#include "tests/app/linux/GtkFixture.h"
#include "tests/app/linux/updates/Release.h"
#include "tests/app/linux/updates/ReleaseServer.h"

namespace quorin {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class GtkUpdatesTest : public GtkFixture {
 protected:
  GtkUpdatesTest() { server.serveFile("/quorin.deb", package); }
  ~GtkUpdatesTest() override {
    waitUntil([] { return texts().empty(); });
  }

  // What all windows of this program say, from the top down.
  static std::vector<std::string> texts() {
    std::vector<std::string> found;
    GList* const windows = gtk_window_list_toplevels();
    for (const GList* one = windows; one; one = one->next) {
      if (GTK_IS_DIALOG(one->data)) collect(GTK_WIDGET(one->data), &found);
    }
    g_list_free(windows);
    return found;
  }

  static void collect(GtkWidget* widget, gpointer found) {
    if (!gtk_widget_get_visible(widget)) return;
    if (GTK_IS_LABEL(widget)) {
      static_cast<std::vector<std::string>*>(found)->push_back(
          gtk_label_get_text(GTK_LABEL(widget)));
    }
    if (GTK_IS_CONTAINER(widget)) {
      gtk_container_forall(GTK_CONTAINER(widget), collect, found);
    }
  }

  static bool says(const std::string& text) {
    return waitUntil([&] {
      const std::vector<std::string> all = texts();
      return std::find(all.begin(), all.end(), text) != all.end();
    });
  }

  // Once the window manager has given a window of this program the keyboard.
  static void press(const std::string& key) {
    ASSERT_TRUE(waitUntil([] {
      bool active = false;
      GList* const windows = gtk_window_list_toplevels();
      for (const GList* one = windows; one; one = one->next) {
        active =
            active || (GTK_IS_DIALOG(one->data) && gtk_window_is_active(GTK_WINDOW(one->data)));
      }
      g_list_free(windows);
      return active;
    }));
    ASSERT_TRUE(display->xdotool({"key", key}));
  }

  const TemporaryFolder home;
  const Release release;
  const std::string package = Release::package("quorin", "1.3.0", "amd64");
  ReleaseServer server;
  Alerts& alerts = platform->alerts();
  GtkUpdateProgress progress;
  SoupTransport transport{{server.authorities(), std::chrono::seconds(30)}};
  SerialQueue worker{"updates"};
  FeedUpdater updater{{transport, progress, alerts, platform->workspace(), platform->mainLoop(),
                       worker, platform->clock()},
                      {server.url("/feed"), release.publicKey(), "1.2.0", "amd64"},
                      {home / "updates", home / "feed-date"}};
};

TEST_F(GtkUpdatesTest, OffersWhatIsNewAndTellsOfAWrongSignature) {
  server.serveFile("/feed", release.feed("1.3.0", server.url("/quorin.deb"), package,
                                         {{"sparkle:edSignature", Release().sign(package)}}));
  updater.checkForUpdates();
  ASSERT_TRUE(says("Quorin 1.3.0 is available"));
  EXPECT_THAT(texts(), Contains("You have version 1.2.0.\n\nWhat is new"));
  press("Return");
  ASSERT_TRUE(says("Could not update Quorin"));
  EXPECT_THAT(texts(), Contains("The package is not signed by the makers of Quorin."
                                "\n\nNothing was changed."));
  EXPECT_FALSE(std::filesystem::exists(home / "updates"));
  press("Return");
  EXPECT_TRUE(waitUntil([] { return texts().empty(); }));
}

TEST_F(GtkUpdatesTest, ShowsHowFarThePackageIsAndLetsItBeCancelled) {
  server.serveFile(
      "/feed", release.feed("1.3.0", server.url("/quorin.deb"), package, {{"length", "2000000"}}));
  server.serve("/quorin.deb", {"200 OK", std::string(1'000'000, 'x'), {}, 2'000'000, true, true});
  updater.checkForUpdates();
  ASSERT_TRUE(says("Quorin 1.3.0 is available"));
  press("Return");
  ASSERT_TRUE(says("Fetching Quorin 1.3.0: 1.0 of 2.0 MB"));
  press("Escape");
  EXPECT_TRUE(waitUntil([] { return texts().empty(); }));
  server.serveFile("/feed", "no feed");
  updater.checkForUpdates();  // it can be asked again
  ASSERT_TRUE(says("Could not check for updates"));
  press("Return");
}

TEST_F(GtkUpdatesTest, LeavesTheOfferWhenItsWindowIsClosed) {
  server.serveFile("/feed", release.feed("1.3.0", server.url("/quorin.deb"), package));
  updater.checkForUpdates();
  ASSERT_TRUE(says("Quorin 1.3.0 is available"));
  press("Escape");
  ASSERT_TRUE(waitUntil([] { return texts().empty(); }));
  EXPECT_THAT(server.requests(), ElementsAre("/feed"));
}

}  // namespace
}  // namespace quorin
