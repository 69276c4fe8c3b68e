// What the engine needs of the applications a script talks to: their words and a way to send them
// events. The engine itself knows no application; whoever runs a script supplies them.
#pragma once

#include <chrono>
#include <optional>
#include <string_view>

#include "kit/value/AppleEvent.h"
#include "kit/value/CallTerms.h"

namespace quorin::script {

class Terminology;  // script/terms/Terminology.h: the application's terms and their codes

class Application {
 public:
  virtual ~Application() = default;
  virtual std::string_view name() const = 0;  // as it stands in "<name> got an error: ..."
  virtual const Terminology& terminology() const = 0;
  virtual bool isRunning() = 0;

  // Around each run of a handler from outside, for what is remembered or put off that long and the
  // terms that hold that long. The end gives the error of what an event had put off. Never throws.
  virtual void handlerBegins(const CallTerms&) {}
  virtual std::optional<AppleEventError> handlerEnds() { return std::nullopt; }

  // Sends one event and waits for its answer, at most for `timeout`; an answer that comes too late
  // is error -1712. A timeout of zero asks to deliver the event without waiting; the reply is then
  // ignored. Called on the thread that runs the script. Never throws.
  virtual AppleEventReply send(const AppleEvent& event, std::chrono::milliseconds timeout) = 0;
};

// Finds the applications that `tell application "..."` and `tell application id "..."` name.
class Applications {
 public:
  virtual ~Applications() = default;
  virtual Application* named(std::string_view name) = 0;     // a null pointer when unknown
  virtual Application* identified(std::string_view id) = 0;  // by bundle identifier
};

}  // namespace quorin::script
