// Bringing a table into a file of records: all of it, or nothing.
#pragma once

#include <functional>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

#include "velanor/database.h"
#include "velanor/date.h"

namespace velanor::exchange {

// What there is to say about a line of the table.
struct ImportRemark {
  int line;
  std::string sentence;
};

struct ImportOptions {
  // Everything but the writing.
  bool rehearsal = false;
  // Codes of a card that no reference file holds are remarks, not faults.
  bool accept_unknown = false;
  entry::Clock clock = entry::system_clock();
};

struct ImportReport {
  struct Record {
    std::string id;
    // The columns that are not as they were; empty for a new record.
    std::vector<std::string> changes;
  };
  std::vector<Record> created, changed;
  int unchanged = 0;
  // When there is one, nothing was written.
  std::vector<ImportRemark> faults;
  std::vector<ImportRemark> remarks;
  // Whether codes that no reference file holds are among the faults.
  bool unknown_codes = false;
};

// Reads the table and writes a record a row. Columns go by the first row (see column_of). Of a
// record that exists only the elements that have a column change; an empty field empties its
// element. Codes get the leading zeros back that a spreadsheet has stripped. The records of TABLES
// and BUDGETTRAMESAISIE may be spelt out: rows of one id are the values 1, 2, 3... of its attributes.
//
// In VELANORO what changes must be as the screen would take it, and codes must exist. Names are
// written in capitals, establishments and activities are completed by the entity, a new card has the
// status "0" and a changed one loses the results that do not fit it any more, as when the screen
// saves it.
//
// `row_read` is called once a row. Failures of the store are DbError, and leave nothing either.
ImportReport import_csv(
    std::istream& in, store::Database& database, std::string_view file, const ImportOptions& options = {},
    const std::function<void()>& row_read = [] {});

}  // namespace velanor::exchange
