// The rules that a card must keep to be saved.
#pragma once

#include <cstdint>
#include <vector>

#include "card/record/codec.h"
#include "card/record/fault.h"
#include "velanor/record.h"

namespace velanor::card {

// The faults of a card in the order in which a clerk is told them, of which the first alone is told by the
// screen; none for a card that may be saved. `reference_day`: the reference date of the budget, a day number.
std::vector<Fault> faults_of(const store::DbRecord& card, const Codec& codec, std::int64_t reference_day);

}  // namespace velanor::card
