// What a card has several of, as lists of columns: everything that goes line by line goes through them.
#pragma once

#include <algorithm>
#include <array>

#include "card/record/record_layout.h"

namespace velanor::card {

inline constexpr std::array<Field, 2> kActivityColumns{kActivity, kShare};

inline constexpr std::array<Field, 8> kAmendmentColumns{
    kEffective, kGridStart, kQualification, kGrid, kCategory, kNewMeasure, kHourlyRate, kMonthlyTime};
constexpr std::size_t column_of(const Field& field) {
  return static_cast<std::size_t>(std::find(kAmendmentColumns.begin(), kAmendmentColumns.end(), field) -
                                  kAmendmentColumns.begin());
}

// The figures of a payroll item, in the order in which they are shown, and all of it.
inline constexpr std::array<Field, 3> kItemFigures{kItemBase, kItemRate, kItemAmount};
inline constexpr std::array<Field, 4> kItemColumns{kItemCode, kItemBase, kItemRate, kItemAmount};

// Everything that has a value for each amendment.
inline constexpr auto kAmendmentAttributes = [] {
  std::array<Field, kAmendmentColumns.size() + kItemColumns.size()> all{};
  std::copy(kItemColumns.begin(), kItemColumns.end(),
            std::copy(kAmendmentColumns.begin(), kAmendmentColumns.end(), all.begin()));
  return all;
}();

}  // namespace velanor::card
