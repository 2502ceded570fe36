// The career grids and qualifications that an amendment can name.
#pragma once

#include <string>
#include <string_view>

#include "card/card_screen.h"
#include "card/card_state.h"
#include "control/session.h"
#include "entry/util_saisie.h"
#include "reference/lists.h"

namespace velanor::amendments {

class CareerGrids {
 public:
  CareerGrids(card::CardScreen& ui, card::CardState& card, const control::Procedure& procedure,
              reference::ReferenceLists& lists, entry::UtilSaisie& entry)
      : ui_(ui), card_(card), procedure_(procedure), lists_(lists), entry_(entry) {}

  void bind();
  void release() { grids_ = {}; }

  // The grids of the agreement that apply on the effective date. A grid that stood in the box
  // stays while the list still has it; so does one that no list had.
  void RemplirGrille();
  // The qualifications of the chosen grid, or of all; the text in the box stays.
  void RemplirQualif();

  // The id of the grid shown in Cbo_Grille, "" when the list has none of that label.
  std::string chosen_id() const;
  // Label of a grid; its id when the file has it no more.
  std::string label_of(std::string_view id) const;
  // The agreement in hand asks for a category.
  bool uses_categories() const;

 private:
  void Cbo_Grille_Change();
  void Cbo_Grille_Click();
  void Cbo_Qualif_KeyPress(screen::Key& key);
  void Cbo_NouvMes_KeyPress(screen::Key& key) { key.swallow(); }
  void Cbo_Qualif_DropDown() { RemplirQualif(); }
  void Cbo_Qualif_Change() { lists_.ChercheRegroupBudget(ui_.Cbo_Qualif.text()); }
  void Cbo_Qualif_Click() { Cbo_Qualif_Change(); }

  bool splits_generations() const;
  bool is_new_generation() const;
  std::string bound(std::string_view code) const;
  std::vector<std::string> qualifications(const std::string& statement) const;

  card::CardScreen& ui_;
  card::CardState& card_;
  const control::Procedure& procedure_;
  reference::ReferenceLists& lists_;
  entry::UtilSaisie& entry_;
  store::DbResult grids_;  // id, label, category
};

}  // namespace velanor::amendments
