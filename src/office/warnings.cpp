#include "office/warnings.h"

#include <algorithm>
#include <utility>

#include "card/record/element.h"
#include "card/record/record_compare.h"
#include "card/record/reference_layout.h"
#include "office/hours.h"
#include "text/fold.h"
#include "text/number.h"
#include "text/utf8.h"
#include "velanor/date.h"

namespace velanor::office {

using card::about, card::Fault;
using store::DbRecord;
namespace {

constexpr WarningName kNames[] = {
    {WarningKind::kEndsSoon, "fin-proche", "Contrat à durée déterminée qui finit bientôt"},
    {WarningKind::kEndsInYear, "fin-dans-l-annee",
     "Contrat à durée déterminée qui finit avant la fin de l'année"},
    {WarningKind::kNoEnd, "cdd-sans-fin", "Contrat à durée déterminée sans date de fin"},
    {WarningKind::kReasonWithoutEnd, "motif-sans-fin", "Motif de fin sans date de fin"},
    {WarningKind::kEmptyShare, "part-nulle", "Activité sans part"},
    {WarningKind::kActivityTwice, "activite-double", "Activité sur deux lignes"},
    {WarningKind::kForeignActivity, "activite-ailleurs", "Activité d'une autre entité"},
    {WarningKind::kNoAmendment, "sans-avenant", "Aucun avenant au 1er janvier"},
    {WarningKind::kTwoAmendments, "deux-avenants", "Deux avenants le même mois"},
    {WarningKind::kHours, "heures", "Heures au-dessus de celles de l'établissement"},
    {WarningKind::kRate, "taux-en-baisse", "Taux horaire en baisse"},
    {WarningKind::kTwoCards, "deux-fiches", "Une personne sur deux fiches"},
    {WarningKind::kBirth, "naissance", "Âge invraisemblable"},
};

constexpr int kYoungest = 16, kOldest = 75;

std::string shown(int day) { return entry::date_text(entry::date_of(day)); }
template <card::Encoding E>
std::string shown(const card::Attribute<E>&, std::int64_t figure) {
  return entry::format_decimal(figure, card::decimals(E), card::decimals(E));
}

int age(const entry::Date& birth, const entry::Date& day) {
  const bool before = std::pair(day.month, day.day) < std::pair(birth.month, birth.day);
  return day.year - birth.year - (before ? 1 : 0);
}

// One card, and what is looked at on it.
struct Look {
  std::string_view id;
  const DbRecord& card;
  int today, reference_day, days_ahead;
  const std::set<std::string, std::less<>>& hours_items;

  std::vector<Warning> found = {};
  int activities = lines_of(card, card::kActivity);
  int amendments = lines_of(card, card::kEffective);
  // Days that are there and can be read.
  std::optional<int> start = stored(card::kContractStart);
  std::optional<int> end = stored(card::kContractEnd);
  std::optional<std::int64_t> year = text::whole_number(card::year_of(id));

  std::optional<int> stored(const card::Date& date, int value = store::kWhole) const {
    return entry::stored_day(element(card, date, value));
  }
  // Of the budget year; nothing for the years of old stores.
  std::optional<int> day_of_year(int day, int month) const {
    return year && *year > 0 && *year <= 9999 ? entry::day_number({day, month, static_cast<int>(*year)})
                                              : std::nullopt;
  }
  bool is_fixed_term() const { return element(card, card::kContractType) == card::kFixedTerm; }
  bool has_end() const { return !element(card, card::kContractEnd).empty(); }
  void warn(WarningKind kind, const card::Field& field, std::string pattern, std::string value = {},
            int line = 0) {
    found.push_back({kind, about(field, Fault(std::move(pattern), std::move(value)), line)});
  }

