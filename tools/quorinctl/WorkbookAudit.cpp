#include "tools/quorinctl/WorkbookAudit.h"

#include <utility>
#include <variant>

#include "kit/marks/RecordFile.h"
#include "kit/value/JSONText.h"
#include "kit/value/Marshal.h"
#include "tools/quorinctl/RequestLine.h"
#include "tools/quorinctl/ReviewFile.h"

namespace quorin::ctl {

WorkbookAudit::WorkbookAudit(Waiter& waiter, const std::filesystem::path& file,
                             std::function<void(std::string)> progress)
    : waiter_(waiter),
      file_(file),
      progress_(std::move(progress)),
      script_(AuditScript::installed(), host()),
      place_(privatePlace(std::nullopt)),
      session_(std::move(place_.parts)) {
  if (session_.compileError()) throw Unserved(*session_.compileError());
}

WorkbookAudit::~WorkbookAudit() {
  // What was asked tells its end all the same, and is not to be taken for another's.
  session_.quit();
  for (; asked_ > 0; --asked_) waiter_.waitForDoneAlone();
}

std::string WorkbookAudit::report(const AuditWorkbookCommand& command) {
  open();
  reviews_ = command.review;
  script_.begin(file_.string(), command.top, reviews_.has_value(), command.pictures);
  while (!report_ && !failure_) {
    answer();
    if (!report_ && !failure_) wait();
  }
  if (failure_) throw Unserved(*failure_);
  return *report_;
}

AuditScript::Host WorkbookAudit::host() {
  return {
      .ask = [this](std::string request) { ask(request); },
      .after = [this](std::chrono::milliseconds time,
                      int id) { timers_.emplace(Clock::now() + time, id); },
      .progress = progress_,
      .failed = [this](std::string why) { failure_ = std::move(why); },
      .done = [this](std::string text) { report_ = std::move(text); },
      .review = [this](const std::string& of) { return review(of); },
  };
}

// The script asks in the middle of its work, where nothing may be thrown.
std::string WorkbookAudit::review(const std::string& of) {
  try {
    const ParsedJSON book = parseJSON(of);
    if (!reviews_ || !book) return "null";
    return Marshal::encode(
        reviewIn(*reviews_, {textMember(*book.value, "book"), textMember(*book.value, "path"),
                             textMember(*book.value, "marks")}));
  } catch (const std::exception& error) {
    failure_ = error.what();
    return "null";
  }
}

void WorkbookAudit::open() {
  progress_("opening");
  const Opening opening = openAndWait(session_, waiter_, file_);
  if (opening.isEnded) throw Ended();
  if (opening.failure) throw Unserved(*opening.failure);
}

void WorkbookAudit::ask(const std::string& text) {
  std::variant<Request, Refused> parsed = parseRequest(text);
  if (Refused* const refusal = std::get_if<Refused>(&parsed)) {
    take(Marshal::encode(replyObject(refusal->id, std::move(refusal->reply), std::nullopt)));
    return;
  }
  Request& request = std::get<Request>(parsed);
  ++asked_;
  session_.serve(std::move(request.verb), std::move(request.args),
                 [this, id = request.id](Bridge::Reply reply, double) {
                   take(Marshal::encode(replyObject(id, std::move(reply), std::nullopt)));
                   waiter_.done();
                 });
}

void WorkbookAudit::take(std::string reply) {
  const std::lock_guard lock(mutex_);
  replies_.push_back(std::move(reply));
}

// Hands over what has come and what is due.
void WorkbookAudit::answer() {
  for (;;) {
    std::string reply;
    {
      const std::lock_guard lock(mutex_);
      if (replies_.empty()) break;
      reply = std::move(replies_.front());
      replies_.pop_front();
    }
    script_.reply(reply);
  }
  while (!timers_.empty() && timers_.begin()->first <= Clock::now()) {
    const int id = timers_.begin()->second;
    timers_.erase(timers_.begin());
    script_.due(id);
  }
}

void WorkbookAudit::wait() {
  constexpr auto whole = std::chrono::minutes(10);
  {
    const std::lock_guard lock(mutex_);
    if (!replies_.empty()) return;
  }
  const auto limit = timers_.empty() ? Clock::now() + whole : timers_.begin()->first;
  const Waiter::Event event = waiter_.waitForDone(limit);
  if (event == Waiter::Event::done) --asked_;
  if (event == Waiter::Event::signal) {
    session_.quit();
    throw Ended();
  }
}

}  // namespace quorin::ctl
