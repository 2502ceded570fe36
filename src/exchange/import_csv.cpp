#include "exchange/import_csv.h"

#include <iterator>
#include <sstream>

#include "exchange/import_rows.h"

namespace velanor::exchange {
namespace {

using store::DbRecord;

void write(const std::vector<RecordChange>& changes, store::Database& database, std::string_view file_name) {
  const auto file = database.OpenFile(file_name);
  for (const RecordChange& change : changes) {
    const auto expected = change.before ? store::Expected::record(DbRecord::from_trusted(*change.before))
                                        : store::Expected::absent();
    file->write(change.id, DbRecord::from_trusted(change.content), expected);
  }
}

}  // namespace

ImportReport import_csv(std::istream& in, store::Database& database, std::string_view file,
                        const ImportOptions& options, const std::function<void()>& row_read) {
  const std::string table(std::istreambuf_iterator<char>(in), {});
  for (int tries = 1;; ++tries) {
    std::istringstream rows(table);
    ImportRows reading(rows, database, file, options);
    database.in_one_view([&] { reading.read(row_read); });
    if (!reading.report().faults.empty() || options.rehearsal) return reading.report();
    try {
      database.in_one_change([&] { write(reading.changes(), database, file); });
      return reading.report();
    } catch (const store::DbError& error) {
      // Somebody has saved one of the records that the table was compared with.
      constexpr int kTries = 3;
      if (error.number() != store::kConflict || tries == kTries) throw;
    }
  }
}

}  // namespace velanor::exchange
