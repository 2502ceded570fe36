// Gathers the rows that a selection finds, sorts them and makes the result.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "store/query.h"
#include "store/select/collation.h"
#include "store/select/evaluator.h"
#include "store/select/key_table.h"
#include "store/select/tree.h"

namespace velanor::store::select {

// Copies what it needs of each row, so a row needs to live only while it is added. Keys are made
// once a row, and rows of equal keys are sorted as one: sorting costs what the distinct keys cost,
// plus nothing for rows that come in ascending order of their ids.
class FoundRows {
 public:
  // Both must outlive it.
  FoundRows(const std::vector<SortKey>& sort_keys, const std::vector<int>& attributes)
      : sort_keys_(&sort_keys), attributes_(&attributes) {}

  void add(const Row& row);
  // The rows in order. Called once, at the end.
  DbResult result();

 private:
  // The id at `at` in the texts, and the row of the result behind it (or the same place, where
  // the row starts with the id).
  struct Found {
    std::size_t at;
    std::uint32_t id_size;
    std::uint32_t row_size;
    std::uint32_t key;
  };

  bool row_starts_with_id() const { return attributes_->front() == 0; }
  void make_key(const Row& row);
  void append_attribute(int attribute, const Row& row);
  std::string_view id(const Found& found) const;
  std::string_view row(const Found& found) const;
  // Row numbers in the order of the result.
  std::vector<std::uint32_t> sorted() const;

  const std::vector<SortKey>* sort_keys_;
  const std::vector<int>* attributes_;
  std::vector<Found> found_;
  std::string texts_;
  KeyTable keys_;
  std::string key_;
  Collator collator_;
};

}  // namespace velanor::store::select
