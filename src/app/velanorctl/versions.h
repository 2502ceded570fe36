// What the sub-commands that deal with the versions of a record have in common.
#pragma once

#include <string>
#include <vector>

#include "app/velanorctl/open_store.h"
#include "office/versions.h"

namespace velanor::app {

// A record that a command line names.
struct RecordOptions {
  StoreOptions store;
  std::string file, id;
};
void add_record_options(CLI::App& command, RecordOptions& options);

// Throws store::DbError for a record that never was, and for a store that keeps no versions.
std::vector<store::Version> versions_of(store::Database& database, const RecordOptions& record);
// As it may appear on a terminal.
std::string author_of(const store::Version& version);

}  // namespace velanor::app
