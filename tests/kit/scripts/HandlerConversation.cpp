#include "tests/kit/scripts/HandlerConversation.h"

#include <stdexcept>
#include <utility>

#include "kit/excel/ExcelScript.h"
#include "kit/value/Marshal.h"

namespace quorin {
namespace {

std::string withBook(std::string text, const std::string& book) {
  const std::string mark = "{book}";
  for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at))
    text.replace(at, mark.size(), book);
  return text;
}

JSONValue withBook(JSONValue value, const std::string& book) {
  if (const std::string* const text = value.string()) return withBook(*text, book);
  if (JSONValue::Array* const items = value.array())
    for (JSONValue& item : *items) item = withBook(std::move(item), book);
  return value;
}

// Each "*" stands for a number.
bool matches(std::string_view text, std::string_view pattern) {
  for (;; text.remove_prefix(1), pattern.remove_prefix(1)) {
    if (pattern.starts_with('*')) {
      const auto digits = text.find_first_not_of("0123456789");
      if (digits == 0 || digits == std::string_view::npos) return false;
      text.remove_prefix(digits);
      pattern.remove_prefix(1);
    }
    if (text.empty() || pattern.empty()) return text.empty() && pattern.empty();
    if (text.front() != pattern.front()) return false;
  }
}

}  // namespace

HandlerConversation::HandlerConversation(std::unique_ptr<ScriptRunner> runner, GoTo goTo,
                                         std::string book)
    : runner_(std::move(runner)), goTo_(std::move(goTo)), book_(std::move(book)) {
  if (const auto error = runner_->compile(ExcelScript::source()))
    throw std::logic_error(error->message.value_or("The library does not compile."));
}

std::string HandlerConversation::answer(const HandlerRequest& request) {
  if (!request.sheet.empty()) goTo_(request.sheet, request.selection);
  AppleEvent event{fourCharCode("ascr"), fourCharCode("psbr"), {}, {}};
  event.parameters.push_back({fourCharCode("snam"), AppleEventDescriptor::text(request.handler)});
  event.parameters.push_back(
      {keyDirectObject, Marshal::toDescriptor(withBook(JSONValue(request.arguments), book_))});
  const ScriptReply reply = runner_->execute(event);
  if (reply.error) return "error " + std::to_string(reply.error->number.value_or(0));
  std::string text =
      Marshal::encode(Marshal::fromDescriptor(reply.result.value_or(AppleEventDescriptor::null())));
  return matches(text, expected(request)) ? expected(request) : text;
}

std::string HandlerConversation::expected(const HandlerRequest& request) const {
  return withBook(request.answer, book_);
}

std::string described(const HandlerRequest& request) {
  const std::string place =
      request.sheet.empty() ? "" : request.sheet + "!" + request.selection + " ";
  return place + request.handler + " " + Marshal::encode(JSONValue(request.arguments));
}

}  // namespace quorin
