#include "store/rows.h"

#include <algorithm>
#include <cstring>
#include <tuple>
#include <utility>

namespace velanor::store {
namespace {

// Short enough to be made anew by every save, long enough that a patch copies few pointers.
constexpr std::size_t kRowsPerBlock = 256;
// From here on a row that is inserted divides its block.
constexpr std::size_t kMostRows = 2 * kRowsPerBlock;
constexpr std::size_t kBytesPerBlock = 256 * 1024;

using Blocks = std::vector<std::shared_ptr<const RowBlock>>;

LooseRow row_at(const RowBlock& block, std::size_t row) {
  return {block.id(row), block.text(row), block.key(row)};
}

// The block without its rows `first` to before `last`, and with `row` there.
Blocks rebuilt(const RowBlock& block, std::size_t first, std::size_t last, const LooseRow* row) {
  const std::size_t count = block.size() - (last - first) + (row == nullptr ? 0 : 1);
  const std::size_t parts = count > kMostRows || block.bytes() > 2 * kBytesPerBlock ? 2 : 1;
  const std::size_t part = std::max<std::size_t>((count + parts - 1) / parts, 1);
  Blocks blocks;
  std::shared_ptr<RowBlock> open;
  const auto add = [&](const LooseRow& added) {
    if (!open || open->size() == part) {
      open = std::make_shared<RowBlock>(block.starts_with_id());
      open->reserve(part, block.bytes());
      blocks.push_back(open);
    }
    open->add(added.id, added.text, added.key);
  };
  for (std::size_t i = 0; i < first; ++i) add(row_at(block, i));
  if (row != nullptr) add(*row);
  for (std::size_t i = last; i < block.size(); ++i) add(row_at(block, i));
  return blocks;
}

Rows replaced(const Rows& rows, std::size_t block, Blocks by) {
  Blocks blocks;
  blocks.reserve(rows.blocks().size() + by.size());
  const auto at = rows.blocks().begin() + static_cast<std::ptrdiff_t>(block);
  blocks.insert(blocks.end(), rows.blocks().begin(), at);
  blocks.insert(blocks.end(), by.begin(), by.end());
  blocks.insert(blocks.end(), at + 1, rows.blocks().end());
  return Rows(std::move(blocks));
}

// Where (key, id) belongs: in the first block whose last row is not before it, or in the last one.
Rows::Place lower_bound(const Rows& rows, std::string_view key, std::string_view id) {
  const Blocks& blocks = rows.blocks();
  const auto found = std::partition_point(blocks.begin(), blocks.end(), [&](const auto& block) {
    const std::size_t last = block->size() - 1;
    return std::tuple(block->key(last), block->id(last)) < std::tuple(key, id);
  });
  const auto at = found == blocks.end() ? found - 1 : found;
  return {static_cast<std::size_t>(at - blocks.begin()), (*at)->lower_bound(key, id)};
}

template <class T>
void save_list(const T& list, std::string& bytes) {
  const std::uint64_t size = list.size();
  bytes.append(reinterpret_cast<const char*>(&size), sizeof size);
  bytes.append(reinterpret_cast<const char*>(list.data()), list.size() * sizeof(*list.data()));
}

template <class T>
bool load_list(std::string_view& bytes, T& list) {
  std::uint64_t size;
  if (bytes.size() < sizeof size) return false;
  std::memcpy(&size, bytes.data(), sizeof size);
  bytes.remove_prefix(sizeof size);
  if (size > bytes.size() / sizeof(*list.data())) return false;
  list.resize(size);
  if (size > 0) std::memcpy(list.data(), bytes.data(), size * sizeof(*list.data()));
  bytes.remove_prefix(size * sizeof(*list.data()));
  return true;
}

}  // namespace

void RowBlock::reserve(std::size_t rows, std::size_t bytes) {
  entries_.reserve(rows);
  texts_.reserve(bytes);
}

void RowBlock::add(std::string_view id, std::string_view text, std::string_view key) {
  if (key_ends_.empty() || this->key(entries_.size() - 1) != key) {
    keys_ += key;
    key_ends_.push_back(static_cast<std::uint32_t>(keys_.size()));
  }
  const auto at = static_cast<std::uint32_t>(texts_.size());
  if (!starts_with_id_) texts_ += id;
  entries_.push_back(
      {at, static_cast<std::uint32_t>(texts_.size()), static_cast<std::uint32_t>(key_ends_.size() - 1)});
  texts_ += text;
}

std::size_t RowBlock::bytes() const {
  return texts_.size() + keys_.size() + entries_.size() * sizeof(Entry) +
         key_ends_.size() * sizeof(std::uint32_t);
}

std::string_view RowBlock::id(std::size_t row) const {
  if (!starts_with_id_) return slice(entries_[row].id, entries_[row].text);
  const std::string_view whole = text(row);
  return whole.substr(0, whole.find(kValueMark));
}

std::size_t RowBlock::key_end(std::size_t row) const {
  const auto begin = entries_.begin() + static_cast<std::ptrdiff_t>(row);
  const auto end = std::partition_point(begin, entries_.end(),
                                        [key = begin->key](const Entry& entry) { return entry.key == key; });
  return static_cast<std::size_t>(end - entries_.begin());
}

std::size_t RowBlock::lower_bound(std::string_view key, std::string_view id) const {
  std::size_t first = 0;
  for (std::size_t count = size(); count > 0;) {
    const std::size_t half = count / 2, middle = first + half;
    const int order = this->key(middle).compare(key);
    const bool before = order < 0 || (order == 0 && this->id(middle) < id);
    first = before ? middle + 1 : first;
    count = before ? count - half - 1 : half;
  }
  return first;
}

std::optional<std::size_t> RowBlock::find(std::string_view id) const {
  for (std::size_t row = 0; row < size(); ++row) {
    const std::string_view rest = std::string_view(texts_).substr(entries_[row].id);
    if (rest.starts_with(id) && this->id(row) == id) return row;
  }
  return std::nullopt;
}

void RowBlock::save(std::string& bytes) const {
  bytes += starts_with_id_ ? '\1' : '\0';
  save_list(entries_, bytes);
  save_list(texts_, bytes);
  save_list(keys_, bytes);
  save_list(key_ends_, bytes);
}

std::optional<RowBlock> RowBlock::load(std::string_view& bytes) {
  if (bytes.empty()) return std::nullopt;
  RowBlock block(bytes.front() != '\0');
  bytes.remove_prefix(1);
  const bool whole = load_list(bytes, block.entries_) && load_list(bytes, block.texts_) &&
                     load_list(bytes, block.keys_) && load_list(bytes, block.key_ends_);
  if (!whole || !block.is_sound()) return std::nullopt;
  return block;
}

// Whether every place lies within what it is a place of.
bool RowBlock::is_sound() const {
  if (entries_.empty() || !std::is_sorted(key_ends_.begin(), key_ends_.end())) return false;
  if (key_ends_.empty() || key_ends_.back() != keys_.size()) return false;
  for (std::size_t row = 0; row < size(); ++row) {
    const Entry& entry = entries_[row];
    if (entry.id > entry.text || entry.text > end_of(row) || end_of(row) > texts_.size()) return false;
    if (entry.key >= key_ends_.size() || (row > 0 && entry.key < entries_[row - 1].key)) return false;
  }
  return true;
}

Rows::Rows(Blocks blocks) : blocks_(std::move(blocks)) {
  ends_.reserve(blocks_.size());
  std::size_t end = 0;
  for (const auto& block : blocks_) {
    ends_.push_back(end += block->size());
    bytes_ += block->bytes();
  }
}

Rows::Place Rows::place_of(std::size_t row) const {
  const auto block = std::upper_bound(ends_.begin(), ends_.end(), row);
  const std::size_t before = block == ends_.begin() ? 0 : *(block - 1);
  return {static_cast<std::size_t>(block - ends_.begin()), row - before};
}

std::string_view Rows::text(std::size_t row) const {
  return row < count() ? text_at(place_of(row)) : std::string_view();
}

std::size_t Rows::run_end(std::size_t row) const {
  if (row >= count()) return count();
  const Place place = place_of(row);
  const auto begin = blocks_.begin() + static_cast<std::ptrdiff_t>(place.block);
  const std::string_view key = (*begin)->key(place.row);
  if (const std::size_t end = (*begin)->key_end(place.row); end < (*begin)->size())
    return row - place.row + end;
  const auto other =
      std::partition_point(begin + 1, blocks_.end(), [&](const auto& block) { return block->key(0) == key; });
  const auto last = other - 1;
  const std::size_t before =
      last == blocks_.begin() ? 0 : ends_[static_cast<std::size_t>(last - blocks_.begin()) - 1];
  return before + (last == begin ? (*last)->size() : (*last)->key_end(0));
}

std::optional<Rows::Place> Rows::find(std::string_view key, std::string_view id) const {
  if (blocks_.empty()) return std::nullopt;
  const Place place = lower_bound(*this, key, id);
  const RowBlock& block = *blocks_[place.block];
  if (place.row == block.size() || block.key(place.row) != key || block.id(place.row) != id)
    return std::nullopt;
  return place;
}

std::optional<Rows::Place> Rows::find(std::string_view id) const {
  for (std::size_t block = 0; block < blocks_.size(); ++block) {
    if (const auto row = blocks_[block]->find(id)) return Place{block, *row};
  }
  return std::nullopt;
}

void RowsBuilder::add(const LooseRow& row) {
  if (!open_) {
    open_ = std::make_shared<RowBlock>(starts_with_id_);
    open_->reserve(kRowsPerBlock, bytes_before_);
  }
  open_->add(row.id, row.text, row.key);
  if (open_->size() == kRowsPerBlock || open_->bytes() > kBytesPerBlock) close();
}

void RowsBuilder::close() {
  if (!open_) return;
  bytes_before_ = open_->bytes();
  blocks_.push_back(std::move(open_));
  open_.reset();
}

Rows RowsBuilder::rows() {
  close();
  return Rows(std::move(blocks_));
}

Rows without(const Rows& rows, Rows::Place place) {
  const RowBlock& block = *rows.blocks()[place.block];
  return replaced(rows, place.block, rebuilt(block, place.row, place.row + 1, nullptr));
}

Rows with(const Rows& rows, const LooseRow& row, bool starts_with_id) {
  if (rows.blocks().empty()) {
    RowsBuilder builder(starts_with_id);
    builder.add(row);
    return builder.rows();
  }
  const Rows::Place place = lower_bound(rows, row.key, row.id);
  const bool stands_there = rows.find(row.key, row.id).has_value();
  const RowBlock& block = *rows.blocks()[place.block];
  const std::size_t last = place.row + (stands_there ? 1 : 0);
  return replaced(rows, place.block, rebuilt(block, place.row, last, &row));
}

}  // namespace velanor::store
