// quorin: the panel beside LibreOffice Calc.
//
//   quorin            starts; when it runs already, brings its panel up and ends
//   quorin --show     starts with the panel up; with tree, map or deps behind it, on that view
//   quorin --step 1   steps through the page of the Quorin that is running; -1 steps back
//   quorin --version
#include <chrono>
#include <cstdio>
#include <optional>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <variant>

#include "app/linux/CalcLink.h"
#include "app/linux/ControlRequest.h"
#include "app/linux/CrashReporter.h"
#include "app/linux/GtkPlatform.h"
#include "app/linux/Invocation.h"
#include "app/linux/LineServer.h"
#ifdef QUORIN_INSPECTOR
#include "app/linux/PanelInspector.h"
#endif
#include "app/shell/AppDelegate.h"
#include "kit/bridge/Bridge.h"
#include "kit/platform/Platform.h"
#include "kit/platform/Thread.h"
#include "kit/platform/XDGFolders.h"
#include "kit/support/FileSystem.h"
#include "kit/support/FolderLock.h"
#include "kit/support/SerialQueue.h"

namespace quorin {

namespace {

constexpr const char* done = "ok";
constexpr std::size_t longestRequest = 64;
constexpr std::chrono::seconds patience{10};
constexpr useconds_t betweenAttempts = 50'000;

// The folder's lock; none when the Quorin that holds it has done what is asked. One that is just
// starting is waited for, and so is one that is ending. One that has been asked is given all the
// time that is left: asked again, it would step twice. Throws std::runtime_error when it goes on
// holding the folder without an answer.
std::optional<FolderLock> lockOrAsk(const std::filesystem::path& folder,
                                    const std::filesystem::path& socket,
                                    const ControlRequest& request) {
  const auto end = std::chrono::steady_clock::now() + patience;
  for (;;) {
    if (auto lock = FolderLock::acquire(folder)) return lock;
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        end - std::chrono::steady_clock::now());
    if (left.count() <= 0) {
      throw std::runtime_error("it is running already, but does not answer");
    }
    if (LineServer::ask(socket, request.line(), left) == done) return std::nullopt;
    usleep(betweenAttempts);
  }
}

void fulfil(const ControlRequest& request, AppDelegate& delegate) {
  if (request.direction) {
    delegate.step(*request.direction);
  } else if (!request.view.empty()) {
    delegate.surface(request.view);
  } else {
    delegate.raisePanel();
  }
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
  const std::filesystem::path socket = folder / "control";
  const std::optional<FolderLock> lock = lockOrAsk(folder, socket, invocation.request);
  if (!lock) {
    if (!invocation.request.direction) {
      std::printf("quorin: it is running already; its panel is up\n");
    }
    return 0;
  }
  if (invocation.request.direction) {
    std::fprintf(stderr, "quorin: it is not running\n");
    return 1;
  }

  CrashReporter::install(platformFolders().library() / "Logs" / "DiagnosticReports",
                         QUORIN_VERSION);

  // Listens before anything else: who is told that the folder is locked asks here.
  AppDelegate* delegate = nullptr;
  std::optional<LineServer> control;
  control.emplace(socket, longestRequest,
                  [&](const std::string& line, const LineServer::Answer& answer) {
                    const auto request = parseControlRequest(line);
                    if (!request || !delegate) return answer("unknown request");
                    fulfil(*request, *delegate);
                    answer(done);
                  });

  const std::unique_ptr<AppPlatform> platform = makePlatform();
  DiagLog& log = DiagLog::shared();
  closeToOthers(log.url().parent_path());
  const std::string note = static_cast<GtkPlatform&>(*platform).sessionNote();
  if (!note.empty()) log.log("COMPANION", note);
  ExcelThread thread(calc.runnerFactory(log), log);
  ExcelThread::setShared(&thread);
  HighlightStore highlights(HighlightStore::defaultURL(), FileSystem::real(), &log);
  UnhideStore unhidden(UnhideStore::defaultURL(), FileSystem::real(), &log);
#ifdef QUORIN_INSPECTOR
  TimedBridge bridge(thread, log, highlights, unhidden, targetApplication());
#else
  Bridge bridge(thread, log, highlights, unhidden, targetApplication());
#endif
  SerialQueue bridgeQueue("qx.bridge");
  SerialQueue fileQueue("qx.files");
  AppDelegate app({*platform, bridge, bridgeQueue, fileQueue, log, config, environment,
                   [&thread] { return thread.compileError(); }, platformFolders()});
  delegate = &app;
  if (invocation.show) fulfil(invocation.request, app);

#ifdef QUORIN_INSPECTOR
  std::optional<PanelInspector> inspector;
  if (const auto path = environment.find("QX_TEST_SOCKET"); path != environment.end()) {
    inspector.emplace(path->second, static_cast<GtkPlatform&>(*platform), bridge);
  }
#endif

  platform->application().setAccessory();
  platform->application().setDelegate(app);
  platform->application().run();

  // Nothing is taken down but what others see: a spreadsheet that hangs must not hold up the end.
#ifdef QUORIN_INSPECTOR
  inspector.reset();
#endif
  control.reset();
  if (WebKitView* const view = static_cast<GtkPlatform&>(*platform).webView()) view->endProcess();
  log.flush();
  std::fflush(nullptr);
  _exit(0);
}

}  // namespace
}  // namespace quorin

int main(int argc, char** argv) {
  quorin::MainThread::record();
  quorin::nameCurrentThread("main");
  const auto asked = quorin::parseInvocation(argc, argv);
  if (const int* const status = std::get_if<int>(&asked)) return *status;
  try {
    return quorin::run(std::get<quorin::Invocation>(asked));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "quorin: %s\n", error.what());
    return 1;
  }
}
