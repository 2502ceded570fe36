// A whole base from one store into another.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "velanor/database.h"

namespace velanor::app {

struct BaseCopyReport {
  std::size_t files = 0, records = 0, deleted = 0;
  // Versions that are brought along, the present ones included; 0 where one of the two keeps none.
  std::size_t versions = 0;
};

// Copies what `from` holds at one moment, in one change. A target that holds records is refused (DbError).
// The versions of each record come along where both stores can. `step` hears of each record.
BaseCopyReport copy_base(
    store::Database& from, store::Database& to, const std::function<void()>& step = [] {});

}  // namespace velanor::app
