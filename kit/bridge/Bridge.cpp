#include "kit/bridge/Bridge.h"

#include <exception>
#include <optional>
#include <utility>

#include "kit/bridge/LoggedError.h"
#include "kit/bridge/Verbs.h"
#include "kit/shapes/CellPlace.h"
#include "kit/support/Check.h"
#include "kit/value/EventErrors.h"

namespace quorin {

namespace {

JSONValue errorObject(const std::string& kind, const std::string& message) {
  return JSONValue::Object{{"kind", kind}, {"message", message}};
}

}  // namespace

const Bridge::Date Bridge::distantPast =
    std::chrono::sys_days(std::chrono::year(1800) / std::chrono::January / 1);

Bridge::Bridge(ExcelThread& thread, DiagLog& log, HighlightStore& store, UnhideStore& unhide,
               TargetApplication& target, Clock clock)
    : thread_(thread),
      log_(log),
      store_(store),
      unhide_(unhide),
      target_(target),
      clock_(std::move(clock)) {}

Bridge::Reply Bridge::dispatch(const std::string& verb, const Args& args) {
  std::string kind = "transport";
  std::string message;
  std::string logged;
  try {
    const Verb* const known = findVerb(verb);
    const bool served = known && known->answeredBy == AnsweredBy::bridge;
    if (!(served && known->answersWithoutExcel) && !excelRunning()) {
      JSONValue::Object error{{"kind", "transport"},
                              {"message", "Excel is not running"},
                              {"code", eventErrors::notRunning}};
      return {false, std::move(error)};
    }
    if (!served) {
      log_.log("ERROR", verb + ": unknown verb");
      return {false, errorObject("transport", "unknown verb " + verb)};
    }
    if (!known->accepts(args)) {
      log_.log("ERROR", verb + ": bad args");
      return {false, errorObject("transport", "bad args for " + verb)};
    }
    return {true, known->run(*this, args)};
  } catch (const ExcelError& error) {
    if (error.code() == ExcelError::timedOut) kind = "timeout";
    message = error.message();
    logged = loggedText(error);
  } catch (const std::exception& error) {
    logged = message = error.what();
  } catch (...) {
    logged = message = "unknown error";
  }
  log_.log("ERROR", verb + ": " + logged);
  return {false, errorObject(kind, message)};
}

JSONValue Bridge::call(std::string_view verb, const std::string& handler, const Args& args,
                       bool asked) {
  const Verb* const known = findVerb(verb);
  check(known != nullptr, "a call for no verb");
  return thread_.call(handler, args, known->seconds, asked);
}

bool Bridge::excelRunning() const {
  return target_.isRunning();
}

Bridge::Date Bridge::lastProgrammaticNav() const {
  const std::lock_guard lock(lock_);
  return lastProgrammaticNav_;
}

void Bridge::touchProgrammaticNav() {
  const Date now = clock_();
  const std::lock_guard lock(lock_);
  lastProgrammaticNav_ = now;
}

void Bridge::publishLanded(const JSONValue& value) const {
  if (!onActivatedCell_) return;
  if (const auto place = BridgeShapes::cellPlace(value)) onActivatedCell_(*place);
}

JSONValue Bridge::fail(const std::string& kind, const std::string& message) {
  return JSONValue::Object{{"ok", false}, {"kind", kind}, {"message", message}};
}

}  // namespace quorin
