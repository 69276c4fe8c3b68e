#include "host/calc/office/PrivateOffice.h"

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "host/Spreadsheet.h"
#include "host/calc/office/AskedNetwork.h"
#include "host/calc/office/OfficeSupervisorScript.h"
#include "host/calc/uno/OfficeFiles.h"
#include "kit/value/EventErrors.h"

extern char** environ;

namespace quorin::host::calc {
namespace {

struct Setting {
  const char* place;  // in the office's registry, behind "/org.openoffice."
  const char* name;
  const char* value;
};

// No locks beside documents, no recovery, no greeting, no asking about anything; pictures that a
// document has elsewhere are not fetched, and no server is reached: the proxy is not there. No
// version before the installed one was used last, for then the office tries all its ways to draw,
// which takes two thirds of its start.
constexpr std::array settings{
    Setting{"Inet/Settings", "ooInetFTPProxyName", "127.0.0.1"},
    Setting{"Inet/Settings", "ooInetFTPProxyPort", "9"},
    Setting{"Inet/Settings", "ooInetHTTPProxyName", "127.0.0.1"},
    Setting{"Inet/Settings", "ooInetHTTPProxyPort", "9"},
    Setting{"Inet/Settings", "ooInetHTTPSProxyName", "127.0.0.1"},
    Setting{"Inet/Settings", "ooInetHTTPSProxyPort", "9"},
    Setting{"Inet/Settings", "ooInetNoProxy", AskedNetwork::noHost},
    Setting{"Inet/Settings", "ooInetProxyType", "2"},
    Setting{"Office.Common/Misc", "UseLocking", "false"},
    Setting{"Office.Common/Misc", "UseDocumentOOoLockFile", "false"},
    Setting{"Office.Common/Misc", "UseDocumentSystemFileLocking", "false"},
    Setting{"Office.Common/Misc", "FirstRun", "false"},
    Setting{"Office.Common/Misc", "ShowTipOfTheDay", "false"},
    Setting{"Office.Common/Security/Scripting", "BlockUntrustedRefererLinks", "true"},
    Setting{"Office.Recovery/AutoSave", "Enabled", "false"},
    Setting{"Office.Recovery/RecoveryInfo", "Enabled", "false"},
    Setting{"Setup/Office", "ooSetupInstCompleted", "true"},
    Setting{"Setup/Product", "ooSetupLastVersion", "99.9"}};

std::string registry() {
  std::string xml = R"(<?xml version="1.0" encoding="UTF-8"?>
<oor:items xmlns:oor="http://openoffice.org/2001/registry" xmlns:xs="http://www.w3.org/2001/XMLSchema" xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance">
)";
  for (const auto& [place, name, value] : settings) {
    xml += std::string(R"(<item oor:path="/org.openoffice.)") + place + R"("><prop oor:name=")" +
           name + R"(" oor:op="fuse"><value>)" + value + "</value></prop></item>\n";
  }
  return xml + "</oor:items>\n";
}

// The installed build's own name, which a user folder carries once the office has set it up. A
// folder that carries it already spares the office a second start.
std::string buildId() {
  std::ifstream version(QUORIN_OFFICE_FOLDER "/program/versionrc");
  constexpr std::string_view key = "buildid=";
  for (std::string line; std::getline(version, line);) {
    if (line.starts_with(key)) return line.substr(key.size());
  }
  return {};
}

std::array<int, 2> makePipe() {
  std::array<int, 2> ends{-1, -1};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw SpreadsheetError(eventErrors::notRunning, "LibreOffice cannot be started: no pipe");
  }
  return ends;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  result.reserve(texts.size() + 1);
  for (std::string& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

std::vector<std::string> environment(const std::filesystem::path& folder, bool headless,
                                     const std::vector<std::pair<std::string, std::string>>& more) {
  std::vector<std::pair<std::string, std::string>> wanted{{"TMPDIR", (folder / "tmp").string()}};
  if (headless) {
    wanted.emplace_back("SAL_USE_VCLPLUGIN", "svp");
    // Where a home has neither, the office would make the user's folder for settings, and dconf, by
    // which it looks for an administrator's, one for its state.
    wanted.emplace_back("XDG_CONFIG_HOME", (folder / "config").string());
    wanted.emplace_back("XDG_RUNTIME_DIR", (folder / "runtime").string());
  }
  wanted.insert(wanted.end(), more.begin(), more.end());
  std::vector<std::string> result;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string_view text = *entry;
    bool replaced = false;
    for (const auto& [name, value] : wanted) {
      replaced = replaced || (text.starts_with(name) && text.substr(name.size()).starts_with('='));
    }
    if (!replaced) result.emplace_back(text);
  }
  for (const auto& [name, value] : wanted) result.push_back(name + "=" + value);
  return result;
}

}  // namespace

