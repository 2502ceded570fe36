// What saving makes of a card, beyond what was entered.
#pragma once

#include "velanor/record.h"

namespace velanor::card {

// As it is stored: the name in capitals, the letters of the flags written out, no monthly time for production
// staff, no end reason without an end, nothing behind the end of a list.
void complete(store::DbRecord& card);

// Whether the results of the budget calculation were computed from something else than the card holds now.
// A new card (`before` is null) has none yet.
bool results_are_stale(const store::DbRecord& card, const store::DbRecord* before);
// Empties stale results; a new card gets the status "0".
void drop_stale_results(store::DbRecord& card, const store::DbRecord* before);

}  // namespace velanor::card
