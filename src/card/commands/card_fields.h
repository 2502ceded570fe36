// The boxes of the card that are typed into, each bound to its kind, and what leaving one sets off.
#pragma once

#include "amendments/grids.h"
#include "card/screen/states.h"
#include "entry/fields/fields.h"
#include "reference/lookup_pairs.h"

namespace velanor::commands {

class CardCommands;

class CardFields {
 public:
  // Keeps the references; their owners outlive this.
  struct Ground {
    card::CardScreen& ui;
    card::CardState& card;
    card::CardStates& states;
    const control::Procedure& procedure;
    reference::ReferenceLists& lists;
    amendments::CareerGrids& grids;
    screen::Screen& screen;
  };
  explicit CardFields(const Ground& ground) : on_(ground) {}

  // The fifteen free-entry boxes and the category.
  void bind_free_entry(entry::Fields& fields);
  // The eight pairs of code and label, and the town.
  void bind_pairs(reference::LookupPairs& pairs, CardCommands& commands);
  // Nature of the contract and end reason, which have no code box.
  void bind_labels();

 private:
  void Txt_DatDeb_LostFocus(entry::DateOutcome outcome);
  void Txt_DatFin_LostFocus(entry::DateOutcome outcome);
  void Txt_DatEffet_LostFocus(entry::DateOutcome outcome);
  void Txt_DatEffet_Change();
  void Txt_ConvCol_Change();
  void Cbo_NatureContrat_DropDown() { on_.lists.fill_natures(); }
  void Cbo_NatureContrat_LostFocus();
  void Cbo_MotifFin_LostFocus();

  reference::LookupPair file_pair(screen::TextBox& code, screen::ComboBox& label, control::File file,
                                  const store::DbResult& kept);
  reference::LookupPair profile_pair(screen::TextBox& code, screen::ComboBox& label,
                                     const store::DbResult& kept);
  reference::LookupPair agreement_pair();
  reference::LookupPair entity_pair(CardCommands& commands);
  reference::LookupPair employee_pair(CardCommands& commands);
  reference::LookupPair establishment_pair();
  reference::LookupPair charge_pair();

  Ground on_;
};

}  // namespace velanor::commands
