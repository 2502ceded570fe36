// Calendar dates as whole day numbers. Values and functions of them: nothing here throws, and any thread may
// call it.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace velanor::entry {

// A day of the Gregorian calendar, years 1 to 9999; or three numbers that are none (see day_number).
struct Date {
  int day = 0;
  int month = 0;
  int year = 0;
  friend bool operator==(const Date&, const Date&) = default;
};

// Where "today" comes from: the system's calendar for a program, a fixed day for a test. Gives a day that
// exists.
using Clock = std::function<Date()>;
Clock system_clock();

// Days since 31/12/1967, which is 0; earlier days are negative. Nothing for a date that does
// not exist.
std::optional<int> day_number(const Date& date);
// Of a day of those years.
Date date_of(int day_number);
// The day number that a text is; nothing for a text that is no day of the calendar.
std::optional<int> stored_day(std::string_view text);
// Ten characters, dd/mm/yyyy.
std::string date_text(const Date& date);
// The year that one or two digits (0 to 99) mean: 00-49 are 20xx, 50-99 19xx.
int full_year(int two_digits);
// d/m/y with one- or two-digit day and month and a two- or four-digit year;
// nothing for any other text or a date that does not exist.
std::optional<Date> parse_date(std::string_view text);

}  // namespace velanor::entry
