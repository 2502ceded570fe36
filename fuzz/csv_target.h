// Any bytes as a table: read without harm, and what was read is read again from what is written of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "check.h"
#include "exchange/csv.h"

namespace velanor::store::fuzz {

inline void check_written_again(const std::vector<std::string>& fields) {
  // Two columns settle the separator.
  std::stringstream table;
  exchange::write_row(table, {"id", "1"}, ';');
  std::vector<std::string> row{"x"};
  row.insert(row.end(), fields.begin(), fields.end());
  exchange::write_row(table, row, ';');
  exchange::CsvReader again(table);
  exchange::CsvRow read;
  FUZZ_CHECK(again.next(read) && read.fields.size() == 2);
  FUZZ_CHECK(again.next(read) && read.fault.empty());
  FUZZ_CHECK(read.fields == row);
}

inline void run_csv(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kMostFields = 50;
  std::istringstream in(std::string(data, data + size));
  exchange::CsvReader reader(in, kMostFields);
  exchange::CsvRow row;
  int line = 0;
  while (reader.next(row)) {
    FUZZ_CHECK(row.line > line && row.fields.size() <= kMostFields);
    line = row.line;
    check_written_again(row.fields);
  }
}

}  // namespace velanor::store::fuzz
