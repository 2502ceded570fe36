// The card in hand: its draft and its flags.
#pragma once

#include <optional>
#include <string>

#include "card/record/draft.h"
#include "velanor/database.h"

namespace velanor::card {

// No behaviour: the rules read and write it. One card after another.
struct CardState {
  explicit CardState(const Reading& reading) : draft(reading) {}

  Draft draft;                            // what saving will write; lines at once, fields when it is saved
  std::optional<store::FileRecord> file;  // bound to the stored card, with its content
  std::string CodeAidant;                 // employee code of the card
  bool Creation = false;                  // a new card is being entered
  bool Erreur = false;                    // the last check of the card found a fault
  bool AjoutDetail = false;               // an amendment line is being added
  bool AjoutActivite = false;             // an activity line is being added
  bool open = false;                      // a card is created, edited or read
  bool read_only = false;                 // cards can be read, and no more
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
};

}  // namespace velanor::card
