// What others write to a database, as it happens.
#pragma once

#include <string>
#include <vector>

namespace velanor::store {

// A record that somebody wrote or deleted. An empty id: anything in the file may have changed; an empty file:
// anything at all, as after a lost connection.
struct Change {
  std::string file, id;
  std::string author;  // see History::set_author; "" where it is not known
};

// Hears from the moment when it is made, on the thread of its database, which must outlive it.
class News {
 public:
  virtual ~News() = default;
  // Becomes readable when there is something to take, and stays the same whatever becomes of connections.
  virtual int descriptor() const = 0;
  // What has come, without waiting for anybody. What the database writes itself is no news. A connection that
  // is found lost is no failure here: the next call on the database is told of it.
  virtual std::vector<Change> take() = 0;
};

}  // namespace velanor::store
