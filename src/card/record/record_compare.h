// The shape of a card's record, and whether two records hold the same: trailing empty values and
// subvalues are no difference.
#pragma once

#include "velanor/record.h"

namespace velanor::card {

bool same_value(const store::DbRecord& a, const store::DbRecord& b, int attribute, int value);
bool same_attribute(const store::DbRecord& a, const store::DbRecord& b, int attribute);
// Lines of a list that ends at its first empty value.
int lines_of(const store::DbRecord& card, int attribute);

bool same_record(const store::DbRecord& a, const store::DbRecord& b);

}  // namespace velanor::card
