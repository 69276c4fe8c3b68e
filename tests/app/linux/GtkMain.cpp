#include "kit/platform/Thread.h"
#include "tests/app/linux/GtkFixture.h"
#include "tests/fakes/ui/SessionBus.h"

namespace quorin {

ui::VirtualDisplay* GtkFixture::display = nullptr;
GtkPlatform* GtkFixture::platform = nullptr;

}  // namespace quorin

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  quorin::MainThread::record();
  quorin::ui::VirtualDisplay display({});
  const quorin::ui::SessionBus bus;
  std::string pattern = (std::filesystem::temp_directory_path() / "quorin-gtk-XXXXXX").string();
  const std::filesystem::path home = mkdtemp(pattern.data());
  for (const char* name :
       {"XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"}) {
    setenv(name, (home / name).c_str(), 1);
  }
  int status = 0;
  {
    const auto platform = quorin::makePlatform();
    quorin::GtkFixture::display = &display;
    quorin::GtkFixture::platform = static_cast<quorin::GtkPlatform*>(platform.get());
    status = RUN_ALL_TESTS();
  }
  std::filesystem::remove_all(home);
  return status;
}
