// A session on a base that is set up: its connection, what it may do, and what it is told.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "store/postgres/connection.h"
#include "store/postgres/schema.h"
#include "velanor/news.h"

namespace velanor::store::postgres {

class Session {
 public:
  Session(const std::string& url, const Connection::Limits& limits, std::uint64_t& round_trips);

  Connection& connection() { return connection_; }
  bool may_write() const { return rights_ == Rights::kWrite; }
  // As long as it lives on the server it holds the lock of this number, and a little longer when its
  // connection is lost.
  std::int64_t key() const { return key_; }
  // Ends the session of that number, if it still lives. Afterwards it does nothing any more, and what it has
  // done can be seen.
  void end_other(std::int64_t key);

  std::vector<Change> take_notices();

 private:
  Connection connection_;
  Rights rights_;
  std::int64_t key_ = 0;
};

std::int64_t random_number();

}  // namespace velanor::store::postgres
