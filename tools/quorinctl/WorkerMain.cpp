#include "tools/quorinctl/WorkerMain.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <fcntl.h>
#include <sys/prctl.h>
#include <system_error>
#include <unistd.h>

#include "kit/platform/Thread.h"
#include "kit/value/Marshal.h"
#include "tools/quorinctl/AuditScript.h"
#include "tools/quorinctl/Place.h"
#include "tools/quorinctl/Waiter.h"
#include "tools/quorinctl/WorkbookAudit.h"

namespace quorin::ctl {

namespace {

// The lines to whoever started this process. The office does not get hold of them.
class Lines {
 public:
  Lines() : descriptor_(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0)) {
    if (descriptor_ < 0 || ::dup2(STDERR_FILENO, STDOUT_FILENO) < 0)
      throw std::system_error(errno, std::generic_category(), "standard output");
  }
  ~Lines() { ::close(descriptor_); }
  Lines(const Lines&) = delete;
  Lines& operator=(const Lines&) = delete;

  void write(char letter, std::string text) const {
    text.insert(text.begin(), letter);
    text.push_back('\n');
    for (std::size_t written = 0; written < text.size();) {
      const ssize_t count = ::write(descriptor_, text.data() + written, text.size() - written);
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) return;
      written += static_cast<std::size_t>(count);
    }
  }

 private:
  const int descriptor_;
};

std::string reportOf(Waiter& waiter, const AuditWorkbookCommand& command, const Lines& lines) {
  try {
    requireWorkbook(command.file);
    WorkbookAudit audit(waiter, command.file,
                        [&](const std::string& text) { lines.write(progressLetter, text); });
    return audit.report(command);
  } catch (const std::exception& error) {
    return Marshal::encode(failureReport(command.file, error.what()));
  }
}

}  // namespace

JSONValue failureReport(const std::filesystem::path& file, const std::string& why) {
  return JSONValue::Object{{"file", file.string()}, {"error", why}};
}

int auditWorkbook(const AuditWorkbookCommand& command) {
  constexpr int unable = 2;
  constexpr int signalled = 128;
  std::signal(SIGPIPE, SIG_IGN);
  AuditScript::keepSmall();
  try {
    Waiter waiter;
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);

    MainThread::record();
    const Lines lines;
    try {
      lines.write(reportLetter, reportOf(waiter, command, lines));
      return 0;
    } catch (const WorkbookAudit::Ended&) {
      return signalled + waiter.signalNumber();
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "quorinctl: %s\n", error.what());
    return unable;
  }
}

}  // namespace quorin::ctl
