#include "store/select/found_rows.h"

#include <algorithm>
#include <memory>

#include "store/mark_scanner.h"

namespace velanor::store::select {
namespace {

// Ends each part of a key; less than any byte of it, so that a text comes before the longer ones
// that begin with it.
constexpr char kKeyEnd = '\0';

}  // namespace

void FoundRows::add(const Row& row) {
  make_key(row);
  Found found{texts_.size(), static_cast<std::uint32_t>(row.id.size()), 0, keys_.number_of(key_)};
  texts_ += row.id;
  std::size_t row_begin = found.at;
  std::size_t first = 1;
  if (!row_starts_with_id()) {
    row_begin = texts_.size();
    first = 0;
  }
  for (std::size_t i = first; i < attributes_->size(); ++i) {
    if (i > 0) texts_ += kValueMark;
    append_attribute((*attributes_)[i], row);
  }
  found.row_size = static_cast<std::uint32_t>(texts_.size() - row_begin);
  found_.push_back(found);
}

void FoundRows::make_key(const Row& row) {
  key_.clear();
  for (const SortKey& sort_key : *sort_keys_) {
    const std::size_t begin = key_.size();
    const std::string_view text = text_of(sort_key.designator, row);
    // Ids and what is drawn from them are codes: they keep plain order.
    if (sort_key.designator.attribute == 0) {
      key_ += text;
    } else {
      collator_.append_key(text, key_);
    }
    key_ += kKeyEnd;
    if (sort_key.direction == Direction::kAscending) continue;
    for (std::size_t i = begin; i < key_.size(); ++i) key_[i] = static_cast<char>(~key_[i]);
  }
}

void FoundRows::append_attribute(int attribute, const Row& row) {
  if (attribute == 0) {
    texts_ += row.id;
    return;
  }
  const std::size_t begin = texts_.size();
  texts_ += attribute_text(row.encoded, attribute);
  // A row's attributes are its values, so their values become subvalues.
  std::replace(texts_.begin() + static_cast<std::ptrdiff_t>(begin), texts_.end(), kValueMark, kSubvalueMark);
}

std::string_view FoundRows::id(const Found& found) const {
  return std::string_view(texts_).substr(found.at, found.id_size);
}

std::string_view FoundRows::row(const Found& found) const {
  const std::size_t begin = found.at + (row_starts_with_id() ? 0 : found.id_size);
  return std::string_view(texts_).substr(begin, found.row_size);
}

std::vector<std::uint32_t> FoundRows::sorted() const {
  // Rows are dealt to the places of their keys, then those of one key are put in order of id.
  const std::vector<std::uint32_t> keys = keys_.sorted();
  std::vector<std::uint32_t> sizes(keys.size()), places(keys.size());
  for (const Found& found : found_) ++sizes[found.key];
  std::uint32_t place = 0;
  for (const std::uint32_t key : keys) {
    places[key] = place;
    place += sizes[key];
  }
  std::vector<std::uint32_t> rows(found_.size());
  for (std::uint32_t i = 0; i < found_.size(); ++i) rows[places[found_[i].key]++] = i;
  const auto by_id = [this](std::uint32_t a, std::uint32_t b) { return id(found_[a]) < id(found_[b]); };
  auto begin = rows.begin();
  for (const std::uint32_t key : keys) {
    const auto end = begin + static_cast<std::ptrdiff_t>(sizes[key]);
    if (!std::is_sorted(begin, end, by_id)) std::sort(begin, end, by_id);
    begin = end;
  }
  return rows;
}

DbResult FoundRows::result() {
  std::string bytes;
  bytes.reserve(texts_.size() + found_.size());
  for (const std::uint32_t number : sorted()) {
    bytes += row(found_[number]);
    bytes += kAttributeMark;
  }
  if (!bytes.empty()) bytes.pop_back();
  const int count = static_cast<int>(found_.size());
  return DbResult(std::make_shared<const DbRecord>(DbRecord::from_trusted(std::move(bytes))), count);
}

}  // namespace velanor::store::select
