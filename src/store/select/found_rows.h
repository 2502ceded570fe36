// Gathers the rows that a selection finds, and sorts them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "store/rows.h"
#include "store/select/key_table.h"
#include "store/select/row_maker.h"

namespace velanor::store::select {

// Copies what it needs of each row, so a row needs to live only while it is added. Keys are made
// once a row, and rows of equal keys are sorted as one: sorting costs what the distinct keys cost,
// plus nothing for rows that come in ascending order of their ids.
class FoundRows {
 public:
  // It must outlive it.
  explicit FoundRows(RowMaker& maker) : maker_(&maker) {}

  void add(const Row& row);
  // The rows in order.
  Rows rows() const;

 private:
  // Where the id stands in the texts, and the row of the result behind it (or at the same place,
  // where the row starts with the id).
  struct Found {
    std::size_t at;
    std::uint32_t id_size, row_size, key;
  };

  std::string_view id(const Found& found) const;
  LooseRow row(const Found& found) const;
  // The rows by their keys, those of one key together in the order in which they were found.
  std::vector<const Found*> by_key() const;
  void sort_by_id(std::vector<const Found*>& sorted) const;

  RowMaker* maker_;
  std::vector<Found> found_;
  bool in_order_of_ids_ = true;
  std::string texts_;
  KeyTable keys_;
};

}  // namespace velanor::store::select
