// ISO: dates as ISO 8601 text. Pure, any thread.
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace quorin::ISO {

using Date = std::chrono::system_clock::time_point;

// In UTC to the second: "2026-11-15T11:02:28Z".
std::string string(Date date);

// In UTC to the millisecond, parts of one cut off: "2026-11-15T11:00:44.123Z".
std::string stringWithMilliseconds(Date date);

// The date of year-month-dayThours:minutes:seconds and a zone (Z or +hh:mm), without fractions.
// Absent text, other text and dates that do not exist give none.
std::optional<Date> date(const std::optional<std::string>& text);

}  // namespace quorin::ISO
