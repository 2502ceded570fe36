// The hours of a card: which amendment holds on a day, its monthly hours, and what part of a full time they
// are.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "velanor/record.h"

namespace velanor::office {

// Whether a payroll item counts as hours worked.
using IsHoursItem = std::function<bool(std::string_view code)>;

// When the amendments of a card come into force.
class InForce {
 public:
  explicit InForce(const store::DbRecord& card);
  int amendments() const { return static_cast<int>(days_.size()); }
  // The line, from 0, that holds on that day; -1 for none.
  int on(int day) const;

 private:
  std::vector<std::optional<int>> days_;  // nothing for what is no date
};

// As the screen shows them, in hundredths; lines count from 0. Those of production staff are the sum of their
// items, those of all others are entered. Nothing where there is none, or no figure.
std::optional<std::int64_t> monthly_hours(const store::DbRecord& card, int line, const IsHoursItem& is_hours);

// What part of a full time they are, in hundredths: 7584 of 15167 are 50. Nothing without a full time, and
// for less than no hours. Both may be multiplied by the same.
std::optional<std::int64_t> full_time(std::int64_t hours, std::int64_t full);

// Between monthly hours and a percentage of those of the establishment, all in hundredths and rounded half
// up. None is below 0; the full hours are above.
std::int64_t percent_of(std::int64_t hours, std::int64_t full);
std::int64_t hours_of(std::int64_t percent, std::int64_t full);

}  // namespace velanor::office
