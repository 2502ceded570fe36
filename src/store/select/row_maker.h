// Makes the row of a result of a stored record.
#pragma once

#include <string>
#include <vector>

#include "store/select/collation.h"
#include "store/select/tree.h"
#include "velanor/backend.h"

namespace velanor::store::select {

class RowMaker {
 public:
  // Both must outlive it.
  RowMaker(const std::vector<SortKey>& sort_keys, const std::vector<int>& attributes)
      : sort_keys_(&sort_keys), attributes_(&attributes) {}

  // What the row is sorted by, bytewise; good until the next call.
  const std::string& key(const Row& row);
  // Whether the id alone decides it.
  bool key_is_of_id() const;
  // The attributes asked for, as values.
  void append_text(const Row& row, std::string& text) const;
  bool starts_with_id() const { return attributes_->front() == 0; }

 private:
  const std::vector<SortKey>* sort_keys_;
  const std::vector<int>* attributes_;
  Collator collator_;
  std::string key_;
};

}  // namespace velanor::store::select
