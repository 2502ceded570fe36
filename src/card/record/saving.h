// What saving makes of a card, beyond what was entered.
#pragma once

#include <string_view>

#include "card/record/draft.h"

namespace velanor::card {

// As it is stored: the name in capitals, the letters of the flags written out, no monthly time for production
// staff, no end reason without an end, nothing behind the end of a list.
void complete(Draft& card);
// The results of the budget calculation go when what they were computed from is not what it was in
// `before`; a new card (null) has none, and the status "0".
void drop_stale_results(Draft& card, const store::DbRecord* before);

}  // namespace velanor::card
