// An office that dies, stops, restarts or is left behind. Each test has an office of its own.
#include <algorithm>
#include <array>
#include <dlfcn.h>
#include <filesystem>
#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <uno/threadpool.h>
#include <utility>

#include "host/Address.h"
#include "host/calc/CalcSpreadsheet.h"
#include "host/calc/office/OfficeConnection.h"
#include "host/calc/office/PrivateOffice.h"
#include "host/calc/uno/OfficeFiles.h"
#include "tests/calc/Chain.h"
#include "tests/calc/ChangingOffice.h"
#include "tests/calc/XlsxFile.h"
#include "tests/fakes/Eventually.h"
#include "tests/fakes/StoppedProcess.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin::host::calc {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// Waits for what another process does; there is nothing to be told by.
bool eventually(const std::function<bool()>& condition, std::chrono::seconds patience = 20s) {
  const auto deadline = Clock::now() + patience;
  while (!condition()) {
    if (Clock::now() > deadline) return false;
    std::this_thread::sleep_for(5ms);
  }
  return true;
}

bool isGone(pid_t process) {
  return ::kill(process, 0) != 0;
}

int numberOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const SpreadsheetError& error) {
    return error.number();
  }
  return 0;
}

// What happens between a message to the office and the wait for its answer.
std::function<void()> beforeWaiting;

class CalcFaults : public testing::Test {
 protected:
  CalcFaults()
      : office(std::make_shared<PrivateOffice>()),
        source(std::make_shared<ChangingOffice>(office)),
        calc(source) {
    fakes::writeXlsx(fakes::knownWorkbook(), folder / "Known.xlsx");
    calc.openWorkbook((folder / "Known.xlsx").string());
  }
  RangeRef cell(const char* address) const {
    return {{"Known.xlsx", "Data"}, parseA1(address).value()};
  }

  TemporaryFolder folder;
  std::shared_ptr<PrivateOffice> office;
  std::shared_ptr<ChangingOffice> source;
  CalcSpreadsheet calc;
};

TEST_F(CalcFaults, FailsTheCallUnderWhichTheOfficeDies) {
  ASSERT_TRUE(stopProcess(office->process()));  // so that the call is surely under way
  auto call =
      std::async(std::launch::async, [&] { return numberOf([&] { calc.values(cell("A1")); }); });
  EXPECT_EQ(call.wait_for(300ms), std::future_status::timeout);
  const auto killed = Clock::now();
  ASSERT_EQ(::kill(office->process(), SIGKILL), 0);
  EXPECT_EQ(call.get(), -609);
  EXPECT_LT(Clock::now() - killed, 500ms);
  EXPECT_TRUE(eventually([&] { return !calc.isRunning(); }));
  EXPECT_EQ(numberOf([&] { calc.values(cell("A1")); }), -600);
}

// The call thread was held up so long that everybody else knows of the death already.
TEST_F(CalcFaults, FailsACallThatComesToWaitTooLate) {
  const pid_t process = office->process();
  beforeWaiting = [&] {
    ::kill(process, SIGKILL);
    EXPECT_TRUE(eventually([&] { return isGone(process); }));
    std::this_thread::sleep_for(500ms);  // there is nothing to be told by
  };
  EXPECT_EQ(numberOf([&] { calc.values(cell("A1")); }), -609);
  EXPECT_FALSE(beforeWaiting);
}

TEST_F(CalcFaults, OutlivesAPipeThatTheOfficeClosed) {
  ::raise(SIGPIPE);  // what writing to it brings
  EXPECT_EQ(calc.values(cell("A7")).cells, std::vector<CellValue>{42.0});
}

TEST_F(CalcFaults, KeepsACallRunningWhileTheOfficeIsStopped) {
  ASSERT_TRUE(stopProcess(office->process()));
  auto call = std::async(std::launch::async, [&] { return calc.values(cell("A7")).cells; });
  EXPECT_EQ(call.wait_for(1s), std::future_status::timeout);
  ASSERT_EQ(::kill(office->process(), SIGCONT), 0);
  EXPECT_EQ(call.get(), std::vector<CellValue>{42.0});
}

