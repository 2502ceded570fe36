// Tables as text: rows of fields between semicolons or commas.
#pragma once

#include <istream>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace velanor::app {

struct CsvRow {
  int line = 0;  // where it begins, from 1
  std::vector<std::string> fields;
  // What is wrong with its quotes or its characters; empty when nothing is.
  std::string fault;
};

// Reads UTF-8 with or without a byte order mark, lines that end in LF or CRLF; a quoted field may
// hold separators, line breaks and doubled quotes. Empty lines are passed over. The separator is
// the semicolon when the first row has one outside quotes, otherwise the comma.
class CsvReader {
 public:
  explicit CsvReader(std::istream& in);
  // Whether there was another row.
  bool next(CsvRow& row);
  char separator() const { return separator_; }

 private:
  bool read(CsvRow& row);
  void read_field(CsvRow& row);
  void read_quoted(CsvRow& row, std::string& field);
  bool at_end() const { return at_ == text_.size(); }
  bool at_line_end() const;
  void skip_line_end();

  std::string text_;
  std::size_t at_ = 0;
  int line_ = 1;
  char separator_ = ';';
};

// Quotes the fields that need it.
void write_row(std::ostream& out, const std::vector<std::string>& fields, char separator);

}  // namespace velanor::app
