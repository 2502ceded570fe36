#include "card/commands/validation.h"

#include <utility>

#include "card/record/record_layout.h"
#include "control/session/years.h"
#include "entry/decimal.h"

namespace velanor::commands {

screen::Control* Validation::control_of(const card::Field& field) const {
  const std::pair<card::Field, screen::Control*> kControls[] = {
      {card::kName, &ui_.Txt_NomAidant},
      {card::kEstablishment, &ui_.Txt_CodEtab},
      {card::kEstablishmentHours, &ui_.Txt_HorMensEtab},
      {card::kAgreement, &ui_.Txt_ConvCol},
      {card::kSector, &ui_.Txt_Secteur},
      {card::kTown, &ui_.Cbo_Com},
      {card::kContractStart, &ui_.Txt_DatDeb},
      {card::kActivity, &ui_.Cmd_AjAct},
      {card::kShare, &ui_.Lst_Activites},
      // The same button as for the activities, deliberately.
      {card::kEffective, &ui_.Cmd_AjAct},
      {card::kProfile1, &ui_.Txt_Profil1},
      {card::kExemptedHours, &ui_.Txt_HresExo},
      {card::kContractEnd, &ui_.Txt_DatFin},
      {card::kEndReason, &ui_.Cbo_MotifFin},
  };
  for (const auto& [own, control] : kControls) {
    if (own == field) return control;
  }
  return nullptr;
}

void Validation::VerifZone() {
  const auto reference = entry::parse_decimal(control::reference_date(procedure_), 0).value_or(0);
  const card::Draft card = record_.entered();
  const auto fault = card::first_fault(card.record(), card.reading().codec, reference);
  if (!fault) return;
  screen_.refuse(fault->sentence());
  card_.Erreur = true;
  screen::Control* control = control_of(fault->field);
  auto* box = dynamic_cast<screen::TextControl*>(control);
  if (box && fault->is_a_wrong_value) box->set_text({});
  if (control) ui_.set_focus(*control);
}

}  // namespace velanor::commands
