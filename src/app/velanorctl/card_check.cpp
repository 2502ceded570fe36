#include "app/velanorctl/card_check.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <set>

#include "app/velanorctl/card_dates.h"
#include "app/velanorctl/card_fields.h"
#include "card/record_layout.h"
#include "entry/date.h"
#include "text/utf8.h"

namespace velanor::app {

using store::DbRecord;
namespace {

std::optional<std::int64_t> whole_number(std::string_view text) {
  std::int64_t number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  if (read.ec != std::errc() || read.ptr != text.data() + text.size()) return std::nullopt;
  return number;
}

std::int64_t number_or_0(std::string_view text) { return whole_number(text).value_or(0); }

std::string date_shown(std::int64_t day) { return entry::date_text(entry::date_of(static_cast<int>(day))); }

// Lists whose lines go by the values of another attribute: a value behind its end is on no line.
struct Line {
  int list, attribute;
};
constexpr Line kLines[] = {
    {card::kActivity, card::kShare},          {card::kEffective, card::kGridStart},
    {card::kEffective, card::kQualification}, {card::kEffective, card::kGrid},
    {card::kEffective, card::kCategory},      {card::kEffective, card::kHourlyRate},
    {card::kEffective, card::kMonthlyTime},   {card::kEffective, card::kNewMeasure},
    {card::kEffective, card::kItemCode},      {card::kEffective, card::kItemBase},
    {card::kEffective, card::kItemRate},      {card::kEffective, card::kItemAmount},
};

// Values of a list up to its first empty one, as the screen reads it.
std::vector<std::string_view> list_of(const DbRecord& card, int attribute) {
  std::vector<std::string_view> values;
  for (int v = 1; !card(attribute, v).empty(); ++v) values.push_back(card(attribute, v));
  return values;
}

template <typename Visit>
void each_element(const DbRecord& card, int attribute, const Visit& visit) {
  for (int v = 1; v <= card.Count(attribute); ++v) {
    for (int s = 1; s <= card.Count(attribute, v); ++s) {
      if (!card(attribute, v, s).empty()) visit(card(attribute, v, s));
    }
  }
}

// ---- The rules of saving, on a record.

struct Facts {
  const DbRecord& card;
  std::int64_t reference_day;
  std::vector<std::string_view> activities, effective_dates;

  std::int64_t number(int attribute) const { return number_or_0(card(attribute)); }
  bool missing(int attribute) const { return text::trim(card(attribute)).empty(); }
  bool starts_before_reference() const { return number(card::kContractStart) < reference_day; }
  template <typename Holds>
  bool any_effective(const Holds& holds) const {
    return std::any_of(effective_dates.begin(), effective_dates.end(),
                       [&](auto date) { return holds(number_or_0(date)); });
  }
};

struct Rule {
  bool (*broken)(const Facts&);
  std::string_view sentence;
};

template <int Attribute>
bool missing(const Facts& facts) {
  return facts.missing(Attribute);
}

bool establishment_missing(const Facts& facts) {
  return text::trim(text::mid(facts.card(card::kEstablishment), card::kEntityCodeLength + 1)).empty();
}

bool shares_differ_from_100(const Facts& facts) {
  constexpr std::int64_t kHundred = 10000;
  std::int64_t sum = 0;
  for (int k = 1; k <= static_cast<int>(facts.activities.size()); ++k)
    sum += number_or_0(facts.card(card::kShare, k));
  return !facts.activities.empty() && sum != kHundred;
}

bool ends_before_start(const Facts& facts) {
  return !facts.missing(card::kContractEnd) &&
         facts.number(card::kContractEnd) < facts.number(card::kContractStart);
}

constexpr Rule kRules[] = {
    {missing<card::kName>, "Le nom du salarié est obligatoire."},
    {establishment_missing, "L'établissement est obligatoire."},
    {missing<card::kEstablishmentHours>, "L'horaire mensuel de l'établissement est obligatoire."},
    {missing<card::kAgreement>, "La convention collective est obligatoire."},
    {missing<card::kSector>, "Le secteur est obligatoire."},
    {missing<card::kTown>, "La commune est obligatoire."},
    {missing<card::kContractStart>, "La date de début de contrat est obligatoire."},
    {[](const Facts& facts) { return facts.activities.empty(); }, "Au moins une activité est obligatoire."},
    {shares_differ_from_100, "Le total de la répartition des activités est différent de 100."},
    {[](const Facts& facts) { return facts.effective_dates.empty(); }, "Une date d'effet est obligatoire."},
    {missing<card::kProfile1>, "Le profil de paie est obligatoire."},
    {[](const Facts& facts) { return facts.number(card::kExemptedHours) > 10000; },
     "Le pourcentage des heures exonérées ne peut être supérieur à 100."},
    {[](const Facts& facts) {
       return facts.card(card::kStaffKind) == "P" && facts.missing(card::kExemptedHours);
     },
     "Le pourcentage des heures exonérées est obligatoire."},
    {ends_before_start, "La date de fin de contrat doit être supérieure ou égale à la date de début."},
    {[](const Facts& facts) {
       return !facts.missing(card::kContractEnd) && !ends_before_start(facts) &&
              facts.missing(card::kEndReason);
     },
     "Un motif de fin de contrat est obligatoire."},
};

class Examination {
 public:
  Examination(const References& references, int today, std::string_view id, const DbRecord& card)
      : references_(references),
        today_(today),
        id_(id),
        facts_{card, references.reference_day(), list_of(card, card::kActivity),
               list_of(card, card::kEffective)} {}

