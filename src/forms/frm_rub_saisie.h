// The form that lists and edits the payroll items of one amendment.
#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "card/screen/card_state.h"
#include "control/session/procedure.h"
#include "forms/frm_saisie_hres.h"
#include "forms/item_catalogue.h"
#include "forms/item_template.h"

namespace velanor::forms {

class ItemScreen : public screen::Form {
 public:
  ItemScreen() : Form("Frm_RubSaisie", "Détails des rubriques de saisie") {
    tables = {{{&Lst_Code, &Etq_Code, &Txt_Code},
               {&Lst_LibRub, &Etq_LibRub, &Cbo_LibRub},
               {&Lst_Base, &Etq_Base, &Txt_Base, true},
               {&Lst_Taux, &Etq_Taux, &Txt_Taux, true},
               {&Lst_Montant, &Etq_Montant, &Txt_Montant, true}}};
  }

  screen::Label Etq_Aidant{*this, {.name = "Etq_Aidant", .caption = "Aidant : "}};
  screen::Label Etq_Code{*this, {.name = "Etq_Code", .caption = "Code"}};
  screen::Label Etq_LibRub{*this, {.name = "Etq_LibRub", .caption = "Libellé rubrique"}};
  screen::Label Etq_Base{*this, {.name = "Etq_Base", .caption = "Base"}};
  screen::Label Etq_Taux{*this, {.name = "Etq_Taux", .caption = "Taux"}};
  screen::Label Etq_Montant{*this, {.name = "Etq_Montant", .caption = "Montant"}};
  screen::ListBox Lst_Code{*this, {.name = "Lst_Code"}};
  screen::ListBox Lst_LibRub{*this, {.name = "Lst_LibRub"}};
  screen::ListBox Lst_Base{*this, {.name = "Lst_Base"}};
  screen::ListBox Lst_Taux{*this, {.name = "Lst_Taux"}};
  screen::ListBox Lst_Montant{*this, {.name = "Lst_Montant"}};
  screen::ScrollBar Bdv_Detail{*this, {.name = "Bdv_Detail"}};
  screen::TextBox Txt_Code{*this, {.name = "Txt_Code", .max_length = card::kItemCode.length}};
  screen::ComboBox Cbo_LibRub{*this, {.name = "Cbo_LibRub"}};
  screen::TextBox Txt_Base{*this, {.name = "Txt_Base", .max_length = card::kItemBase.length}};
  screen::TextBox Txt_Taux{*this, {.name = "Txt_Taux", .max_length = card::kItemRate.length}};
  screen::TextBox Txt_Montant{*this, {.name = "Txt_Montant", .max_length = card::kItemAmount.length}};
  screen::CommandButton Cmd_OK{*this, {.name = "Cmd_OK", .caption = "OK"}};
  screen::CommandButton Cmd_Annuler{*this, {.name = "Cmd_Annuler", .caption = "Annuler"}};
  screen::CommandButton Cmd_Ajouter{*this, {.name = "Cmd_Ajouter", .caption = "Ajouter"}};
  screen::CommandButton Cmd_Supprimer{*this, {.name = "Cmd_Supprimer", .caption = "Supprimer"}};
  screen::CommandButton Cmd_SaisieAuto{*this, {.name = "Cmd_SaisieAuto", .caption = "Saisie Automatique"}};
  screen::CommandButton Cmd_Retour{*this, {.name = "Cmd_Retour", .caption = "Retour"}};

  // The parallel columns in the order code, label, base, rate, amount.
  std::array<screen::ListBox*, 5> columns() {
    return {&Lst_Code, &Lst_LibRub, &Lst_Base, &Lst_Taux, &Lst_Montant};
  }
  // Those of the figures, and the boxes below them, in the order of card::kItemFigures.
  std::array<screen::ListBox*, card::kItemFigures.size()> figure_lists() {
    return std::to_array({&Lst_Base, &Lst_Taux, &Lst_Montant});
  }
  std::array<screen::TextBox*, card::kItemFigures.size()> figure_boxes() {
    return std::to_array({&Txt_Base, &Txt_Taux, &Txt_Montant});
  }
  // The entry line, and what it reads, in the order of the columns.
  std::array<screen::TextControl*, 5> entry_controls() {
    return {&Txt_Code, &Cbo_LibRub, &Txt_Base, &Txt_Taux, &Txt_Montant};
  }
  std::array<std::string, 5> entered() const {
    return {Txt_Code.text(), Cbo_LibRub.text(), Txt_Base.text(), Txt_Taux.text(), Txt_Montant.text()};
  }
};

// What the opener hands to the form.
struct ItemContext {
  std::string effective_date;       // of the amendment, as shown
  std::string employee;             // code and name
  std::string period;               // budget year
  std::string establishment_hours;  // monthly, as shown
  std::string agreement;            // collective agreement code
  std::string grouping;             // budget grouping code
  bool administrative = false;      // staff kind
  int amendment = 0;                // from 1
  bool ModifAutorisee = false;
  bool SaisieAutoBloquee = true;
};

// Works on the draft of the card; nothing here reaches the database.
class Frm_RubSaisie {
 public:
  Frm_RubSaisie(card::CardState& card, const control::Procedure& procedure, entry::UtilSaisie& entry,
                Frm_SaisieHres& hours, screen::Screen& screen);

