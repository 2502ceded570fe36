#include "store/sqlite/checkpointer.h"

#include <sqlite3.h>

#include <exception>
#include <filesystem>

namespace velanor::store::sqlite {
namespace {

// Pages in the log from which on it is worth a checkpoint; and from which on new saves may wait a moment for
// the log to begin anew, for one that is always written to would grow for ever.
constexpr int kWorthwhile = 1000, kTooLong = 16'000;
constexpr int kPageSize = 4096;
// Milliseconds that a checkpoint waits for a save, and that a save could wait for it.
constexpr int kPatience = 50;

}  // namespace

Checkpointer::Checkpointer(Connection& connection) : connection_(connection) {
  sqlite3_wal_hook(
      connection.handle(),
      [](void* self, sqlite3*, const char*, int pages) {
        static_cast<Checkpointer*>(self)->committed(pages);
        return SQLITE_OK;
      },
      this);
}

Checkpointer::~Checkpointer() {
  sqlite3_wal_hook(connection_.handle(), nullptr, nullptr);
  if (!thread_.joinable()) return;
  {
    const std::scoped_lock lock(mutex_);
    ends_ = true;
  }
  asked_.notify_one();
  thread_.join();
}

void Checkpointer::committed(int pages_in_log) {
  if (pages_in_log >= kWorthwhile) ask();
}

// Of a reader in another program only the length of the log tells.
void Checkpointer::reader_gone() {
  std::error_code none;
  const auto length = std::filesystem::file_size(connection_.path() + "-wal", none);
  const bool long_log = !none && length > std::uintmax_t{kTooLong} * kPageSize;
  bool behind;
  {
    const std::scoped_lock lock(mutex_);
    behind = behind_;
  }
  if (behind || long_log) ask();
}

void Checkpointer::ask() {
  {
    const std::scoped_lock lock(mutex_);
    wanted_ = true;
  }
  if (!thread_.joinable()) thread_ = std::thread([this] { work(); });
  asked_.notify_one();
}

// Failing is no loss: what was saved is in the log, and the next one tries again.
void Checkpointer::work() try {
  Connection own(connection_.path(), Missing::kFail, kPatience);
  // A connection that has read nothing does not know that there is a log, and has nothing to bring over.
  own.text("SELECT name FROM sqlite_schema");
  std::unique_lock lock(mutex_);
  while (true) {
    asked_.wait(lock, [this] { return wanted_ || ends_; });
    if (ends_) return;
    wanted_ = false;
    lock.unlock();
    int left = -1, length = 0;
    const int code =
        sqlite3_wal_checkpoint_v2(own.handle(), nullptr, SQLITE_CHECKPOINT_PASSIVE, &length, &left);
    left = code == SQLITE_OK ? length - left : 0;
    if (length > kTooLong && left < kWorthwhile)
      sqlite3_wal_checkpoint_v2(own.handle(), nullptr, SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
    lock.lock();
    behind_ = left > 0;
  }
} catch (const std::exception&) {
}

}  // namespace velanor::store::sqlite
