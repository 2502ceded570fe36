// The tables on the server, their versions, and who may do what with them.
#pragma once

#include <span>
#include <string>

#include "store/postgres/connection.h"

namespace velanor::store::postgres {

// The k-th step leads from version k to version k + 1.
std::span<const char* const> schema_steps();

// Takes the steps that a base has not taken yet; all of it, or nothing when it fails.
std::string setup_script(std::span<const char* const> steps = schema_steps());

enum class Rights { kRead, kWrite };

// Throws a DbError when the base is not at the version of this program, or may not even be read.
Rights check_schema(Connection& connection);

}  // namespace velanor::store::postgres
