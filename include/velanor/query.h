// A selection request and its result.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "velanor/record.h"

namespace velanor::store {

// A text as the value of a criterion, whatever it holds: between double quotes, its own double quotes and
// brackets written twice, so that it changes neither the statement's shape nor what is looked for.
std::string quoted(std::string_view text);
// The same for what begins with the text, and for what ends with it.
std::string quoted_beginning(std::string_view text);
std::string quoted_end(std::string_view text);
// A pattern: brackets at its ends are signs (docs/embedding.md).
std::string quoted_pattern(std::string_view pattern);
// What stands between the quotes of `quoted`, for a value that is put together of several texts.
std::string escaped(std::string_view text);

// A request record: attribute 1 the statement (its grammar: docs/embedding.md), 2 the file name, which
// must be the statement's, 3 the numbers of the attributes to return, separated by single blanks (0 is
// the id). Database::Select takes its encoded form, and judges it.
class DbQuery : public DbRecord {
 public:
  DbQuery() = default;
  DbQuery(std::string_view statement, std::string_view file, std::string_view attributes);
};

// The selected records in order. Element (i, k) is attribute k of the request's list for record i, both
// from 1; its values come as subvalues, (i, k, v), and its own subvalues among them. (i) alone is the
// whole entry. What is not there reads as "". Cheap to copy: copies share the rows, which do not
// change when the store does, and a view that was read lives as long as one of them.
class DbResult {
 public:
  DbResult();  // empty
  // Rows as attributes of a record, which is not null.
  explicit DbResult(const std::shared_ptr<const DbRecord>& rows) : DbResult(rows, rows->DCount()) {}
  // With the number of rows said apart: a single row whose only element is empty reads like no row.
  DbResult(std::shared_ptr<const DbRecord> rows, int count) : rows_(std::move(rows)), count_(count) {}
  // Moving copies, so that what was moved from still reads.
  DbResult(const DbResult&) = default;
  DbResult& operator=(const DbResult&) = default;

  // Whether both are one answer: a list filled from the other need not be filled anew.
  bool same_rows(const DbResult& other) const { return rows_ == other.rows_; }

  int DCount() const { return count_; }
  // Size of the rows' encoded form.
  std::size_t bytes() const { return rows_->encoded().size(); }
  std::string_view operator()(int record, int field = kWhole, int value = kWhole) const {
    return (*rows_)(record, field, value);
  }

 private:
  std::shared_ptr<const DbRecord> rows_;
  int count_ = 0;
};

}  // namespace velanor::store
