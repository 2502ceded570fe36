// One file of the in-memory store.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/arena.h"
#include "velanor/backend.h"

namespace velanor::store {

// Which id each of the latest revisions wrote or removed.
class RevisionLog {
 public:
  static constexpr std::size_t kRevisions = 1024;

  // As the next revision. Without memory what was noted is forgotten: a change can be undone all the same.
  void note(std::string_view id) noexcept;
  std::uint64_t revision() const { return revision_; }
  // Each id that was noted since the revision, once; nothing where the log does not reach back so far.
  std::optional<std::vector<std::string_view>> ids_since(std::uint64_t revision) const;

 private:
  std::size_t place(std::uint64_t revision) const {
    return static_cast<std::size_t>((revision - forgotten_ - 1) % kRevisions);
  }

  // A ring, made as it fills, of the revisions behind those that are forgotten.
  std::vector<std::string> ids_;
  std::uint64_t revision_ = 0, forgotten_ = 0;
};

// What is at hand of each row: where it stands in the arena, and of its id the first and the last eight
// bytes and the size. A search for ids by their beginning or end is a pass over these few bytes, quick
// enough to need no index; an id of sixteen bytes or less is all there.
class RowTable {
 public:
  using Row = std::uint32_t;

  // Room for one row more; its number until it is taken. A row that was dropped is used again.
  Row next();
  void take(Row row, std::string_view id, Arena::Place place);
  void drop(Row row);
  std::size_t size() const { return size_; }

  Arena::Place place(Row row) const { return chunk(row).places[row % kChunk]; }
  void move(Row row, Arena::Place place) { chunk(row).places[row % kChunk] = place; }
  // Whether the row's id can be this one, which is seldom wrong.
  bool may_be(Row row, std::uint64_t end_of_id) const { return chunk(row).ends[row % kChunk] == end_of_id; }
  // The last eight bytes of the id, as `may_be` compares them.
  static std::uint64_t end_of(std::string_view id);

  // The rows that the narrowing may admit, in order of their numbers. Not for a whole id.
  std::vector<Row> rows(const Narrowing& narrowing) const;
  // The id of a row, where it is all here; written to the buffer.
  static constexpr std::size_t kAllHere = 16;
  std::optional<std::string_view> id(Row row, std::array<char, kAllHere>& buffer) const;

 private:
  static constexpr std::size_t kChunk = 256;
  struct Chunk {
    std::array<std::uint64_t, kChunk> beginnings{}, ends{};
    std::array<Arena::Place, kChunk> places{};
    // One more than the size of the id, at most 255; 0 for a row that is not used.
    std::array<std::uint8_t, kChunk> sizes{};
  };
  Chunk& chunk(Row row) { return *chunks_[row / kChunk]; }
  const Chunk& chunk(Row row) const { return *chunks_[row / kChunk]; }

  // Chunks, so that nothing is copied when there are more rows.
  std::vector<std::unique_ptr<Chunk>> chunks_;
  // Rows above were never used; of those below, the unused ones are chained by their places.
  Row highest_ = 0;
  static constexpr Row kNone = UINT32_MAX;
  Row unused_ = kNone;
  std::size_t size_ = 0;
};

// Finds rows by hashes: open addressing, so a look costs little more than one access to memory.
class RowHash {
 public:
  using Row = RowTable::Row;
  static constexpr Row kNone = UINT32_MAX;

  // The first row of this hash, or one near it, for which `is` holds; kNone where there is none.
  template <class Is>
  Row find(std::size_t hash, Is is) const;
  // Makes room for one row more; `hash_of` tells the hash of a row that is in it.
  template <class HashOf>
  void make_room(HashOf hash_of);
  void insert(std::size_t hash, Row row);
  template <class HashOf>
  void erase(std::size_t hash, Row row, HashOf hash_of);

 private:
  std::size_t next(std::size_t slot) const { return (slot + 1) & (slots_.size() - 1); }

  // A power of two, of which at most four fifths are filled.
  std::vector<Row> slots_;
  std::size_t size_ = 0;
};

// Ids and records lie side by side in an arena.
class MemoryFile {
 public:
  std::optional<DbRecord> find(std::string_view id) const;
  void put(std::string_view id, std::string_view encoded);
  void erase(std::string_view id);
  // In no order. Where records are asked for, what is visited stays until the file is next written.
  void scan(const Narrowing& narrowing, Content content, const Backend::Visit& visit) const;
  std::optional<std::uint64_t> changes_since(std::uint64_t seen, const Backend::VisitChange& visit) const;
  std::size_t size() const { return rows_.size(); }
  std::uint64_t revision() const { return log_.revision(); }
  // The memory of ids and records, without the table of the rows.
  std::size_t allocated() const { return arena_.allocated(); }

 private:
  using RowNumber = RowTable::Row;

  Row row_at(Arena::Place place) const;
  std::size_t hash_of(RowNumber row) const;
  RowNumber row_of(std::string_view id, std::size_t hash) const;
  void insert(std::string_view id, std::size_t hash, std::string_view encoded);
  void rewrite(RowNumber row, std::string_view id, std::string_view encoded);
  void write(Arena::Place place, std::string_view id, std::string_view encoded);
  void scan_ids(const std::vector<RowNumber>& rows, const Backend::Visit& visit) const;
  void scan_records(const std::vector<RowNumber>& rows, const Backend::Visit& visit) const;
  // A bounded piece of tidying, with each change.
  void tidy();

  RowTable rows_;
  RowHash hash_;
  Arena arena_;
  RevisionLog log_;
};

}  // namespace velanor::store
