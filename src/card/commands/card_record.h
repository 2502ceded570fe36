// Moves the card between its record and the screen.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "amendments/lines.h"
#include "card/record/draft.h"
#include "card/screen/card_screen.h"
#include "card/screen/card_state.h"
#include "card/screen/states.h"

namespace velanor::commands {

// A field that still shows what it was loaded with gives back what was stored, so that a card
// saved untouched is the card that was read, whatever codes and figures it held.
class CardRecord {
 public:
  // Keeps the references; their owners outlive this.
  struct Ground {
    card::CardScreen& ui;
    card::CardState& card;
    entry::UtilSaisie& entry;
    reference::ReferenceLists& lists;
    amendments::AmendmentLines& amendments;
  };
  explicit CardRecord(const Ground& ground);

  // The card in hand as it stands on the screen: its lines, and what its boxes and options hold.
  struct Shown {
    card::Draft draft;
    std::vector<std::string> entries;
  };
  Shown shown() const { return {card_.draft, entries()}; }
  // Cheap enough to be asked after each key: asks neither the store nor the codec.
  bool is_shown(const Shown& card) const;
  bool reads_otherwise(const screen::Control& box, const Shown& card) const;
  // The first box that does, by its label; "" where only lines do.
  std::string difference_from(const Shown& card) const;
  // Puts the card back to what was shown of it once, while nothing is being entered. Says nothing. Where a
  // reference file cannot be read nothing has changed.
  void show(const Shown& card);

  // Every control of the card from the draft. The fields must be empty. Says nothing, whatever codes the
  // record holds.
  void ChargerAidant();
  // The draft with what the controls hold; its lines are in it already.
  card::Draft entered() const;
  // The box that shows a field as it is; null: it is shown otherwise.
  screen::TextControl* box_of(const card::Field& field) const;
  // Every attribute of the draft, as it is saved.
  void ChargerDonnees();

  // The card has just been opened: changes are told by what it is now.
  void take_as_opened();
  // A line, or what a box holds, is otherwise than at the opening.
  bool modified() const { return !is_shown(opened_); }

 private:
  void load_options();
  void show_activities(const std::vector<card::ActivityText>& activities);
  void load_amendments();
  void load_end_reason();
  void load_establishment();
  std::string amount(const card::Draft& card, const card::Field& field) const;
  std::vector<std::string> entries() const;
  void show_entries(const std::vector<std::string>& entries);
  void show_entry(screen::TextControl& box, const std::string& text);
  void load_entry(screen::ComboBox& box, const card::Field& field);
  void load_charge();

  card::CardScreen& ui_;
  card::CardState& card_;
  entry::UtilSaisie& entry_;
  reference::ReferenceLists& lists_;
  amendments::AmendmentLines& amendments_;
  // Boxes that show their field as it is, and those that show it as the entry utility formats amounts.
  std::vector<std::pair<screen::TextControl*, card::Field>> fields_, shares_;
  std::vector<screen::TextControl*> boxes_;  // of the card; those of its lines are their own
  std::vector<screen::OptionButton*> options_;
  Shown opened_;
};

}  // namespace velanor::commands
