#include "card/record/rules.h"

#include <string>

#include "card/record/element.h"
#include "card/record/record_compare.h"
#include "text/utf8.h"

namespace velanor::card {
namespace {

// What the rules look at.
struct Facts {
  const store::DbRecord& card;
  const Codec& codec;
  std::int64_t reference_day;
  int activities = lines_of(card, kActivity);
  int amendments = lines_of(card, kEffective);

  bool missing(const Field& field) const { return text::trim(element(card, field)).empty(); }
  bool starts_before_reference() const { return day(card, kContractStart) < reference_day; }
  template <typename Holds>
  bool any_amendment(Holds holds) const {
    for (int i = 1; i <= amendments; ++i) {
      if (holds(day(card, kEffective, i))) return true;
    }
    return false;
  }
};

struct Rule {
  Field field;
  std::string_view sentence;
  // None: the field is empty.
  bool (*broken)(const Facts&) = nullptr;
  bool is_a_wrong_value = false;
  // What stands for "…" in the sentence.
  std::string (*value)(const Facts&) = nullptr;
};

constexpr std::int64_t kHundredPercent = 10000;

bool establishment_missing(const Facts& facts) {
  return text::trim(own_code_of(element(facts.card, kEstablishment))).empty();
}

bool shares_differ_from_100(const Facts& facts) {
  std::int64_t sum = 0;
  for (int i = 1; i <= facts.activities; ++i) sum += figure(facts.card, kShare, i);
  return facts.activities > 0 && sum != kHundredPercent;
}

bool ends_before_start(const Facts& facts) {
  return !facts.missing(kContractEnd) && day(facts.card, kContractEnd) < day(facts.card, kContractStart);
}

bool oldest_amendment_too_late(const Facts& facts) {
  return facts.amendments > 0 && facts.starts_before_reference() &&
         !facts.any_amendment([&](std::int64_t day) { return day <= facts.reference_day; });
}

bool no_amendment_at_start(const Facts& facts) {
  const std::int64_t start = day(facts.card, kContractStart);
  return facts.amendments > 0 && !facts.missing(kContractStart) && !facts.starts_before_reference() &&
         !facts.any_amendment([&](std::int64_t day) { return day == start; });
}

std::string reference_year(const Facts& facts) {
  constexpr int kYearAt = 7;
  const std::string date = facts.codec.shown(Encoding::kDate, std::to_string(facts.reference_day));
  return std::string(text::mid(date, kYearAt));
}

constexpr Rule kRules[] = {
    {kName, "Le nom du salarié est obligatoire."},
    {kEstablishment, "L'établissement est obligatoire.", establishment_missing},
    {kEstablishmentHours, "L'horaire mensuel de l'établissement est obligatoire."},
    {kAgreement, "La convention collective est obligatoire."},
    {kSector, "Le secteur est obligatoire."},
    {kTown, "La commune est obligatoire."},
    {kContractStart, "La date de début de contrat est obligatoire."},
    {kActivity, "Au moins une activité est obligatoire.",
     [](const Facts& facts) { return facts.activities == 0; }},
    {kShare, "Le total de la répartition des activités est différent de 100.", shares_differ_from_100},
    {kEffective, "Une date d'effet est obligatoire.",
     [](const Facts& facts) { return facts.amendments == 0; }},
    {kProfile1, "Le profil de paie est obligatoire."},
    {kExemptedHours, "Le pourcentage des heures exonérées ne peut être supérieur à 100.",
     [](const Facts& facts) { return figure(facts.card, kExemptedHours) > kHundredPercent; }, true},
    {kExemptedHours, "Le pourcentage des heures exonérées est obligatoire.",
     [](const Facts& facts) {
       return element(facts.card, kStaffKind) == kProduction && facts.missing(kExemptedHours);
     }},
    {kContractEnd, "La date de fin de contrat doit être supérieure ou égale à la date de début.",
     ends_before_start, true},
    {kEndReason, "Un motif de fin de contrat est obligatoire.",
     [](const Facts& facts) {
       return !facts.missing(kContractEnd) && !ends_before_start(facts) && facts.missing(kEndReason);
     }},
    {{},
     "La date d'effet de l'avenant le plus ancien ne peut être supérieure au 01/01/….",
     oldest_amendment_too_late,
     false,
     reference_year},
    {{},
     "Un avenant avec une date d'effet égale à la date de début de contrat doit obligatoirement exister.",
     no_amendment_at_start},
};

}  // namespace

std::vector<Fault> faults_of(const store::DbRecord& card, const Codec& codec, std::int64_t reference_day) {
  const Facts facts{card, codec, reference_day};
  std::vector<Fault> faults;
  for (const Rule& rule : kRules) {
    if (rule.broken ? !rule.broken(facts) : !facts.missing(rule.field)) continue;
    faults.emplace_back(std::string(rule.sentence), rule.value ? rule.value(facts) : std::string());
    faults.back().field = rule.field;
    faults.back().is_a_wrong_value = rule.is_a_wrong_value;
  }
  for (int i = 1; i <= facts.amendments; ++i) {
    if (element(card, kItemCode, i).empty())
      faults.push_back(about(
          {}, Fault("Aucun détail n'a été saisi pour l'avenant du ….", codec.shown(card, kEffective, i)), i));
  }
  return faults;
}

}  // namespace velanor::card
