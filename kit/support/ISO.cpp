#include "kit/support/ISO.h"

#include <array>
#include <cstdio>
#include <string_view>

namespace quorin::ISO {
namespace chrono = std::chrono;
namespace {

// "2026-11-15T11:02:28" of a time in whole milliseconds.
std::string upToSeconds(chrono::sys_time<chrono::milliseconds> time) {
  const auto day = chrono::floor<chrono::days>(time);
  const chrono::year_month_day date(day);
  const chrono::hh_mm_ss clock(time - day);
  std::array<char, 64> text;
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d",
                static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  return text.data();
}

// Reads a fixed form from the front of a text.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : text_(text) {}

  int digits(std::size_t count) {
    int value = 0;
    for (std::size_t i = 0; i < count; ++i) {
      const char c = next();
      if (c < '0' || c > '9') failed_ = true;
      value = value * 10 + (c - '0');
    }
    return value;
  }
  void expect(char c) {
    if (next() != c) failed_ = true;
  }
  char next() {
    if (text_.empty()) {
      failed_ = true;
      return '\0';
    }
    const char c = text_.front();
    text_.remove_prefix(1);
    return c;
  }
  bool finished() const { return !failed_ && text_.empty(); }

 private:
  std::string_view text_;
  bool failed_ = false;
};

}  // namespace

std::string string(Date date) {
  return upToSeconds(chrono::floor<chrono::milliseconds>(date)) + "Z";
}

std::string stringWithMilliseconds(Date date) {
  const auto time = chrono::floor<chrono::milliseconds>(date);
  const auto milliseconds = (time - chrono::floor<chrono::seconds>(time)).count();
  std::array<char, 8> fraction;
  std::snprintf(fraction.data(), fraction.size(), ".%03dZ", static_cast<int>(milliseconds));
  return upToSeconds(time) + fraction.data();
}

std::optional<Date> date(const std::optional<std::string>& text) {
  if (!text) return std::nullopt;
  Scanner scanner(*text);
  const int year = scanner.digits(4);
  scanner.expect('-');
  const int month = scanner.digits(2);
  scanner.expect('-');
  const int day = scanner.digits(2);
  scanner.expect('T');
  const int hours = scanner.digits(2);
  scanner.expect(':');
  const int minutes = scanner.digits(2);
  scanner.expect(':');
  const int seconds = scanner.digits(2);
  int offset = 0;  // minutes east of Greenwich
  if (const char zone = scanner.next(); zone != 'Z') {
    if (zone != '+' && zone != '-') return std::nullopt;
    const int zoneHours = scanner.digits(2);
    scanner.expect(':');
    const int zoneMinutes = scanner.digits(2);
    if (zoneHours > 23 || zoneMinutes > 59) return std::nullopt;
    offset = (zone == '-' ? -1 : 1) * (zoneHours * 60 + zoneMinutes);
  }
  if (!scanner.finished()) return std::nullopt;
  const chrono::year_month_day date(chrono::year(year), chrono::month(static_cast<unsigned>(month)),
                                    chrono::day(static_cast<unsigned>(day)));
  if (!date.ok() || hours > 23 || minutes > 59 || seconds > 59) return std::nullopt;
  return chrono::sys_days(date) + chrono::hours(hours) + chrono::minutes(minutes - offset) +
         chrono::seconds(seconds);
}

}  // namespace quorin::ISO
