// The elements of a card's record by their attributes.
#pragma once

#include <cstdint>
#include <string_view>
#include <utility>

#include "card/record/record_layout.h"
#include "entry/decimal.h"
#include "velanor/record.h"

namespace velanor::card {

// As it is stored.
inline std::string_view element(const store::DbRecord& card, const Field& field, int value = store::kWhole,
                                int subvalue = store::kWhole) {
  return card(field.number, value, subvalue);
}
// What follows the field: a value and a subvalue, where one is meant, and the text to store.
template <typename... Rest>
void set_element(store::DbRecord& card, const Field& field, Rest&&... rest) {
  card.set(field.number, std::forward<Rest>(rest)...);
}

// The number that is stored; 0 where there is none. Dates are compared by theirs, figures are in the scale
// of their attribute.
inline std::int64_t day(const store::DbRecord& card, const Date& date, int value = store::kWhole) {
  return entry::parse_decimal(element(card, date, value), 0).value_or(0);
}
template <Encoding E>
requires(decimals(E) > 0) std::int64_t figure(const store::DbRecord& card, const Attribute<E>& figure,
                                              int value = store::kWhole, int subvalue = store::kWhole) {
  return entry::parse_decimal(element(card, figure, value, subvalue), 0).value_or(0);
}

}  // namespace velanor::card
