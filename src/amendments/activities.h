// The split of the employee's time between activities, line by line.
#pragma once

#include <string>
#include <utility>

#include "card/screen/states.h"
#include "reference/lists.h"
#include "velanor/screen.h"

namespace velanor::amendments {

class ActivityLines {
 public:
  ActivityLines(card::CardScreen& ui, card::CardState& card, card::CardStates& states,
                reference::ReferenceLists& lists, screen::Screen& screen)
      : ui_(ui), card_(card), states_(states), lists_(lists), screen_(screen) {}

  void bind();

  // A line is under edit and reads otherwise than when its entry began.
  bool modified() const { return enters() && entered() != begun_; }
  // Ends the entry of a line, if there is one.
  void give_up();
  bool enters() const { return card_.AjoutActivite || changed_line_ >= 0; }
  // -1: none, or a new one.
  int edited_line() const { return changed_line_; }

 private:
  void Cmd_AjAct_Click();
  void Cmd_OkAct_Click();
  void Cmd_AnnulAct_Click();
  void Lst_Activites_DblClick();
  void Cbo_Activites_Click();

  bool entry_is_valid();
  void add_line();
  void change_line();
  std::pair<std::string, std::string> entered() const {
    return {ui_.Cbo_Activites.text(), ui_.Txt_Pourc.text()};
  }
  void begin_entry();
  void end_entry();

  card::CardScreen& ui_;
  card::CardState& card_;
  card::CardStates& states_;
  reference::ReferenceLists& lists_;
  screen::Screen& screen_;
  int changed_line_ = -1;
  std::pair<std::string, std::string> begun_;  // the line under edit as its entry began
  bool no_figure_ = false;                     // what was typed as the share held no digit
};

}  // namespace velanor::amendments
