// Dates of a card that cannot be, beside the others and today.
#pragma once

#include <vector>

#include "app/velanorctl/fault.h"
#include "store/record.h"

namespace velanor::app {

// `today` is a day number. Dates that cannot be read say nothing here.
std::vector<Fault> faults_of_dates(const store::DbRecord& card, int today);

}  // namespace velanor::app
