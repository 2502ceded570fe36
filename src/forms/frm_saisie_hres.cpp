#include "forms/frm_saisie_hres.h"

#include "entry/decimal.h"
#include "entry/key_filters.h"

namespace velanor::forms {

Frm_SaisieHres::Frm_SaisieHres(entry::Fields& fields, screen::Screen& screen) : screen_(screen) {
  for (screen::TextBox* box : {&ui_.Txt_NbHresTrav, &ui_.Txt_NbHresPayees})
    fields.bind(entry::DecimalField{*box});
  ui_.Txt_NbHresPayees.key_press = [this](screen::Key& key) { Txt_NbHresPayees_KeyPress(key); };
  ui_.Txt_NbHresTrav.key_press = [this](screen::Key& key) { Txt_NbHresTrav_KeyPress(key); };
  ui_.Cmd_OK.clicked += [this] { Cmd_OK_Click(); };
  ui_.Cmd_Annuler.clicked += [this] { Cmd_Annuler_Click(); };
  ui_.cancel_buttons = {&ui_.Cmd_Annuler};
  // The close box gives up, as "Annuler" does.
  ui_.may_close = [this] {
    hours_.NbHeures = "Annule";
    return true;
  };
}

void Frm_SaisieHres::hours_key(screen::TextBox& box, screen::Key& key) {
  if (key.code == screen::Key::kEnter) box.set_text(entry::format_pattern(box.text(), 2));
  key.code = entry::filter_decimal_key(box.text(), key.code);
}

void Frm_SaisieHres::open(const std::string& employee, std::function<void(const Hours&)> closed) {
  hours_ = {};
  ui_.Etq_Aidant.set_caption("Aidant : " + employee);
  ui_.Txt_NbHresTrav.set_text({});
  ui_.Txt_NbHresPayees.set_text({});
  ui_.set_focus(ui_.Txt_NbHresTrav);
  screen_.open(ui_, [this, closed = std::move(closed)] { closed(hours_); });
}

void Frm_SaisieHres::Cmd_OK_Click() {
  const std::string& worked = ui_.Txt_NbHresTrav.text();
  const std::string& paid = ui_.Txt_NbHresPayees.text();
  if (worked.empty() == paid.empty()) {
    screen_.refuse("Vous devez renseigner soit les heures travaillées soit les heures payées.");
    return ui_.set_focus(ui_.Txt_NbHresTrav);
  }
  hours_ = worked.empty() ? Hours{paid, "P"} : Hours{worked, "T"};
  screen_.close(ui_);
}

void Frm_SaisieHres::Cmd_Annuler_Click() {
  hours_.NbHeures = "Annule";
  screen_.close(ui_);
}

bool Frm_SaisieHres::modified() const {
  return is_open() && !(ui_.Txt_NbHresTrav.is_empty() && ui_.Txt_NbHresPayees.is_empty());
}

void Frm_SaisieHres::give_up() {
  if (is_open()) Cmd_Annuler_Click();
}

}  // namespace velanor::forms
