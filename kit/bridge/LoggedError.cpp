#include "kit/bridge/LoggedError.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "kit/excel/ExcelError.h"
#include "kit/value/EventErrors.h"

namespace quorin {
namespace {

// What stands before a value. A name of an object has its class before it: worksheet "Data".
constexpr std::array<std::string_view, 7> before = {"of ",   "to ",     "get ", "set ",
                                                    "make ", "error: ", "from "};

bool isBehind(std::string_view text, std::size_t at) {
  return at == 0 || std::any_of(before.begin(), before.end(), [&](std::string_view word) {
           const std::size_t size = word.size();
           return at >= size && text.substr(at - size, size) == word &&
                  (at == size || text[at - size - 1] == ' ');
         });
}

// Behind the value that begins there: up to the last sign that may end it, because a value may hold
// such signs too. The same place where no value begins.
std::size_t valueEnd(std::string_view text, std::size_t at) {
  constexpr std::string_view digits = "0123456789";
  if (text[at] == '"') return std::max(text.rfind('"') + 1, at + 1);
  if (text[at] == '{') {
    const std::size_t end = text.rfind('}');
    return end == text.npos || end < at ? text.size() : end + 1;
  }
  const std::size_t number = text[at] == '-' ? at + 1 : at;
  if (number >= text.size() || digits.find(text[number]) == digits.npos) return at;
  const std::size_t end = text.find_first_not_of("0123456789.,E+-", number);
  return end == text.npos ? text.size() : end;
}

// Behind the name that begins there in quotes.
std::size_t nameEnd(std::string_view text, std::size_t at) {
  for (++at; at < text.size() && text[at] != '"'; ++at) {
    if (text[at] == '\\') ++at;
  }
  return at;
}

std::string withoutValues(std::string_view text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    const std::size_t end = isBehind(text, at) ? valueEnd(text, at) : at;
    if (end == at) {
      if (text[at] == '"') at = nameEnd(text, at);
      continue;
    }
    std::string rest(text.substr(end));
    if (end == text.size() && text.ends_with('.')) rest = ".";
    return std::string(text.substr(0, at)) + "…" + withoutValues(rest);
  }
  return std::string(text);
}

}  // namespace

std::string loggedText(const std::exception& error) {
  const auto* const excel = dynamic_cast<const ExcelError*>(&error);
  if (!excel) return error.what();
  const std::string message = excel->message();
  if (excel->code() == eventErrors::divideByZero) return "a value was to be divided by zero";
  if (excel->code() != eventErrors::cannotCoerce) return withoutValues(message);
  const std::size_t type = message.rfind(" into type ");
  return "a value cannot be made" + (type == std::string::npos ? "" : message.substr(type));
}

}  // namespace quorin
