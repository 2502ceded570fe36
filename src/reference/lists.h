// Fills the pick lists of the card from the reference files. List entry j of a combo box
// (from 0) is entry j + 1 of the kept result behind it, which holds the codes.
#pragma once

#include <string_view>

#include "card/screen/card_screen.h"
#include "card/screen/card_state.h"
#include "control/session/procedure.h"

namespace velanor::reference {

// The results behind the lists, kept from one filling to the next.
struct KeptResults {
  store::DbResult entities;
  store::DbResult employees;
  store::DbResult agreements;
  store::DbResult sectors;
  store::DbResult towns;
  store::DbResult activities;
  store::DbResult profiles1;
  store::DbResult profiles2;
  store::DbResult establishments;
  store::DbResult charges;
};

class ReferenceLists {
 public:
  ReferenceLists(card::CardScreen& ui, card::CardState& card, const control::Procedure& procedure)
      : ui_(ui), card_(card), procedure_(procedure) {}

  KeptResults& kept() { return kept_; }
  // Drops what is kept, at the exit.
  void release() { kept_ = {}; }

  void RequeteAssoc();
  void RemplirAssoc();
  void RequeteAidant();
  void RemplirAidant();
  // Takes over what others have made of the list meanwhile; the text of its box stays.
  void renew_employees();
  void RemplirConvCol();
  void RemplirSecteur();
  void RemplirCommune();
  void RemplirAct();
  void RemplirProfil1();
  void RemplirProfil2();
  void RemplirFinContrat();
  // Establishments of the entity, and the charge items a mutual insurance can use.
  void Remplir_Etablissement();
  // Natures of contract that can be chosen, once: "code label".
  void fill_natures();
  // Diplomas: "code label".
  void fill_diplomas();
  // Every list that an open card needs.
  void fill_card_lists();

  // Shows the budget grouping of a qualification; an unknown one changes nothing.
  void ChercheRegroupBudget(std::string_view qualification);

 private:
  // Labels of a result into a box, its text emptied.
  void fill(screen::ComboBox& box, store::DbResult& kept, const store::DbResult& fresh);
  // The same, but a single entry is taken at once, its code into `code` (null: none).
  void fill_or_take(screen::ComboBox& box, screen::TextBox* code, store::DbResult& kept,
                    const store::DbResult& fresh, int code_from = 1);

  store::DbResult employees_now() const;
  // The kept employees into their box, whose text stays.
  void put_employees(int index = -1);
  // Those of a field that not every code of its list fits.
  store::DbResult fit_codes(const card::Field& field) const;

  card::CardScreen& ui_;
  card::CardState& card_;
  const control::Procedure& procedure_;
  KeptResults kept_;
  store::DbResult employees_in_box_;
};

// The first entry of a result whose field k reads `text`, from 1; 0 when there is none.
int find_entry(const store::DbResult& result, int field, std::string_view text);

}  // namespace velanor::reference
