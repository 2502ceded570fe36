// What was confirmed on the card that is open, step by step, to be taken back and done again.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "card/commands/card_record.h"
#include "card/record/card_act.h"

namespace velanor::commands {

// A step is what differs between two moments at which nothing was being entered. What is entered is none yet.
// Steps end with the card.
class CardUndo {
 public:
  // Keeps the reference; `lead_to` puts the user before what a step has just changed.
  CardUndo(CardRecord& record, std::function<void(const card::CardAct&)> lead_to)
      : record_(record), lead_to_(std::move(lead_to)) {}

  // A card has come, or gone.
  void begin();
  void end();
  // Nothing is being entered now: what differs from the last such moment is a step, and nothing that was
  // taken back before can be done again.
  void note();

  // The card reads as at the last such moment.
  bool stand() const { return moments_.empty() || record_.is_shown(moments_[at_].shown); }
  // What one of its boxes holds does not.
  bool reads_otherwise(const screen::Control& box) const {
    return !moments_.empty() && record_.reads_otherwise(box, moments_[at_].shown);
  }
  // What would be taken back, and done again; "" where there is nothing.
  const std::string& undo_name() const;
  const std::string& redo_name() const;
  // The name of the step that `note` would make of what stands on the screen; "" where it is none.
  std::string pending_name() const;
  // False where there is nothing. What fails in the store leaves the card as the step has it, or as it was.
  bool undo();
  bool redo();

 private:
  struct Moment {
    CardRecord::Shown shown;
    card::Draft card;  // with what the boxes held
    std::string name;  // of the step that led here
  };
  Moment now() const { return {record_.shown(), record_.entered(), {}}; }
  std::string name_of(const card::Draft& card) const;
  bool go_to(std::size_t at);

  CardRecord& record_;
  std::function<void(const card::CardAct&)> lead_to_;
  std::vector<Moment> moments_;
  std::size_t at_ = 0;  // the one that is on the screen
};

}  // namespace velanor::commands
