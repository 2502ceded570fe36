// The career grids and qualifications that an amendment can name.
#pragma once

#include <string>
#include <string_view>

#include "card/screen/card_screen.h"
#include "card/screen/card_state.h"
#include "control/session/procedure.h"
#include "reference/lists.h"
#include "velanor/util_saisie.h"

namespace velanor::amendments {

class CareerGrids {
 public:
  CareerGrids(card::CardScreen& ui, card::CardState& card, const control::Procedure& procedure,
              reference::ReferenceLists& lists, entry::UtilSaisie& entry)
      : ui_(ui), card_(card), procedure_(procedure), lists_(lists), entry_(entry) {}

  void bind();
  void release() {
    grids_ = {};
    id_.clear();
    meant_.clear();
    missed_.clear();
  }

  // The grids of the agreement that apply on the effective date. The grid in the box stays while the
  // list has it, gives way to the one of its label where the date has left its generation, and goes
  // when there is none; one that no list had stays.
  void RemplirGrille();
  // The qualifications of the chosen grid, or of all. The text in the box stays if it is offered; one
  // that went because a grid did not offer it comes back with the next grid that does, for who steps
  // through the grids.
  void RemplirQualif();

  // Puts the grid of a line whose entry begins into the box, in silence.
  void show(const std::string& id, const std::string& label);
  // The id of the grid in Cbo_Grille, "" when the box is empty. Labels do not tell: two grids of an
  // agreement may share one.
  const std::string& chosen_id() const { return id_; }
  // The agreement in hand asks for a category.
  bool uses_categories() const;

 private:
  void Cbo_Grille_Change();
  void Cbo_Grille_Click();
  void Cbo_Qualif_KeyPress(screen::Key& key);
  void Cbo_Grille_KeyPress(screen::Key& key) { choose_only(ui_.Cbo_Grille, key); }
  void Cbo_NouvMes_KeyPress(screen::Key& key) { key.swallow(); }
  void Cbo_Qualif_DropDown() { RemplirQualif(); }
  void Cbo_Qualif_Change();
  void Cbo_Qualif_Click() { Cbo_Qualif_Change(); }

  // A whole entry or none: Backspace takes all of it away.
  static void choose_only(screen::ComboBox& box, screen::Key& key);
  void update_category();
  bool splits_generations() const;
  bool is_new_generation() const;
  std::string bound(std::string_view code) const;
  std::string listed_id() const;
  std::vector<std::string> offered_qualifications() const;
  bool offers_every_qualification(const std::string& id) const;
  std::vector<std::string> qualifications(const std::string& statement) const;

  card::CardScreen& ui_;
  card::CardState& card_;
  const control::Procedure& procedure_;
  reference::ReferenceLists& lists_;
  entry::UtilSaisie& entry_;
  store::DbResult grids_;  // id, label, category
  std::string id_;
  std::string meant_;   // grid that was loaded or picked, of which id_ may be the other generation's
  std::string missed_;  // qualification that the grids since have not offered
};

}  // namespace velanor::amendments
