#include "exchange/import_csv.h"

#include <memory>

#include "exchange/change_list.h"
#include "exchange/import_rows.h"
#include "exchange/table_text.h"

namespace velanor::exchange {
namespace {

void write(ChangeList& changes, store::Database& database, std::string_view file_name) {
  const auto file = database.OpenFile(file_name);
  changes.rewind();
  while (const auto change = changes.take()) {
    const auto expected =
        change->before ? store::Expected::record(*change->before) : store::Expected::absent();
    file->write(change->id, change->record, expected);
  }
}

}  // namespace

ImportReport import_csv(std::istream& in, store::Database& database, std::string_view file,
                        const ImportOptions& options, const std::function<void()>& row_read) {
  const auto source = std::make_shared<TableSource>(in);
  for (int tries = 1;; ++tries) {
    ImportRows reading(source, database, file, options);
    database.in_one_view([&] { reading.read(row_read); });
    if (!reading.report().faults.empty() || options.rehearsal) return reading.take_report();
    try {
      database.in_one_change([&] { write(reading.changes(), database, file); });
      return reading.take_report();
    } catch (const store::DbError& error) {
      // Somebody has saved one of the records that the table was compared with.
      constexpr int kTries = 3;
      if (error.number() != store::kConflict || tries == kTries) throw;
    }
  }
}

}  // namespace velanor::exchange
