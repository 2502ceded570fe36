// How to run a selection with little work. What it finds never depends on the plan.
#pragma once

#include <vector>

#include "store/select/tree.h"
#include "velanor/backend.h"

namespace velanor::store {

// The most that every record found must satisfy of its id.
Narrowing narrowing_of(const select::Statement& statement);

// Whether the ids alone decide the criteria, the order and the attributes returned.
Content content_needed(const select::Statement& statement, const std::vector<int>& attributes);

}  // namespace velanor::store
