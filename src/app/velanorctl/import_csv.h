// Bringing a table into a file of records: all of it, or nothing.
#pragma once

#include <functional>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

#include "store/database.h"

namespace velanor::app {

struct ImportFault {
  int line;
  std::string sentence;
};

struct ImportReport {
  int created = 0;
  int changed = 0;
  // When there is one, nothing was written.
  std::vector<ImportFault> faults;
};

// Reads the table and writes a record a row. Columns go by the first row (see column_of). Of a
// record that exists only the elements that have a column change; an empty field empties its
// element. In VELANORO names are written in capitals, a new card has the status "0" and a changed
// one loses the results that do not fit it any more, as when the screen saves it.
// `row_read` is called once a row. Failures of the store are DbError, and leave nothing either.
ImportReport import_csv(
    std::istream& in, store::Database& database, std::string_view file,
    const std::function<void()>& row_read = [] {});

}  // namespace velanor::app
