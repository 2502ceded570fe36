// The checksum of a stored version: over all that is known of it, its place included, so that neither a
// damaged content nor one that stands under the wrong id passes.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "store/sqlite/connection.h"

namespace velanor::store::sqlite {

struct StoredVersion {
  std::int64_t file;
  std::string_view id;
  std::int64_t version;
  std::string_view author;
  std::int64_t time;
  std::optional<std::string_view> content;  // nothing: a deletion
};

std::int64_t row_sum(const StoredVersion& row);

// Makes the same known to statements of the connection as velanor_sum(file, id, version, author, time,
// content).
void offer_row_sum(Connection& connection);

}  // namespace velanor::store::sqlite
