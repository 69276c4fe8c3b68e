#include "tests/kit/crash/Harness.h"

#include <signal.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>

#include "host/Spreadsheet.h"
#include "tests/kit/crash/SpreadsheetWire.h"

namespace quorin::crash {

namespace {

JSONValue carriedOut(const Harness::Call& call, const std::string& name,
                     const JSONValue& arguments) {
  try {
    return JSONValue::Object{{"result", call(name, arguments)}};
  } catch (const host::SpreadsheetError& error) {
    return JSONValue::Object{{"error", error.number()}, {"message", error.what()}};
  }
}

bool isRead(const std::string& point) {
  return point.starts_with("read ") || point.starts_with("status ");
}

// Of the last point: 0 for none.
int errorAt(const Fate& fate, const std::vector<std::string>& points) {
  const std::size_t point = points.size() - 1;
  const bool later = fate.failsFromThereOn && point > fate.failAt && !isRead(points.back());
  return point == fate.failAt || later ? fate.number : 0;
}

}  // namespace

Harness::Harness(const std::vector<std::string>& command) {
  constexpr int socketThere = 3;
  auto [ours, theirs] = Link::pair();
  control_ = std::move(ours);
  std::vector<std::string> texts = command;
  texts.insert(texts.begin() + 1, std::to_string(socketThere));
  std::vector<char*> arguments;
  for (std::string& text : texts) arguments.push_back(text.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, theirs.socket(), socketThere);
  const int failed =
      ::posix_spawn(&program_, arguments[0], &actions, nullptr, arguments.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  if (failed != 0) throw std::runtime_error("cannot start " + command[0]);
}

// The program ends when nobody is at this end any more.
Harness::~Harness() {
  { const Link closed = std::move(control_); }
  while (::waitpid(program_, nullptr, 0) < 0 && errno == EINTR) {
  }
}

int Harness::number() {
  const auto message = control_.receive();
  if (!message) throw std::runtime_error("the program of the processes is gone");
  return integer(*message);
}

Life Harness::run(const std::filesystem::path& folder, const std::vector<Request>& requests,
                  const Call& call, const Fate& fate) {
  std::optional<Link> ours;
  {
    auto [here, there] = Link::pair();
    ours.emplace(std::move(here));
    control_.sendWith(there, folder.string());
  }
  const pid_t process = number();
  Life life;
  std::size_t next = 0;
  while (const auto message = ours->receive()) {
    if (const JSONValue* const answer = message->member("answer")) {
      if (next > 0) life.answers.push_back(*answer);
      JSONValue request = nullptr;
      if (next < requests.size())
        request = JSONValue::Array{requests[next].verb, requests[next].args};
      ++next;
      ours->send(request);
      continue;
    }
    life.points.push_back(*message->member("point")->string());
    if (life.points.size() - 1 == fate.killAt || (fate.kills && fate.kills(life.points))) {
      ::kill(process, SIGKILL);
      continue;
    }
    const JSONValue* const arguments = message->member("arguments");
    ours->send(arguments ? carriedOut(call, life.points.back(), *arguments)
                         : JSONValue(JSONValue::Object{{"number", errorAt(fate, life.points)}}));
  }
  const int status = number();
  life.killed = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
  if (!life.killed && (!WIFEXITED(status) || WEXITSTATUS(status) != 0))
    throw std::runtime_error("the process ended with status " + std::to_string(status));
  return life;
}

}  // namespace quorin::crash
