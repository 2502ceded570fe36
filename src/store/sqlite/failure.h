// What went wrong in SQLite, told to the person in front of the screen.
#pragma once

#include <string>
#include <string_view>

#include "velanor/database.h"

namespace velanor::store::sqlite {

// The database file itself is damaged; nothing that is done with it can be trusted.
class DamagedError : public DbError {
 public:
  using DbError::DbError;
};

// One record does not hold what was written; the others can be trusted.
class DamagedRecord : public DamagedError {
 public:
  using DamagedError::DamagedError;
};

// A kStoreFailure for a result code of SQLite, extended or not: what happened to the database at
// `path` and what to do. `detail` is what SQLite says of it; told only where nothing better is.
DbError failure(int code, std::string_view path, std::string_view detail);

}  // namespace velanor::store::sqlite
