// Which controls of the card can be used: whole groups switched on and off.
#pragma once

#include "card/screen/card_screen.h"
#include "card/screen/card_state.h"
#include "control/session/years.h"

namespace velanor::card {

// The switching routines. Labels follow their fields by themselves.
class CardStates {
 public:
  CardStates(CardScreen& ui, const CardState& card, const control::YearTable& years)
      : ui_(ui), card_(card), years_(years) {}

  // Empties and disables every data field, and the commands but the exit.
  void GriserOng();
  // Opens the fields of a card; in a year that is not the entity's latest it only lets the user
  // go back.
  void DeGriserOng();
  void GriserDonnees();
  void DeGriserDonnees();
  void GriserDetail();
  void DeGriserDetail();
  void GriserActivite() { enable_activities(false); }
  void DeGriserActivite() { enable_activities(true); }

  // Empties every data field of the pages, without switching anything.
  void empty_fields();
  // What cannot be used before an entity is chosen, at the start.
  void start();
  // Entity fields, year and help menu: usable while no card is open.
  void enable_entity(bool on);
  // The entry controls of a line, and the buttons that go with them.
  void empty_amendment_entry();
  void enable_amendment_lists(bool on);
  // A line can be added once the contract has an agreement and a start, in the latest year.
  void update_add_amendment();
  // The chosen entity and year can still be edited: the year is the entity's latest, and the database
  // takes writes.
  bool year_is_open() const;
  // The card's own commands rest while a line is being entered. A card that is not stored yet can be
  // neither deleted nor duplicated.
  void suspend_commands();
  void resume_commands();
  // A single establishment leaves nothing to choose, unless the card is of another one.
  void enable_establishment(bool on);

 private:
  void enable(Group group, bool on);
  void empty(Group group);
  void enable_employee(bool on);
  void enable_activities(bool on);
  void disable_commands();

  CardScreen& ui_;
  const CardState& card_;
  const control::YearTable& years_;
};

}  // namespace velanor::card
