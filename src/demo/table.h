// A source as a table: cells between semicolons, a line a row.
#pragma once

#include <charconv>
#include <string_view>
#include <vector>

namespace velanor::demo {

// Views into the text, which must outlive the table.
using Row = std::vector<std::string_view>;

struct Table {
  Row columns;
  std::vector<Row> rows;  // each with a cell for every column

  // The attribute that a column stands for: the number that its name begins with, otherwise its position.
  int attribute_of(std::size_t column) const;
  // What a row has of an attribute; throws std::out_of_range where no column stands for it.
  std::string_view cell(const Row& row, int attribute) const;
};

// Reads a source; lines that begin with '#' and empty lines are passed over, the first other
// line names the columns.
Table read_table(std::string_view text);

// The pieces of a text between separators; of an empty text none.
Row split(std::string_view text, char separator);

// The whole number that a text begins with; 0 when it begins with none.
inline int number_of(std::string_view text) {
  int number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

}  // namespace velanor::demo
