// A selection request and its result.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "velanor/record.h"

namespace velanor::store {

// A request record: attribute 1 the statement, 2 the file name, 3 the numbers of the attributes
// to return, separated by single blanks (0 is the id).
class DbQuery : public DbRecord {
 public:
  DbQuery() = default;
  DbQuery(std::string_view statement, std::string_view file, std::string_view attributes);
};

// The selected records in order. Element (i, k) is attribute k of the request's list for record
// i, both from 1; its values come as subvalues, (i, k, v). (i) alone is the whole entry. A
// default-made result is empty. Cheap to copy: copies share the rows, which do not change when
// the store does.
class DbResult {
 public:
  DbResult();
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
