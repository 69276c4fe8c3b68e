// quorin: the panel beside LibreOffice Calc.
//
//   quorin            starts; when it runs already, brings its panel up and ends
//   quorin --show     starts with the panel up
//   quorin --version
#include <CLI/CLI.hpp>
#include <cstdio>
#include <optional>
#include <string>
#include <unistd.h>

#include "app/linux/CalcLink.h"
#include "app/linux/GtkPlatform.h"
#include "app/linux/LineServer.h"
#include "app/linux/PanelInspector.h"
#include "app/shell/AppDelegate.h"
#include "app/shell/BridgeLink.h"
#include "kit/platform/Platform.h"
#include "kit/platform/Thread.h"
#include "kit/platform/XDGFolders.h"
#include "kit/support/FolderLock.h"
#include "kit/support/SerialQueue.h"

namespace quorin {

namespace {

constexpr const char* raiseRequest = "show";
constexpr const char* raiseAnswer = "ok";
constexpr std::size_t longestRequest = 64;
constexpr int attempts = 20;
constexpr useconds_t betweenAttempts = 50'000;

struct Invocation {
  bool show = false;
};

// Brings the panel of the Quorin that holds the folder up. It may just be starting.
int raiseTheOther(const std::filesystem::path& socket) {
  for (int attempt = 0; attempt < attempts; ++attempt) {
    if (LineServer::ask(socket, raiseRequest) == raiseAnswer) return 0;
    usleep(betweenAttempts);
  }
  std::fprintf(stderr, "quorin: it is running already, but does not answer\n");
  return 1;
}

void noteWayland(const Environment& environment, DiagLog& log) {
  if (environment.count("WAYLAND_DISPLAY") == 0) return;
  log.log("COMPANION",
          "Wayland session: windows that do not use X11 can be neither followed nor stood beside; "
          "start LibreOffice with GDK_BACKEND=x11");
}

int run(const Invocation& invocation) {
  const Environment environment = processEnvironment();
  auto system = std::make_unique<Platform>();
  system->folders = std::make_unique<XDGFolders>(environment);
  const CalcLink calc;
  system->target = calc.target();
  Platform::install(std::move(system));

  const std::filesystem::path config = QXConfig::defaultURL();
  const std::filesystem::path folder = config.parent_path();
  const std::optional<FolderLock> lock = FolderLock::acquire(folder);
  const std::filesystem::path socket = folder / "control";
  if (!lock) return raiseTheOther(socket);

  // Listens before anything else: who is told that the folder is locked asks here.
  AppDelegate* delegate = nullptr;
  std::optional<LineServer> control;
  control.emplace(socket, longestRequest,
                  [&](const std::string& line, const LineServer::Answer& answer) {
                    if (line != raiseRequest || !delegate) return answer("unknown request");
                    delegate->raisePanel();
                    answer(raiseAnswer);
                  });

  const std::unique_ptr<AppPlatform> platform = makePlatform();
  DiagLog& log = DiagLog::shared();
  noteWayland(environment, log);
  ExcelThread thread(calc.runnerFactory(), log);
  ExcelThread::setShared(&thread);
  HighlightStore highlights(HighlightStore::defaultURL(), FileSystem::real(), &log);
  UnhideStore unhidden(UnhideStore::defaultURL(), FileSystem::real(), &log);
  Bridge bridge(thread, log, highlights, unhidden, targetApplication());
  BridgeLink link(bridge);
  SerialQueue bridgeQueue("qx.bridge");
  AppDelegate app({*platform, link, bridgeQueue, log, config, environment,
                   [&thread] { return thread.compileError(); }, platformFolders()});
  delegate = &app;
  if (invocation.show) app.raisePanel();

  std::optional<PanelInspector> inspector;
  if (const auto path = environment.find("QX_TEST_SOCKET"); path != environment.end()) {
    inspector.emplace(path->second, static_cast<GtkPlatform&>(*platform));
  }

  platform->application().setAccessory();
  platform->application().setDelegate(app);
  platform->application().run();

  // Nothing is taken down but what others see: a spreadsheet that hangs must not hold up the end.
  inspector.reset();
  control.reset();
  log.flush();
  std::fflush(nullptr);
  _exit(0);
}

}  // namespace
}  // namespace quorin

int main(int argc, char** argv) {
  quorin::MainThread::record();
  quorin::nameCurrentThread("main");
  quorin::Invocation invocation;
  CLI::App options("Quorin: a companion for auditing spreadsheets, beside LibreOffice Calc.",
                   "quorin");
  options.add_flag("--show", invocation.show, "Bring the panel up");
  options.set_version_flag("--version", QUORIN_VERSION);
  CLI11_PARSE(options, argc, argv);
  try {
    return quorin::run(invocation);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "quorin: %s\n", error.what());
    return 1;
  }
}
