// Tables as text: rows of fields between semicolons or commas.
#pragma once

#include <istream>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace velanor::exchange {

struct CsvRow {
  int line = 0;  // where it begins, from 1
  std::vector<std::string> fields;
  // What is wrong with its quotes; empty when nothing is.
  std::string fault;
  bool too_many_fields = false;
};

// What spreadsheets know UTF-8 by.
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Reads UTF-8 with or without a byte order mark, or else Windows-1252; lines that end in LF or CRLF. A
// quoted field may hold separators, line breaks and doubled quotes. Lines without a text are passed
// over, as are remarks ("#") above the first row. Fields are read without what neutralizes them. The
// separator is the semicolon when the first row has one outside quotes, otherwise the comma.
class CsvReader {
 public:
  static constexpr std::size_t kMostFields = 10'000;
  // A row of more fields than that is a fault.
  explicit CsvReader(std::istream& in, std::size_t most_fields = kMostFields);
  // What stands in the way of reading it at all, and from which line on; then there are no rows.
  const std::string& fault() const { return fault_; }
  int fault_line() const { return line_; }
  bool was_windows_1252() const { return was_windows_1252_; }
  // Whether there was another row.
  bool next(CsvRow& row);
  char separator() const { return separator_; }

 private:
  void skip_remarks();
  bool read(CsvRow& row);
  void read_field(CsvRow& row);
  void read_quoted(CsvRow& row, std::string& field);
  bool at_end() const { return at_ == text_.size(); }
  bool at_line_end() const;
  void skip_line_end();

  std::size_t most_fields_;
  std::string text_, fault_;
  bool was_windows_1252_ = false;
  std::size_t at_ = 0;
  int line_ = 1;
  char separator_ = ';';
};

// What a spreadsheet would take for a formula, and carry out, gets an apostrophe before it, which CsvReader
// takes away again; so does what already looks like that.
std::string neutralized(std::string_view field);

// Quotes the fields that need it, and neutralizes formulas.
void write_row(std::ostream& out, const std::vector<std::string>& fields, char separator);

}  // namespace velanor::exchange
