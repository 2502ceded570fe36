// What helps while a card is entered, beside what its controls hold and say.
#pragma once

#include <string>

#include "amendments/activities.h"
#include "amendments/lines.h"
#include "card/screen/card_screen.h"
#include "card/screen/card_state.h"
#include "velanor/screen.h"

namespace velanor::control {

class EntryAids {
 public:
  // Keeps the references; their owners outlive this.
  struct Ground {
    card::CardScreen& ui;
    card::CardState& card;
    amendments::AmendmentLines& lines;
    amendments::ActivityLines& activities;
    const screen::Form& items;
    screen::Screen& screen;
  };
  explicit EntryAids(const Ground& ground) : on_(ground), summed_(on_.card.draft) {}

  // As ControleVelanor tells them. `editable`: the card that is open can be changed.
  std::string split() const;
  std::string hours() const;
  std::string put_remainder(bool editable);
  std::string repeat_items(bool editable);

 private:
  // Hundredths of a percent that the lines leave, but for one (-1: none).
  std::int64_t remainder(int but) const;
  std::string why_not(bool editable) const;
  std::string put_on_entry();
  std::string put_on_line(int line);

  Ground on_;
  // The sum asks for what counts as hours, of each item: it is kept until the items are others.
  mutable card::Draft summed_;
  mutable int summed_line_ = -1;
  mutable std::string sum_;
};

}  // namespace velanor::control
