// The columns of an amendment as one list: everything that goes line by line goes through it.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "card/record/codec.h"

namespace velanor::card {

struct AmendmentColumn {
  int attribute;
  std::string (*shown)(const Codec&, std::string_view stored);
  std::string (*stored)(const Codec&, std::string_view shown);
};

template <const auto& A>
constexpr AmendmentColumn column() {
  return {A.number, [](const Codec& codec, std::string_view stored) { return codec.shown(A, stored); },
          [](const Codec& codec, std::string_view shown) { return codec.stored(A, shown); }};
}

// The stored flag is one letter, the list shows a word.
constexpr AmendmentColumn new_measure_column() {
  return {kNewMeasure,
          [](const Codec&, std::string_view stored) { return std::string(stored == "O" ? "OUI" : "NON"); },
          [](const Codec&, std::string_view shown) { return std::string(shown.substr(0, 1)); }};
}

// In the order of CardScreen::amendment_lists. The grid shows its record's label, which needs
// the grid file: its codec here is only what stands in for an id without a record.
inline constexpr std::array<AmendmentColumn, 8> kAmendmentColumns{
    column<kEffective>(), column<kGridStart>(), column<kQualification>(), column<kGrid>(),
    column<kCategory>(),  new_measure_column(), column<kHourlyRate>(),    column<kMonthlyTime>()};

inline constexpr std::size_t kEffectiveColumn = 0;
inline constexpr std::size_t kQualificationColumn = 2;
inline constexpr std::size_t kGridColumn = 3;
inline constexpr std::size_t kHourlyRateColumn = 6;
inline constexpr std::size_t kMonthlyColumn = 7;

// The figures of a payroll item, in the order in which they are shown.
struct ItemFigure {
  int attribute;
  int integer_digits;
  int decimals;
  std::string (*shown)(const Codec&, std::string_view stored);
};

template <const auto& A>
constexpr ItemFigure item_figure(int integer_digits, int decimals) {
  return {A.number, integer_digits, decimals,
          [](const Codec& codec, std::string_view stored) { return codec.shown(A, stored); }};
}

inline constexpr std::array<ItemFigure, 3> kItemFigures{
    item_figure<kItemBase>(5, 2), item_figure<kItemRate>(3, 4), item_figure<kItemAmount>(5, 2)};

}  // namespace velanor::card
