// Codes that a file has for others than the cards: the rule by which lists are filled, entries are refused,
// and cards that come otherwise are judged.
#pragma once

#include <string>
#include <string_view>

#include "card/record/reference_layout.h"
#include "velanor/record.h"

namespace velanor::card {

struct Fit {
  std::string_view list;  // of References: a file
  // Selects the codes that fit, in the order of the lists of the screen.
  std::string statement;
  // What a clerk is told who enters another.
  std::string_view refusal;
};
// nullptr for a list whose codes all fit.
const Fit* fit_of(std::string_view list);

// One by one, where a record is at hand.
inline bool fits_agreement(std::string_view code) { return code != agreements::kReserved; }
inline bool fits_profile(const store::DbRecord& profile) { return profile(profiles::kMandate) != kMarked; }

}  // namespace velanor::card
