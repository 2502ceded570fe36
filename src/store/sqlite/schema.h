// The tables of the database file, and bringing an older file up to them.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "store/sqlite/connection.h"

namespace velanor::store::sqlite {

// "VLNR", where SQLite keeps what kind of database a file is.
inline constexpr std::uint32_t kApplicationId = 0x564C4E52;

// Step n (from 0) turns a file of version n into one of version n + 1.
std::span<const char* const> schema_steps();

// Checks that the file is one of ours (or new), and takes the steps that it lacks as one change.
// A file that is of another kind, or of a later version than the steps know, is refused with a
// DbError and left as it is. Two programs may do this at once.
void prepare(Connection& connection, std::span<const char* const> steps = schema_steps());

}  // namespace velanor::store::sqlite
