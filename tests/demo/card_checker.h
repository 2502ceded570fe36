// The checks of saving, told of stored records.
#pragma once

#include "demo/map_sink.h"

namespace velanor::demo {

// Expects every card to pass them in the latest year, to use no code that the reference files do
// not hold, and to show only figures that fit their boxes. Stops at the first card that fails.
void check_all_cards(const MapSink& sink);

}  // namespace velanor::demo
