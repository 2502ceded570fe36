// What the random user turns to next, and what it types.
#include "card/record/element.h"
#include "monkey/monkey.h"

namespace velanor::test {
namespace {

using Steps = std::vector<const char*>;

const Steps kHours{"Txt_NbHresTrav", "Txt_NbHresPayees", "Cmd_OK", "Cmd_OK", "Cmd_OK", "Cmd_Annuler"};
const Steps kItem{"Cbo_LibRub", "Txt_Code", "Txt_Base",      "Txt_Taux",   "Txt_Montant",
                  "Cmd_OK",     "Cmd_OK",   "Cmd_Supprimer", "Bdv_Detail", "Cmd_OK"};
const Steps kItems{"Cmd_Ajouter", "Cmd_Ajouter", "Lst_Code", "Cmd_SaisieAuto", "Cmd_Retour", "Bdv_Detail"};
const Steps kLine{"Txt_DatEffet", "Cbo_Qualif",   "Cbo_Qualif",   "Cbo_Grille",     "Txt_DatDepGrille",
                  "Txt_TxHor",    "Cmd_OkDetail", "Cmd_OkDetail", "Txt_DureMens",   "Txt_Categorie",
                  "Bdv_Detail",   "Cmd_Copier",   "Cmd_Detail",   "Cmd_SuppDetail", "Cmd_OkDetail"};
const Steps kLineChange{"Txt_DatEffet", "Txt_DatEffet", "Txt_DureMens", "Txt_DureMens",
                        "Cbo_Qualif",   "Cbo_Grille",   "Cmd_Detail",   "Cmd_SuppDetail"};
const Steps kActivity{"Cbo_Activites", "Txt_Pourc", "Cmd_OkAct"};
const Steps kCard{"Cmd_OK",       "Cmd_OK",       "Cmd_AjDetail",      "Cmd_AjDetail",    "Lst_DatEffet",
                  "Lst_DatEffet", "Cmd_Detail",   "Cmd_AjAct",         "Txt_CodEtab",     "Cbo_Etab",
                  "Cbo_Secteur",  "Cbo_Com",      "Txt_DatDeb",        "Cbo_Profil1",     "Txt_NomAidant",
                  "Txt_HresExo",  "Cbo_MotifFin", "Lst_Activites",     "Cmd_Copier",      "Cmd_SuppDetail",
                  "Bdv_Detail",   "Txt_PlafSecu", "Txt_MutSalContrat", "Txt_HorMensEtab", "Cmd_Supp"};
const Steps kAfterDeletion{"Cmd_Copier", "Txt_Asso", "Cbo_Asso", "Cbo_Periode", "Cmd_Copier"};

}  // namespace

const char* Monkey::first_empty(std::initializer_list<const char*> boxes, const char* otherwise) {
  for (const char* name : boxes) {
    const screen::Control& box = office_->control(name);
    const auto* combo = dynamic_cast<const screen::ComboBox*>(&box);
    const bool choice = !combo || combo->count() > 0;
    if (choice && office_->usable(box) && dynamic_cast<const screen::TextControl&>(box).is_empty())
      return name;
  }
  return otherwise;
}

bool Monkey::has_line_without_items() const {
  for (int i = 1; i <= office_->ui.Lst_DatEffet.count(); ++i) {
    if (element(office_->component.card_in_hand(), card::kItemCode, i).empty()) return true;
  }
  return false;
}

const char* Monkey::missing_step_of_form() {
  const forms::ItemScreen& form = *item_form(*office_);
  if (entering_item(form))
    return first_empty({"Cbo_LibRub", "Txt_Base", "Txt_Taux", "Txt_Montant"},
                       once_in(3) ? any(kItem) : "Cmd_OK");
  return form.Lst_Code.count() == 0 || once_in(4) ? "Cmd_Ajouter" : once_in(2) ? "Lst_Code" : "Cmd_Retour";
}

const char* Monkey::missing_step() {
  const card::CardScreen& ui = office_->ui;
  if (entering_amendment(*office_)) {
    return first_empty({"Txt_DatEffet", "Cbo_Qualif", "Cbo_Grille", "Txt_DureMens"},
                       once_in(3)   ? any(kLineChange)
                       : once_in(5) ? any(kLine)
                                    : "Cmd_OkDetail");
  }
  if (entering_activity(*office_)) return first_empty({"Cbo_Activites", "Txt_Pourc"}, "Cmd_OkAct");
  if (ui.Lst_Activites.count() == 0 && once_in(2)) return "Cmd_AjAct";
  if (ui.Lst_DatEffet.count() == 0 && once_in(2)) return "Cmd_AjDetail";
  if (has_line_without_items()) return once_in(2) ? "Lst_DatEffet" : "Cmd_Detail";
  return first_empty({"Txt_NomAidant", "Txt_CodEtab", "Txt_HorMensEtab", "Cbo_Convcol", "Cbo_Secteur",
                      "Cbo_Com", "Txt_DatDeb", "Cbo_Profil1", "Txt_HresExo"},
                     once_in(4) ? "Cmd_OK" : any(kCard));
}

const char* Monkey::next_step_of_form() {
  if (office_->component.screen().top().name() == "Frm_SaisieHres") return any(kHours);
  if (office_->control("Cmd_SaisieAuto").usable() && once_in(2)) return "Cmd_SaisieAuto";
  if (careful_) return missing_step_of_form();
  return any(entering_item(*item_form(*office_)) ? kItem : kItems);
}

const char* Monkey::next_step_of_browsing() {
  const card::CardScreen& ui = office_->ui;
  if (ui.Cmd_Copier.enabled() && below(3) > 0) return any(kAfterDeletion);
  if (ui.Txt_Asso.is_empty()) return "Cbo_Asso";
  if (ui.Cbo_Periode.index() != 0 && below(4) > 0) return "Cbo_Periode";
  return once_in(20) ? "Cbo_Periode" : once_in(4) ? "Cmd_Ajout" : "Cbo_Aidant";
}

const char* Monkey::next_step() {
  card::CardScreen& ui = office_->ui;
  if (&office_->component.screen().top() != &ui) return next_step_of_form();
  // Where the caret was sent.
  const screen::Control* const focus = ui.focus();
  if (focus && dynamic_cast<const screen::TextControl*>(focus) && once_in(4)) return focus->name().c_str();
  if (careful_ && card_open(*office_) && refused_ <= 3) return missing_step();
  if (entering_amendment(*office_)) return any(kLine);
  if (entering_activity(*office_)) return any(kActivity);
  // A card that cannot be saved any more is given up for another.
  if (card_open(*office_)) return refused_ > 3 && once_in(2) ? "Cmd_Annul" : any(kCard);
  refused_ = 0;
  careful_ = once_in(2);
  return next_step_of_browsing();
}

// Mostly a control that answers, at times one that does not, and must not mind.
screen::Control& Monkey::choose() {
  const auto& all = office_->component.screen().top().controls();
  screen::Control* control = below(careful_ ? 20 : 3) > 0 ? &office_->control(next_step()) : any(all);
  for (int tries = 0; tries < 30 && !office_->usable(*control); ++tries) control = any(all);
  const bool bar = dynamic_cast<screen::ScrollBar*>(control) && office_->usable(*control);
  if (!control->takes_focus() && !bar && below(8) > 0) return choose();
  // Leaving the program, deleting and giving up end what others build: seldom.
  const std::string& name = control->name();
  const bool given_up = name == "Cmd_Annul" && refused_ > 3;
  const bool ends = name == "Cmd_Sortir" || name == "Cmd_Supp" || name == "Cmd_Annul";
  if (ends && !given_up && below(name == "Cmd_Supp" ? 3 : 10) > 0) return choose();
  return *control;
}

std::string Monkey::word_for(const std::string& name) {
  static const std::vector<std::string> kDates{"01/01/2026", "1/6/26",    "010925",     "31/12/2025",
                                               "15 3 24",    "99/99/99",  "01/10/2021", "30092021",
                                               "5",          "29/02/2024"};
  static const std::vector<std::string> kNumbers{"0",       "100",    "12,5", "33.33", ",",     ",",
                                                 "9999999", "151,67", "50",   "0,01",  "100,00"};
  static const std::vector<std::string> kCodes{"001", "1", "02",    "01",  "06", "03",
                                               "999", "5", "00010", "010", "3",  "009"};
  static const std::vector<std::string> kWords{"é", "Martin", "ALBI", "\"]", "[x", "Paris", " ", "Łódź"};
  if (careful_ && name == "Txt_Pourc") return "100";
  if (!careful_ && once_in(12)) return any(kWords);
  if (name.find("Dat") != std::string::npos && (careful_ || below(3) > 0)) {
    return std::to_string(1 + below(28)) + "/" + std::to_string(1 + below(12)) + "/202" +
           std::to_string(once_in(4) ? below(4) : 4 + below(4));
  }
  if (name.find("Dat") != std::string::npos) return any(kDates);
  for (const char* code : {"Asso", "Aidant", "Conv", "Secteur", "Profil", "ChargMut", "Etab", "Code"}) {
    if (name.find(code) != std::string::npos && name != "Txt_HorMensEtab") return any(kCodes);
  }
  return name.rfind("Txt_", 0) == 0 ? any(kNumbers) : any(kWords);
}

}  // namespace velanor::test
