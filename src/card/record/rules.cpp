#include "card/record/rules.h"

#include "entry/decimal.h"
#include "text/utf8.h"

namespace velanor::card {
namespace {

long number(std::string_view stored) {
  return static_cast<long>(entry::parse_decimal(stored, 0).value_or(0));
}

// What the rules look at.
struct Facts {
  const Draft& card;
  long reference_day;

  std::string_view stored(int attribute) const { return card.record()(attribute); }
  bool missing(int attribute) const { return text::trim(stored(attribute)).empty(); }
  long day(int line) const { return number(card.record()(kEffective, line + 1)); }
  bool starts_before_reference() const { return number(stored(kContractStart)) < reference_day; }
  template <typename Holds>
  bool any_amendment(Holds holds) const {
    for (int line = 0; line < card.amendments(); ++line) {
      if (holds(day(line))) return true;
    }
    return false;
  }
  int first_without_items() const {
    for (int line = 0; line < card.amendments(); ++line) {
      if (card.record()(kItemCode, line + 1).empty()) return line;
    }
    return -1;
  }
};

struct Rule {
  int attribute;
  bool (*broken)(const Facts&);
  std::string_view sentence;
  bool is_a_wrong_value = false;
  // What the sentence ends with, where that depends on the card.
  std::string (*ending)(const Facts&) = nullptr;
};

template <auto A>
bool missing(const Facts& facts) {
  return facts.missing(A.number);
}

bool establishment_missing(const Facts& facts) {
  return text::trim(text::mid(facts.stored(kEstablishment), kEntityCodeLength + 1)).empty();
}

bool shares_differ_from_100(const Facts& facts) {
  constexpr long kHundred = 10000;
  long sum = 0;
  for (int line = 0; line < facts.card.activities(); ++line)
    sum += number(facts.card.record()(kShare, line + 1));
  return facts.card.activities() > 0 && sum != kHundred;
}

bool ends_before_start(const Facts& facts) {
  return !facts.missing(kContractEnd) &&
         number(facts.stored(kContractEnd)) < number(facts.stored(kContractStart));
}

bool oldest_amendment_too_late(const Facts& facts) {
  return facts.card.amendments() > 0 && facts.starts_before_reference() &&
         !facts.any_amendment([&](long day) { return day <= facts.reference_day; });
}

bool no_amendment_at_start(const Facts& facts) {
  const long start = number(facts.stored(kContractStart));
  return facts.card.amendments() > 0 && !facts.missing(kContractStart) && !facts.starts_before_reference() &&
         !facts.any_amendment([&](long day) { return day == start; });
}

std::string reference_year(const Facts& facts) {
  constexpr int kYearAt = 7;
  const std::string date = facts.card.reading().codec.shown(kEffective, std::to_string(facts.reference_day));
  return std::string(text::mid(date, kYearAt));
}

std::string date_without_items(const Facts& facts) {
  const std::string_view day = facts.card.record()(kEffective, facts.first_without_items() + 1);
  return facts.card.reading().codec.shown(kEffective, day);
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
    {kActivity, [](const Facts& facts) { return facts.card.activities() == 0; },
     "Au moins une activité est obligatoire."},
    {kShare, shares_differ_from_100, "Le total de la répartition des activités est différent de 100."},
    {kEffective, [](const Facts& facts) { return facts.card.amendments() == 0; },
     "Une date d'effet est obligatoire."},
    {kProfile1, missing<kProfile1>, "Le profil de paie est obligatoire."},
    {kExemptedHours, [](const Facts& facts) { return number(facts.stored(kExemptedHours)) > 10000; },
     "Le pourcentage des heures exonérées ne peut être supérieur à 100.", true},
    {kExemptedHours,
     [](const Facts& facts) { return facts.stored(kStaffKind) == "P" && facts.missing(kExemptedHours); },
     "Le pourcentage des heures exonérées est obligatoire."},
    {kContractEnd, ends_before_start,
     "La date de fin de contrat doit être supérieure ou égale à la date de début.", true},
    {kEndReason,
     [](const Facts& facts) {
       return !facts.missing(kContractEnd) && !ends_before_start(facts) && facts.missing(kEndReason);
     },
     "Un motif de fin de contrat est obligatoire."},
    {0, oldest_amendment_too_late,
     "La date d'effet de l'avenant le plus ancien ne peut être supérieure au 01/01/", false, reference_year},
    {0, no_amendment_at_start,
     "Un avenant avec une date d'effet égale à la date de début de contrat doit obligatoirement exister."},
    {0, [](const Facts& facts) { return facts.first_without_items() >= 0; },
     "Aucun détail n'a été saisi pour l'avenant du ", false, date_without_items},
};

Fault told(const Rule& rule, const Facts& facts) {
  std::string sentence(rule.sentence);
  if (rule.ending) sentence += rule.ending(facts) + ".";
  return {rule.attribute, std::move(sentence), rule.is_a_wrong_value};
}

}  // namespace

std::vector<Fault> faults_of(const Draft& card, long reference_day) {
  const Facts facts{card, reference_day};
  std::vector<Fault> faults;
  for (const Rule& rule : kRules) {
    if (rule.broken(facts)) faults.push_back(told(rule, facts));
  }
  return faults;
}

std::optional<Fault> first_fault(const Draft& card, long reference_day) {
  const Facts facts{card, reference_day};
  for (const Rule& rule : kRules) {
    if (rule.broken(facts)) return told(rule, facts);
  }
  return std::nullopt;
}

}  // namespace velanor::card
