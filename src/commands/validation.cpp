#include "commands/validation.h"

#include <algorithm>

#include "card/activity_line.h"
#include "card/record_layout.h"
#include "card/years.h"
#include "entry/decimal.h"
#include "reference/lists.h"
#include "text/utf8.h"

namespace velanor::commands {

std::vector<Validation::Check> Validation::checks() {
  using V = Validation;
  card::CardScreen& ui = ui_;
  return {
      {&V::name_missing, "Le nom du salarié est obligatoire.", &ui.Txt_NomAidant},
      {&V::establishment_missing, "L'établissement est obligatoire.", &ui.Txt_CodEtab},
      {&V::hours_missing, "L'horaire mensuel de l'établissement est obligatoire.", &ui.Txt_HorMensEtab},
      {&V::agreement_missing, "La convention collective est obligatoire.", &ui.Txt_ConvCol},
      {&V::sector_missing, "Le secteur est obligatoire.", &ui.Txt_Secteur},
      {&V::town_missing, "La commune est obligatoire.", &ui.Cbo_Com},
      {&V::start_missing, "La date de début de contrat est obligatoire.", &ui.Txt_DatDeb},
      {&V::activity_missing, "Au moins une activité est obligatoire.", &ui.Cmd_AjAct},
      {&V::shares_differ_from_100, "Le total de la répartition des activités est différent de 100.",
       &ui.Lst_Activites},
      // The same button as for the activities, deliberately.
      {&V::amendment_missing, "Une date d'effet est obligatoire.", &ui.Cmd_AjAct},
      {&V::profile_missing, "Le profil de paie est obligatoire.", &ui.Txt_Profil1},
      {&V::exemption_above_100, "Le pourcentage des heures exonérées ne peut être supérieur à 100.",
       &ui.Txt_HresExo, &ui.Txt_HresExo},
      {&V::exemption_missing, "Le pourcentage des heures exonérées est obligatoire.", &ui.Txt_HresExo},
      {&V::ends_before_start, "La date de fin de contrat doit être supérieure ou égale à la date de début.",
       &ui.Txt_DatFin, &ui.Txt_DatFin},
      {&V::end_reason_missing, "Un motif de fin de contrat est obligatoire.", &ui.Cbo_MotifFin},
      {&V::oldest_amendment_too_late,
       "La date d'effet de l'avenant le plus ancien ne peut être supérieure au 01/01/", nullptr, nullptr,
       &V::reference_year},
      {&V::no_amendment_at_start,
       "Un avenant avec une date d'effet égale à la date de début de contrat doit obligatoirement exister."},
      {&V::amendment_without_items, "Aucun détail n'a été saisi pour l'avenant du ", nullptr, nullptr,
       &V::date_without_items},
  };
}

void Validation::VerifZone() {
  for (const Check& check : checks()) {
    if (!(this->*check.fails)()) continue;
    std::string message(check.message);
    if (check.ending) message += (this->*check.ending)() + ".";
    screen_.refuse(message);
    card_.Erreur = true;
    if (check.emptied) check.emptied->set_text({});
    if (check.focus) ui_.set_focus(*check.focus);
    return;
  }
}

long Validation::day(std::string_view date) const {
  return static_cast<long>(entry::parse_decimal(entry_.CheckDate(date).day, 0).value_or(0));
}

bool Validation::name_missing() const { return text::trim(ui_.Txt_NomAidant.text()).empty(); }

bool Validation::establishment_missing() const { return text::trim(ui_.Txt_CodEtab.text()).empty(); }

bool Validation::shares_differ_from_100() const {
  constexpr int kDecimals = 6;
  constexpr std::int64_t kHundred = 100'000'000;
  std::int64_t sum = 0;
  for (const std::string& line : ui_.Lst_Activites.items())
    sum += entry::parse_decimal(card::activity_share(line), kDecimals).value_or(0);
  return sum != kHundred;
}

bool Validation::exemption_above_100() const {
  constexpr std::int64_t kHundred = 10000;
  return entry::parse_decimal(ui_.Txt_HresExo.text(), 2).value_or(0) > kHundred;
}

bool Validation::ends_before_start() const {
  return !ui_.Txt_DatFin.is_empty() && day(ui_.Txt_DatFin.text()) < day(ui_.Txt_DatDeb.text());
}

// A stored reason that is not offered, or has left the table and shows nothing, is one and is kept.
bool Validation::end_reason_missing() const {
  if (ui_.Txt_DatFin.is_empty()) return false;
  const std::string& label = ui_.Cbo_MotifFin.text();
  const auto kept = card_.kept.find(card::kEndReason);
  if (kept != card_.kept.end() && kept->second.shown == label && !kept->second.stored.empty()) return false;
  return reference::offered_reason(procedure_.variable().fincontrat, label).empty();
}

long Validation::reference_day() const {
  return static_cast<long>(entry::parse_decimal(card::reference_date(procedure_), 0).value_or(0));
}

bool Validation::starts_before_reference() const { return day(ui_.Txt_DatDeb.text()) < reference_day(); }

bool Validation::oldest_amendment_too_late() const {
  if (!starts_before_reference()) return false;
  const long reference = reference_day();
  const auto& dates = ui_.Lst_DatEffet.items();
  return std::none_of(dates.begin(), dates.end(), [&](const auto& date) { return day(date) <= reference; });
}

bool Validation::no_amendment_at_start() const {
  return !starts_before_reference() && ui_.Lst_DatEffet.find(ui_.Txt_DatDeb.text()) < 0;
}

std::string Validation::reference_year() const {
  constexpr int kYearAt = 7;
  return std::string(text::mid(entry_.InternalToDate(card::reference_date(procedure_)), kYearAt));
}

int Validation::first_without_items() const {
  for (int i = 0; i < ui_.Lst_DatEffet.count(); ++i) {
    if (card_.working(card::kItemCode, i + 1).empty()) return i;
  }
  return -1;
}

std::string Validation::date_without_items() const {
  return std::string(ui_.Lst_DatEffet.line(first_without_items()));
}

}  // namespace velanor::commands
