// The hours that the payroll items of an amendment add up to.
#pragma once

#include "card/record/element.h"

namespace velanor::card {

// Sum of the bases of those items that `is_hours` says are hours, in hundredths; amendments count from 1.
template <typename IsHours>
std::int64_t item_hours(const store::DbRecord& card, int amendment, const IsHours& is_hours) {
  std::int64_t sum = 0;
  for (int s = 1; !element(card, kItemCode, amendment, s).empty(); ++s) {
    if (is_hours(element(card, kItemCode, amendment, s))) sum += figure(card, kItemBase, amendment, s);
  }
  return sum;
}

}  // namespace velanor::card
