// Whether a record meets the criteria of a statement.
#pragma once

#include <string_view>

#include "store/select/tree.h"
#include "velanor/backend.h"

namespace velanor::store::select {

// The text that a designator stands for; "" where the record has none.
std::string_view text_of(const Designator& designator, const Row& row);

// A test holds for an attribute if it holds for any of its values or subvalues; an attribute
// that is not there has the one value "".
bool matches(const Statement& statement, const Row& row);
// Whether a record with this id could.
bool may_match(const Statement& statement, std::string_view id);

}  // namespace velanor::store::select
