// Lines of a card behind the end of their list, which the screen does not show and saving drops. The check
// and the import tell them.
#pragma once

#include <vector>

#include "card/record/fault.h"
#include "velanor/record.h"

namespace velanor::card {

// One for each list, however many columns go on. The first column ends the list.
std::vector<Fault> faults_of_cut_lines(const store::DbRecord& card);

}  // namespace velanor::card
