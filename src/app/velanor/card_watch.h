// What the window tells of the card in hand: whose it is, and whether it holds what is not saved.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "card/screen/card_screen.h"
#include "velanor/record.h"
#include "velanor/screen.h"

namespace velanor::app {

// Compares what the screen says after each act with what it said when the card was opened, so that a
// change taken back is no change. The screen and the record must outlive it.
class CardWatch {
 public:
  // `working` gives the working record of the card.
  CardWatch(screen::Screen& screen, std::function<const store::DbRecord&()> working);

  // To be called after each act of the user.
  void look();

  bool card_open() const;
  // "99998 MARTIN JEANNE"; "Nouvelle fiche" as long as it has no name; "" when no card is open.
  std::string title() const;
  bool modified() const;

 private:
  // Controls that hold something only while a line is being entered.
  struct Entry {
    std::function<bool()> open;
    std::function<std::vector<std::string>()> texts;
    bool was_open = false;
    std::vector<std::string> at_opening;
  };
  std::vector<std::string> contents() const;
  std::string key() const;
  void add_entries();

  screen::Screen& screen_;
  card::CardScreen& card_;
  std::function<const store::DbRecord&()> working_;
  std::string opened_;  // key of the card that was open at the last look
  std::vector<std::string> at_opening_;
  std::vector<Entry> entries_;
};

}  // namespace velanor::app
