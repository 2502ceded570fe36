// The hours that the payroll items of an amendment make.
#pragma once

#include <string>

#include "store/database.h"

namespace velanor::card {

// Sum of the bases of those items of amendment `amendment` (from 1) whose type is 3, 4 or 5, as
// "0.00"; "" for an amendment without items. Items that have left the file RUBSAISIE count
// nothing.
std::string item_hours(const store::DbRecord& card, int amendment, store::DbFile& items);

// Type of a payroll item: attribute 2 of its record. 3, 4 and 5 are hours.
inline constexpr int kItemType = 2;
bool is_hours(std::string_view item_type);

}  // namespace velanor::card
