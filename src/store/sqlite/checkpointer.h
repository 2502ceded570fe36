// Brings the write-ahead file into the database file, beside those who save.
#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "store/sqlite/connection.h"

namespace velanor::store::sqlite {

// A checkpoint takes many syncs, for which no save should wait: it is done by a thread of its own, on a
// connection of its own, which begins with the first one. What a reader keeps from being brought over is
// brought when the reader has gone.
class Checkpointer {
 public:
  // Hears of the commits of the connection, which must outlive it.
  explicit Checkpointer(Connection& connection);
  // Waits for the checkpoint under way.
  ~Checkpointer();
  Checkpointer(const Checkpointer&) = delete;
  Checkpointer& operator=(const Checkpointer&) = delete;

  // A view of this program's has ended.
  void reader_gone();

 private:
  void committed(int pages_in_log);
  void ask();
  void work();

  Connection& connection_;
  std::mutex mutex_;
  std::condition_variable asked_;
  bool wanted_ = false, ends_ = false, behind_ = false;
  std::thread thread_;
};

}  // namespace velanor::store::sqlite
