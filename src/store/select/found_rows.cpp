#include "store/select/found_rows.h"

#include <algorithm>

#include "velanor/database.h"

namespace velanor::store::select {
namespace {

// Well below what a record can hold, marks included.
constexpr std::size_t kMaxBytes = std::size_t{1} << 30;

}  // namespace

void FoundRows::add(const Row& row) {
  if (!found_.empty() && row.id < id(found_.back())) in_order_of_ids_ = false;
  Found found{texts_.size(), static_cast<std::uint32_t>(row.id.size()), 0, keys_.number_of(maker_->key(row))};
  // A row that starts with the id goes on behind it; any other starts there.
  if (!maker_->starts_with_id()) texts_ += row.id;
  const std::size_t begin = texts_.size();
  maker_->append_text(row, texts_);
  if (texts_.size() > kMaxBytes) {
    throw DbError(
        kStoreFailure,
        "La sélection rapporte trop de données. Précisez ses critères ou demandez moins d'attributs.");
  }
  found.row_size = static_cast<std::uint32_t>(texts_.size() - begin);
  found_.push_back(found);
}

std::string_view FoundRows::id(const Found& found) const {
  return std::string_view(texts_).substr(found.at, found.id_size);
}

LooseRow FoundRows::row(const Found& found) const {
  const std::size_t begin = found.at + (maker_->starts_with_id() ? 0 : found.id_size);
  return {id(found), std::string_view(texts_).substr(begin, found.row_size), keys_.key(found.key)};
}

std::vector<const FoundRows::Found*> FoundRows::by_key() const {
  std::vector<std::size_t> counts(keys_.size()), next(keys_.size());
  for (const Found& found : found_) ++counts[found.key];
  std::size_t place = 0;
  for (const std::uint32_t key : keys_.sorted()) {
    next[key] = place;
    place += counts[key];
  }
  std::vector<const Found*> sorted(found_.size());
  for (const Found& found : found_) sorted[next[found.key]++] = &found;
  return sorted;
}

void FoundRows::sort_by_id(std::vector<const Found*>& sorted) const {
  struct Entry {
    std::uint64_t prefix;
    const Found* found;
  };
  std::vector<Entry> run;
  for (auto begin = sorted.begin(); begin != sorted.end();) {
    const auto end = std::find_if(begin, sorted.end(),
                                  [key = (*begin)->key](const Found* found) { return found->key != key; });
    run.clear();
    for (auto at = begin; at != end; ++at) run.push_back({packed_prefix(id(**at)), *at});
    std::sort(run.begin(), run.end(), [this](const Entry& a, const Entry& b) {
      return a.prefix != b.prefix ? a.prefix < b.prefix : id(*a.found) < id(*b.found);
    });
    for (const Entry& entry : run) *begin++ = entry.found;
  }
}

Rows FoundRows::rows() const {
  std::vector<const Found*> sorted = by_key();
  if (!in_order_of_ids_) sort_by_id(sorted);
  RowsBuilder builder(maker_->starts_with_id());
  for (const Found* found : sorted) builder.add(row(*found));
  return builder.rows();
}

}  // namespace velanor::store::select
