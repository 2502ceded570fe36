#include "store/select/found_rows.h"

#include <algorithm>
#include <memory>

#include "store/mark_scanner.h"
#include "velanor/database.h"

namespace velanor::store::select {
namespace {

// Ends each part of a key; less than any byte of it, so that a text comes before the longer ones
// that begin with it.
constexpr char kKeyEnd = '\0';

// Well below what a record can hold, marks included.
constexpr std::size_t kMaxBytes = std::size_t{1} << 30;

}  // namespace

void FoundRows::add(const Row& row) {
  make_key(row);
  if (!found_.empty() && row.id < id(found_.back())) in_order_of_ids_ = false;
  Found found{static_cast<std::uint32_t>(texts_.size()), static_cast<std::uint32_t>(row.id.size()), 0,
              keys_.number_of(key_)};
  texts_ += row.id;
  // A row that starts with the id goes on behind it; any other starts there.
  const std::size_t begin = row_starts_with_id() ? found.at : texts_.size();
  for (std::size_t i = row_starts_with_id() ? 1 : 0; i < attributes_->size(); ++i) {
    if (i > 0) texts_ += kValueMark;
    append_attribute((*attributes_)[i], row);
  }
  if (texts_.size() > kMaxBytes) {
    throw DbError(
        kStoreFailure,
        "La sélection rapporte trop de données. Précisez ses critères ou demandez moins d'attributs.");
  }
  found.row_size = static_cast<std::uint32_t>(texts_.size() - begin);
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

std::vector<std::size_t> FoundRows::places() const {
  std::vector<std::size_t> sizes(keys_.size()), places(keys_.size() + 1);
  for (const Found& found : found_) sizes[found.key] += found.row_size + 1;
  std::size_t place = 0;
  for (const std::uint32_t key : keys_.sorted()) {
    places[key] = place;
    place += sizes[key];
  }
  places.back() = place;
  return places;
}

DbResult FoundRows::result() {
  if (!in_order_of_ids_) {
    std::sort(found_.begin(), found_.end(), [this](const Found& a, const Found& b) { return id(a) < id(b); });
  }
  // In order of their ids the rows are dealt to the places of their keys, each with a mark behind.
  std::vector<std::size_t> next = places();
  std::string bytes(next.back(), kAttributeMark);
  for (const Found& found : found_) {
    const std::string_view text = row(found);
    std::copy(text.begin(), text.end(), bytes.begin() + static_cast<std::ptrdiff_t>(next[found.key]));
    next[found.key] += text.size() + 1;
  }
  if (!bytes.empty()) bytes.pop_back();
  const int count = static_cast<int>(found_.size());
  return DbResult(std::make_shared<const DbRecord>(DbRecord::from_trusted(std::move(bytes))), count);
}

}  // namespace velanor::store::select
