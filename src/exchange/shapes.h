// What elements the records of a file have, and in which columns of a table they stand.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "store/position.h"

namespace velanor::exchange {

struct Placed {
  std::size_t column;
  std::string_view text;
};

class Shapes {
 public:
  // Takes note of a record, in its encoded form.
  void take(std::string_view encoded);
  // The elements that have a column, in ascending order. What is taken note of later has none.
  std::vector<store::Position> columns();
  // Tells the elements of a record that are not empty and have one of those columns, in their order.
  template <typename Visit>
  void place(std::string_view encoded, const Visit& visit) const;

 private:
  // How many values an attribute has at most, and subvalues each of them.
  struct Attribute {
    bool is_there = false, has_subvalues = false;
    // A value holds what would part it in two where a field holds all of them.
    bool has_separator = false;
    std::vector<int> subvalues;
    // Of each value the first column, once there are columns.
    std::vector<std::size_t> columns;
    bool is_one_column() const { return subvalues.size() == 1 && !has_subvalues && !has_separator; }
  };

  std::vector<Attribute> attributes_;
};

// Calls `part` with each run of bytes between two such marks, and with its number from 1.
template <typename Part>
void each_part(std::string_view bytes, char mark, const Part& part) {
  for (int number = 1;; ++number) {
    const auto end = bytes.find(mark);
    part(number, bytes.substr(0, end));
    if (end == bytes.npos) return;
    bytes.remove_prefix(end + 1);
  }
}

template <typename Visit>
void Shapes::place(std::string_view encoded, const Visit& visit) const {
  each_part(encoded, store::kAttributeMark, [&](int a, std::string_view attribute) {
    if (attribute.empty() || static_cast<std::size_t>(a) > attributes_.size()) return;
    const Attribute& shape = attributes_[static_cast<std::size_t>(a) - 1];
    if (shape.columns.empty()) return;
    if (shape.is_one_column()) return visit(Placed{shape.columns.front(), attribute});
    each_part(attribute, store::kValueMark, [&](int v, std::string_view value) {
      const auto at = static_cast<std::size_t>(v) - 1;
      if (value.empty() || at >= shape.columns.size()) return;
      if (!shape.has_subvalues) return visit(Placed{shape.columns[at], value});
      each_part(value, store::kSubvalueMark, [&](int s, std::string_view text) {
        if (!text.empty() && s <= shape.subvalues[at])
          visit(Placed{shape.columns[at] + static_cast<std::size_t>(s) - 1, text});
      });
    });
  });
}

}  // namespace velanor::exchange