TEST_F(CalcFaults, EndsACallAtOnceForQuitting) {
  ASSERT_TRUE(stopProcess(office->process()));
  auto call =
      std::async(std::launch::async, [&] { return numberOf([&] { calc.values(cell("A1")); }); });
  EXPECT_EQ(call.wait_for(300ms), std::future_status::timeout);
  calc.quit();
  ASSERT_EQ(call.wait_for(500ms), std::future_status::ready);
  EXPECT_EQ(call.get(), -600);
  EXPECT_EQ(numberOf([&] { calc.workbooks(); }), -600);
}

TEST_F(CalcFaults, TimesOutConnectingToAStoppedOffice) {
  ASSERT_TRUE(stopProcess(office->process()));
  CalcSpreadsheet another(office, CalcOptions{.patience = 200ms});
  const auto started = Clock::now();
  EXPECT_EQ(numberOf([&] { another.workbooks(); }), -1712);
  EXPECT_LT(Clock::now() - started, 700ms);
  ASSERT_EQ(::kill(office->process(), SIGCONT), 0);
  // On a busy machine connecting may take longer than this one waits.
  std::vector<std::string> found;
  EXPECT_TRUE(eventually([&] { return numberOf([&] { found = another.workbooks(); }) == 0; }));
  EXPECT_EQ(found, std::vector<std::string>{"Known.xlsx"});
}

// A pipe that has its file and refuses, as that of an office which is just starting.
class RefusingPipe {
 public:
  explicit RefusingPipe(const std::string& name) : file_(pipeFile(name)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    file_.string().copy(address.sun_path, sizeof address.sun_path - 1);
    bound_ = ::bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  }
  ~RefusingPipe() {
    ::close(socket_);
    std::filesystem::remove(file_);
  }
  RefusingPipe(const RefusingPipe&) = delete;
  RefusingPipe& operator=(const RefusingPipe&) = delete;

  bool isBound() const { return bound_; }
  void becomes(const std::filesystem::path& other) const {
    const std::filesystem::path link = file_.string() + ".new";
    std::filesystem::create_hard_link(other, link);
    std::filesystem::rename(link, file_);
  }

 private:
  const std::filesystem::path file_;
  const int socket_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  bool bound_ = false;
};

TEST_F(CalcFaults, AsksAPipeThatRefusesAgain) {
  const std::string own = office->folder().filename().string(), name = own + "-refusing";
  const RefusingPipe pipe(name);
  ASSERT_TRUE(pipe.isBound());
  const auto connect = [&](std::chrono::milliseconds patience) {
    return numberOf([&] { OfficeConnection({office->process(), name}, patience); });
  };
  EXPECT_EQ(connect(100ms), -1712);
  auto call = std::async(std::launch::async, connect, 20s);
  EXPECT_EQ(call.wait_for(100ms), std::future_status::timeout);
  pipe.becomes(pipeFile(own));
  EXPECT_EQ(call.get(), 0);
}

unsigned openTo(const std::filesystem::path& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0 ? status.st_mode & 0777u : 0xffffu;
}

TEST(PrivateOfficeTest, LetsNobodyElseInWhateverTheUmask) {
  const mode_t mask = ::umask(0);
  PrivateOffice office;
  ::umask(mask);
  const std::string pipe = office.open().pipe;
  for (const auto& path : {office.folder(), pipeFile(pipe),
                           pipeFile(singleInstancePipe(fileUrl(office.folder() / "profile")))}) {
    EXPECT_EQ(openTo(path) & 077u, 0u) << path;
  }
}

// As root it would make the system's for itself alone, and keep all other users' offices from
// starting.
TEST(PrivateOfficeTest, KeepsItsCacheOfExtensionsInItsOwnFolder) {
  PrivateOffice office;
  office.open();
  EXPECT_TRUE(std::filesystem::is_directory(office.folder() / "shared" / "uno_packages"));
}

TEST(PipeName, IsNewEachTime) {
  const std::string one = newPipeName("quorin-"), other = newPipeName("quorin-");
  EXPECT_EQ(one.size(), std::string("quorin-").size() + 32);
  EXPECT_NE(one, other);
}

