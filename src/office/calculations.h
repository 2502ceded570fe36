// The results of the budget calculation that are kept beside the cards.
#pragma once

#include <string>
#include <vector>

#include "velanor/database.h"

namespace velanor::office {

// A sentence for each result whose card is not there: "BUDGETHISTORCUMUL 000010012026 : …".
std::vector<std::string> calculations_without_card(store::Database& database);

}  // namespace velanor::office
