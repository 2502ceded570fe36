// What a new base begins with.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "exchange/import_csv.h"
#include "velanor/memory_database.h"
#include "velanor/sqlite_database.h"

namespace velanor::app {

// Hears how far the work is, from 0 to 1, below 0 where that is not known; what it throws ends the work.
using Progressed = std::function<void(double part)>;

// The lists in TABLES that the component reads when it starts, of which a base has none: it cannot be
// opened without them.
std::vector<std::string> missing_lists(store::Database& database);
// Puts those in, empty.
void put_missing_lists(store::Database& database);

// The example, with its cards or its reference files alone. Returns the number of records.
enum class Example { kWhole, kReferenceFiles };
std::size_t put_example(store::Database& database, Example example, const Progressed& progressed);

// A table of a folder: the file of its name, such as SECTEUR.csv, and what there is to say about it.
struct FolderTable {
  std::string name, file;
  exchange::ImportReport report;
};
struct FolderReport {
  std::vector<FolderTable> tables;
  std::vector<std::string> passed_over;  // tables (.csv) whose names are no file of a base
  std::vector<std::string> empty_lists;  // what no table had, and the component needs

  bool has_faults() const;
};
// Reads the tables of a folder into an empty database, reference files before cards. Throws store::DbError
// where the folder has none, or one cannot be read; faults of theirs are in the report.
FolderReport import_folder(const std::string& folder, store::Database& empty, const Progressed& progressed);

// Writes everything that the database holds into a new file, which appears complete or not at all.
void build_from(const std::string& path, store::MemoryDatabase& contents, const Progressed& progressed);

}  // namespace velanor::app
