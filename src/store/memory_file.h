// One file of the in-memory store.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "store/arena.h"
#include "velanor/backend.h"

namespace velanor::store {

// Alone on its cache line: rows are visited in an order that is not that of memory.
struct alignas(64) MemoryRow {
  std::string id;
  Arena::Slot slot;
};

// Rows in ascending order of their ids, in blocks short enough to insert into.
class RowsById {
 public:
  MemoryRow* find(std::string_view id) const;
  void insert(MemoryRow* row);
  void erase(const MemoryRow* row);
  // Calls `visit` with each row whose id begins with the prefix.
  template <class Visit>
  void for_each(std::string_view prefix, Visit visit) const;

 private:
  using Block = std::vector<MemoryRow*>;
  struct Place {
    std::size_t block, row;
  };
  // Where the first row stands whose id is not less.
  Place lower_bound(std::string_view id) const;

  std::vector<Block> blocks_;
};

// For one length of suffix: the rows of each suffix, in ascending order of ids.
class RowsBySuffix {
 public:
  explicit RowsBySuffix(std::size_t length) : length_(length) {}

  void insert(MemoryRow* row);
  void erase(const MemoryRow* row);
  // nullptr: none.
  const std::vector<MemoryRow*>* find(const std::string& suffix) const;
  // Where nearly every row has a suffix of its own, an index would cost more than the ids.
  bool is_worth_keeping(std::size_t rows) const { return rows_.size() < 1024 + rows / 16; }

 private:
  std::size_t length_;
  std::unordered_map<std::string, std::vector<MemoryRow*>> rows_;
};

// Which id each of the latest revisions wrote or removed.
class RevisionLog {
 public:
  static constexpr std::size_t kRevisions = 1024;

  // As the next revision.
  void note(std::string_view id);
  std::uint64_t revision() const { return revision_; }
  // Each id that was noted since the revision, once; nothing where the log does not reach back so far.
  std::optional<std::vector<std::string_view>> ids_since(std::uint64_t revision) const;

 private:
  // A ring, made as it fills; revision r stands at (r - 1) % kRevisions.
  std::vector<std::string> ids_;
  std::uint64_t revision_ = 0;
};

// Records lie encoded in an arena. An index of suffixes is built when a scan first asks for its
// length, and kept from then on.
class MemoryFile {
 public:
  std::optional<DbRecord> find(std::string_view id) const;
  void put(std::string_view id, std::string_view encoded);
  void erase(std::string_view id);
  void scan(const Narrowing& narrowing, Content content, const Backend::Visit& visit);
  std::optional<std::uint64_t> changes_since(std::uint64_t seen, const Backend::VisitChange& visit) const;
  std::size_t size() const { return size_; }
  std::uint64_t revision() const { return log_.revision(); }

 private:
  MemoryRow* new_row(std::string_view id);
  // nullptr where an index of the length is not worth keeping.
  const RowsBySuffix* suffix_index(std::size_t length);

  // Rows stay where they are; an erased one has an empty id until it is used again.
  std::deque<MemoryRow> rows_;
  std::vector<MemoryRow*> unused_;
  std::size_t size_ = 0;
  Arena arena_;
  RowsById by_id_;
  std::map<std::size_t, std::optional<RowsBySuffix>> by_suffix_;
  RevisionLog log_;
};

}  // namespace velanor::store
