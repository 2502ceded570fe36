// The rules that a card must keep to be saved.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "card/record/codec.h"
#include "card/record/fault.h"
#include "velanor/record.h"

namespace velanor::card {

// The faults of a card in the order in which a clerk is told them. `reference_day`: the reference date of
// the budget, a day number.
std::vector<Fault> faults_of(const store::DbRecord& card, const Codec& codec, std::int64_t reference_day);
// The first of them; nothing for a card that may be saved.
std::optional<Fault> first_fault(const store::DbRecord& card, const Codec& codec, std::int64_t reference_day);

}  // namespace velanor::card
