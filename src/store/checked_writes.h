// What every write to a backend is judged by first.
#pragma once

#include <string_view>

#include "velanor/backend.h"

namespace velanor::store {

// The id must not be empty and must be clean text (DbError kStoreFailure), and what stands there as
// expected (kConflict).
void put_checked(Backend& backend, std::string_view file, std::string_view id, const DbRecord& record,
                 const Expected& expected = Expected::anything());
// What stands there must be as expected (kConflict).
void erase_checked(Backend& backend, std::string_view file, std::string_view id, const Expected& expected);

}  // namespace velanor::store
