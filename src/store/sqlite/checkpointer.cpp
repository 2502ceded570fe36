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

struct Log {
  int length, brought_over;  // in pages
};

// Waits for nobody but for another's checkpoint, which may have begun before what this is asked for.
Log bring_over(Connection& connection) {
  constexpr int kTries = 100, kPause = 20;
  Log log{};
  for (int tries = 0; tries < kTries; ++tries) {
    const int code = sqlite3_wal_checkpoint_v2(connection.handle(), nullptr, SQLITE_CHECKPOINT_PASSIVE,
                                               &log.length, &log.brought_over);
    if (code == SQLITE_OK) return log;
    constexpr int kPrimaryCode = 0xFF;
    if ((code & kPrimaryCode) != SQLITE_BUSY) return {};
    sqlite3_sleep(kPause);
  }
  return {};
}

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

// By the length of the log, which also others have written.
void Checkpointer::reader_gone() {
  std::error_code none;
  const auto length = std::filesystem::file_size(connection_.path() + "-wal", none);
  if (!none && length >= std::uintmax_t{kWorthwhile} * kPageSize) ask();
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
    if (!wanted_) return;
    wanted_ = false;
    lock.unlock();
    const auto [length, brought_over] = bring_over(own);
    if (length > kTooLong && length - brought_over < kWorthwhile)
      sqlite3_wal_checkpoint_v2(own.handle(), nullptr, SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
    lock.lock();
  }
} catch (const std::exception&) {
}

}  // namespace velanor::store::sqlite
