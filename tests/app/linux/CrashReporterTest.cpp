#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <thread>

#include "app/linux/CrashReporter.h"
#include "kit/platform/Thread.h"
#include "kit/support/ISO.h"
#include "kit/support/ProblemReport.h"
#include "tests/fakes/Files.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

constexpr int neverDied = 0;

class CrashReporterTest : public testing::Test {
 protected:
  // A process that reports its end and does as told. The signal that ended it.
  int dieOf(const std::function<void()>& deed) {
    const pid_t child = fork();
    if (child == 0) {
      const rlimit none{0, 0};
      setrlimit(RLIMIT_CORE, &none);
      const int quiet = open("/dev/null", O_WRONLY | O_CLOEXEC);
      dup2(quiet, STDERR_FILENO);
      CrashReporter::install(reports, "1.2.3");
      deed();
      _exit(neverDied);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (!WIFSIGNALED(status)) ADD_FAILURE() << "ended with " << std::hex << status;
    return WIFSIGNALED(status) ? WTERMSIG(status) : neverDied;
  }

  std::string report() {
    const auto file = ProblemReport::crash(std::nullopt, reports, "Quorin-");
    return file ? readFile(*file) : std::string();
  }

  TemporaryFolder folder;
  const std::filesystem::path reports = folder / "Logs" / "DiagnosticReports";
};

void touchNothing() {
  volatile int* volatile nowhere = nullptr;
  *nowhere = 1;
}

// Until no stack is left.
int descend(int depth) {
  volatile char room[4096] = {};
  room[0] = static_cast<char>(depth);
  return depth < 0 ? 0 : descend(depth + 1) + room[0];
}

void onThread(const std::string& name, const std::function<void()>& deed) {
  std::thread([&] {
    nameCurrentThread(name);
    deed();
  }).join();
}

}  // namespace

TEST_F(CrashReporterTest, TellsOfEveryFaultAndLetsItEndTheProcess) {
  const std::vector<std::pair<int, std::string>> faults{{SIGSEGV, "11 SIGSEGV"},
                                                        {SIGBUS, "7 SIGBUS"},
                                                        {SIGILL, "4 SIGILL"},
                                                        {SIGFPE, "8 SIGFPE"},
                                                        {SIGABRT, "6 SIGABRT"}};
  for (const auto& [signal, name] : faults) {
    EXPECT_EQ(dieOf([number = signal] { kill(getpid(), number); }), signal) << name;
    EXPECT_THAT(report(), HasSubstr("\nSignal: " + name + "\n"));
    std::filesystem::remove_all(reports);
  }
  EXPECT_EQ(dieOf([] { kill(getpid(), SIGTERM); }), SIGTERM);
  EXPECT_EQ(report(), "");
}

TEST_F(CrashReporterTest, SaysWhatItWasAndWhere) {
  const ISO::Date before =
      ISO::fromClock(std::chrono::system_clock::now()) - std::chrono::seconds(1);
  EXPECT_EQ(dieOf(touchNothing), SIGSEGV);
  const auto file = ProblemReport::crash(before, reports, "Quorin-");
  ASSERT_TRUE(file);
  EXPECT_THAT(file->filename().string(),
              testing::MatchesRegex("Quorin-20[0-9]{2}-[0-9]{2}-[0-9]{2}-[0-9]{6}-[0-9]+\\.ips"));
  const std::string text = readFile(*file);
  EXPECT_THAT(text, testing::StartsWith("Quorin 1.2.3\nDate: 20"));
  EXPECT_THAT(text, HasSubstr("\nSignal: 11 SIGSEGV at 0x0\n"));
  EXPECT_THAT(text, ContainsRegex("\nThreads:\n  [0-9]+ "));
  EXPECT_THAT(text, ContainsRegex("\nStack of the thread that died:\n"));
  EXPECT_THAT(text, ContainsRegex("\n  [0-9]+ desktop_test\\+0x[0-9a-f]+\n"));
  EXPECT_THAT(text, ContainsRegex("libc\\.so\\.6\\+0x[0-9a-f]+\n"));
  // The date in the report is the file's own.
  const std::size_t date = text.find("Date: ") + 6;
  const auto told = ISO::date(text.substr(date, 20));
  ASSERT_TRUE(told);
  EXPECT_LT(std::chrono::abs(*ProblemReport::mtime(*file) - *told), std::chrono::seconds(10));
}

TEST_F(CrashReporterTest, NamesTheThreadThatDiedAmongTheOthers) {
  EXPECT_EQ(dieOf([] { onThread("com.quorin.app.excel.gate", touchNothing); }), SIGSEGV);
  const std::string text = report();
  const std::size_t thread = text.find("\nThread: ") + 9;
  const std::string id = text.substr(thread, text.find('\n', thread) - thread);
  EXPECT_THAT(text, HasSubstr("\n  " + id + " .app.excel.gate\n"));
}

TEST_F(CrashReporterTest, TellsOfAStackThatOverflows) {
  EXPECT_EQ(dieOf([] { descend(0); }), SIGSEGV);
  EXPECT_THAT(report(), HasSubstr("desktop_test+0x"));
  std::filesystem::remove_all(reports);
  EXPECT_EQ(dieOf([] { onThread("qx.excel", [] { descend(0); }); }), SIGSEGV);
  EXPECT_THAT(report(), HasSubstr("desktop_test+0x"));
}

TEST_F(CrashReporterTest, TellsOfAnExceptionThatNobodyCaught) {
  EXPECT_EQ(dieOf([] { std::thread([] { throw 1; }).join(); }), SIGABRT);
  EXPECT_THAT(report(), HasSubstr("SIGABRT\n"));
}

TEST_F(CrashReporterTest, WritesWithoutMemoryAndWithoutFreeFiles) {
  EXPECT_EQ(dieOf([] {
              const rlimit few{16, 16};
              setrlimit(RLIMIT_NOFILE, &few);
              while (open("/dev/null", O_RDONLY | O_CLOEXEC) >= 0) {
              }
              const rlimit none{1, 1};
              setrlimit(RLIMIT_AS, &none);
              touchNothing();
            }),
            SIGSEGV);
  EXPECT_THAT(report(), ContainsRegex("desktop_test\\+0x[0-9a-f]+\n"));
}

TEST_F(CrashReporterTest, LeavesOneReportWhenSeveralThreadsDie) {
  EXPECT_EQ(dieOf([] {
              std::vector<std::thread> all;
              for (int i = 0; i < 8; ++i) all.emplace_back(touchNothing);
              for (std::thread& one : all) one.join();
            }),
            SIGSEGV);
  std::size_t count = 0;
  for ([[maybe_unused]] const auto& one : std::filesystem::directory_iterator(reports)) ++count;
  EXPECT_EQ(count, 1U);
  EXPECT_THAT(report(), HasSubstr("desktop_test+0x"));
}

TEST_F(CrashReporterTest, HoldsNothingOfTheMemory) {
  const std::string secret = "4711.25 EUR for Halden";
  EXPECT_EQ(dieOf([&] {
              const std::vector<std::string> cells(1000, secret);
              touchNothing();
            }),
            SIGSEGV);
  ASSERT_NE(report(), "");
  EXPECT_THAT(report(), Not(HasSubstr("Halden")));
}

TEST_F(CrashReporterTest, DiesAsEverWhereNoReportCanBeWritten) {
  writeFile(folder / "Logs", "a file in the way");
  EXPECT_EQ(dieOf(touchNothing), SIGSEGV);
}

}  // namespace quorin
