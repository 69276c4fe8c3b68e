// Dates as values: seconds of local time since 1904-01-01. Pure functions; the Gregorian calendar.
#pragma once

#include <optional>
#include <string>

#include "kit/value/FourCharCode.h"
#include "script/values/Value.h"

namespace quorin::script {

// "Friday, January 1, 1904" and "12:00:00 AM".
std::string dateText(const Date& date);
std::string timeText(const Date& date);

// year, month, day, weekday, time, hours, minutes, seconds, date string and time string by code.
std::optional<Value> dateProperty(const Date& date, FourCharCode property);

// The class that a constant of the calendar belongs to, by code: 'jan ' and 'mon '.
std::optional<int> monthNumber(FourCharCode code);  // 1 to 12

}  // namespace quorin::script
