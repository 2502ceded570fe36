// The card in hand: its records, its flags, and what its lines were loaded from.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "store/database.h"

namespace velanor::card {

// A stored value beside what the screen showed of it. While the screen still shows the same, the
// stored value is given back, so that an untouched card is saved as it was, whatever it held.
struct Kept {
  std::string shown;
  std::string stored;
};

// One line of the amendments, column by column in the order of CardScreen::amendment_lists.
using AmendmentMemory = std::array<Kept, 8>;

struct ActivityMemory {
  Kept activity;  // line's label, ACTIVITES id
  Kept share;
};

// No behaviour: the rules read and write it. One card after another.
struct CardState {
  store::DbRecord working;                // what saving will write
  std::optional<store::FileRecord> file;  // bound to the stored card, with its content
  std::string CodeAidant;                 // employee code of the card
  bool Creation = false;                  // a new card is being entered
  bool Erreur = false;                    // the last check of the card found a fault
  bool AjoutDetail = false;               // an amendment line is being added
  bool AjoutActivite = false;             // an activity line is being added
  bool open = false;                      // a card is created, edited or read
  bool loading = false;                   // codes are taken as they come, without messages
  std::string entity, year;               // of the card in hand, also after it was deleted
  int edited_line = -1;                   // index of the amendment line under edit
  int current_line = 0;                   // amendment handed to the item form, from 1

  // A line of the amendments is being entered, new or not.
  bool enters_amendment() const { return AjoutDetail || edited_line >= 0; }

  std::string default_hours;       // monthly hours of establishment "001", for a new card
  std::string only_establishment;  // code of the entity's establishment when it has just one
  std::string grouping;            // current budget grouping code
  store::DbRecord agreement;       // the collective agreement last read by its code

  std::map<int, Kept> kept;  // single-valued attributes
  std::vector<AmendmentMemory> amendments;
  std::vector<ActivityMemory> activities;
};

}  // namespace velanor::card
