#include "app/velanorctl/employees_sheet.h"

#include <algorithm>

#include "app/velanorctl/export_target.h"
#include "app/velanorctl/workbook.h"
#include "exchange/csv.h"
#include "text/fold.h"
#include "text/utf8.h"

namespace velanor::app {
namespace {

using office::Column, office::Kind, office::kTitles;
using Text = office::Texts::Text;

constexpr std::size_t kStep = 256;  // rows

const office::ColumnTitle& title_of(Column column) { return kTitles[office::index_of(column)]; }

// What stands there is a sentence on the faults, although it is sorted by their number.
bool is_figure(Column column) { return title_of(column).kind == Kind::kNumber && column != Column::kState; }

void tell_part(std::size_t row, std::size_t rows, const std::function<void(double)>& progressed) {
  if (row % kStep == 0) progressed(static_cast<double>(row) / static_cast<double>(rows));
}

void write_csv(std::ostream& out, const EmployeesSheet& sheet,
               const std::function<void(double)>& progressed) {
  std::vector<std::string> cells;
  for (const Column column : sheet.columns) cells.emplace_back(title_of(column).title);
  out << exchange::kByteOrderMark;
  exchange::write_row(out, cells, ';');
  for (std::size_t r = 0; r < sheet.rows.size(); ++r) {
    tell_part(r, sheet.rows.size(), progressed);
    cells.clear();
    for (const Text& cell : sheet.rows[r]) cells.push_back(cell.shown);
    exchange::write_row(out, cells, ';');
  }
}

void write_cell(Workbook& book, int row, int at, Column column, const Text& cell) {
  const auto& title = title_of(column);
  if (cell.has_value && title.kind == Kind::kDate) return book.write_date(row, at, cell.value, cell.shown);
  if (cell.has_value && is_figure(column)) return book.write_figure(row, at, cell.value, title.decimals);
  if (!cell.shown.empty()) book.write_text(row, at, cell.shown);
}

int width_of(const EmployeesSheet& sheet, std::size_t at) {
  constexpr int kLeast = 6, kMost = 48, kAir = 3;
  int longest = text::length(title_of(sheet.columns[at]).title);
  for (const auto& row : sheet.rows) longest = std::max(longest, text::length(row[at].shown));
  return std::clamp(longest + kAir, kLeast, kMost);
}

void write_workbook(const std::string& path, const EmployeesSheet& sheet,
                    const std::function<void(double)>& progressed) {
  Workbook book(path, "Employés");
  std::vector<Workbook::Heading> headings;
  for (std::size_t c = 0; c < sheet.columns.size(); ++c)
    headings.push_back({std::string(title_of(sheet.columns[c]).title), width_of(sheet, c)});
  book.begin(headings, static_cast<int>(sheet.rows.size()));
  for (std::size_t r = 0; r < sheet.rows.size(); ++r) {
    tell_part(r, sheet.rows.size(), progressed);
    for (std::size_t c = 0; c < sheet.columns.size(); ++c)
      write_cell(book, static_cast<int>(r) + 1, static_cast<int>(c), sheet.columns[c], sheet.rows[r][c]);
  }
  progressed(1);
  book.close();
}

}  // namespace

EmployeesSheet sheet_of(const office::Employees& employees, const std::vector<int>& rows,
                        const std::vector<Column>& columns) {
  EmployeesSheet sheet{columns, {}};
  sheet.rows.reserve(rows.size());
  for (const int row : rows) {
    auto& cells = sheet.rows.emplace_back();
    for (const Column column : columns) {
      const Text& text = employees.at(row, column);
      cells.push_back({text.shown, {}, text.value, text.has_value});
    }
  }
  return sheet;
}

bool is_workbook(const std::string& path) { return text::folded(path).ends_with(text::folded(".xlsx")); }

void write_sheet(const std::string& path, const EmployeesSheet& sheet,
                 const std::function<void(double)>& progressed) {
  if (is_workbook(path))
    return write_export_file(path, [&](const std::string& file) { write_workbook(file, sheet, progressed); });
  write_export(path, [&](std::ostream& out) { write_csv(out, sheet, progressed); });
}

}  // namespace velanor::app