  std::vector<Fault> faults() {
    check_id();
    for (const Rule& rule : kRules) {
      if (rule.broken(facts_)) fault(std::string(rule.sentence));
    }
    check_dates_of_amendments();
    for (Fault& found : faults_of_dates(card(), today_)) faults_.push_back(std::move(found));
    check_items();
    check_fields();
    check_lines();
    return std::move(faults_);
  }

 private:
  const DbRecord& card() const { return facts_.card; }
  void fault(std::string pattern, std::string_view value = {}) {
    faults_.emplace_back(std::move(pattern), std::string(value));
  }

  void check_id();
  void check_dates_of_amendments();
  void check_items();
  void check_fields();
  void check_lines();

  const References& references_;
  int today_;
  std::string_view id_;
  Facts facts_;
  std::vector<Fault> faults_;
};

void Examination::check_id() {
  constexpr int kLength = card::kEmployeeCodeLength + card::kEntityCodeLength + 4;
  const bool digits = std::all_of(id_.begin(), id_.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (!digits || text::length(id_) != kLength)
    return fault("L'identifiant n'est pas un code de salarié, un code d'entité et une année.");
  const auto entity = id_.substr(card::kEmployeeCodeLength, card::kEntityCodeLength);
  if (!references_.has("ASSOCIATION", entity)) faults_.push_back(unknown_entity(entity));
  const auto establishment = card()(card::kEstablishment);
  if (!establishment.empty() && !establishment.starts_with(entity))
    fault("L'établissement « … » n'est pas de l'entité de la fiche.", establishment);
}

void Examination::check_dates_of_amendments() {
  const auto& dates = facts_.effective_dates;
  const auto descends = [](auto a, auto b) { return number_or_0(a) >= number_or_0(b); };
  if (std::adjacent_find(dates.begin(), dates.end(), descends) != dates.end())
    fault("Les dates d'effet des avenants ne se suivent pas.");
  if (dates.empty() || facts_.missing(card::kContractStart)) return;
  const std::int64_t start = facts_.number(card::kContractStart), reference = facts_.reference_day;
  if (facts_.starts_before_reference()) {
    if (!facts_.any_effective([&](std::int64_t day) { return day <= reference; }))
      fault("La date d'effet de l'avenant le plus ancien ne peut être supérieure au 01/01/" +
            date_shown(reference).substr(6) + ".");
  } else if (!facts_.any_effective([&](std::int64_t day) { return day == start; })) {
    fault(
        "Un avenant avec une date d'effet égale à la date de début de contrat doit obligatoirement exister.");
  }
}

void Examination::check_items() {
  for (int i = 1; i <= static_cast<int>(facts_.effective_dates.size()); ++i) {
    if (card()(card::kItemCode, i).empty())
      fault("Aucun détail n'a été saisi pour l'avenant du ….",
            date_shown(number_or_0(card()(card::kEffective, i))));
  }
}

// A text that is met again in the same field is told once.
void Examination::check_fields() {
  for (const CardField& field : card_fields()) {
    std::set<std::string_view> told;
    each_element(card(), field.attribute, [&](std::string_view text) {
      if (!told.insert(text).second) return;
      if (auto found = fault_of(field, text)) {
        faults_.push_back(std::move(*found));
      } else if (!field.list.empty() && !references_.has(field.list, text)) {
        faults_.push_back(unknown_code(field, text));
      }
    });
  }
}

// A line that is cut off is said once, however many columns it has.
void Examination::check_lines() {
  std::set<int> told;
  for (const Line& line : kLines) {
    const int lines = static_cast<int>(list_of(card(), line.list).size());
    const int most = std::max(card().Count(line.attribute), card().Count(line.list));
    if (most <= lines || !told.insert(line.list).second) continue;
    fault(line.list == card::kActivity
              ? "Des lignes d'activité suivent une activité vide : l'écran ne les montre pas."
              : "Des lignes d'avenant suivent une date d'effet vide : l'écran ne les montre pas.");
  }
}

}  // namespace

CardCheck::CardCheck(store::Database& database, const entry::Clock& clock)
    : references_(database), today_(*entry::day_number(clock())) {}

std::vector<Fault> CardCheck::faults_of(std::string_view id, const DbRecord& card) const {
  return Examination(references_, today_, id, card).faults();
}

}  // namespace velanor::app
