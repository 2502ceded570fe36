// Gathers the rows that a selection finds, sorts them and makes the result.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "store/select/collation.h"
#include "store/select/evaluator.h"
#include "store/select/key_table.h"
#include "store/select/tree.h"
#include "velanor/query.h"

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
  // Where the id stands in the texts, and the row of the result behind it (or at the same place,
  // where the row starts with the id).
  struct Found {
    std::uint32_t at, id_size, row_size, key;
  };

  bool row_starts_with_id() const { return attributes_->front() == 0; }
  void make_key(const Row& row);
  void append_attribute(int attribute, const Row& row);
  std::string_view id(const Found& found) const;
  std::string_view row(const Found& found) const;
  // For each key, where its rows start in the bytes of the result; the size of these at the end.
  std::vector<std::size_t> places() const;

  const std::vector<SortKey>* sort_keys_;
  const std::vector<int>* attributes_;
  std::vector<Found> found_;
  bool in_order_of_ids_ = true;
  std::string texts_;
  KeyTable keys_;
  std::string key_;
  Collator collator_;
};

}  // namespace velanor::store::select
