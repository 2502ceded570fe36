// Whether two records hold the same. Trailing empty values and subvalues are no difference.
#pragma once

#include "store/record.h"

namespace velanor::card {

bool same_value(const store::DbRecord& a, const store::DbRecord& b, int attribute, int value);
bool same_attribute(const store::DbRecord& a, const store::DbRecord& b, int attribute);
bool same_record(const store::DbRecord& a, const store::DbRecord& b);

}  // namespace velanor::card
