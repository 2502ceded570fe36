// What the sub-commands that deal with the versions of a record have in common.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/velanorctl/open_store.h"
#include "office/versions.h"

namespace CLI {
class Option;
}

namespace velanor::app {

// A record that a command line names.
struct RecordOptions {
  StoreOptions store;
  std::string file, id;
};
void add_record_options(CLI::App& command, RecordOptions& options);

// Throws store::DbError for a record that never was, and for a store that keeps no versions.
std::vector<store::Version> versions_of(store::Database& database, const RecordOptions& record);
// Adds the number of a version, which may stand there or not.
CLI::Option* add_version_number(CLI::App& command, const char* name, std::uint64_t& number, const char* what);
// As it may appear on a terminal.
std::string author_of(const store::Version& version);

}  // namespace velanor::app
