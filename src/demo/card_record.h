// The personnel budget record of one employee in one budget year.
#pragma once

#include <optional>

#include "demo/career.h"
#include "velanor/record.h"

namespace velanor::demo {

// Nothing when the employee is not there in that year. What lies in later years (amendments,
// the end of a permanent contract) is not on the card yet.
std::optional<store::DbRecord> card_of(const Career& career, const Employer& employer, int year);

// Writes the results that a budget calculation would leave on that card.
void set_results(store::DbRecord& card, const Career& career, int year);

}  // namespace velanor::demo
