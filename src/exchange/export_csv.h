// A file of records as a table that import_csv reads back.
#pragma once

#include <functional>
#include <ostream>
#include <string_view>

#include "velanor/database.h"

namespace velanor::exchange {

enum class Headings { kPositions, kNames };

struct ExportOptions {
  // Names instead of positions, and fields as the screen shows them, where there are such (VELANORO).
  Headings headings = Headings::kPositions;
  char separator = ';';
};

// Writes a row a record in ascending order of ids, with a column for every element that any of
// them has, headed by its position and what stands there. Returns the number of records.
// `record_read` is called when a record has been read, and when it has been written; between the two the
// records wait beside the memory (see Spool).
int export_csv(
    std::ostream& out, store::Database& database, std::string_view file, const ExportOptions& options = {},
    const std::function<void()>& record_read = [] {});

}  // namespace velanor::exchange
