// Dates of a card that cannot be, beside the others and today. The check and the import tell them; the
// screen takes them.
#pragma once

#include <vector>

#include "card/record/fault.h"
#include "velanor/record.h"

namespace velanor::card {

// `today` is a day number. Dates that cannot be read say nothing here.
std::vector<Fault> faults_of_dates(const store::DbRecord& card, int today);

}  // namespace velanor::card
