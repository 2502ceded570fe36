// The commands of a scenario that touch the store alone. Failures of the store are DbError.
#pragma once

#include <ostream>
#include <string>

#include "play/command.h"
#include "velanor/database.h"

namespace velanor::play {

void put(store::Database& database, const Command& command);
void remove(store::Database& database, const Command& command);
// Every non-empty element on a line under the shortest position that names it, in ascending order
// of positions.
void print_record(store::Database& database, const Command& command, std::ostream& out);

// What was expected and what was found; empty when it holds.
std::string expect_record(store::Database& database, const Command& command);
std::string expect_absent(store::Database& database, const Command& command);

}  // namespace velanor::play