  void look_at_end();
  void look_at_activities();
  void look_at_january();
  void look_at_months();
  void look_at_hours();
  void look_at_rates();
  void look_at_age();
};

// A contract that ends soon is not told once more for ending in the year.
void Look::look_at_end() {
  if (!has_end() && !element(card, card::kEndReason).empty())
    warn(WarningKind::kReasonWithoutEnd, card::kContractEnd,
         "Un motif de fin est choisi, sans date de fin de contrat.");
  if (!is_fixed_term()) return;
  if (!has_end())
    return warn(WarningKind::kNoEnd, card::kContractEnd,
                "Le contrat à durée déterminée n'a pas de date de fin.");
  if (!end) return;
  if (*end >= today && *end <= today + days_ahead)
    return warn(
        WarningKind::kEndsSoon, card::kContractEnd,
        "Le contrat à durée déterminée finit dans les " + std::to_string(days_ahead) + " jours : le ….",
        shown(*end));
  if (const auto last = day_of_year(31, 12); last && *end < *last)
    warn(WarningKind::kEndsInYear, card::kContractEnd,
         "Le contrat à durée déterminée finit avant la fin de l'année : le ….", shown(*end));
}

void Look::look_at_activities() {
  std::set<std::string_view> met;
  for (int i = 1; i <= activities; ++i) {
    const std::string_view code = element(card, card::kActivity, i);
    const std::string own(card::own_code_of(code));
    if (figure(card, card::kShare, i) == 0)
      warn(WarningKind::kEmptyShare, card::kShare, "L'activité « … » n'a aucune part.", own, i);
    if (!met.insert(code).second)
      warn(WarningKind::kActivityTwice, card::kActivity,
           "L'activité « … » est sur deux lignes de la répartition.", own, i);
    if (!code.starts_with(card::entity_of(id)))
      warn(WarningKind::kForeignActivity, card::kActivity, "L'activité « … » est celle d'une autre entité.",
           std::string(code), i);
  }
}

// From the reference date on saving asks for it.
void Look::look_at_january() {
  const auto january = day_of_year(1, 1);
  if (!january || *january >= reference_day || amendments == 0 || !start || *start > *january ||
      (end && *end < *january))
    return;
  if (day(card, card::kEffective, 1) > *january)
    warn(WarningKind::kNoAmendment, card::kEffective, "Aucun avenant n'est en vigueur le ….", shown(*january),
         1);
}

void Look::look_at_months() {
  for (int i = 2; i <= amendments; ++i) {
    const auto before = stored(card::kEffective, i - 1), now = stored(card::kEffective, i);
    if (!before || !now) continue;
    constexpr int kDayLength = 3;  // with its stroke
    const std::string month = shown(*now).substr(kDayLength);
    if (shown(*before).substr(kDayLength) == month)
      warn(WarningKind::kTwoAmendments, card::kEffective, "Deux avenants prennent effet le même mois : ….",
           month, i);
  }
}

void Look::look_at_hours() {
  const std::int64_t most = figure(card, card::kEstablishmentHours);
  const auto is_hours = [this](std::string_view code) { return hours_items.contains(code); };
  for (int i = 1; most > 0 && i <= amendments; ++i) {
    const auto hours = monthly_hours(card, i - 1, is_hours);
    if (hours && *hours > most)
      warn(WarningKind::kHours, card::kMonthlyTime,
           "Les heures mensuelles dépassent celles de l'établissement : ….",
           shown(card::kMonthlyTime, *hours) + " pour " + shown(card::kEstablishmentHours, most), i);
  }
}

// Without a rate it is a grid's.
void Look::look_at_rates() {
  for (int i = 2; i <= amendments; ++i) {
    const std::int64_t before = figure(card, card::kHourlyRate, i - 1),
                       now = figure(card, card::kHourlyRate, i);
    if (now > 0 && now < before)
      warn(WarningKind::kRate, card::kHourlyRate,
           "Le taux horaire est inférieur à celui de l'avenant précédent : ….",
           shown(card::kHourlyRate, now) + " après " + shown(card::kHourlyRate, before), i);
  }
}

// Who is born after the start, or after today, is a fault.
void Look::look_at_age() {
  const auto birth = stored(card::kBirth);
  if (!birth || !start || *birth > *start || *birth > today) return;
  const int years = age(entry::date_of(*birth), entry::date_of(*start));
  if (years < kYoungest || years > kOldest)
    warn(WarningKind::kBirth, card::kBirth, "L'âge au début du contrat est invraisemblable : … ans.",
         std::to_string(years));
}

}  // namespace

std::span<const WarningName> warning_names() { return kNames; }

const WarningName& name_of(WarningKind kind) { return kNames[static_cast<std::size_t>(kind)]; }

std::optional<WarningKind> warning_named(std::string_view name) {
  for (const WarningName& known : kNames) {
    if (known.name == name) return known.kind;
  }
  return std::nullopt;
}

Warnings::Warnings(store::Database& database, int today, int reference_day, int days_ahead)
    : today_(today), reference_day_(reference_day), days_ahead_(days_ahead) {
  constexpr std::string_view kItems = "RUBSAISIE";
  const auto items = database.Select(
      store::DbQuery("SSELECT RUBSAISIE", kItems, "0 " + std::to_string(card::items::kType)).encoded());
  for (int i = 1; i <= items.DCount(); ++i) {
    if (card::items::is_hours(items(i, 2))) hours_items_.emplace(items(i, 1));
  }
}

std::vector<Warning> Warnings::of(std::string_view id, const DbRecord& card) const {
  Look look{id, card, today_, reference_day_, days_ahead_, hours_items_};
  look.look_at_end();
  look.look_at_activities();
  look.look_at_january();
  look.look_at_months();
  look.look_at_hours();
  look.look_at_rates();
  look.look_at_age();
  return std::move(look.found);
}

void Namesakes::note(std::string_view id, const DbRecord& card) {
  const std::string_view name = text::trim(element(card, card::kName)), birth = element(card, card::kBirth);
  if (name.empty() || birth.empty()) return;
  std::string key(card::entity_of(id));
  key.append(card::year_of(id)).append(1, '\n').append(birth).append(1, '\n').append(text::folded(name));
  cards_[key].push_back({std::string(id), std::string(element(card, card::kName))});
  keys_.insert_or_assign(std::string(id), std::move(key));
}

void Namesakes::forget(std::string_view id) {
  const auto key = keys_.find(id);
  if (key == keys_.end()) return;
  std::erase_if(cards_[key->second], [&](const Card& card) { return card.id == id; });
  keys_.erase(key);
}

std::vector<Namesakes::Found> Namesakes::found() const {
  std::vector<Found> all;
  for (const auto& [person, cards] : cards_) {
    for (const Card& card : cards) {
      std::string others;
      for (const Card& other : cards) {
        if (other.id != card.id)
          others.append(others.empty() ? "" : ", ").append(card::employee_of(other.id));
      }
      if (others.empty()) continue;
      const Fault remark = about(card::kName, Fault("La même personne a une autre fiche : ….", others));
      all.push_back({card.id, card.name, {WarningKind::kTwoCards, remark}});
    }
  }
  return all;
}

}  // namespace velanor::office
