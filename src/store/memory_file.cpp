#include "store/memory_file.h"

#include <algorithm>

namespace velanor::store {
namespace {

constexpr std::size_t kRowsPerBlock = 512;
constexpr std::size_t kMaxSuffixIndexes = 4;

constexpr std::size_t kPrefetched = 8;

#if defined(__GNUC__)
void prefetch(const MemoryRow* row) { __builtin_prefetch(row); }
#else
void prefetch(const MemoryRow*) {}
#endif

bool is_less(const MemoryRow* row, std::string_view id) { return row->id < id; }

}  // namespace

RowsById::Place RowsById::lower_bound(std::string_view id) const {
  const auto ends_before = [](const Block& block, std::string_view sought) {
    return block.back()->id < sought;
  };
  const auto block = std::lower_bound(blocks_.begin(), blocks_.end(), id, ends_before);
  if (block == blocks_.end()) return {blocks_.size(), 0};
  const auto row = std::lower_bound(block->begin(), block->end(), id, is_less);
  return {static_cast<std::size_t>(block - blocks_.begin()), static_cast<std::size_t>(row - block->begin())};
}

MemoryRow* RowsById::find(std::string_view id) const {
  const Place place = lower_bound(id);
  if (place.block == blocks_.size()) return nullptr;
  MemoryRow* row = blocks_[place.block][place.row];
  return row->id == id ? row : nullptr;
}

void RowsById::insert(MemoryRow* row) {
  Place place = lower_bound(row->id);
  if (place.block == blocks_.size()) {
    // Behind all others: a full last block is left full, as ids mostly come in order.
    if (blocks_.empty() || blocks_.back().size() == kRowsPerBlock) blocks_.emplace_back();
    return blocks_.back().push_back(row);
  }
  Block& block = blocks_[place.block];
  block.insert(block.begin() + static_cast<std::ptrdiff_t>(place.row), row);
  if (block.size() <= kRowsPerBlock) return;
  const auto middle = block.begin() + kRowsPerBlock / 2;
  Block upper(middle, block.end());
  block.erase(middle, block.end());
  blocks_.insert(blocks_.begin() + static_cast<std::ptrdiff_t>(place.block) + 1, std::move(upper));
}

void RowsById::erase(const MemoryRow* row) {
  const Place place = lower_bound(row->id);
  Block& block = blocks_[place.block];
  block.erase(block.begin() + static_cast<std::ptrdiff_t>(place.row));
  if (block.empty()) blocks_.erase(blocks_.begin() + static_cast<std::ptrdiff_t>(place.block));
}

template <class Visit>
void RowsById::for_each(std::string_view prefix, Visit visit) const {
  Place place = lower_bound(prefix);
  for (; place.block < blocks_.size(); place = {place.block + 1, 0}) {
    const Block& block = blocks_[place.block];
    for (std::size_t i = place.row; i < block.size(); ++i) {
      // Rows that came in another order lie far from each other.
      prefetch(block[std::min(i + kPrefetched, block.size() - 1)]);
      if (!block[i]->id.starts_with(prefix)) return;
      visit(*block[i]);
    }
  }
}

void RowsBySuffix::insert(MemoryRow* row) {
  if (row->id.size() < length_) return;
  auto& rows = rows_[row->id.substr(row->id.size() - length_)];
  // Mostly behind all others: an index is filled in order.
  const bool is_last = rows.empty() || rows.back()->id < row->id;
  rows.insert(is_last ? rows.end() : std::lower_bound(rows.begin(), rows.end(), row->id, is_less), row);
}

void RowsBySuffix::erase(const MemoryRow* row) {
  if (row->id.size() < length_) return;
  const auto found = rows_.find(row->id.substr(row->id.size() - length_));
  auto& rows = found->second;
  rows.erase(std::lower_bound(rows.begin(), rows.end(), row->id, is_less));
  if (rows.empty()) rows_.erase(found);
}

const std::vector<MemoryRow*>* RowsBySuffix::find(const std::string& suffix) const {
  const auto found = rows_.find(suffix);
  return found == rows_.end() ? nullptr : &found->second;
}

void RevisionLog::note(std::string_view id) {
  const auto at = static_cast<std::size_t>(revision_ % kRevisions);
  if (at == ids_.size()) {
    ids_.emplace_back(id);
  } else {
    ids_[at] = id;
  }
  ++revision_;
}

std::optional<std::vector<std::string_view>> RevisionLog::ids_since(std::uint64_t revision) const {
  if (revision > revision_ || revision_ - revision > kRevisions) return std::nullopt;
  std::vector<std::string_view> ids;
  for (; revision < revision_; ++revision)
    ids.push_back(ids_[static_cast<std::size_t>(revision % kRevisions)]);
  std::sort(ids.begin(), ids.end());
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
  return ids;
}

std::optional<DbRecord> MemoryFile::find(std::string_view id) const {
  const MemoryRow* row = by_id_.find(id);
  if (row == nullptr) return std::nullopt;
  return DbRecord::from_trusted(std::string(arena_.bytes(row->slot)));
}

void MemoryFile::put(std::string_view id, std::string_view encoded) {
  // Noted first: a change that then fails for want of memory is looked at for nothing, none is missed.
  log_.note(id);
  MemoryRow* row = by_id_.find(id);
  if (row == nullptr) row = new_row(id);
  arena_.store(row->slot, encoded);
}

MemoryRow* MemoryFile::new_row(std::string_view id) {
  if (unused_.empty()) unused_.push_back(&rows_.emplace_back());
  MemoryRow* row = unused_.back();
  unused_.pop_back();
  row->id = id;
  by_id_.insert(row);
  for (auto& [length, index] : by_suffix_) {
    if (index) index->insert(row);
  }
  ++size_;
  return row;
}

void MemoryFile::erase(std::string_view id) {
  MemoryRow* row = by_id_.find(id);
  if (row == nullptr) return;
  log_.note(id);
  for (auto& [length, index] : by_suffix_) {
    if (index) index->erase(row);
  }
  by_id_.erase(row);
  arena_.release(row->slot);
  row->id.clear();
  unused_.push_back(row);
  --size_;
}

void MemoryFile::scan(const Narrowing& narrowing, Content content, const Backend::Visit& visit) {
  const auto visit_this = [&](const MemoryRow& row) {
    visit({row.id, content == Content::kRecords ? arena_.bytes(row.slot) : std::string_view()});
  };
  if (narrowing.kind == Narrowing::Kind::kId) {
    if (const MemoryRow* row = by_id_.find(narrowing.text)) visit_this(*row);
    return;
  }
  const bool by_suffix = narrowing.kind == Narrowing::Kind::kIdSuffix && !narrowing.text.empty();
  if (const auto* index = by_suffix ? suffix_index(narrowing.text.size()) : nullptr) {
    const auto* rows = index->find(narrowing.text);
    if (rows != nullptr) std::for_each(rows->begin(), rows->end(), [&](auto* row) { visit_this(*row); });
    return;
  }
  by_id_.for_each(narrowing.kind == Narrowing::Kind::kIdPrefix ? narrowing.text : "", visit_this);
}

std::optional<std::uint64_t> MemoryFile::changes_since(std::uint64_t seen,
                                                       const Backend::VisitChange& visit) const {
  const auto ids = log_.ids_since(seen);
  if (!ids) return std::nullopt;
  for (const std::string_view id : *ids) {
    const MemoryRow* row = by_id_.find(id);
    visit({id, row == nullptr ? std::nullopt : std::optional(arena_.bytes(row->slot))});
  }
  return revision();
}

const RowsBySuffix* MemoryFile::suffix_index(std::size_t length) {
  auto known = by_suffix_.find(length);
  if (known == by_suffix_.end()) {
    // The shortest suffix narrows least.
    if (by_suffix_.size() >= kMaxSuffixIndexes) by_suffix_.erase(by_suffix_.begin());
    known = by_suffix_.emplace(length, std::nullopt).first;
    auto& index = known->second.emplace(length);
    by_id_.for_each("", [&](MemoryRow& row) { index.insert(&row); });
    if (!index.is_worth_keeping(size_)) known->second.reset();
  }
  return known->second ? &*known->second : nullptr;
}

}  // namespace velanor::store
