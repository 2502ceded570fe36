// The checks that a card must pass before it is saved, told to the clerk.
#pragma once

#include "card/commands/card_record.h"
#include "card/record/rules.h"
#include "card/screen/card_screen.h"
#include "card/screen/card_state.h"
#include "control/session/procedure.h"
#include "velanor/screen.h"

namespace velanor::commands {

class Validation {
 public:
  // Keeps the references; their owners outlive this.
  Validation(card::CardScreen& ui, card::CardState& card, const CardRecord& record,
             const control::Procedure& procedure, screen::Screen& screen)
      : ui_(ui), card_(card), record_(record), procedure_(procedure), screen_(screen) {}

  // Judges what is on the screen. The first fault speaks, takes the focus and sets `Erreur`.
  void VerifZone();

  // Where a field of the card is entered, or the list that has its lines; null: nowhere.
  screen::Control* place_of(const card::Field& field) const;

 private:
  // Where a fault is mended; null: nowhere on its own.
  screen::Control* control_of(const card::Field& field) const;

  card::CardScreen& ui_;
  card::CardState& card_;
  const CardRecord& record_;
  const control::Procedure& procedure_;
  screen::Screen& screen_;
};

}  // namespace velanor::commands
