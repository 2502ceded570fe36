#include "store/sqlite/row_sum.h"

#include <sqlite3.h>

#include "store/checksum.h"

namespace velanor::store::sqlite {
namespace {

// The same bytes on every machine.
std::uint32_t add(std::uint32_t sum, std::int64_t number) {
  char bytes[8];
  for (int i = 0; i < 8; ++i) bytes[i] = static_cast<char>(static_cast<std::uint64_t>(number) >> (8 * i));
  return crc32c({bytes, sizeof bytes}, sum);
}

// With its length, so that nothing can pass from one text to the next.
std::uint32_t add(std::uint32_t sum, std::string_view text) {
  return crc32c(text, add(sum, static_cast<std::int64_t>(text.size())));
}

std::string_view bytes_of(sqlite3_value* value) {
  const auto* bytes = static_cast<const char*>(sqlite3_value_blob(value));
  return {bytes == nullptr ? "" : bytes, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

void sum_of_arguments(sqlite3_context* context, int, sqlite3_value** value) {
  StoredVersion row{sqlite3_value_int64(value[0]), bytes_of(value[1]),
                    sqlite3_value_int64(value[2]), bytes_of(value[3]),
                    sqlite3_value_int64(value[4]), std::nullopt};
  if (sqlite3_value_type(value[5]) != SQLITE_NULL) row.content = bytes_of(value[5]);
  sqlite3_result_int64(context, row_sum(row));
}

}  // namespace

std::int64_t row_sum(const StoredVersion& row) {
  std::uint32_t sum = add(add(0, row.file), row.id);
  sum = add(add(add(sum, row.version), row.author), row.time);
  sum = add(sum, row.content ? 1 : 0);
  return row.content ? add(sum, *row.content) : sum;
}

void offer_row_sum(Connection& connection) {
  constexpr int kArguments = 6;
  connection.check(sqlite3_create_function_v2(connection.handle(), "velanor_sum", kArguments,
                                              SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_DIRECTONLY, nullptr,
                                              sum_of_arguments, nullptr, nullptr, nullptr));
}

}  // namespace velanor::store::sqlite
