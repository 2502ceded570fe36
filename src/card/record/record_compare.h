// The shape of a card's record, and whether two records hold the same: trailing empty values and
// subvalues are no difference.
#pragma once

#include <span>

#include "card/record/record_layout.h"
#include "velanor/record.h"

namespace velanor::card {

bool same_value(const store::DbRecord& a, const store::DbRecord& b, int attribute, int value);
bool same_attribute(const store::DbRecord& a, const store::DbRecord& b, int attribute);
// Lines of a list that ends at its first empty value.
int lines_of(const store::DbRecord& card, const Field& list);
// Nothing stands behind the line: that would be on no screen.
void end_columns(store::DbRecord& card, std::span<const Field> columns, int lines);

bool same_record(const store::DbRecord& a, const store::DbRecord& b);

}  // namespace velanor::card
