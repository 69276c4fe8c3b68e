#include "app/linux/CrashReporter.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <ctime>
#include <execinfo.h>
#include <fcntl.h>
#include <memory>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include "app/linux/ModuleTable.h"
#include "app/linux/SafeText.h"
#include "kit/platform/Thread.h"
#include "kit/support/FileSystem.h"

namespace quorin::CrashReporter {

namespace {

struct Fault {
  int signal;
  const char* name;
};
constexpr std::array<Fault, 5> faults{{{SIGSEGV, "SIGSEGV"},
                                       {SIGBUS, "SIGBUS"},
                                       {SIGILL, "SIGILL"},
                                       {SIGFPE, "SIGFPE"},
                                       {SIGABRT, "SIGABRT"}}};

constexpr std::size_t stackBytes = 64 * 1024;
constexpr int mostFrames = 128;
constexpr std::size_t longestName = 15;  // of a thread, for the system

// All that the handler needs, made ready before.
struct Prepared {
  int folder = -1;
  int spares[3] = {-1, -1, -1};  // given up for the files that the handler opens
  char heading[128] = {};
  std::atomic<long> reporter{0};  // the thread that died first
  ModuleTable modules;
  void* frames[mostFrames] = {};
  char entries[4096] = {};
};
Prepared prepared;

// A stack for the handler of this thread alone.
class SecondStack {
 public:
  SecondStack() : memory_(new char[stackBytes]) {
    const stack_t stack{memory_.get(), 0, stackBytes};
    sigaltstack(&stack, nullptr);
  }
  ~SecondStack() {
    stack_t none{};
    none.ss_flags = SS_DISABLE;
    sigaltstack(&none, nullptr);
  }
  SecondStack(const SecondStack&) = delete;
  SecondStack& operator=(const SecondStack&) = delete;