  ItemScreen& ui() { return ui_; }
  // Opens the form; `closed` runs when it has gone.
  void open(const ItemContext& context, std::function<void()> closed);

  bool is_open() const { return screen_.is_open(ui_); }
  // An item is under edit and reads otherwise than when its entry began; confirmed items are in the draft.
  bool modified() const;
  // Closes the form, if it is open, with nothing of this visit kept.
  void give_up();

 private:
  void Form_Load();
  bool Form_Unload() const { return FermetureAutorisee; }
  void Remplir_RubSaisie();
  void Afficher_Donnees();
  void Descendre_Liste();
  void Monter_Liste();
  void Griser_Liste();
  void Degriser_Liste();
  void Vider_Texte();
  void Tri();

  void Cbo_LibRub_Change();
  void Cbo_LibRub_Click();
  void Cbo_LibRub_LostFocus();
  void Bdv_Detail_Change();
  void Txt_Code_Change();
  void Txt_Code_KeyPress(screen::Key& key);
  void Txt_Code_LostFocus();
  void Txt_Base_KeyPress(screen::Key& key) { filter_number(ui_.Txt_Base, card::kItemBase, key); }
  void Txt_Taux_KeyPress(screen::Key& key) { filter_number(ui_.Txt_Taux, card::kItemRate, key); }
  void Txt_Montant_KeyPress(screen::Key& key) { filter_number(ui_.Txt_Montant, card::kItemAmount, key); }
  void Txt_Base_LostFocus() { format_number(ui_.Txt_Base, card::kItemBase); }
  void Txt_Taux_LostFocus() { format_number(ui_.Txt_Taux, card::kItemRate); }
  void Txt_Montant_LostFocus() { format_number(ui_.Txt_Montant, card::kItemAmount); }
  void Cmd_Ajouter_Click();
  void Cmd_OK_Click();
  void Cmd_Annuler_Click();
  void Cmd_Supprimer_Click();
  void Cmd_Retour_Click();
  void Cmd_SaisieAuto_Click();

  void bind_columns();
  void filter_number(screen::TextBox& box, const card::Field& figure, screen::Key& key);
  void format_number(screen::TextBox& box, const card::Field& figure);
  void start_item(int row);
  void allow_figures(int row);
  void allow(screen::TextBox& box, bool on);
  bool edit_line_is_valid();
  bool refuse(std::string_view message, screen::Control& caret);
  std::string column_text(std::size_t figure, std::string_view text) const;
  // A line as the columns show it.
  card::ItemText in_columns(card::ItemText line) const;
  card::ItemText filled_line(card::ItemText line) const;
  // The edit line; a figure that reads as before is stored as before.
  card::ItemText edit_line();
  void add_line(int position, card::ItemText line);
  void show_line(int position);
  void remove_line(int index);
  void abandon_edit_line();
  void back_to_browsing();
  void write_grid();
  bool hours_accepted();
  void fill_from(const store::DbRecord& record, const Hours& hours);
  void unload();

  ItemScreen ui_;
  card::CardState& card_;
  const control::Procedure& procedure_;
  entry::UtilSaisie& entry_;
  Frm_SaisieHres& hours_;
  screen::Screen& screen_;

  std::vector<card::ItemText> lines_;  // of the grid, as the columns show them
  int edited_line_ = -1;               // index of the line under edit; -1: none, or a new one
  std::array<std::string, 5> begun_;   // the edit line as its entry began
  std::string item_code_;              // the item that the figures in the edit line were typed for
  ItemContext context_;
  bool TauxParDefaut = false;  // a line is being added
  bool FermetureAutorisee = false;
  int PositionInsertion = 0;
  ItemCatalogue catalogue_;
  card::Draft copy_;  // the card as it was when the form opened
};

}  // namespace velanor::forms
