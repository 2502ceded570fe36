// A spreadsheet's workbook of one sheet (XLSX); nothing else uses the library that writes it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct lxw_format;
struct lxw_workbook;
struct lxw_worksheet;

namespace velanor::app {

// Rows from 0, which is the heading's, each written before the next; columns from 0. Throws store::DbError.
class Workbook {
 public:
  struct Heading {
    std::string title;
    int width;  // in characters
  };

  // Writes into the file at the end (`close`), over what it holds.
  Workbook(std::string path, const std::string& sheet);
  // Without `close` nothing is written.
  ~Workbook();
  Workbook(const Workbook&) = delete;
  Workbook& operator=(const Workbook&) = delete;

  // The heading stays in sight and filters the rows below it.
  void begin(const std::vector<Heading>& headings, int rows);
  // Never a formula, whatever it begins with.
  void write_text(int row, int column, const std::string& text);
  // A whole number of units of its last decimal.
  void write_figure(int row, int column, std::int64_t value, int decimals);
  // A day number (see entry::day_number); as the text where a spreadsheet has no such date.
  void write_date(int row, int column, std::int64_t day, const std::string& text);
  void close();

 private:
  lxw_format* format(const char* number_format);
  void check(int error) const;

  std::string path_;
  lxw_workbook* book_;
  lxw_worksheet* sheet_;
  lxw_format* figures_[3];  // by their decimals
  lxw_format* date_;
};

}  // namespace velanor::app
