// What is wrong with a database file, and making anew what can be.
#pragma once

#include <string>
#include <vector>

#include "store/sqlite/connection.h"

namespace velanor::store::sqlite {

// What SQLite finds damaged, in its words; nothing for a sound file.
std::vector<std::string> damages_of(Connection& connection);

// Where indexes, triggers and the ids that are kept backwards are not as the records and this program want
// them; and tables that are not as they should be, which nothing mends.
std::vector<std::string> disagreements_of(Connection& connection);

// Makes all of that anew from the tables as one change, which is undone with a DbError (DamagedError) unless
// the file is found sound and in agreement afterwards.
void repair(Connection& connection);

}  // namespace velanor::store::sqlite
