// The rows of selections, kept in the file for the next program to start from.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "store/sqlite/connection.h"
#include "velanor/backend.h"

namespace velanor::store::sqlite {

class RowKeeper {
 public:
  // The connection must outlive it.
  explicit RowKeeper(Connection& connection) : connection_(connection) {}

  // Nothing where none are kept under the name, or what is kept is damaged.
  std::optional<KeptRows> rows(std::int64_t file, std::string_view name);
  // Waits for nobody: throws a DbError where another program writes. Rows of selections that were kept long
  // ago give way. Brought to the disk with the next save: without them nothing is lost.
  void keep(std::int64_t file, std::string_view name, const KeptRows& rows);

 private:
  Connection& connection_;
};

}  // namespace velanor::store::sqlite
