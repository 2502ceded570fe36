// A disk in front of the system's, under SQLite: it fails on request, and remembers what reached it and what
// was only promised.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <vector>

namespace velanor::store {

// While it lives every database is opened on it.
class Disk {
 public:
  Disk();
  ~Disk();
  Disk(const Disk&) = delete;
  Disk& operator=(const Disk&) = delete;

  // ---- Failing.

  enum class Fault { kNone, kError, kFull, kSync };
  enum class Lasting { kOnce, kForEver };
  // From now on the nth call (from 1) that could so fail does so: an I/O error of a write, a truncation or a
  // sync, a disk that is full in the middle of a write, a sync that fails.
  void fail(Fault fault, int nth, Lasting lasting);
  void work() { fail(Fault::kNone, 0, Lasting::kOnce); }
  // How many calls have failed since then.
  int failed() const { return failed_; }

  // From now on the files may grow by so many bytes together; what is truncated or removed gives room back.
  void leave_room(std::int64_t bytes) {
    const std::scoped_lock lock(mutex_);
    room_ = bytes;
  }
  void make_room() { leave_room(kEndless); }
  // How many writes found no room since the beginning.
  int turned_away() const { return turned_away_; }

  // ---- Remembering.

  struct Event {
    enum class Kind { kWrite, kTruncate, kSync, kDelete, kMark } kind;
    std::string path, bytes;
    std::int64_t at = 0;  // where a write begins, how long a truncated file is, the number of a mark
  };
  void remember() { remembers_ = true; }
  // Nothing more is remembered; nor is anything synced, for no power will be cut.
  void forget() {
    remembers_ = false;
    syncs_ = false;
  }
  void mark(std::int64_t number) { note({Event::Kind::kMark, {}, {}, number}); }
  const std::vector<Event>& events() const { return events_; }

 private:
  friend struct DiskCalls;
  // What is to be done with a call of the kind.
  bool fails(Fault fault);
  // How many bytes of a write find room.
  int with_room(sqlite3_file* file, int size, std::int64_t at);
  void note(Event event);

  std::recursive_mutex mutex_;
  sqlite3_vfs vfs_{};
  sqlite3_vfs* system_;
  Fault fault_ = Fault::kNone;
  Lasting lasting_ = Lasting::kOnce;
  int until_ = 0;
  int failed_ = 0;
  static constexpr std::int64_t kEndless = std::numeric_limits<std::int64_t>::max() / 2;
  std::int64_t room_ = kEndless;
  int turned_away_ = 0;
  bool remembers_ = false, syncs_ = true;
  std::vector<Event> events_;
};

// The files as they may stand after the power was cut in the middle of the events. What was synced is there;
// of the rest any of the writes, whole or torn at a sector, and any of the deletions.
class PowerCut {
 public:
  explicit PowerCut(const std::vector<Disk::Event>& events) : events_(events) {}

  // The state before the event at `end`, which never goes back from call to call.
  using Files = std::map<std::string, std::string>;
  Files state_at(std::size_t end, std::mt19937& random);

 private:
  void take(const Disk::Event& event);

  const std::vector<Disk::Event>& events_;
  std::size_t next_ = 0;
  Files durable_;
  std::map<std::string, std::vector<Disk::Event>> pending_;
};

}  // namespace velanor::store
