#include "card/commands/validation.h"

#include <algorithm>
#include <utility>

#include "card/record/amendment_columns.h"
#include "card/record/record_layout.h"
#include "control/session/years.h"
#include "entry/decimal.h"

namespace velanor::commands {

screen::Control* Validation::control_of(const card::Field& field) const {
  const std::pair<card::Field, screen::Control*> kOthers[] = {
      {card::kEstablishment, &ui_.Txt_CodEtab},
      {card::kActivity, &ui_.Cmd_AjAct},
      {card::kShare, &ui_.Lst_Activites},
      // The same button as for the activities, deliberately.
      {card::kEffective, &ui_.Cmd_AjAct},
      {card::kEndReason, &ui_.Cbo_MotifFin},
  };
  for (const auto& [own, control] : kOthers) {
    if (own == field) return control;
  }
  return record_.box_of(field);
}

// Beside what is told of a card that is saved: there buttons are named, which begin an entry when they are
// pressed.
screen::Control* Validation::place_of(const card::Field& field) const {
  if (const auto column = card::column_of(field); column < card::kAmendmentColumns.size())
    return ui_.amendment_lists()[column];
  const bool item =
      std::find(card::kItemColumns.begin(), card::kItemColumns.end(), field) != card::kItemColumns.end();
  if (item) return &ui_.Lst_DatEffet;
  const std::pair<card::Field, screen::Control*> kOwn[] = {
      {card::kActivity, &ui_.Lst_Activites},
      {card::kContractType, ui_.Opt_CDD.value() ? &ui_.Opt_CDD : &ui_.Opt_CDI},
      {card::kStaffKind, ui_.Opt_Prod.value() ? &ui_.Opt_Prod : &ui_.Opt_Admin},
      {card::kBranchEntry, &ui_.Txt_DateBranche},
      {card::kContractNature, &ui_.Cbo_NatureContrat},
      {card::kEducation, &ui_.Cbo_EtudeAidant},
  };
  for (const auto& [own, control] : kOwn) {
    if (own == field) return control;
  }
  return control_of(field);
}

void Validation::VerifZone() {
  const auto reference = entry::parse_decimal(control::reference_date(procedure_), 0).value_or(0);
  const card::Draft card = record_.entered();
  const auto faults = card::faults_of(card.record(), card.reading().codec, reference);
  if (faults.empty()) return;
  const card::Fault& fault = faults.front();
  screen_.refuse(fault.sentence());
  card_.Erreur = true;
  screen::Control* control = control_of(fault.field);
  auto* box = dynamic_cast<screen::TextControl*>(control);
  if (box && fault.is_a_wrong_value) box->set_text({});
  if (control) ui_.set_focus(*control);
}

}  // namespace velanor::commands
