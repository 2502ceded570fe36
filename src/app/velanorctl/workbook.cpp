#include "app/velanorctl/workbook.h"

#include <xlsxwriter.h>

#include <utility>

#include "velanor/database.h"
#include "velanor/date.h"

namespace velanor::app {
namespace {

constexpr int kFirstYear = 1900, kLastYear = 9999;

lxw_row_t row_of(int row) { return static_cast<lxw_row_t>(row); }
lxw_col_t column_of(int column) { return static_cast<lxw_col_t>(column); }

}  // namespace

Workbook::Workbook(std::string path, const std::string& sheet) : path_(std::move(path)) {
  // Rows go to a file of the library's own as they come, so a large table takes no memory.
  lxw_workbook_options options{};
  options.constant_memory = LXW_TRUE;
  book_ = workbook_new_opt(path_.c_str(), &options);
  sheet_ = book_ ? workbook_add_worksheet(book_, sheet.c_str()) : nullptr;
  if (!sheet_) {
    if (book_) lxw_workbook_free(book_);
    check(LXW_ERROR_MEMORY_MALLOC_FAILED);
  }
  figures_[0] = format("0");
  figures_[1] = format("0.0");
  figures_[2] = format("0.00");
  date_ = format("dd/mm/yyyy");
}

Workbook::~Workbook() {
  if (book_) lxw_workbook_free(book_);
}

lxw_format* Workbook::format(const char* number_format) {
  lxw_format* made = workbook_add_format(book_);
  format_set_num_format(made, number_format);
  return made;
}

void Workbook::check(int error) const {
  if (error == LXW_NO_ERROR) return;
  if (error == LXW_ERROR_WORKSHEET_INDEX_OUT_OF_RANGE) {
    throw store::DbError(
        store::kStoreFailure,
        "Le tableau a plus de lignes qu'un classeur n'en admet. Filtrez-le, ou exportez-le en CSV.");
  }
  throw store::DbError(store::kStoreFailure,
                       "Le classeur n'a pas pu être écrit. Vérifiez la place sur le disque et votre droit "
                       "d'écrire dans ce dossier.");
}

void Workbook::begin(const std::vector<Heading>& headings, int rows) {
  lxw_format* bold = workbook_add_format(book_);
  format_set_bold(bold);
  format_set_bottom(bold, LXW_BORDER_THIN);
  for (std::size_t c = 0; c < headings.size(); ++c) {
    const auto column = static_cast<lxw_col_t>(c);
    check(worksheet_set_column(sheet_, column, column, headings[c].width, nullptr));
    check(worksheet_write_string(sheet_, 0, column, headings[c].title.c_str(), bold));
  }
  worksheet_freeze_panes(sheet_, 1, 0);
  worksheet_repeat_rows(sheet_, 0, 0);
  if (!headings.empty())
    check(worksheet_autofilter(sheet_, 0, 0, row_of(rows), static_cast<lxw_col_t>(headings.size() - 1)));
}

void Workbook::write_text(int row, int column, const std::string& text) {
  check(worksheet_write_string(sheet_, row_of(row), column_of(column), text.c_str(), nullptr));
}

void Workbook::write_figure(int row, int column, std::int64_t value, int decimals) {
  double figure = static_cast<double>(value);
  for (int d = 0; d < decimals; ++d) figure /= 10;
  check(worksheet_write_number(sheet_, row_of(row), column_of(column), figure, figures_[decimals]));
}

void Workbook::write_date(int row, int column, std::int64_t day, const std::string& text) {
  const entry::Date date = entry::date_of(static_cast<int>(day));
  if (date.year < kFirstYear || date.year > kLastYear) return write_text(row, column, text);
  lxw_datetime moment{date.year, date.month, date.day, 0, 0, 0};
  check(worksheet_write_datetime(sheet_, row_of(row), column_of(column), &moment, date_));
}

void Workbook::close() {
  const int error = workbook_close(std::exchange(book_, nullptr));
  check(error);
}

}  // namespace velanor::app
