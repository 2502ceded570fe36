// The versions of a record, as the sub-commands that deal with them find and name them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "app/velanorctl/open_store.h"
#include "velanor/history.h"

namespace velanor::app {

// A record that a command line names.
struct RecordOptions {
  StoreOptions store;
  std::string file, id;
};
void add_record_options(CLI::App& command, RecordOptions& options);

// Throws store::DbError for a store that keeps none.
store::History& history_of(store::Database& database);
// Throws store::DbError for a record that never was.
std::vector<store::Version> versions_of(store::Database& database, const RecordOptions& record);
// Throws store::DbError for a number that is not among them.
const store::Version& version_numbered(const std::vector<store::Version>& versions, std::uint64_t number);

// "12/03/2026 14:05:09" in local time; what was written before versions were kept has none.
std::string moment_of(const store::Version& version);
std::string author_of(const store::Version& version);

}  // namespace velanor::app
