#include "card/record/record_compare.h"

#include <algorithm>

namespace velanor::card {

bool same_value(const store::DbRecord& a, const store::DbRecord& b, int attribute, int value) {
  if (a(attribute, value) == b(attribute, value)) return true;
  const int count = std::max(a.Count(attribute, value), b.Count(attribute, value));
  for (int s = 1; s <= count; ++s) {
    if (a(attribute, value, s) != b(attribute, value, s)) return false;
  }
  return true;
}

bool same_attribute(const store::DbRecord& a, const store::DbRecord& b, int attribute) {
  if (a(attribute) == b(attribute)) return true;
  const int count = std::max(a.Count(attribute), b.Count(attribute));
  for (int value = 1; value <= count; ++value) {
    if (!same_value(a, b, attribute, value)) return false;
  }
  return true;
}

int lines_of(const store::DbRecord& card, const Field& list) {
  int lines = 0;
  while (!card(list.number, lines + 1).empty()) ++lines;
  return lines;
}

void end_columns(store::DbRecord& card, std::span<const Field> columns, int lines) {
  for (const Field& column : columns) {
    while (card.Count(column.number) > lines) card.Delete(column.number, card.Count(column.number));
  }
}

bool same_record(const store::DbRecord& a, const store::DbRecord& b) {
  const int count = std::max(a.DCount(), b.DCount());
  for (int attribute = 1; attribute <= count; ++attribute) {
    if (!same_attribute(a, b, attribute)) return false;
  }
  return true;
}

}  // namespace velanor::card
