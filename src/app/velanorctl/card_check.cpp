#include "app/velanorctl/card_check.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <memory>
#include <optional>

#include "card/record_layout.h"
#include "entry/date.h"
#include "entry/decimal.h"
#include "text/utf8.h"

namespace velanor::app {

using store::DbRecord;
using Codes = std::set<std::string, std::less<>>;

struct CardCheck::References {
  // The ids of a file, the codes of a record of TABLES, the names of the towns.
  std::map<std::string, Codes, std::less<>> codes;
  int reference_day = 0;

  bool has(std::string_view list, std::string_view code) const {
    const auto found = codes.find(list);
    return found != codes.end() && found->second.contains(code);
  }
};

namespace {

constexpr std::string_view kTowns = "COMMUNES";
constexpr std::string_view kIdLists[] = {"ASSOCIATION", "ETABLISSEMENT",   "CONVENTIONCOL",
                                         "SECTEUR",     "PROFIL",          "RUBCHARGE",
                                         "ACTIVITES",   "GRILLESCCBUDGET", "RUBSAISIE"};
constexpr std::string_view kTables[] = {"FINCONTRAT", "QUALIF", "REGROUPBUDGET", "NATURECONTRAT", "DIPLOMES"};

std::optional<std::int64_t> whole_number(std::string_view text) {
  std::int64_t number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  if (read.ec != std::errc() || read.ptr != text.data() + text.size()) return std::nullopt;
  return number;
}

std::int64_t number_or_0(std::string_view text) { return whole_number(text).value_or(0); }

std::string date_shown(std::int64_t day) { return entry::date_text(entry::date_of(static_cast<int>(day))); }

// ---- What a card may hold where.

// A code and the list that must have it.
struct Reference {
  int attribute;
  std::string_view list, noun;
};
constexpr Reference kReferences[] = {
    {card::kAgreement, "CONVENTIONCOL", "La convention collective"},
    {card::kSector, "SECTEUR", "Le secteur"},
    {card::kTown, kTowns, "La commune"},
    {card::kProfile1, "PROFIL", "Le profil de paie"},
    {card::kProfile2, "PROFIL", "Le second profil de paie"},
    {card::kEndReason, "FINCONTRAT", "Le motif de fin de contrat"},
    {card::kEstablishment, "ETABLISSEMENT", "L'établissement"},
    {card::kMutualCharge, "RUBCHARGE", "La charge de mutuelle"},
    {card::kContractNature, "NATURECONTRAT", "La nature du contrat"},
    {card::kEducation, "DIPLOMES", "Le niveau d'études"},
    {card::kActivity, "ACTIVITES", "L'activité"},
    {card::kQualification, "QUALIF", "La qualification"},
    {card::kGrid, "GRILLESCCBUDGET", "La grille"},
    {card::kItemCode, "RUBSAISIE", "La rubrique"},
};

// Attributes that hold whole numbers: day numbers and scaled figures.
struct Figure {
  int attribute;
  std::string_view noun;
};
constexpr Figure kFigures[] = {
    {card::kEstablishmentHours, "L'horaire mensuel de l'établissement"},
    {card::kContractStart, "La date de début de contrat"},
    {card::kBirth, "La date de naissance"},
    {card::kExemptedHours, "Le pourcentage des heures exonérées"},
    {card::kCeiling, "Le plafond de sécurité sociale"},
    {card::kContractEnd, "La date de fin de contrat"},
    {card::kSocialBase, "L'assiette de sécurité sociale"},
    {card::kMutualEmployee, "La part salariale de la mutuelle"},
    {card::kMutualEmployer, "La part patronale de la mutuelle"},
    {card::kBranchEntry, "La date d'entrée dans la branche"},
    {card::kShare, "La part d'une activité"},
    {card::kEffective, "Une date d'effet"},
    {card::kGridStart, "Une date de départ de grille"},
    {card::kHourlyRate, "Un taux horaire"},
    {card::kMonthlyTime, "Une durée mensuelle"},
    {card::kItemBase, "Une base de rubrique"},
    {card::kItemRate, "Un taux de rubrique"},
    {card::kItemAmount, "Un montant de rubrique"},
};

// A flag and its letters.
struct Flag {
  int attribute;
  std::string_view letters, noun;
};
constexpr Flag kFlags[] = {{card::kContractType, "DI", "Le type de contrat"},
                           {card::kStaffKind, "PA", "La catégorie de personnel"},
                           {card::kNewMeasure, "ON", "Une nouvelle mesure"}};

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
  Examination(const CardCheck::References& references, std::string_view id, const DbRecord& card)
      : references_(references),
        id_(id),
        facts_{card, references.reference_day, list_of(card, card::kActivity),
               list_of(card, card::kEffective)} {}

