// A moment without patience for other programs.
#pragma once

#include <sqlite3.h>

#include "store/sqlite/connection.h"

namespace velanor::store::sqlite {

// Within it a call that finds the file taken says so at once.
class ImpatientScope {
 public:
  explicit ImpatientScope(Connection& connection) : connection_(connection) {
    sqlite3_busy_timeout(connection.handle(), 0);
  }
  ~ImpatientScope() { sqlite3_busy_timeout(connection_.handle(), connection_.patience()); }
  ImpatientScope(const ImpatientScope&) = delete;
  ImpatientScope& operator=(const ImpatientScope&) = delete;

 private:
  Connection& connection_;
};

}  // namespace velanor::store::sqlite
