// The lines of the amendments frame. Line i (from 0) of every list is value i + 1 of the record's
// amendment attributes; lines stand in ascending order of effective date.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "amendments/grids.h"
#include "card/record/amendment_columns.h"
#include "card/screen/states.h"
#include "velanor/screen.h"

namespace velanor::amendments {

class AmendmentLines {
 public:
  // What the lines stand on. Keeps the references; their owners outlive this.
  struct Ground {
    card::CardScreen& ui;
    card::CardState& card;
    card::CardStates& states;
    CareerGrids& grids;
    reference::ReferenceLists& lists;
    entry::UtilSaisie& entry;
    screen::Screen& screen;
  };
  // `open_items` opens the payroll items of the current line and runs its argument when the form has
  // gone, with the monthly time that they make; nothing for staff whose time they do not make.
  using MonthlyTime = std::optional<std::string>;
  using OpenItems = std::function<void(std::function<void(const MonthlyTime&)>)>;
  AmendmentLines(const Ground& ground, OpenItems open_items)
      : on_(ground), open_items_(std::move(open_items)) {}

  void bind();

  // The lists show the amendments of a draft; where the store fails, those that they showed before.
  void show_all(const card::Draft& draft);
  // The scroll bar follows the number of lines.
  void size_scroll_bar();
  // The whole line becomes the selected one; -1: none.
  void select(int index);

  // A line is under edit and reads otherwise than when its entry began.
  bool modified() const;
  // Ends the entry of a line, if there is one, without a question.
  void give_up();
  bool enters() const { return on_.card.enters_amendment(); }
  // Puts the line under edit where it would stand if it were confirmed now; nothing where none is, or where
  // its date is not one that it could stand under. The draft is a copy of the card's.
  void put_entry(card::Draft& draft) const;
  // A line without payroll items gets those of the line before it. A sentence why not, or "".
  std::string repeat_items(int line);

 private:
  void Cmd_AjDetail_Click();
  void Cmd_OkDetail_Click();
  void Cmd_AnnulDetail_Click();
  void Cmd_SuppDetail_Click();
  void Cmd_Detail_Click();
  void Lst_DatEffet_Click();
  void Lst_DatEffet_DblClick();
  void Lst_DatDepGrille_Click();
  void Lst_Qualif_Click();
  void Lst_Grille_Click();
  void Lst_Categorie_Click();
  void Lst_NouvMes_Click();
  void Lst_TxHor_Click();
  void Lst_DureMens_Click();
  // A double click on any other column is one on the effective date.
  void Lst_DatDepGrille_DblClick() { Lst_DatEffet_DblClick(); }
  void Lst_Qualif_DblClick() { Lst_DatEffet_DblClick(); }
  void Lst_Grille_DblClick() { Lst_DatEffet_DblClick(); }
  void Lst_Categorie_DblClick() { Lst_DatEffet_DblClick(); }
  void Lst_NouvMes_DblClick() { Lst_DatEffet_DblClick(); }
  void Lst_TxHor_DblClick() { Lst_DatEffet_DblClick(); }
  void Lst_DureMens_DblClick() { Lst_DatEffet_DblClick(); }
  void SelListe();

  // The first check that fails speaks, moves the caret and leaves the entry open.
  bool entry_is_valid();
  bool date_is_valid();
  bool grid_or_rate_is_valid();
  bool category_is_valid();
  bool refuse(std::string_view message, screen::Control& caret);

  // The line that a command is about: the one under edit, else the one that is selected; -1: none.
  int line_in_hand() const;
  void begin_entry();
  void end_entry();
  // Fills an entry that has just begun; if that fails there is none.
  template <typename Fill>
  void fill_entry(Fill fill);
  card::AmendmentText entered_line() const;
  // Under another line's date.
  bool date_is_taken() const;
  int add_line();
  // Where a new line stands in a draft, and how.
  std::pair<int, card::AmendmentText> new_line(const card::Draft& draft) const;
  int change_line(const card::AmendmentText& line);
  // The lists get a line (or lose it), and show it.
  void insert_line(int position, const card::AmendmentText& line);
  void remove_line(int position);
  // What its items make of it, where they do.
  void take_monthly_time(int line, const MonthlyTime& monthly_time);
  std::int64_t day(std::string_view date) const;

  Ground on_;
  OpenItems open_items_;
  card::AmendmentText begun_;  // the line under edit as its entry began
};

}  // namespace velanor::amendments
