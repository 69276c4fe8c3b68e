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

#include "kit/platform/Thread.h"
#include "kit/value/Marshal.h"
#include "tools/quorinctl/LineBuffer.h"
#include "tools/quorinctl/Place.h"
#include "tools/quorinctl/RequestLine.h"
#include "tools/quorinctl/Session.h"
#include "tools/quorinctl/Waiter.h"

namespace quorin::ctl {

namespace {

constexpr int badCall = 2;
constexpr int signalled = 128;
constexpr std::size_t longestLine = 16 * 1024 * 1024;

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
  const Opening opening = openAndWait(session_, waiter_, workbook);
  if (opening.failure)
    throw Unserved(workbook ? "cannot open " + workbook->string() + ": " + *opening.failure
                            : *opening.failure);
  return !opening.isEnded;
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
  if (command.workbook) requireWorkbook(*command.workbook);
  Place place = command.attach ? attachedPlace() : privatePlace(command.data);
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
