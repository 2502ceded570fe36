// Dates of a card that cannot be, beside the others and today.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "card/record/fault.h"
#include "velanor/record.h"

namespace velanor::card {

// The day number that a record holds; nothing for a text that is no day of a calendar.
std::optional<int> stored_day(std::string_view stored);

// `today` is a day number. Dates that cannot be read say nothing here.
std::vector<card::Fault> faults_of_dates(const store::DbRecord& card, int today);

}  // namespace velanor::card
