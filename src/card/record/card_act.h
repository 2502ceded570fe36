// What was done to a card at once, in the words of the screen.
#pragma once

#include <string>

#include "card/record/draft.h"

namespace velanor::card {

struct CardAct {
  std::string name;  // "ligne du 01/03/2026 supprimée", "Nom (DURAND → DURANT)"; "" where nothing was
  Field field;       // where it is seen: one of the list for what was done to a line
  int line = -1;     // of that list, as it is now; -1: none
};

// What makes the second of the first. Of several changes the name tells one and how many there are besides.
// A failing store costs the labels alone.
CardAct act_between(const Draft& before, const Draft& after);

}  // namespace velanor::card
