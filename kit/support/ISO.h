// ISO: dates as ISO 8601 text. Pure, any thread.
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace quorin::ISO {

// Reaches far beyond the four digits of a year, which the system's clock may not.
using Date = std::chrono::sys_time<std::chrono::microseconds>;

// The microsecond in which a time of the system's clock lies.
inline Date fromClock(std::chrono::system_clock::time_point time) {
  return std::chrono::floor<Date::duration>(time);
}

// In UTC to the second: "2026-11-15T11:02:28Z".
std::string string(Date date);

// In UTC to the millisecond, parts of one cut off: "2026-11-15T11:00:44.123Z".
std::string stringWithMilliseconds(Date date);

// The date of year-month-dayThours:minutes:seconds and a zone (Z or +hh:mm), without fractions.
// Absent text, other text and dates that do not exist give none.
std::optional<Date> date(const std::optional<std::string>& text);

}  // namespace quorin::ISO