TEST(OwnPipe, IsToldFromWhatOthersPutInItsPlace) {
  const std::string name = newPipeName("quorin-test-");
  EXPECT_FALSE(isOwnPipe(name));
  {
    const RefusingPipe own(name);
    ASSERT_TRUE(own.isBound());
    EXPECT_TRUE(isOwnPipe(name));
    if (::geteuid() == 0) {
      constexpr uid_t nobody = 65534;
      ASSERT_EQ(::lchown(pipeFile(name).c_str(), nobody, nobody), 0);
      EXPECT_EQ(numberOf([&] { isOwnPipe(name); }), -600);
      EXPECT_EQ(numberOf([&] { OfficeConnection({::getpid(), name}, 100ms); }), -600);
    }
  }
  std::filesystem::create_symlink("/run/elsewhere", pipeFile(name));
  EXPECT_EQ(numberOf([&] { isOwnPipe(name); }), -600);
  std::filesystem::remove(pipeFile(name));
}

// What an office leaves on the machine while it runs.
struct Traces {
  explicit Traces(PrivateOffice& office)
      : process(office.process()),
        files{office.folder(), pipeFile(office.folder().filename().string()),
              pipeFile(singleInstancePipe(fileUrl(office.folder() / "profile")))} {}
  bool allThere() const {
    return !isGone(process) && std::all_of(files.begin(), files.end(), [](const auto& file) {
      return std::filesystem::exists(file);
    });
  }
  bool allGone() const {
    return isGone(process) && std::none_of(files.begin(), files.end(), [](const auto& file) {
             return std::filesystem::exists(file);
           });
  }
  pid_t process;
  std::vector<std::filesystem::path> files;
};

TEST_F(CalcFaults, LeavesNothingBehind) {
  EXPECT_EQ(calc.evaluate("B2*2+A7", {"Known.xlsx", "Data"}), Evaluation(CellValue(45.0)));
  std::vector<std::string> beside;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
    beside.push_back(entry.path().filename());
  }
  EXPECT_EQ(beside, std::vector<std::string>{"Known.xlsx"});  // no lock file while it is open
  const Traces traces(*office);
  EXPECT_TRUE(traces.allThere());
  calc.quit();
  source->replace(nullptr);
  office.reset();
  EXPECT_TRUE(traces.allGone());
}

TEST_F(CalcFaults, StartsWithoutTryingEveryWayToDraw) {
  const std::filesystem::path user = office->folder() / "profile/user";
  ASSERT_TRUE(std::filesystem::exists(user / "registrymodifications.xcu"));
  EXPECT_FALSE(std::filesystem::exists(user / "GraphicsRenderTests.log"));
}

TEST_F(CalcFaults, ConnectsAgainToAnOfficeStartedAnew) {
  const auto evaluated = [&] { return calc.evaluate("B2*2+A7", {"Known.xlsx", "Data"}); };
  EXPECT_EQ(evaluated(), Evaluation(CellValue(45.0)));
  const std::string scratch = calc.makeWorkbook();
  ASSERT_TRUE(stopProcess(office->process()));
  auto call = std::async(std::launch::async, [&] { return numberOf(evaluated); });
  EXPECT_EQ(call.wait_for(300ms), std::future_status::timeout);
  ASSERT_EQ(::kill(office->process(), SIGKILL), 0);
  EXPECT_EQ(call.get(), -609);
  EXPECT_TRUE(eventually([&] { return !calc.isRunning(); }));
  EXPECT_NE(numberOf([&] { calc.workbooks(); }), 0);
  office = std::make_shared<PrivateOffice>();
  source->replace(office);
  calc.openWorkbook((folder / "Known.xlsx").string());
  EXPECT_EQ(calc.values(cell("A7")).cells, std::vector<CellValue>{42.0});
  EXPECT_EQ(evaluated(), Evaluation(CellValue(45.0)));
  EXPECT_EQ(calc.workbooks(), std::vector<std::string>{"Known.xlsx"});
  EXPECT_EQ(numberOf([&] { calc.closeWorkbook(scratch); }), -1728);
  EXPECT_EQ(Chain(calc, {"[Known.xlsx]Data!B2*2", "A1+42"}).value(), CellValue(45.0));
}

