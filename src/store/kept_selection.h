// A selection that was run, kept with its result and brought up to date by what has changed since.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/rows.h"
#include "store/select/row_maker.h"
#include "store/select/tree.h"
#include "velanor/backend.h"
#include "velanor/query.h"

namespace velanor::store {

class KeptSelection {
 public:
  KeptSelection(select::Statement statement, std::vector<int> attributes);
  // Its row maker points into it.
  KeptSelection(const KeptSelection&) = delete;
  KeptSelection& operator=(const KeptSelection&) = delete;

  // As the backend has it now, patched where it knows what has changed, selected anew where it
  // does not. Where that fails the rows stay as they were.
  DbResult result(Backend& backend);
  std::size_t bytes() const { return rows_->bytes(); }
  const select::Statement& statement() const { return statement_; }

 private:
  void select(Backend& backend);
  bool patch(Backend& backend);
  // The rows with what has become of a record; nothing where that makes no difference to them.
  std::optional<Rows> with_change(const Rows& rows, const ChangedRow& change);
  // What the backend keeps the rows under: the same for the same selection, by whichever words it was asked.
  std::string name() const;
  void take_what_was_kept(Backend& backend);
  void keep(Backend& backend);

  select::Statement statement_;
  std::vector<int> attributes_;
  select::RowMaker maker_;
  // Nothing: never selected.
  std::optional<std::uint64_t> revision_;
  std::shared_ptr<const Rows> rows_;
  // How many were taken in since the backend kept the rows.
  std::size_t changes_ = 0;
  std::string text_;
};

// The selections that were asked for last, by their requests.
class KeptSelections {
 public:
  // nullptr when there is none.
  KeptSelection* find(std::string_view request);
  void add(std::string_view request, std::unique_ptr<KeptSelection> selection);
  // To be called when the rows of one have become more.
  void drop_what_is_too_much();
  void drop_all() { entries_.clear(); }

 private:
  struct Entry {
    std::string request;
    std::unique_ptr<KeptSelection> selection;
  };
  // The latest first.
  std::list<Entry> entries_;
};

}  // namespace velanor::store
