#include "demo/table.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "demo/source.h"

namespace velanor::demo {

std::string_view source(std::string_view name) {
  const auto all = sources();
  const auto found = std::find_if(all.begin(), all.end(), [&](const Source& s) { return s.name == name; });
  if (found == all.end()) throw std::out_of_range("no source " + std::string(name));
  return found->text;
}

int Table::attribute_of(std::size_t column) const {
  const int number = number_of(columns.at(column));
  return number != 0 ? number : static_cast<int>(column);
}

std::string_view Table::cell(const Row& row, int attribute) const {
  std::size_t column = 0;
  while (attribute_of(column) != attribute) ++column;
  return row[column];
}

Row split(std::string_view text, char separator) {
  Row pieces;
  if (text.empty()) return pieces;
  for (auto at = text.find(separator); at != text.npos; at = text.find(separator)) {
    pieces.push_back(text.substr(0, at));
    text.remove_prefix(at + 1);
  }
  pieces.push_back(text);
  return pieces;
}

Table read_table(std::string_view text) {
  Table table;
  for (std::string_view line : split(text, '\n')) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.empty() || line.starts_with('#')) continue;
    Row cells = split(line, ';');
    if (table.columns.empty()) {
      table.columns = std::move(cells);
    } else {
      cells.resize(table.columns.size());
      table.rows.push_back(std::move(cells));
    }
  }
  return table;
}

}  // namespace velanor::demo
