#include "card/record/rules.h"

#include <string>

#include "card/record/record_compare.h"
#include "entry/decimal.h"
#include "text/utf8.h"

namespace velanor::card {
namespace {

long number(std::string_view stored) {
  return static_cast<long>(entry::parse_decimal(stored, 0).value_or(0));
}

// What the rules look at.
struct Facts {
  const store::DbRecord& card;
  const Codec& codec;
  long reference_day;
  int activities = lines_of(card, kActivity);
  int amendments = lines_of(card, kEffective);

  bool missing(int attribute) const { return text::trim(card(attribute)).empty(); }
  bool starts_before_reference() const { return number(card(kContractStart)) < reference_day; }
  template <typename Holds>
  bool any_amendment(Holds holds) const {
    for (int i = 1; i <= amendments; ++i) {
      if (holds(number(card(kEffective, i)))) return true;
    }
    return false;
  }
};

struct Rule {
  int attribute;
  bool (*broken)(const Facts&);
  std::string_view sentence;
  bool is_a_wrong_value = false;
  // What stands for "…" in the sentence.
  std::string (*value)(const Facts&) = nullptr;
};

template <const auto& A>
bool missing(const Facts& facts) {
  return facts.missing(A.number);
}

bool establishment_missing(const Facts& facts) {
  return text::trim(text::mid(facts.card(kEstablishment), kEntityCodeLength + 1)).empty();
}

bool shares_differ_from_100(const Facts& facts) {
  constexpr long kHundred = 10000;
  long sum = 0;
  for (int i = 1; i <= facts.activities; ++i) sum += number(facts.card(kShare, i));
  return facts.activities > 0 && sum != kHundred;
}

bool ends_before_start(const Facts& facts) {
  return !facts.missing(kContractEnd) &&
         number(facts.card(kContractEnd)) < number(facts.card(kContractStart));
}

bool oldest_amendment_too_late(const Facts& facts) {
  return facts.amendments > 0 && facts.starts_before_reference() &&
         !facts.any_amendment([&](long day) { return day <= facts.reference_day; });
}

bool no_amendment_at_start(const Facts& facts) {
  const long start = number(facts.card(kContractStart));
  return facts.amendments > 0 && !facts.missing(kContractStart) && !facts.starts_before_reference() &&
         !facts.any_amendment([&](long day) { return day == start; });
}

std::string reference_year(const Facts& facts) {
  constexpr int kYearAt = 7;
  const std::string date = facts.codec.shown(kEffective, std::to_string(facts.reference_day));
  return std::string(text::mid(date, kYearAt));
}

constexpr Rule kRules[] = {
    {kName, missing<kName>, "Le nom du salarié est obligatoire."},
    {kEstablishment, establishment_missing, "L'établissement est obligatoire."},
    {kEstablishmentHours, missing<kEstablishmentHours>,
     "L'horaire mensuel de l'établissement est obligatoire."},
    {kAgreement, missing<kAgreement>, "La convention collective est obligatoire."},
    {kSector, missing<kSector>, "Le secteur est obligatoire."},
    {kTown, missing<kTown>, "La commune est obligatoire."},
    {kContractStart, missing<kContractStart>, "La date de début de contrat est obligatoire."},
    {kActivity, [](const Facts& facts) { return facts.activities == 0; },
     "Au moins une activité est obligatoire."},
    {kShare, shares_differ_from_100, "Le total de la répartition des activités est différent de 100."},
    {kEffective, [](const Facts& facts) { return facts.amendments == 0; },
     "Une date d'effet est obligatoire."},
    {kProfile1, missing<kProfile1>, "Le profil de paie est obligatoire."},
    {kExemptedHours, [](const Facts& facts) { return number(facts.card(kExemptedHours)) > 10000; },
     "Le pourcentage des heures exonérées ne peut être supérieur à 100.", true},
    {kExemptedHours,
     [](const Facts& facts) { return facts.card(kStaffKind) == "P" && facts.missing(kExemptedHours); },
     "Le pourcentage des heures exonérées est obligatoire."},
    {kContractEnd, ends_before_start,
     "La date de fin de contrat doit être supérieure ou égale à la date de début.", true},
    {kEndReason,
     [](const Facts& facts) {
       return !facts.missing(kContractEnd) && !ends_before_start(facts) && facts.missing(kEndReason);
     },
     "Un motif de fin de contrat est obligatoire."},
    {0, oldest_amendment_too_late,
     "La date d'effet de l'avenant le plus ancien ne peut être supérieure au 01/01/….", false,
     reference_year},
    {0, no_amendment_at_start,
     "Un avenant avec une date d'effet égale à la date de début de contrat doit obligatoirement exister."},
};

// Hands each fault to `tell` until it wants no more.
template <typename Tell>
void find_faults(const Facts& facts, Tell tell) {
  for (const Rule& rule : kRules) {
    if (!rule.broken(facts)) continue;
    Fault fault(std::string(rule.sentence), rule.value ? rule.value(facts) : std::string());
    fault.attribute = rule.attribute;
    fault.is_a_wrong_value = rule.is_a_wrong_value;
    if (!tell(std::move(fault))) return;
  }
  for (int i = 1; i <= facts.amendments; ++i) {
    if (!facts.card(kItemCode, i).empty()) continue;
    const std::string date = facts.codec.shown(kEffective, facts.card(kEffective, i));
    if (!tell(Fault("Aucun détail n'a été saisi pour l'avenant du ….", date))) return;
  }
}

}  // namespace

std::vector<Fault> faults_of(const store::DbRecord& card, const Codec& codec, long reference_day) {
  std::vector<Fault> faults;
  find_faults({card, codec, reference_day}, [&](Fault fault) {
    faults.push_back(std::move(fault));
    return true;
  });
  return faults;
}

std::optional<Fault> first_fault(const store::DbRecord& card, const Codec& codec, long reference_day) {
  std::optional<Fault> first;
  find_faults({card, codec, reference_day}, [&](Fault fault) {
    first = std::move(fault);
    return false;
  });
  return first;
}

}  // namespace velanor::card
