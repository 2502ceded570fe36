#include "velanor/date.h"

#include <chrono>
#include <ctime>

#include "text/number.h"
#include "text/utf8.h"

namespace velanor::entry {
namespace {

constexpr std::chrono::sys_days kDayZero = std::chrono::year{1967} / 12 / 31;

// A part of a date: at most four digits and nothing else.
std::optional<int> number_of(std::string_view part) {
  if (part.empty() || part.size() > 4) return {};
  int number = 0;
  for (char c : part) {
    if (c < '0' || c > '9') return {};
    number = number * 10 + (c - '0');
  }
  return number;
}

std::string digits(int number, int width) { return text::pad_left(std::to_string(number), width, '0'); }

}  // namespace

Clock system_clock() {
  return [] {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return Date{local.tm_mday, local.tm_mon + 1, local.tm_year + 1900};
  };
}

std::optional<int> day_number(const Date& date) {
  if (date.year < 1 || date.year > 9999 || date.month < 1 || date.month > 12 || date.day < 1 ||
      date.day > 31) {
    return {};
  }
  const std::chrono::year_month_day day{std::chrono::year{date.year},
                                        std::chrono::month{static_cast<unsigned>(date.month)},
                                        std::chrono::day{static_cast<unsigned>(date.day)}};
  if (!day.ok()) return {};
  return static_cast<int>((std::chrono::sys_days{day} - kDayZero).count());
}

Date date_of(int day_number) {
  const std::chrono::year_month_day day{kDayZero + std::chrono::days{day_number}};
  return {static_cast<int>(static_cast<unsigned>(day.day())),
          static_cast<int>(static_cast<unsigned>(day.month())), static_cast<int>(day.year())};
}

std::optional<int> stored_day(std::string_view text) {
  static const int first = *day_number({1, 1, 1}), last = *day_number({31, 12, 9999});
  const auto day = text::whole_number(text);
  return day && *day >= first && *day <= last ? std::optional(static_cast<int>(*day)) : std::nullopt;
}

std::string date_text(const Date& date) {
  return digits(date.day, 2) + "/" + digits(date.month, 2) + "/" + digits(date.year, 4);
}

int full_year(int two_digits) { return two_digits + (two_digits < 50 ? 2000 : 1900); }

std::optional<Date> parse_date(std::string_view text) {
  const auto first = text.find('/');
  const auto second = first == text.npos ? text.npos : text.find('/', first + 1);
  if (second == text.npos) return {};
  const std::string_view year_part = text.substr(second + 1);
  const auto day = number_of(text.substr(0, first));
  const auto month = number_of(text.substr(first + 1, second - first - 1));
  const auto year = number_of(year_part);
  if (first > 2 || second - first > 3 || year_part.size() % 2 != 0 || !day || !month || !year) return {};
  const Date date{*day, *month, year_part.size() == 2 ? full_year(*year) : *year};
  if (!day_number(date)) return {};
  return date;
}

}  // namespace velanor::entry
