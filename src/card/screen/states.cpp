#include "card/screen/states.h"

#include "card/record/element.h"
#include "text/utf8.h"

namespace velanor::card {

void CardStates::enable(Group group, bool on) {
  for (screen::Control* control : ui_.group(group)) control->set_enabled(on);
}

void CardStates::empty(Group group) {
  for (screen::Control* control : ui_.group(group)) {
    if (auto* combo = dynamic_cast<screen::ComboBox*>(control)) combo->set_index(-1);
    if (auto* text = dynamic_cast<screen::TextControl*>(control)) text->set_text({});
    if (auto* list = dynamic_cast<screen::ListBox*>(control)) list->clear();
    if (auto* option = dynamic_cast<screen::OptionButton*>(control)) option->set_value(false);
  }
}

bool CardStates::year_is_open() const {
  return !card_.read_only &&
         years_.is_latest(text::trim(ui_.Txt_Asso.text()), text::trim(ui_.Cbo_Periode.text()));
}

void CardStates::empty_fields() {
  for (Group group : {Group::kEstablishmentBoxes, Group::kContractKey, Group::kEmployee, Group::kEndReasonBox,
                      Group::kActivityLine, Group::kActivityEntry, Group::kAmendmentList,
                      Group::kAmendmentEntry, Group::kMutual})
    empty(group);
  ui_.Bdv_Detail.set_max(0);
  ui_.Bdv_Detail.set_visible(false);
}

void CardStates::start() {
  GriserOng();
  enable(Group::kDisplay, false);
  ui_.Txt_NomAidant.set_enabled(false);
  ui_.Txt_NomAidant.set_visible(false);
  ui_.Cmd_Copier.set_enabled(false);
  enable(Group::kChoice, false);
  // Until an agreement shows it.
  ui_.Txt_DateBranche.set_visible(false);
  ui_.Etq_DepBranche.set_visible(false);
}

void CardStates::GriserOng() {
  empty_fields();
  enable_establishment(false);
  enable_employee(false);
  for (Group group :
       {Group::kEndReasonBox, Group::kActivityLine, Group::kActivityEntry, Group::kAmendmentList,
        Group::kAmendmentEntry, Group::kAmendmentFrame, Group::kAmendmentButton})
    enable(group, false);
  ui_.Bdv_Detail.set_enabled(true);
  ui_.Cdr_Mutuelle.set_enabled(false);
  disable_commands();
  ui_.Cmd_Ajout.set_enabled(false);
  ui_.Cmd_Sortir.set_enabled(true);
}

void CardStates::DeGriserOng() {
  ui_.Cmd_Sortir.set_enabled(false);
  ui_.Cmd_Ajout.set_enabled(false);
  ui_.Cbo_Periode.set_enabled(false);
  ui_.Cmd_Annul.set_enabled(true);
  if (!year_is_open()) return;
  ui_.Cmd_OK.set_enabled(true);
  ui_.Txt_Aidant.set_enabled(false);
  ui_.Cbo_Aidant.set_visible(false);
  ui_.Cbo_Aidant.set_enabled(false);
  ui_.Txt_NomAidant.set_visible(true);
  ui_.Txt_NomAidant.set_enabled(true);
  enable_establishment(true);
  enable_employee(true);
  enable_activities(true);
  enable(Group::kAmendmentFrame, true);
  enable_amendment_lists(true);
  ui_.Cdr_Mutuelle.set_enabled(true);
  ui_.Cmd_Supp.set_enabled(true);
  ui_.Cbo_Grille.set_enabled(false);
  ui_.Txt_Categorie.set_enabled(false);
  ui_.Cbo_NouvMes.set_enabled(false);
}

void CardStates::enable_establishment(bool on) {
  const bool no_choice =
      !card_.only_establishment.empty() && ui_.Txt_CodEtab.text() == card_.only_establishment;
  enable(Group::kEstablishmentBoxes, on && !no_choice);
}

void CardStates::enable_employee(bool on) {
  enable(Group::kContractKey, on);
  enable(Group::kEmployee, on);
  ui_.Cbo_MotifFin.set_enabled(on && !ui_.Txt_DatFin.is_empty());
}

void CardStates::GriserDonnees() {
  ui_.Txt_NomAidant.set_enabled(false);
  enable_establishment(false);
  enable_employee(false);
}

void CardStates::DeGriserDonnees() {
  ui_.Txt_NomAidant.set_enabled(true);
  enable_establishment(true);
  enable_employee(true);
  // A stored card without them can be completed.
  const bool agreement = card_.Creation || element(card_.draft.record(), kAgreement).empty();
  ui_.Txt_ConvCol.set_enabled(agreement);
  ui_.Cbo_Convcol.set_enabled(agreement);
  ui_.Txt_DatDeb.set_enabled(card_.Creation || element(card_.draft.record(), kContractStart).empty());
  ui_.Cbo_EtudeAidant.set_enabled(false);
}

// The bar moves the selection, so it goes with the lists.
void CardStates::enable_amendment_lists(bool on) {
  enable(Group::kAmendmentList, on);
  ui_.Bdv_Detail.set_enabled(on);
}

void CardStates::GriserDetail() {
  enable_amendment_lists(false);
  ui_.Cmd_AjDetail.set_enabled(false);
  ui_.Cdr_Detail.set_enabled(false);
}

void CardStates::DeGriserDetail() {
  ui_.Cdr_Detail.set_enabled(true);
  const bool grid_label = ui_.Etq_Grille.enabled();
  enable_amendment_lists(true);
  ui_.Etq_Grille.set_enabled(grid_label);  // the one label that this routine leaves alone
  ui_.Cmd_AjDetail.set_enabled(true);
}

void CardStates::enable_activities(bool on) { enable(Group::kActivityLine, on); }

void CardStates::enable_entity(bool on) {
  enable(Group::kMenu, on);
  ui_.Txt_Asso.set_enabled(on);
  ui_.Cbo_Asso.set_enabled(on);
}

void CardStates::empty_amendment_entry() {
  empty(Group::kAmendmentEntry);
  enable(Group::kAmendmentEntry, false);
}

void CardStates::update_add_amendment() {
  const bool ready = !ui_.Txt_ConvCol.is_empty() && !ui_.Txt_DatDeb.is_empty();
  ui_.Cmd_AjDetail.set_enabled(ready && year_is_open());
}

void CardStates::suspend_commands() {
  disable_commands();
  ui_.Cmd_Copier.set_enabled(false);
}

void CardStates::resume_commands() {
  ui_.Cmd_Supp.set_enabled(!card_.Creation);
  ui_.Cmd_Copier.set_enabled(!card_.Creation);
  ui_.Cmd_OK.set_enabled(true);
  ui_.Cmd_Annul.set_enabled(true);
}

void CardStates::disable_commands() {
  ui_.Cmd_Supp.set_enabled(false);
  ui_.Cmd_OK.set_enabled(false);
  ui_.Cmd_Annul.set_enabled(false);
}

}  // namespace velanor::card
