// Bringing a table into a file of records: all of it, or nothing.
#pragma once

#include <cstddef>
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

// What a table may ask for at most: one of a few bytes can name elements far behind the others, and fill
// the memory.
struct ImportLimits {
  int columns = 2000;
  int rows = 1'000'000;
  std::size_t bytes = std::size_t{1} << 28;  // of all records that it makes
  // Faults and remarks that are kept, of each; of the others it is only known how many there are.
  int remarks = 1000;
};

struct ImportOptions {
  // Everything but the writing.
  bool rehearsal = false;
  // Codes of a card that no reference file holds are remarks, not faults.
  bool accept_unknown = false;
  entry::Clock clock = entry::system_clock();
  ImportLimits limits{};
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
  std::size_t remarks_left_out = 0;
  // Whether codes that no reference file holds are among the faults.
  bool unknown_codes = false;
  // Whether a limit was passed; it is among the faults.
  bool too_large = false;
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
// The table is read and checked in a view of the database, and written in one change that finds every record
// as it was read; where somebody has saved one meanwhile, all of it is read anew, three times at most. What
// is to be written waits beside the memory (see Spool), and so does a table whose stream cannot go back to
// where it stood.
//
// `row_read` is called once a row, and again for what is read anew. Failures of the store are DbError, and
// leave nothing either.
ImportReport import_csv(
    std::istream& in, store::Database& database, std::string_view file, const ImportOptions& options = {},
    const std::function<void()>& row_read = [] {});

}  // namespace velanor::exchange
