// Where "today" comes from.
#pragma once

#include <functional>

namespace velanor::entry {

// A day of the Gregorian calendar; years 1 to 9999.
struct Date {
  int day = 0;
  int month = 0;
  int year = 0;
  friend bool operator==(const Date&, const Date&) = default;
};

// The system's calendar for a program, a fixed day for a test.
using Clock = std::function<Date()>;
Clock system_clock();

}  // namespace velanor::entry
