// A selection request and its result.
#pragma once

#include <cstddef>
#include <cstdint>
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

class Rows;

// The selected records in order. Element (i, k) is attribute k of the request's list for record i, both
// from 1; its values come as subvalues, (i, k, v), and its own subvalues among them. (i) alone is the
// whole entry. What is not there reads as "". Cheap to copy: copies share the rows, which do not
// change when the store does, and a view that was read lives as long as one of them.
class DbResult {
 public:
  DbResult();  // empty
  // Of rows as attributes of a record, which is not null.
  explicit DbResult(const std::shared_ptr<const DbRecord>& rows) : DbResult(rows, rows->DCount()) {}
  // With the number of rows said apart: a single row whose only element is empty reads like no row.
  DbResult(const std::shared_ptr<const DbRecord>& rows, int count);
  // Of what a selection has put together, which is not null, and the revision of its file.
  DbResult(std::shared_ptr<const Rows> rows, std::uint64_t revision)
      : rows_(std::move(rows)), revision_(revision) {}
  // Moving copies, so that what was moved from still reads.
  DbResult(const DbResult&) = default;
  DbResult& operator=(const DbResult&) = default;

  // Whether both are one answer: a list filled from the other need not be filled anew.
  bool same_rows(const DbResult& other) const { return rows_ == other.rows_; }
  // Whether nothing else of the file has changed between them either, as far as the database can tell.
  bool same_state(const DbResult& other) const { return same_rows(other) && revision_ == other.revision_; }

  int DCount() const;
  // Size of the rows in memory.
  std::size_t bytes() const;
  std::string_view operator()(int record, int field = kWhole, int value = kWhole) const;
  // The record behind those that the statement's sort keys do not tell from this one, which stand
  // together: DCount() + 1 after the last. Where no selection has sorted the rows, the next record.
  int run_end(int record) const;

 private:
  std::shared_ptr<const Rows> rows_;
  std::uint64_t revision_ = 0;
};

}  // namespace velanor::store
