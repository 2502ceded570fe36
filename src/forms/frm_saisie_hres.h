// The form that asks for one number of hours: worked or paid.
#pragma once

#include <functional>
#include <string>

#include "entry/fields/fields.h"
#include "velanor/screen.h"

namespace velanor::forms {

// What the form hands back.
struct Hours {
  std::string NbHeures;    // as typed and formatted, or "Annule"
  std::string TypeHeures;  // "T" worked, "P" paid
  bool cancelled() const { return NbHeures == "Annule"; }
};

class HoursScreen : public screen::Form {
 public:
  HoursScreen() : Form("Frm_SaisieHres", "Détails des rubriques de saisie") {}

  screen::Label Etq_Aidant{*this, {.name = "Etq_Aidant", .caption = "Aidant : "}};
  screen::Label Etq_NbHresTrav{*this, {.name = "Etq_NbHresTrav", .caption = "Nombre d'heures travaillées "}};
  screen::TextBox Txt_NbHresTrav{*this,
                                 {.name = "Txt_NbHresTrav", .label = &Etq_NbHresTrav, .max_length = 6}};
  screen::Label Label2{*this, {.name = "Label2", .caption = "Nombre d'heures payées"}};
  screen::TextBox Txt_NbHresPayees{*this, {.name = "Txt_NbHresPayees", .label = &Label2, .max_length = 6}};
  screen::CommandButton Cmd_OK{*this, {.name = "Cmd_OK", .caption = "OK"}};
  screen::CommandButton Cmd_Annuler{*this, {.name = "Cmd_Annuler", .caption = "Annuler"}};
};

class Frm_SaisieHres {
 public:
  Frm_SaisieHres(entry::Fields& fields, screen::Screen& screen);

  HoursScreen& ui() { return ui_; }
  // Opens the form for an employee; `closed` gets what was typed.
  void open(const std::string& employee, std::function<void(const Hours&)> closed);

  bool is_open() const { return screen_.is_open(ui_); }
  // It is open, and something was typed.
  bool modified() const;
  // Closes it, if it is open, as "Annuler" does.
  void give_up();

 private:
  void Txt_NbHresPayees_KeyPress(screen::Key& key) { hours_key(ui_.Txt_NbHresPayees, key); }
  void Txt_NbHresTrav_KeyPress(screen::Key& key) { hours_key(ui_.Txt_NbHresTrav, key); }
  void hours_key(screen::TextBox& box, screen::Key& key);
  void Cmd_OK_Click();
  void Cmd_Annuler_Click();

  HoursScreen ui_;
  screen::Screen& screen_;
  Hours hours_;
};

}  // namespace velanor::forms
