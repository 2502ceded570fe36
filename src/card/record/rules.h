// The rules that a card must keep to be saved.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "card/record/draft.h"

namespace velanor::card {

struct Fault {
  // The attribute that it is about; 0: none on its own.
  int attribute = 0;
  std::string sentence;
  bool is_a_wrong_value = false;  // which is emptied, for a right one to be entered
};

// The faults of a card in the order in which a clerk is told them. `reference_day`: the reference date of
// the budget, a day number.
std::vector<Fault> faults_of(const Draft& card, long reference_day);
// The first of them; nothing for a card that may be saved.
std::optional<Fault> first_fault(const Draft& card, long reference_day);

}  // namespace velanor::card