// Ends every connection of this process to the office, whose end of them goes on.
int hangUp(const std::string& pipe) {
  int count = 0;
  std::vector<int> open;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
    open.push_back(std::atoi(entry.path().filename().c_str()));
  for (const int socket : open) {
    sockaddr_un peer{};
    socklen_t length = sizeof peer - 1;
    if (::getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &length) != 0) continue;
    if (peer.sun_family != AF_UNIX || !std::string(peer.sun_path).ends_with("_" + pipe)) continue;
    if (::shutdown(socket, SHUT_RDWR) == 0) ++count;
  }
  return count;
}

TEST_F(CalcFaults, ConnectsAgainToTheSameOffice) {
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(calc.evaluate("B2*2+A7", {"Known.xlsx", "Data"}), Evaluation(CellValue(45.0)));
    calc.setHidden(cell("A9"), Axis::rows, i % 2 == 0);
    EXPECT_EQ(calc.hidden(cell("A9"), Axis::rows), i % 2 == 0);
    ASSERT_GT(hangUp(office->open().pipe), 0);
    // Some calls may fail until the end of the connection is noticed.
    ASSERT_TRUE(eventually([&] { return numberOf([&] { calc.values(cell("A7")); }) == 0; }, 60s));
    EXPECT_EQ(calc.values(cell("A7")).cells, std::vector<CellValue>{42.0});
    // The keeper of the connection that is gone hides what was shown through it.
    EXPECT_TRUE(eventually([&] { return calc.hidden(cell("A9"), Axis::rows) == true; }, 60s));
  }
}

TEST_F(CalcFaults, RefusesWhatIsNoWorkbook) {
  EXPECT_NE(numberOf([&] { calc.openWorkbook((folder / "Gone.xlsx").string()); }), 0);
  EXPECT_EQ(calc.workbooks(), std::vector<std::string>{"Known.xlsx"});
}

// The owner of an office, in a process of its own that can be ended in any way.
class OwnerDies : public testing::TestWithParam<int> {};

TEST_P(OwnerDies, AndItsOfficeGoesToo) {
  std::array<int, 2> report{};
  ASSERT_EQ(::pipe(report.data()), 0);
  const pid_t owner = ::fork();
  if (owner == 0) {
    PrivateOffice office;
    office.open();
    const std::string text =
        std::to_string(office.process()) + " " + office.folder().string() + "\n";
    if (::write(report[1], text.data(), text.size()) < 0) ::_exit(1);
    for (;;) ::pause();
  }
  ::close(report[1]);
  std::string text;
  for (char c = 0; ::read(report[0], &c, 1) == 1 && c != '\n';) text += c;
  ::close(report[0]);
  const std::size_t blank = text.find(' ');
  ASSERT_NE(blank, std::string::npos);
  const pid_t process = std::stoi(text);
  const std::filesystem::path folder = text.substr(blank + 1);
  EXPECT_FALSE(isGone(process));
  ASSERT_EQ(::kill(owner, GetParam()), 0);
  ::waitpid(owner, nullptr, 0);
  EXPECT_TRUE(eventually([&] {
    return isGone(process) && !std::filesystem::exists(folder) &&
           !std::filesystem::exists(pipeFile(folder.filename().string())) &&
           !std::filesystem::exists(pipeFile(singleInstancePipe(fileUrl(folder / "profile"))));
  }));
}

INSTANTIATE_TEST_SUITE_P(OfEverySignal, OwnerDies,
                         testing::Values(SIGKILL, SIGTERM, SIGINT, SIGHUP));

}  // namespace
}  // namespace quorin::host::calc

// Stands before the libraries' own, in which a call waits for its answer.
extern "C" void uno_threadpool_enter(uno_ThreadPool pool, void** job) SAL_THROW_EXTERN_C() {
  using namespace quorin::host::calc;
  static const auto real =
      reinterpret_cast<decltype(&uno_threadpool_enter)>(::dlsym(RTLD_NEXT, "uno_threadpool_enter"));
  if (const auto action = std::exchange(beforeWaiting, nullptr)) action();
  real(pool, job);
}
