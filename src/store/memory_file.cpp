#include "store/memory_file.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>
#include <new>

namespace velanor::store {
namespace {

// Before the bytes of an id and those of its record.
using IdSize = std::uint32_t;

constexpr std::size_t kEnd = sizeof(std::uint64_t);
constexpr std::size_t kPrefetched = 12;
// With each change strings of so many bytes are moved: some more than what a change leaves as a hole.
constexpr std::size_t kTidied = 6 * 1024;

constexpr int kLine = 64;

// So many bytes are fetched from memory at once, where one access after the other would wait each time.
void prefetch([[maybe_unused]] const char* bytes, [[maybe_unused]] int size) {
#if defined(__GNUC__)
  for (int at = 0; at < size; at += kLine) __builtin_prefetch(bytes + at);
#endif
}
// Where a record begins, with its first attributes.
constexpr int kBeginning = 2 * kLine;

std::size_t hash_of_id(std::string_view id) { return std::hash<std::string_view>{}(id); }

// Up to eight bytes of a text, at the beginning or the end of eight; the others are 0.
std::uint64_t as_number(const std::array<char, kEnd>& bytes) {
  std::uint64_t number;
  std::memcpy(&number, bytes.data(), kEnd);
  return number;
}

std::uint64_t at_beginning(std::string_view text) {
  std::array<char, kEnd> bytes{};
  text.copy(bytes.data(), kEnd);
  return as_number(bytes);
}

std::uint64_t at_end(std::string_view text) {
  std::array<char, kEnd> bytes{};
  const std::size_t size = std::min(text.size(), kEnd);
  text.copy(bytes.data() + kEnd - size, size, text.size() - size);
  return as_number(bytes);
}

}  // namespace

void RevisionLog::note(std::string_view id) noexcept {
  ++revision_;
  const std::size_t at = place(revision_);
  try {
    if (at == ids_.size()) ids_.emplace_back();
    ids_[at] = id;
  } catch (const std::bad_alloc&) {
    ids_.clear();
    forgotten_ = revision_;
  }
}

std::optional<std::vector<std::string_view>> RevisionLog::ids_since(std::uint64_t revision) const {
  if (revision > revision_ || revision < forgotten_ || revision_ - revision > kRevisions) return std::nullopt;
  std::vector<std::string_view> ids;
  while (revision < revision_) ids.push_back(ids_[place(++revision)]);
  std::sort(ids.begin(), ids.end());
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
  return ids;
}

std::uint64_t RowTable::end_of(std::string_view id) { return at_end(id); }

RowTable::Row RowTable::next() {
  if (unused_ != kNone) return unused_;
  if (highest_ == Arena::kMaxOwner) throw std::bad_alloc();
  if (highest_ == chunks_.size() * kChunk) chunks_.push_back(std::make_unique<Chunk>());
  return highest_;
}

void RowTable::take(Row row, std::string_view id, Arena::Place place) {
  if (row == unused_) {
    unused_ = RowTable::place(row);
  } else {
    ++highest_;
  }
  Chunk& in = chunk(row);
  in.beginnings[row % kChunk] = at_beginning(id);
  in.ends[row % kChunk] = at_end(id);
  in.places[row % kChunk] = place;
  in.sizes[row % kChunk] = static_cast<std::uint8_t>(std::min<std::size_t>(id.size(), 254) + 1);
  ++size_;
}

void RowTable::drop(Row row) {
  chunk(row).sizes[row % kChunk] = 0;
  move(row, unused_);
  unused_ = row;
  --size_;
}

std::vector<RowTable::Row> RowTable::rows(const Narrowing& narrowing) const {
  const bool by_end = narrowing.kind == Narrowing::Kind::kIdSuffix;
  const bool by_beginning = narrowing.kind == Narrowing::Kind::kIdPrefix;
  const std::string_view text =
      by_end || by_beginning ? std::string_view(narrowing.text) : std::string_view();
  const std::string all(std::min(text.size(), kEnd), '\xFF');
  const std::uint64_t mask = by_end ? at_end(all) : at_beginning(all);
  const std::uint64_t wanted = by_end ? at_end(text) : at_beginning(text);
  std::vector<Row> rows;
  std::array<Row, kChunk> found;
  for (std::size_t number = 0; number * kChunk < highest_; ++number) {
    const Chunk& in = *chunks_[number];
    const auto& bytes = by_end ? in.ends : in.beginnings;
    const auto first = static_cast<Row>(number * kChunk);
    // Without branches: each row is noted, and stays where it is admitted.
    std::size_t count = 0;
    for (std::size_t i = 0; i < kChunk; ++i) {
      found[count] = first + static_cast<Row>(i);
      count +=
          static_cast<std::size_t>((bytes[i] & mask) == wanted) & static_cast<std::size_t>(in.sizes[i] != 0);
    }
    rows.insert(rows.end(), found.begin(), found.begin() + static_cast<std::ptrdiff_t>(count));
  }
  return rows;
}

std::optional<std::string_view> RowTable::id(Row row, std::array<char, kAllHere>& buffer) const {
  const Chunk& in = chunk(row);
  const std::size_t size = in.sizes[row % kChunk] - std::size_t{1};
  if (size > kAllHere) return std::nullopt;
  std::memcpy(buffer.data(), &in.beginnings[row % kChunk], kEnd);
  if (size > kEnd) std::memcpy(buffer.data() + size - kEnd, &in.ends[row % kChunk], kEnd);
  return std::string_view(buffer.data(), size);
}

template <class Is>
RowHash::Row RowHash::find(std::size_t hash, Is is) const {
  if (slots_.empty()) return kNone;
  std::size_t slot = hash & (slots_.size() - 1);
  while (slots_[slot] != kNone && !is(slots_[slot])) slot = next(slot);
  return slots_[slot];
}

template <class HashOf>
void RowHash::make_room(HashOf hash_of) {
  if ((size_ + 1) * 5 <= slots_.size() * 4) return;
  std::vector<Row> before(std::max<std::size_t>(2 * slots_.size(), 16), kNone);
  before.swap(slots_);
  size_ = 0;
  for (const Row row : before) {
    if (row != kNone) insert(hash_of(row), row);
  }
}

void RowHash::insert(std::size_t hash, Row row) {
  std::size_t slot = hash & (slots_.size() - 1);
  while (slots_[slot] != kNone) slot = next(slot);
  slots_[slot] = row;
  ++size_;
}

template <class HashOf>
void RowHash::erase(std::size_t hash, Row row, HashOf hash_of) {
  const std::size_t last = slots_.size() - 1;
  std::size_t hole = hash & last;
  while (slots_[hole] != row) hole = next(hole);
  // A row that was pushed on past the hole comes back to it, else it would not be found any more.
  for (std::size_t slot = next(hole); slots_[slot] != kNone; slot = next(slot)) {
    const std::size_t from_home = (slot - hash_of(slots_[slot])) & last;
    if (from_home < ((slot - hole) & last)) continue;
    slots_[hole] = slots_[slot];
    hole = slot;
  }
  slots_[hole] = kNone;
  --size_;
}

Row MemoryFile::row_at(Arena::Place place) const {
  const char* bytes = arena_.bytes(place);
  IdSize id_size;
  std::memcpy(&id_size, bytes, sizeof id_size);
  bytes += sizeof id_size;
  return {{bytes, id_size}, {bytes + id_size, arena_.size(place) - sizeof id_size - id_size}};
}

std::size_t MemoryFile::hash_of(RowNumber row) const {
  std::array<char, RowTable::kAllHere> buffer;
  const auto id = rows_.id(row, buffer);
  return hash_of_id(id ? *id : row_at(rows_.place(row)).id);
}

MemoryFile::RowNumber MemoryFile::row_of(std::string_view id, std::size_t hash) const {
  const std::uint64_t end = RowTable::end_of(id);
  return hash_.find(
      hash, [&](RowNumber row) { return rows_.may_be(row, end) && row_at(rows_.place(row)).id == id; });
}

std::optional<DbRecord> MemoryFile::find(std::string_view id) const {
  const RowNumber row = row_of(id, hash_of_id(id));
  if (row == RowHash::kNone) return std::nullopt;
  return DbRecord::from_trusted(std::string(row_at(rows_.place(row)).encoded));
}

void MemoryFile::put(std::string_view id, std::string_view encoded) {
  // Noted first: a change that then fails for want of memory is looked at for nothing, none is missed.
  log_.note(id);
  const std::size_t hash = hash_of_id(id);
  const RowNumber row = row_of(id, hash);
  if (row == RowHash::kNone) {
    insert(id, hash, encoded);
  } else {
    rewrite(row, id, encoded);
  }
  tidy();
}

// Nothing has changed where there is no memory for it.
void MemoryFile::insert(std::string_view id, std::size_t hash, std::string_view encoded) {
  hash_.make_room([this](RowNumber row) { return hash_of(row); });
  const RowNumber row = rows_.next();
  const Arena::Place place = arena_.allocate(row, sizeof(IdSize) + id.size() + encoded.size());
  write(place, id, encoded);
  rows_.take(row, id, place);
  hash_.insert(hash, row);
}

void MemoryFile::rewrite(RowNumber row, std::string_view id, std::string_view encoded) {
  const Arena::Place place = rows_.place(row);
  const std::size_t size = sizeof(IdSize) + id.size() + encoded.size();
  if (arena_.resize(place, size)) return write(place, id, encoded);
  const Arena::Place moved = arena_.allocate(row, size);
  write(moved, id, encoded);
  rows_.move(row, moved);
  arena_.release(place);
}

void MemoryFile::write(Arena::Place place, std::string_view id, std::string_view encoded) {
  const auto id_size = static_cast<IdSize>(id.size());
  char* const bytes = arena_.bytes(place);
  std::memcpy(bytes, &id_size, sizeof id_size);
  std::copy(id.begin(), id.end(), bytes + sizeof id_size);
  std::copy(encoded.begin(), encoded.end(), bytes + sizeof id_size + id.size());
}

void MemoryFile::erase(std::string_view id) {
  const std::size_t hash = hash_of_id(id);
  const RowNumber row = row_of(id, hash);
  if (row == RowHash::kNone) return;
  log_.note(id);
  hash_.erase(hash, row, [this](RowNumber other) { return hash_of(other); });
  arena_.release(rows_.place(row));
  rows_.drop(row);
  tidy();
}

void MemoryFile::tidy() {
  for (std::size_t moved = 0; moved < kTidied;) {
    const auto string = arena_.move_one();
    if (!string) return;
    rows_.move(string->owner, string->place);
    moved += arena_.size(string->place);
  }
}

void MemoryFile::scan(const Narrowing& narrowing, Content content, const Backend::Visit& visit) const {
  if (narrowing.kind == Narrowing::Kind::kId) {
    const RowNumber row = row_of(narrowing.text, hash_of_id(narrowing.text));
    if (row != RowHash::kNone) visit(row_at(rows_.place(row)));
    return;
  }
  const std::vector<RowNumber> rows = rows_.rows(narrowing);
  content == Content::kIdsOnly ? scan_ids(rows, visit) : scan_records(rows, visit);
}

void MemoryFile::scan_ids(const std::vector<RowNumber>& rows, const Backend::Visit& visit) const {
  std::array<char, RowTable::kAllHere> buffer;
  for (const RowNumber row : rows) {
    const auto id = rows_.id(row, buffer);
    visit({id ? *id : row_at(rows_.place(row)).id, {}});
  }
}

// Rows lie a record or more apart: what is visited soon is fetched meanwhile.
void MemoryFile::scan_records(const std::vector<RowNumber>& rows, const Backend::Visit& visit) const {
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (i + kPrefetched < rows.size()) prefetch(arena_.bytes(rows_.place(rows[i + kPrefetched])), kBeginning);
    visit(row_at(rows_.place(rows[i])));
  }
}

std::optional<std::uint64_t> MemoryFile::changes_since(std::uint64_t seen,
                                                       const Backend::VisitChange& visit) const {
  const auto ids = log_.ids_since(seen);
  if (!ids) return std::nullopt;
  for (const std::string_view id : *ids) {
    const RowNumber row = row_of(id, hash_of_id(id));
    visit({id, row == RowHash::kNone ? std::nullopt : std::optional(row_at(rows_.place(row)).encoded)});
  }
  return revision();
}

}  // namespace velanor::store
