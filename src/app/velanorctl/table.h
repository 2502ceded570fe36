// Texts in columns, for a terminal.
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace velanor::app {

// Columns that a text takes: none for combining marks, two for wide characters.
int display_width(std::string_view text);

// Stored text as one can read it on a line: " | " between values, control characters as "·", so that
// no record can drive the terminal.
std::string printable(std::string_view stored);

class TextTable {
 public:
  explicit TextTable(std::vector<std::string> titles) : rows_{std::move(titles)} {}
  // As many cells as there are titles.
  void add(std::vector<std::string> row) { rows_.push_back(std::move(row)); }
  void print(std::ostream& out) const;

 private:
  // The titles first.
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace velanor::app
