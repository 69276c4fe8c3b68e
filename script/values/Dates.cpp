#include "script/values/Dates.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <string_view>

namespace quorin::script {
namespace {

constexpr std::int64_t secondsPerDay = 86400;
constexpr std::chrono::sys_days epoch =
    std::chrono::sys_days(std::chrono::year(1904) / std::chrono::January / 1);
// What the calendar can count; dates beyond are shown as its last day.
constexpr std::int64_t maximumDays = 10'000'000;

constexpr std::array<std::string_view, 12> monthNames = {
    "January", "February", "March",     "April",   "May",      "June",
    "July",    "August",   "September", "October", "November", "December"};
constexpr std::array<std::string_view, 7> weekdayNames = {
    "Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
constexpr std::array<FourCharCode, 12> monthCodes = {
    fourCharCode("jan "), fourCharCode("feb "), fourCharCode("mar "), fourCharCode("apr "),
    fourCharCode("may "), fourCharCode("jun "), fourCharCode("jul "), fourCharCode("aug "),
    fourCharCode("sep "), fourCharCode("oct "), fourCharCode("nov "), fourCharCode("dec ")};
constexpr std::array<FourCharCode, 7> weekdayCodes = {
    fourCharCode("sun "), fourCharCode("mon "), fourCharCode("tue "), fourCharCode("wed "),
    fourCharCode("thu "), fourCharCode("fri "), fourCharCode("sat ")};

struct Parts {
  std::chrono::year_month_day day;
  unsigned weekday = 0;
  int seconds = 0;  // of the day
};

Parts partsOf(const Date& date) {
  std::int64_t days = date.seconds / secondsPerDay;
  std::int64_t seconds = date.seconds % secondsPerDay;
  if (seconds < 0) {
    seconds += secondsPerDay;
    --days;
  }
  days = std::min(std::max(days, -maximumDays), maximumDays);
  const std::chrono::sys_days day = epoch + std::chrono::days(days);
  return {day, std::chrono::weekday(day).c_encoding(), static_cast<int>(seconds)};
}

std::string twoDigits(int value) {
  std::string text = std::to_string(value);
  if (value < 10) text.insert(text.begin(), '0');
  return text;
}

unsigned monthIndex(const Parts& parts) {
  return static_cast<unsigned>(parts.day.month()) - 1;
}

}  // namespace

std::string dateText(const Date& date) {
  const Parts parts = partsOf(date);
  return std::string(weekdayNames[parts.weekday]) + ", " +
         std::string(monthNames[monthIndex(parts)]) + " " +
         std::to_string(static_cast<unsigned>(parts.day.day())) + ", " +
         std::to_string(static_cast<int>(parts.day.year()));
}

std::string timeText(const Date& date) {
  const int seconds = partsOf(date).seconds;
  const int hour = seconds / 3600;
  return std::to_string(hour % 12 == 0 ? 12 : hour % 12) + ":" + twoDigits(seconds / 60 % 60) +
         ":" + twoDigits(seconds % 60) + (hour < 12 ? " AM" : " PM");
}

std::optional<Value> dateProperty(const Date& date, FourCharCode property) {
  const Parts parts = partsOf(date);
  switch (property) {
    case fourCharCode("year"):
      return Value(static_cast<int>(parts.day.year()));
    case fourCharCode("mnth"):
      return Value(Constant{Constant::Kind::enumerator, monthCodes[monthIndex(parts)]});
    case fourCharCode("day "):
      return Value(static_cast<std::int32_t>(static_cast<unsigned>(parts.day.day())));
    case fourCharCode("wkdy"):
      return Value(Constant{Constant::Kind::enumerator, weekdayCodes[parts.weekday]});
    case fourCharCode("time"):
      return Value(parts.seconds);
    case fourCharCode("hour"):
      return Value(parts.seconds / 3600);
    case fourCharCode("min "):
      return Value(parts.seconds / 60 % 60);
    case fourCharCode("scnd"):
      return Value(parts.seconds % 60);
    case fourCharCode("dstr"):
      return Value(dateText(date));
    case fourCharCode("tstr"):
      return Value(timeText(date));
    default:
      return std::nullopt;
  }
}

std::optional<int> monthNumber(FourCharCode code) {
  for (std::size_t i = 0; i < monthCodes.size(); ++i) {
    if (monthCodes[i] == code) return static_cast<int>(i) + 1;
  }
  return std::nullopt;
}

}  // namespace quorin::script