 private:
  std::unique_ptr<char[]> memory_;
};

// The end of a name tells the threads apart.
void prepareThread(const std::string& name) {
  static thread_local const SecondStack stack;
  static_cast<void>(stack);
  prctl(PR_SET_NAME, name.substr(name.size() - std::min(name.size(), longestName)).c_str());
}

const char* nameOf(int signal) {
  for (const Fault& fault : faults) {
    if (fault.signal == signal) return fault.name;
  }
  return "?";
}

struct Date {
  std::uint64_t year, month, day, hour, minute, second;
};

// gmtime is not for signal handlers. Years begin in March here, so that the leap day comes last.
Date dateOf(std::uint64_t seconds) {
  constexpr std::uint64_t day = 86'400, daysOf400Years = 146'097, daysBefore1970 = 719'468;
  const std::uint64_t days = seconds / day + daysBefore1970, rest = seconds % day;
  const std::uint64_t inEra = days % daysOf400Years;
  const std::uint64_t year = (inEra - inEra / 1460 + inEra / 36'524 - inEra / 146'096) / 365;
  const std::uint64_t inYear = inEra - (365 * year + year / 4 - year / 100);
  const std::uint64_t month = (5 * inYear + 2) / 153;
  return {days / daysOf400Years * 400 + year + (month > 9 ? 1 : 0),
          month > 9 ? month - 9 : month + 3,
          inYear - (153 * month + 2) / 5 + 1,
          rest / 3600,
          rest / 60 % 60,
          rest % 60};
}

// "Quorin-2026-03-03-090507-4711.ips": by time, and apart for two processes.
int openReport(const Date& date) {
  SafeText name;
  name.add("Quorin-").number(date.year, 10, 4).add("-").number(date.month, 10, 2).add("-");
  name.number(date.day, 10, 2).add("-").number(date.hour, 10, 2).number(date.minute, 10, 2);
  name.number(date.second, 10, 2).add("-").number(static_cast<std::uint64_t>(getpid()));
  name.add(".ips");
  return openat(prepared.folder, name.held(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
}

void tellWhen(SafeText& to, const Date& date) {
  to.add("Date: ").number(date.year, 10, 4).add("-").number(date.month, 10, 2).add("-");
  to.number(date.day, 10, 2).add("T").number(date.hour, 10, 2).add(":");
  to.number(date.minute, 10, 2).add(":").number(date.second, 10, 2).add("Z\n");
}

// The name as the system keeps it, at most fifteen letters.
void tellThread(SafeText& to, int tasks, const char* id) {
  SafeText path;
  path.add(id).add("/comm");
  char name[32];
  const int file = openat(tasks, path.held(), O_RDONLY | O_CLOEXEC);
  const ssize_t count = file < 0 ? 0 : read(file, name, sizeof name);
  if (file >= 0) close(file);
  to.add("  ").add(id).add(" ");
  if (count > 0) {
    to.add(name, static_cast<std::size_t>(count));
  } else {
    to.add("?\n");
  }
}

// opendir asks for memory; the system call does not.
void tellThreads(SafeText& to) {
  struct Entry {
    std::uint64_t inode, offset;
    std::uint16_t size;
    std::uint8_t type;
    char name[1];
  };
  to.add("Threads:\n");
  const int tasks = open("/proc/self/task", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (tasks < 0) return;
  for (long count;
       (count = syscall(SYS_getdents64, tasks, prepared.entries, sizeof prepared.entries)) > 0;) {
    for (long at = 0; at < count;) {
      const auto* const entry = reinterpret_cast<const Entry*>(prepared.entries + at);
      if (entry->name[0] != '.') tellThread(to, tasks, entry->name);
      at += entry->size;
    }
  }
  close(tasks);
}

void tellStack(SafeText& to) {
  to.add("Stack of the thread that died:\n");
  to.flush();  // of a stack that is spoilt nothing can be read, and that ends it all
  prepared.modules.read();
  const int count = backtrace(prepared.frames, mostFrames);
  for (int i = 0; i < count; ++i) {
    to.add("  ").number(static_cast<std::uint64_t>(i)).add(" ");
    prepared.modules.tell(to, reinterpret_cast<std::uintptr_t>(prepared.frames[i]));
    to.add("\n");
  }
}

void report(int signal, const siginfo_t& information) {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  const Date date = dateOf(static_cast<std::uint64_t>(now.tv_sec));
  for (const int spare : prepared.spares) close(spare);
  const int file = openReport(date);
  if (file < 0) return;
  {
    SafeText to(file);
    to.add(prepared.heading);
    tellWhen(to, date);
    to.add("Signal: ").number(static_cast<std::uint64_t>(signal)).add(" ").add(nameOf(signal));
    const bool hasAddress = signal != SIGABRT && information.si_code > 0;
    if (hasAddress) to.add(" at ").hex(reinterpret_cast<std::uintptr_t>(information.si_addr));
    to.add("\nThread: ").number(static_cast<std::uint64_t>(syscall(SYS_gettid))).add("\n");
    tellThreads(to);
    tellStack(to);
  }
  close(file);
}

// The signal is held back until the handler returns. A fault in the handler itself ends it; a
// thread that dies meanwhile waits for the end.
void handle(int signal, siginfo_t* information, void*) {
  const long self = syscall(SYS_gettid);
  long first = 0;
  if (prepared.reporter.compare_exchange_strong(first, self)) {
    report(signal, *information);
  } else if (first != self) {
    for (;;) pause();
  }
  std::signal(signal, SIG_DFL);
  raise(signal);
}

}  // namespace

void install(const std::filesystem::path& reports, const std::string& version) {
  try {
    FileSystem::real().makeFolders(reports);
  } catch (const FileError&) {
    return;
  }
  prepared.folder = open(reports.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (prepared.folder < 0) return;
  for (int& spare : prepared.spares) spare = fcntl(prepared.folder, F_DUPFD_CLOEXEC, 0);
  const std::string text = "Quorin " + version + "\n";
  prepared.heading[text.copy(prepared.heading, sizeof prepared.heading - 1)] = '\0';
  backtrace(prepared.frames, 1);  // loads what it needs
  static const SecondStack ofMainThread;
  static_cast<void>(ofMainThread);
  setOnThreadNamed(prepareThread);
  struct sigaction action {};
  action.sa_sigaction = handle;
  action.sa_flags = SA_SIGINFO | SA_ONSTACK;
  for (const Fault& fault : faults) sigaction(fault.signal, &action, nullptr);
}

}  // namespace quorin::CrashReporter