  std::vector<std::string> faults() {
    check_id();
    for (const Rule& rule : kRules) {
      if (rule.broken(facts_)) fault(std::string(rule.sentence));
    }
    check_dates_of_amendments();
    check_items();
    check_references();
    check_encodings();
    check_lines();
    return std::move(faults_);
  }

 private:
  const DbRecord& card() const { return facts_.card; }
  void fault(std::string sentence) { faults_.push_back(std::move(sentence)); }

  void check_id();
  void check_dates_of_amendments();
  void check_items();
  void check_references();
  void check_encodings();
  void check_lines();

  const CardCheck::References& references_;
  std::string_view id_;
  Facts facts_;
  std::vector<std::string> faults_;
};

void Examination::check_id() {
  constexpr int kLength = card::kEmployeeCodeLength + card::kEntityCodeLength + 4;
  const bool digits = std::all_of(id_.begin(), id_.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (!digits || text::length(id_) != kLength)
    return fault("L'identifiant n'est pas un code de salarié, un code d'entité et une année.");
  const auto entity = id_.substr(card::kEmployeeCodeLength, card::kEntityCodeLength);
  if (!references_.has("ASSOCIATION", entity))
    fault("L'entité « " + std::string(entity) + " » n'existe pas.");
  const auto establishment = card()(card::kEstablishment);
  if (!establishment.empty() && !establishment.starts_with(entity))
    fault("L'établissement « " + std::string(establishment) + " » n'est pas de l'entité de la fiche.");
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
      fault("Aucun détail n'a été saisi pour l'avenant du " +
            date_shown(number_or_0(card()(card::kEffective, i))) + ".");
  }
}

void Examination::check_references() {
  for (const Reference& reference : kReferences) {
    std::set<std::string_view> told;
    each_element(card(), reference.attribute, [&](std::string_view code) {
      if (references_.has(reference.list, code) || !told.insert(code).second) return;
      fault(std::string(reference.noun) + " « " + std::string(code) + " » n'existe pas.");
    });
  }
}

void Examination::check_encodings() {
  for (const Figure& figure : kFigures) {
    each_element(card(), figure.attribute, [&](std::string_view text) {
      if (!whole_number(text))
        fault(std::string(figure.noun) + " est illisible : « " + std::string(text) + " ».");
    });
  }
  for (const Flag& flag : kFlags) {
    each_element(card(), flag.attribute, [&](std::string_view text) {
      if (text.size() != 1 || flag.letters.find(text) == flag.letters.npos)
        fault(std::string(flag.noun) + " est illisible : « " + std::string(text) + " ».");
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

Codes column_of_selection(store::Database& database, std::string_view file, int attribute) {
  const store::DbResult found = database.Select(
      store::DbQuery("SSELECT " + std::string(file), file, std::to_string(attribute)).encoded());
  Codes codes;
  for (int i = 1; i <= found.DCount(); ++i) codes.emplace(found(i, 1));
  return codes;
}

}  // namespace

CardCheck::~CardCheck() = default;

CardCheck::CardCheck(store::Database& database) : references_(std::make_unique<References>()) {
  for (const std::string_view list : kIdLists)
    references_->codes[std::string(list)] = column_of_selection(database, list, 0);
  references_->codes[std::string(kTowns)] = column_of_selection(database, kTowns, 1);
  const auto tables = database.OpenFile("TABLES");
  for (const std::string_view table : kTables) {
    const auto record = tables->find(table);
    if (!record) faults_.push_back("L'enregistrement « " + std::string(table) + " » manque dans TABLES.");
    Codes& codes = references_->codes[std::string(table)];
    for (int v = 1; record && v <= record->Count(2); ++v) codes.emplace((*record)(2, v));
  }
  const auto parameters = database.OpenFile("BUDGETPARAM")->find("1");
  if (!parameters) faults_.emplace_back("L'enregistrement « 1 » manque dans BUDGETPARAM.");
  if (parameters)
    references_->reference_day = static_cast<int>(number_or_0((*parameters)(1, parameters->Count(1))));
}

std::vector<std::string> CardCheck::faults_of(std::string_view id, const DbRecord& card) const {
  return Examination(*references_, id, card).faults();
}

}  // namespace velanor::app
