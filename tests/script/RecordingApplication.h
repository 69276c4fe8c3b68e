// A scriptable application for the engine's tests: records every event with its time-out and
// answers from a queue or a function.
#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "script/terms/Application.h"
#include "script/terms/Terminology.h"

namespace quorin::script {

class RecordingApplication : public Application {
 public:
  RecordingApplication(std::string name, const Terminology& terminology)
      : name_(std::move(name)), terminology_(terminology) {}

  std::string_view name() const override { return name_; }
  const Terminology& terminology() const override { return terminology_; }
  bool isRunning() override { return running; }
  AppleEventReply send(const AppleEvent& event, std::chrono::milliseconds timeout) override {
    events.push_back(event);
    timeouts.push_back(timeout);
    if (answer) return answer(event);
    if (replies.empty()) return {};
    AppleEventReply reply = std::move(replies.front());
    replies.pop_front();
    return reply;
  }

  void willAnswer(AppleEventDescriptor result) { replies.push_back({std::move(result), {}}); }
  void willFail(int number, std::string message = {},
                std::optional<AppleEventDescriptor> offender = {}) {
    replies.push_back({{}, AppleEventError{number, std::move(message), std::move(offender)}});
  }

  bool running = true;
  std::function<AppleEventReply(const AppleEvent&)> answer;
  std::deque<AppleEventReply> replies;
  std::vector<AppleEvent> events;
  std::vector<std::chrono::milliseconds> timeouts;

 private:
  std::string name_;
  const Terminology& terminology_;
};

// Knows one application under its name, another name and an identifier.
class RecordingApplications : public Applications {
 public:
  explicit RecordingApplications(RecordingApplication& application) : application_(application) {}
  Application* named(std::string_view name) override {
    return name == application_.name() ? &application_ : nullptr;
  }
  Application* identified(std::string_view id) override {
    return id == "com.microsoft.Excel" ? &application_ : nullptr;
  }

 private:
  RecordingApplication& application_;
};

}  // namespace quorin::script
