// Which payroll items are hours.
#pragma once

#include <string_view>

namespace velanor::card {

// Type of a payroll item: attribute 2 of its record. 3, 4 and 5 are hours.
inline constexpr int kItemType = 2;
inline bool is_hours(std::string_view item_type) {
  return item_type == "3" || item_type == "4" || item_type == "5";
}

}  // namespace velanor::card
