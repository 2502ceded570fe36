// The cards of an entity and year that were deleted.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velanor/database.h"
#include "velanor/history.h"

namespace velanor::office {

struct DeletedCard {
  std::string id, employee;
  // Of the last version that has any content; "" where all are forgotten.
  std::string name;
  std::vector<store::Version> versions;
  std::optional<std::size_t> content;  // which of them that is
};

// The latest deletion first. Throws store::DbError, also for a database that keeps no versions.
std::vector<DeletedCard> deleted_cards(store::Database& database, std::string_view entity,
                                       std::string_view year);

}  // namespace velanor::office
