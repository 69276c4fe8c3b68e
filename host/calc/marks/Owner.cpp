#include "host/calc/marks/Owner.h"

#include <atomic>
#include <charconv>
#include <optional>
#include <string_view>
#include <sys/types.h>
#include <system_error>
#include <unistd.h>

#include "host/calc/office/OfficeProcess.h"

namespace quorin::host::calc {
namespace {

struct Parts {
  pid_t process = 0;
  unsigned long long start = 0;
  int number = 0;
};

// Takes a number and the dash or the end behind it off the front of the text.
template <typename Number>
bool take(std::string_view& text, Number& number) {
  const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (failure != std::errc() || number <= 0) return false;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  if (text.starts_with('-')) text.remove_prefix(1);
  return true;
}

std::optional<Parts> partsOf(std::string_view text) {
  Parts parts;
  const bool whole = take(text, parts.process) && take(text, parts.start) &&
                     take(text, parts.number) && text.empty();
  return whole ? std::optional(parts) : std::nullopt;
}

}  // namespace

Owner Owner::ofThisProcess() {
  static std::atomic<int> count = 0;
  return Owner(std::to_string(::getpid()) + "-" + std::to_string(startOf(::getpid())) + "-" +
               std::to_string(++count));
}

bool Owner::caresFor(const std::string& text) const {
  const auto its = partsOf(text), own = partsOf(text_);
  if (text == text_ || !its) return true;
  if (own && own->process == its->process && own->start == its->start)
    return its->number < own->number;
  return startOf(its->process) != its->start;
}

}  // namespace quorin::host::calc
