// Moves the card between its record and the screen.
#pragma once

#include <string>
#include <vector>

#include "amendments/grids.h"
#include "amendments/lines.h"
#include "card/card_screen.h"
#include "card/card_state.h"
#include "card/codec.h"
#include "card/states.h"
#include "control/session.h"

namespace velanor::commands {

// A field that still shows what it was loaded with gives back what was stored, so that a card
// saved untouched is the card that was read, whatever codes and figures it held.
class CardRecord {
 public:
  // Keeps the references; their owners outlive this.
  struct Ground {
    card::CardScreen& ui;
    card::CardState& card;
    const control::Procedure& procedure;
    entry::UtilSaisie& entry;
    reference::ReferenceLists& lists;
    amendments::CareerGrids& grids;
    amendments::AmendmentLines& amendments;
  };
  explicit CardRecord(const Ground& ground);

  // Every control of the card from the working record. The fields must be empty. Says nothing,
  // whatever codes the record holds.
  void ChargerAidant();
  // Every attribute of the working record from the controls.
  void ChargerDonnees();

 private:
  // A text control and the attribute that it shows.
  struct Field {
    int attribute;
    screen::TextControl* box;
    std::string (*shown)(const card::Codec&, std::string_view stored);
    std::string (*stored)(const card::Codec&, std::string_view shown);
  };
  template <auto A>
  static Field field(screen::TextControl& box);

  void show(int attribute, screen::TextControl& box, const std::string& text);
  // What to store for a box: what was loaded while it reads the same, else `otherwise`.
  std::string kept_or(int attribute, const screen::TextControl& box, std::string otherwise) const;

  void load_options();
  void load_activities();
  void load_amendments();
  void load_end_reason();
  void load_establishment();
  void load_table_entry(int attribute, screen::ComboBox& box, const store::DbRecord& table);
  void load_charge();

  void save_activities();
  void save_amendments();
  void save_end_reason();
  void save_results();

  card::CardScreen& ui_;
  card::CardState& card_;
  const control::Procedure& procedure_;
  card::Codec codec_;
  entry::UtilSaisie& entry_;
  reference::ReferenceLists& lists_;
  amendments::CareerGrids& grids_;
  amendments::AmendmentLines& amendments_;
  std::vector<Field> fields_;
};

}  // namespace velanor::commands
