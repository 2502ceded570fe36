// Tables as text: rows of fields between semicolons or commas.
#pragma once

#include <cstdint>
#include <deque>
#include <istream>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/table_text.h"

namespace velanor::exchange {

template <typename Text>
struct CsvRowOf {
  int line = 0;  // where it begins, from 1
  std::vector<Text> fields;
  // What is wrong with its quotes; empty when nothing is.
  std::string fault;
  bool too_many_fields = false;
};
using CsvRow = CsvRowOf<std::string>;
// Of which the fields live until the next row is read.
using CsvRowView = CsvRowOf<std::string_view>;

// What spreadsheets know UTF-8 by.
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Reads UTF-8 with or without a byte order mark, or else Windows-1252; lines that end in LF or CRLF. A
// quoted field may hold separators, line breaks and doubled quotes. Lines without a text are passed
// over, as are remarks ("#") above the first row. Fields are read without what neutralizes them. The
// separator is the semicolon when the first row has one outside quotes, otherwise the comma.
//
// The table is read twice, the second time row by row: what is in memory is a few rows.
class CsvReader {
 public:
  static constexpr std::size_t kMostFields = 10'000;
  // A row of more fields than that is a fault. The stream must outlive it.
  explicit CsvReader(std::istream& in, std::size_t most_fields = kMostFields);
  // The source from its beginning.
  explicit CsvReader(std::shared_ptr<TableSource> source, std::size_t most_fields = kMostFields);
  // What stands in the way of reading it at all, and from which line on; then there are no rows.
  const std::string& fault() const { return text_.fault(); }
  int fault_line() const { return text_.fault_line(); }
  bool was_windows_1252() const { return text_.was_windows_1252(); }
  // Whether there was another row.
  bool next(CsvRow& row);
  bool next(CsvRowView& row);
  char separator() const { return separator_; }

 private:
  static constexpr std::size_t kCut = static_cast<std::size_t>(-1);

  bool read_more();
  void skip_remarks();
  void find_separator();
  bool read(CsvRowView& row);
  bool read_whole(CsvRowView& row);
  std::size_t read_field(std::size_t at, CsvRowView& row, int& lines);
  std::size_t read_quoted(std::size_t at, CsvRowView& row, int& lines);
  std::size_t end_of_field(std::size_t at);
  std::uint64_t ends_in_block(std::size_t block) const;
  bool at_end() { return at_ == window_.size() && !read_more(); }

  std::size_t most_fields_;
  TableText text_;
  // Some of the text, in which the next row begins at `at_`; what has been read goes.
  std::string window_;
  bool is_rest_ = false;  // nothing follows it
  std::size_t at_ = 0;
  // Where fields may end (a bit a byte) from the byte `block_` on.
  std::size_t block_ = kCut;
  std::uint64_t ends_ = 0;
  // Fields of the row that do not stand in the window as they are read.
  std::deque<std::string> unquoted_;
  int line_ = 1;
  char separator_ = ';';
};

// What a spreadsheet would take for a formula, and carry out, gets an apostrophe before it, which CsvReader
// takes away again; so does what already looks like that.
std::string neutralized(std::string_view field);

// Quotes the field if it needs it, and neutralizes a formula.
void append_field(std::string& row, std::string_view field, char separator);

// A row of such fields.
void write_row(std::ostream& out, const std::vector<std::string>& fields, char separator);

}  // namespace velanor::exchange
