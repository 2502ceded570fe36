// The table of the employees as a file: CSV, or a spreadsheet's workbook.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "office/employees.h"

namespace velanor::app {

// Rows and columns as they are to be written; holds everything, so it can be written on any thread.
struct EmployeesSheet {
  std::vector<office::Column> columns;
  std::vector<std::vector<office::Texts::Text>> rows;
};
EmployeesSheet sheet_of(const office::Employees& employees, const std::vector<int>& rows,
                        const std::vector<office::Column>& columns);

// Writes it there (mode 0600): a workbook where the name ends in ".xlsx", else CSV; all of it, or nothing,
// and over nothing but an older table. `progressed` hears what part is written, from 0 to 1; what it throws
// ends the work. Throws store::DbError.
//
// In the workbook dates are dates and figures are figures; every text stands as a text, whatever it begins
// with.
void write_sheet(
    const std::string& path, const EmployeesSheet& sheet,
    const std::function<void(double)>& progressed = [](double) {});
bool is_workbook(const std::string& path);

}  // namespace velanor::app
