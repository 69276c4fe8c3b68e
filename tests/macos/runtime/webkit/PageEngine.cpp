#include "tests/macos/runtime/webkit/PageEngine.h"

#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

#include "tests/macos/page_engine/Wire.h"
#include "tests/macos/runtime/foundation/Loop.h"
#include "tests/macos/runtime/objc/Runtime.h"

namespace quorin {
namespace {

std::string& program() {
  static auto& one = *new std::string;
  return one;
}

}  // namespace

void PageEngine::use(const std::string& one) {
  program() = one;
}

const std::string& PageEngine::used() {
  return program();
}

// The engine's end of the sockets is its standard input. Ours is closed in it.
PageEngine::PageEngine(const std::string& program, Receiver receiver)
    : receiver_(std::move(receiver)) {
  int ends[2];
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
    objc::breach("no sockets for the page engine");
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDIN_FILENO);
  std::string path = program;
  char* const arguments[] = {path.data(), nullptr};
  if (::posix_spawn(&process_, path.c_str(), &actions, nullptr, arguments, ::environ) != 0)
    objc::breach("the page engine %s does not start", path.c_str());
  posix_spawn_file_actions_destroy(&actions);
  ::close(ends[1]);
  socket_ = ends[0];
  reader_ = std::thread([socket = socket_, loop = Loop::main(), weak = std::weak_ptr(self_)] {
    while (auto message = wire::receive(socket)) {
      const auto told = std::make_shared<wire::Message>(std::move(*message));
      loop->perform({Loop::commonModes}, [weak, told] {
        if (const auto self = weak.lock()) (*self)->told(told->word, std::move(told->text));
      });
    }
  });
}

PageEngine::~PageEngine() {
  self_.reset();
  ::shutdown(socket_, SHUT_RDWR);
  reader_.join();
  ::close(socket_);
  ::waitpid(process_, nullptr, 0);
}

void PageEngine::send(const std::string& word, const std::string& text) {
  wire::send(socket_, word, text);
}

void PageEngine::ask(const std::string& script, Value value) {
  const std::string number = std::to_string(++asked_);
  values_[number] = std::move(value);
  send("ask", number + " " + script);
}

void PageEngine::told(const std::string& word, std::string text) {
  if (word != "value") {
    receiver_(word, std::move(text));
    return;
  }
  const auto found = values_.extract(wire::takeWord(text));
  if (!found) return;
  const bool ok = wire::takeWord(text) == "ok";
  found.mapped()(ok, text);
}

}  // namespace quorin
