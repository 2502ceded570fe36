// Places of elements in a record, as they are written down: "1", "30,1" or "30,1,2".
#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "velanor/record.h"

namespace velanor::store {

// 0 where a level is not given: then it is the whole element above.
struct Position {
  int attribute = 0;
  int value = 0;
  int subvalue = 0;

  friend bool operator==(const Position&, const Position&) = default;
};

std::string position_text(const Position& position);

std::string_view element(const DbRecord& record, const Position& position);
void set_element(DbRecord& record, const Position& position, std::string_view text);

// Every element that is not empty on a line under the shortest position that names it, in ascending
// order: "30,1,2 = 0012".
void print_elements(const DbRecord& record, std::ostream& out);

}  // namespace velanor::store