PrivateOffice::PrivateOffice() : PrivateOffice(Options{}) {}

PrivateOffice::PrivateOffice(Options options) : options_(std::move(options)) {
  prepareFolder();
  try {
    startSupervisor();
  } catch (...) {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
    throw;
  }
}

PrivateOffice::~PrivateOffice() {
  ::close(ownerEnd_);
  ::waitpid(supervisor_, nullptr, 0);
  ::close(reportEnd_);
}

void PrivateOffice::prepareFolder() {
  std::string name =
      (std::filesystem::temp_directory_path() / (options_.prefix + "XXXXXX")).string();
  if (::mkdtemp(name.data()) == nullptr) {
    throw SpreadsheetError(eventErrors::notRunning,
                           "LibreOffice cannot be started: no folder for it");
  }
  folder_ = name;
  pipe_ = folder_.filename().string();
  for (const char* const part : {"tmp", "config", "runtime"})
    std::filesystem::create_directories(folder_ / part);
  std::filesystem::create_directories(folder_ / "profile/user/extensions");
  std::ofstream(folder_ / "profile/user/registrymodifications.xcu") << registry();
  std::ofstream(folder_ / "profile/user/extensions/buildid") << buildId();
}

void PrivateOffice::startSupervisor() {
  const std::string installation = fileUrl(folder_ / "profile");
  std::vector<std::string> command{
      "/bin/sh", "-c", officeSupervisorScript, "quorin-office-supervisor", folder_.string(),
      pipeFile(pipe_).string(), pipeFile(singleInstancePipe(installation)).string(),
      QUORIN_OFFICE_FOLDER "/program/soffice.bin", "-env:UserInstallation=" + installation,
      // Run as root it would make the system's own, for itself alone,
      // and no other user's office would start any more.
      "-env:UNO_SHARED_PACKAGES_CACHE=" + fileUrl(folder_ / "shared"), "--norestore", "--nologo",
      "--nodefault", "--nolockcheck", "--accept=pipe,name=" + pipe_ + ";urp;"};
  if (options_.headless) command.emplace_back("--headless");
  std::vector<std::string> variables =
      environment(folder_, options_.headless, options_.environment);

  const auto owner = makePipe(), report = makePipe();
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_adddup2(&files, owner[0], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&files, report[1], STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);  // out of the terminal's Ctrl-C
  const int failure = ::posix_spawn(&supervisor_, command[0].c_str(), &files, &attributes,
                                    pointers(command).data(), pointers(variables).data());
  posix_spawn_file_actions_destroy(&files);
  posix_spawnattr_destroy(&attributes);
  ::close(owner[0]);
  ::close(report[1]);
  ownerEnd_ = owner[1];
  reportEnd_ = report[0];
  if (failure != 0) {
    ::close(ownerEnd_);
    ::close(reportEnd_);
    throw SpreadsheetError(eventErrors::notRunning, "LibreOffice cannot be started");
  }
  ::fcntl(reportEnd_, F_SETFL, O_NONBLOCK);
}

pid_t PrivateOffice::readProcessIds() {
  std::array<char, 64> bytes{};
  for (;;) {
    const ssize_t got = ::read(reportEnd_, bytes.data(), bytes.size());
    if (got == 0) office_ = 0;  // the supervisor is done
    if (got <= 0) break;
    report_.append(bytes.data(), static_cast<std::size_t>(got));
  }
  for (std::size_t end = 0; (end = report_.find('\n')) != std::string::npos;) {
    office_ = std::atoi(report_.c_str());
    report_.erase(0, end + 1);
  }
  return office_;
}

pid_t PrivateOffice::process() {
  const std::lock_guard lock(mutex_);
  return readProcessIds();
}

bool PrivateOffice::isRunning() {
  const pid_t office = process();
  return office != 0 && ::kill(office, 0) == 0;
}

OfficeAddress PrivateOffice::open() {
  const auto deadline = std::chrono::steady_clock::now() + options_.patience;
  while (!isOwnPipe(pipe_)) {
    pollfd supervisor{reportEnd_, POLLIN, 0};
    constexpr int pauseInMilliseconds = 10;
    ::poll(&supervisor, 1, pauseInMilliseconds);
    if ((supervisor.revents & POLLHUP) != 0) {
      throw SpreadsheetError(eventErrors::notRunning, "LibreOffice ended by itself");
    }
    process();
    if (std::chrono::steady_clock::now() >= deadline) {
      throw SpreadsheetError(eventErrors::timedOut, "LibreOffice does not start");
    }
  }
  const pid_t office = process();
  if (office == 0) throw SpreadsheetError(eventErrors::notRunning, "LibreOffice is not running");
  return {office, pipe_};
}

}  // namespace quorin::host::calc
