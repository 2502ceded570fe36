// What went wrong on the server or on the way to it, told to the person in front of the screen.
#pragma once

#include <string>
#include <string_view>

#include "velanor/database.h"

namespace velanor::store::postgres {

// The connection is gone; what was asked last may have been done or not.
class ConnectionLost : public DbError {
 public:
  explicit ConnectionLost(std::string_view place);
};

// The server could not be reached: nothing was asked of it.
class Unreachable : public DbError {
 public:
  Unreachable(std::string_view place, std::string_view detail);
};

// Why a connection did not come about, of what the library says of it: the server's code stands in it where
// the server has answered.
std::string connection_failure(std::string_view message);

// The codes of the server that end a connection.
bool ends_connection(std::string_view sqlstate);

// What the server at `place` refused: its code, and its own words where there is no better sentence.
DbError failure(std::string_view sqlstate, std::string_view place, std::string_view detail);

}  // namespace velanor::store::postgres
