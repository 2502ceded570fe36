#include "velanor/query.h"

#include "store/mark_scanner.h"
#include "store/rows.h"

namespace velanor::store {

namespace {

std::string doubled(std::string_view text, std::string_view which) {
  std::string result;
  for (const char byte : text) result.append(which.find(byte) == which.npos ? 1 : 2, byte);
  return result;
}

// In the order of the numbers.
std::string ascending(int number) {
  std::string key;
  for (int shift = 24; shift >= 0; shift -= 8) key += static_cast<char>(number >> shift);
  return key;
}

}  // namespace

std::string escaped(std::string_view text) { return doubled(text, "\"[]"); }

std::string quoted(std::string_view text) { return '"' + escaped(text) + '"'; }
std::string quoted_beginning(std::string_view text) { return '"' + escaped(text) + "]\""; }
std::string quoted_pattern(std::string_view pattern) { return '"' + doubled(pattern, "\"") + '"'; }
std::string quoted_end(std::string_view text) { return "\"[" + escaped(text) + '"'; }

DbQuery::DbQuery(std::string_view statement, std::string_view file, std::string_view attributes) {
  set(1, statement);
  set(2, file);
  set(3, attributes);
}

DbResult::DbResult() {
  static const auto kNoRows = std::make_shared<const Rows>();
  rows_ = kNoRows;
}

// Each row has a key of its own: nobody has said which are equal.
DbResult::DbResult(const std::shared_ptr<const DbRecord>& rows, int count) {
  RowsBuilder builder(false);
  for (int row = 1; row <= count; ++row) builder.add({"", (*rows)(row), ascending(row)});
  rows_ = std::make_shared<const Rows>(builder.rows());
}

int DbResult::DCount() const { return static_cast<int>(rows_->count()); }

std::size_t DbResult::bytes() const { return rows_->bytes(); }

std::string_view DbResult::operator()(int record, int field, int value) const {
  if (record < 1) return {};
  const std::string_view text = rows_->text(static_cast<std::size_t>(record) - 1);
  if (field == kWhole) return text;
  if (field < 1) return {};
  const std::string_view element = part_text(text, kValueMark, field);
  if (value == kWhole) return element;
  return value < 1 ? std::string_view() : part_text(element, kSubvalueMark, value);
}

int DbResult::run_end(int record) const {
  return static_cast<int>(rows_->run_end(static_cast<std::size_t>(record) - 1)) + 1;
}

}  // namespace velanor::store
