#include "tools/quorinctl/Serve.h"

#include <csignal>
#include <cstdio>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <variant>

#include "host/calc/PrivateOffice.h"
#include "host/calc/RunningOffice.h"
#include "kit/platform/Thread.h"
#include "kit/platform/XDGFolders.h"
#include "kit/support/FolderLock.h"
#include "kit/value/Marshal.h"
#include "tools/quorinctl/LineBuffer.h"
#include "tools/quorinctl/RequestLine.h"
#include "tools/quorinctl/Session.h"
#include "tools/quorinctl/Targets.h"
#include "tools/quorinctl/Waiter.h"

namespace quorin::ctl {

namespace {

constexpr int badCall = 2;
constexpr int signalled = 128;
constexpr std::size_t longestLine = 16 * 1024 * 1024;

// Why the call cannot be served.
class Unserved : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Removes a folder at the end of its scope. Whatever goes wrong with that stays untold.
class FolderRemoval {
 public:
  explicit FolderRemoval(std::filesystem::path folder) : folder_(std::move(folder)) {}
  ~FolderRemoval() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  FolderRemoval(const FolderRemoval&) = delete;
  FolderRemoval& operator=(const FolderRemoval&) = delete;

 private:
  const std::filesystem::path folder_;
};

struct Place {
  std::unique_ptr<FolderRemoval> folder;  // first: everything else ends before it goes
  std::optional<FolderLock> lock;
  Session::Parts parts;
};

std::optional<FolderLock> locked(const std::filesystem::path& folder) {
  std::optional<FolderLock> lock = FolderLock::acquire(folder);
  if (!lock) throw Unserved(folder.string() + " is in use by another Quorin");
  return lock;
}

// Without a folder of the caller's the private run's files are kept in the office's own, which is
// removed with the office, whatever happens to this process.
Place privatePlace(const ServeCommand& command) {
  if (command.workbook && !std::filesystem::is_regular_file(*command.workbook))
    throw Unserved("no such workbook: " + command.workbook->string());
  Place place;
  std::filesystem::path data;
  if (command.data) {
    data = std::filesystem::absolute(*command.data);
    place.lock = locked(data / "Quorin");
  }
  auto office = std::make_unique<host::calc::PrivateOffice>();
  if (!command.data) {
    data = office->folder() / "data";
    // An office that died takes the folder with it, and the log makes it anew.
    place.folder = std::make_unique<FolderRemoval>(office->folder());
  }
  place.parts.target = std::make_unique<PrivateTarget>(office->folder());
  place.parts.office = std::move(office);
  place.parts.log = data / "Logs" / "Quorin" / "quorin.log";
  place.parts.records = data / "Quorin";
  return place;
}

// The user's own folders, as Quorin itself uses them; so never while it runs.
Place attachedPlace() {
  const XDGFolders folders(processEnvironment());
  Place place;
  place.parts.records = folders.applicationSupport() / "Quorin";
  place.parts.log = folders.library() / "Logs" / "Quorin" / "quorin.log";
  place.lock = locked(place.parts.records);
  const auto discovery = std::make_shared<host::calc::OfficeDiscovery>();
  place.parts.target = std::make_unique<RunningTarget>(discovery);
  place.parts.office = std::make_unique<host::calc::RunningOffice>(discovery);
  return place;
}

class Server {
 public:
  Server(Session& session, Waiter& waiter, bool timing)
      : session_(session), waiter_(waiter), timing_(timing) {}

  // Both are false when a signal came or nobody reads what is written.
  bool open(const std::optional<std::filesystem::path>& workbook);
  bool run();

 private:
  bool answer(const std::string& line);
  bool write(const JSONValue& id, Bridge::Reply reply, std::optional<double> milliseconds);

  Session& session_;
  Waiter& waiter_;
  const bool timing_;
};

bool Server::open(const std::optional<std::filesystem::path>& workbook) {
  std::optional<std::string> failure;
  std::optional<std::filesystem::path> file;
  if (workbook) file = std::filesystem::absolute(*workbook);
  session_.open(file, [this, &failure](std::optional<std::string> told) {
    failure = std::move(told);
    waiter_.done();
  });
  if (waiter_.waitForDone() == Waiter::Event::signal) {
    // The work refers to this frame, so it is waited for; it fails as soon as it can.
    session_.quit();
    waiter_.waitForDoneAlone();
    return false;
  }
  if (failure)
    throw Unserved(workbook ? "cannot open " + workbook->string() + ": " + *failure : *failure);
  return true;
}

bool Server::run() {
  LineBuffer lines(longestLine);
  for (bool more = true; more;) {
    if (waiter_.waitForInput() == Waiter::Event::signal) return false;
    const std::string bytes = Waiter::readInput();
    more = !bytes.empty();
    if (more) {
      lines.append(bytes);
    } else {
      lines.end();
    }
    while (const std::optional<LineBuffer::Line> line = lines.next()) {
      if (line->tooLong) {
        const Refused refusal = tooLong(longestLine);
        if (!write(refusal.id, refusal.reply, std::nullopt)) return false;
      } else if (line->text.find_first_not_of(" \t") != std::string::npos && !answer(line->text)) {
        return false;
      }
    }
  }
  return true;
}

bool Server::answer(const std::string& line) {
  std::variant<Request, Refused> parsed = parseRequest(line);
  if (const Refused* const refusal = std::get_if<Refused>(&parsed))
    return write(refusal->id, refusal->reply, std::nullopt);
  Request& request = std::get<Request>(parsed);
  Bridge::Reply reply;
  double milliseconds = 0;
  session_.serve(std::move(request.verb), std::move(request.args),
                 [this, &reply, &milliseconds](Bridge::Reply served, double took) {
                   reply = std::move(served);
                   milliseconds = took;
                   waiter_.done();
                 });
  if (waiter_.waitForDone() == Waiter::Event::signal) {
    session_.quit();
    waiter_.waitForDoneAlone();
    return false;
  }
  return write(request.id, std::move(reply), timing_ ? std::optional(milliseconds) : std::nullopt);
}

bool Server::write(const JSONValue& id, Bridge::Reply reply, std::optional<double> milliseconds) {
  // Taking a large reply apart takes a while: that waits until the line is written.
  const JSONValue object = replyObject(id, std::move(reply), milliseconds);
  const std::string line = Marshal::encode(object) + "\n";
  return std::fwrite(line.data(), 1, line.size(), stdout) == line.size() &&
         std::fflush(stdout) == 0;
}

int served(const ServeCommand& command, Waiter& waiter) {
  Place place = command.attach ? attachedPlace() : privatePlace(command);
  Session session(std::move(place.parts));
  if (session.compileError()) throw Unserved(*session.compileError());
  Server server(session, waiter, command.timing);
  // The user's Calc may not be there yet, or go and come back: the replies tell.
  if ((command.attach || server.open(command.workbook)) && server.run()) return 0;
  return waiter.signalNumber() != 0 ? signalled + waiter.signalNumber() : signalled + SIGPIPE;
}

}  // namespace

int serve(const ServeCommand& command) {
  std::signal(SIGPIPE, SIG_IGN);
  Waiter waiter;
  MainThread::record();
  try {
    return served(command, waiter);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "quorinctl: %s\n", error.what());
    return badCall;
  }
}

}  // namespace quorin::ctl
