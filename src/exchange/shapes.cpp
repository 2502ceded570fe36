#include "exchange/shapes.h"

#include <algorithm>

#include "exchange/columns.h"

namespace velanor::exchange {

void Shapes::take(std::string_view encoded) {
  each_part(encoded, store::kAttributeMark, [&](int a, std::string_view attribute) {
    if (attribute.empty()) return;
    if (static_cast<std::size_t>(a) > attributes_.size()) attributes_.resize(static_cast<std::size_t>(a));
    Attribute& shape = attributes_[static_cast<std::size_t>(a) - 1];
    shape.is_there = true;
    shape.has_separator |= attribute.find(kValueSeparator) != attribute.npos;
    each_part(attribute, store::kValueMark, [&](int v, std::string_view value) {
      const auto at = static_cast<std::size_t>(v) - 1;
      if (at == shape.subvalues.size()) shape.subvalues.push_back(0);
      if (value.empty()) return;
      const auto marks = std::count(value.begin(), value.end(), store::kSubvalueMark);
      shape.has_subvalues |= marks > 0;
      shape.subvalues[at] = std::max(shape.subvalues[at], 1 + static_cast<int>(marks));
    });
  });
}

std::vector<store::Position> Shapes::columns() {
  std::vector<store::Position> columns;
  for (std::size_t i = 0; i < attributes_.size(); ++i) {
    Attribute& shape = attributes_[i];
    const int a = static_cast<int>(i) + 1;
    if (!shape.is_there) continue;
    for (std::size_t v = 0; v < shape.subvalues.size(); ++v) {
      const int value = shape.is_one_column() ? 0 : static_cast<int>(v) + 1;
      shape.columns.push_back(columns.size());
      if (!shape.has_subvalues) columns.push_back({a, value});
      for (int s = 1; shape.has_subvalues && s <= shape.subvalues[v]; ++s) columns.push_back({a, value, s});
    }
  }
  return columns;
}

}  // namespace velanor::exchange
