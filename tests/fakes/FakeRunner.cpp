#include "tests/fakes/FakeRunner.h"

#include <utility>

#include "kit/platform/Thread.h"
#include "kit/value/Marshal.h"

namespace quorin::fakes {

namespace {

std::string handlerOf(const AppleEvent& event) {
  const AppleEventDescriptor* name = event.parameter(fourCharCode("snam"));
  return name ? std::string(name->stringValue().value_or("")) : "";
}

}  // namespace

class FakeExcel::Runner : public ScriptRunner {
 public:
  explicit Runner(FakeExcel& excel) : excel_(excel) {
    const std::lock_guard lock(excel_.mutex_);
    ++excel_.runnersAlive_;
  }
  ~Runner() override {
    const std::lock_guard lock(excel_.mutex_);
    --excel_.runnersAlive_;
  }

  std::optional<ScriptErrorInfo> compile(std::string_view source) override {
    std::function<void()> action;
    {
      const std::lock_guard lock(excel_.mutex_);
      excel_.threads_.push_back(currentThreadName());
      excel_.source_ = source;
      action = excel_.onCompile_;
    }
    if (action) action();
    const std::lock_guard lock(excel_.mutex_);
    return excel_.compileError_;
  }

  void prepare(const CallTerms& terms) override {
    const std::lock_guard lock(excel_.mutex_);
    excel_.terms_.push_back(terms);
  }

  ScriptReply execute(const AppleEvent& event) override {
    Answer answer;
    {
      const std::lock_guard lock(excel_.mutex_);
      excel_.threads_.push_back(currentThreadName());
      excel_.events_.push_back(event);
      std::deque<Answer>& answers = excel_.answers_[handlerOf(event)];
      if (answers.empty()) return {std::nullopt, ScriptErrorInfo{-1708, "no such handler"}};
      answer = answers.front();
      if (answers.size() > 1) answers.pop_front();
    }
    return answer(event);
  }

 private:
  FakeExcel& excel_;
};

void FakeExcel::answer(const std::string& handler, Answer answer) {
  const std::lock_guard lock(mutex_);
  answers_[handler].push_back(std::move(answer));
}

void FakeExcel::returns(const std::string& handler, JSONValue value) {
  answer(handler, [descriptor = Marshal::toDescriptor(value)](const AppleEvent&) {
    return ScriptReply{descriptor, std::nullopt};
  });
}

void FakeExcel::fails(const std::string& handler, std::optional<int> number,
                      std::optional<std::string> message) {
  answer(handler, [error = ScriptErrorInfo{number, std::move(message)}](const AppleEvent&) {
    return ScriptReply{std::nullopt, error};
  });
}

void FakeExcel::failCompile(ScriptErrorInfo error) {
  const std::lock_guard lock(mutex_);
  compileError_ = std::move(error);
}

void FakeExcel::onCompile(std::function<void()> action) {
  const std::lock_guard lock(mutex_);
  onCompile_ = std::move(action);
}

std::vector<FakeExcel::Call> FakeExcel::calls() const {
  const std::lock_guard lock(mutex_);
  std::vector<Call> calls;
  for (const AppleEvent& event : events_) {
    const AppleEventDescriptor* arguments = event.parameter(keyDirectObject);
    calls.push_back(
        {handlerOf(event), arguments ? Marshal::fromDescriptor(*arguments) : JSONValue(nullptr)});
  }
  return calls;
}

std::vector<AppleEvent> FakeExcel::events() const {
  const std::lock_guard lock(mutex_);
  return events_;
}

std::vector<CallTerms> FakeExcel::terms() const {
  const std::lock_guard lock(mutex_);
  return terms_;
}

std::vector<std::string> FakeExcel::threads() const {
  const std::lock_guard lock(mutex_);
  return threads_;
}

std::string FakeExcel::source() const {
  const std::lock_guard lock(mutex_);
  return source_;
}

int FakeExcel::runnersAlive() const {
  const std::lock_guard lock(mutex_);
  return runnersAlive_;
}

CallThreadPost FakeExcel::post() const {
  const std::lock_guard lock(mutex_);
  return post_;
}

ScriptRunnerFactory FakeExcel::factory() {
  return [this](CallThreadPost post) -> std::unique_ptr<ScriptRunner> {
    {
      const std::lock_guard lock(mutex_);
      post_ = std::move(post);
    }
    return std::make_unique<Runner>(*this);
  };
}

}  // namespace quorin::fakes
