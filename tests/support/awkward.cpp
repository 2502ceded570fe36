#include "support/awkward.h"

#include <functional>
#include <string>
#include <vector>

#include "card/record/record_layout.h"
#include "velanor/date.h"

namespace velanor::test {
namespace {

using store::DbRecord;

DbRecord record_of(const std::vector<std::pair<int, const char*>>& attributes) {
  DbRecord record;
  for (const auto& [attribute, text] : attributes) record.set(attribute, text);
  return record;
}

// Grids of one label: twice in a generation, once in each, twice under an agreement without them.
void add_reference_records(store::MemoryDatabase& database) {
  const struct {
    const char *file, *id;
    std::vector<std::pair<int, const char*>> attributes;
  } records[] = {
      {"GRILLESCCBUDGET", "01418", {{1, "Intervention employé degré 2"}, {9, "AVS"}}},
      {"GRILLESCCBUDGET", "01113", {{1, "Intervention employé degré 2"}, {9, "AVS"}}},
      {"GRILLESCCBUDGET", "01114", {{1, "Intervention employé degré 2"}, {9, "EMD"}}},
      {"GRILLESCCBUDGET", "06418", {{1, "Soins degré 1"}, {9, "AS"}}},
      {"GRILLESCCBUDGET", "06203", {{1, "Soins degré 1"}, {9, "INF"}}},
      {"GRILLESCCBUDGET", "03310", {{1, "Infirmier"}, {7, "D"}, {9, "INF"}}},
      {"ACTIVITES", "001070", {{1, "Accompagnement des familles (A)"}}},
      {"ACTIVITES", "001071", {{1, "Accompagnement des familles (B)"}}},
      {"ASSOCIATION", "009", {{1, "Association sans personnel"}}},
  };
  for (const auto& record : records) database.put(record.file, record.id, record_of(record.attributes));
}

std::string day(int d, int m, int y) { return std::to_string(*entry::day_number({d, m, y})); }

void set_values(DbRecord& card, int attribute, const std::vector<std::string>& values) {
  card.set(attribute, {});
  for (const std::string& value : values) card.set(attribute, store::kAppend, value);
}

// Two amendments on the given grids, otherwise as the card's first.
void put_grids(DbRecord& card, const std::vector<std::string>& dates, const std::vector<std::string>& grids) {
  card.set(card::kContractStart, dates.front());
  set_values(card, card::kEffective, dates);
  set_values(card, card::kGridStart, dates);
  set_values(card, card::kGrid, grids);
  const std::string qualification(card(card::kQualification, 1)), measure(card(card::kNewMeasure, 1));
  for (int attribute : {int(card::kQualification), int(card::kCategory), int(card::kHourlyRate),
                        int(card::kMonthlyTime), int(card::kNewMeasure)})
    card.set(attribute, {});
  for (int attribute : card::kItemColumns) card.set(attribute, {});
  for (int i = 1; i <= static_cast<int>(dates.size()); ++i) {
    card.set(card::kQualification, i, qualification);
    card.set(card::kNewMeasure, i, measure);
    card.set(card::kItemCode, i, 1, "001");
    card.set(card::kItemBase, i, 1, std::to_string(10000 + i));
    card.set(card::kItemRate, i, 1, "0");
    card.set(card::kItemAmount, i, 1, "");
  }
}

void put_dates(DbRecord& card, const std::vector<std::string>& dates) {
  const std::string grid(card(card::kGrid, 1));
  put_grids(card, dates, std::vector<std::string>(dates.size(), grid));
}

// More items than the form shows at once, some that cannot be entered by hand or have left their file.
void put_many_items(DbRecord& card) {
  for (int i = 1; i <= card.Count(card::kEffective); ++i) {
    for (int n = 1; n <= 20; ++n) {
      const char* const code = n == 4 ? "041" : n == 8 ? "999" : n % 2 == 0 ? "022" : "001";
      card.set(card::kItemCode, i, n, code);
      card.set(card::kItemBase, i, n, std::to_string(100 * n));
      card.set(card::kItemRate, i, n, n % 2 == 0 ? "3800" : "0");
      card.set(card::kItemAmount, i, n, n % 2 == 0 ? std::to_string(38 * n) : "");
    }
  }
}

void put_unknown_codes(DbRecord& card) {
  card.set(card::kTown, "Atlantide");
  card.set(card::kSector, "555");
  card.set(card::kProfile1, "998");
  card.set(card::kProfile2, "999");
  card.set(card::kContractEnd, day(31, 12, 2026));
  card.set(card::kEndReason, "77");
  card.set(card::kContractNature, "88");
  card.set(card::kEducation, "9");
  card.set(card::kMutualCharge, "999");
  card.set(card::kActivity, 1, "001999");
  card.set(card::kGrid, 1, "01999");
  card.set(card::kQualification, 1, "ZZZ");
}

void put_long_figures(DbRecord& card) {
  for (int attribute : {int(card::kCeiling), int(card::kSocialBase), int(card::kMutualEmployee),
                        int(card::kMutualEmployer), int(card::kExemptedHours)})
    card.set(attribute, "123456789012");
  card.set(card::kEstablishmentHours, "1234567");
  card.set(card::kShare, 1, "12345678");
  card.set(card::kHourlyRate, 1, "987654321");
  card.set(card::kMonthlyTime, 1, "987654321");
  card.set(card::kItemBase, 1, 1, "987654321");
  card.set(card::kItemRate, 1, 1, "987654321");
  card.set(card::kItemAmount, 1, 1, "987654321");
}

void put_unreadable_figures(DbRecord& card) {
  card.set(card::kBirth, "hier");
  card.set(card::kSocialBase, "abc");
  card.set(card::kExemptedHours, "1e3");
  card.set(card::kGridStart, 1, "99999999");
  card.set(card::kHourlyRate, 1, "x1");
  card.set(card::kShare, 1, "tout");
  card.set(card::kItemBase, 1, 1, "b1");
}

using Change = std::function<void(DbRecord&)>;

// The changes that fit the cards of any entity.
std::vector<Change> common_changes() {
  return {
      [](DbRecord&) {},  // namesakes of the card that it was made from
      [](DbRecord&) {},
      put_unknown_codes,
      put_long_figures,
      put_unreadable_figures,
      [](DbRecord& card) { card.set(card::kEstablishment, "002002"); },
      [](DbRecord& card) { card.set(card::kEstablishment, "001003"); },
      [](DbRecord& card) {
        card = record_of({{card::kName, "SANS RIEN"}});
      },
      [](DbRecord& card) {
        for (int attribute : {int(card::kActivity), int(card::kShare), int(card::kEffective)})
          card.set(attribute, {});
      },
  };
}

// Dates out of order and met twice, many items, grids of one label, by the agreement.
std::vector<Change> changes_of_lines(std::string_view agreement) {
  const std::string before = day(1, 3, 2020), after = day(1, 2, 2023), later = day(1, 9, 2024);
  const auto grids = [=](std::string a, std::string b, std::string c) -> Change {
    return [=](DbRecord& card) { put_grids(card, {before, after, later}, {a, b, c}); };
  };
  std::vector<Change> changes{
      put_many_items,
      [](DbRecord& card) {
        put_dates(card, {day(1, 6, 2024), day(1, 1, 2025), day(1, 9, 2024)});
      },
      [](DbRecord& card) {
        put_dates(card, {day(1, 1, 2023), day(1, 1, 2024), day(1, 1, 2024)});
      },
  };
  if (agreement == "01") {
    changes.push_back(grids("01113", "01418", "01418"));
    changes.push_back(grids("01114", "01412", "01418"));
  } else if (agreement == "06") {
    changes.push_back(grids("06203", "06418", "06411"));
    changes.push_back(grids("06203", "06418", "06418"));
  } else {
    changes.push_back(grids("03300", "03310", "03310"));
  }
  return changes;
}

}  // namespace

void add_awkward_records(store::MemoryDatabase& database) {
  add_reference_records(database);
  for (const auto& [entity, agreement] : {std::pair{"001", "01"}, {"002", "03"}, {"003", "06"}}) {
    const std::string end = std::string(entity) + "2026";
    std::vector<DbRecord> models;
    database.for_each("VELANORO", [&](std::string_view id, const DbRecord& card) {
      if (id.ends_with(end) && card(card::kAgreement) == agreement && card(card::kContractEnd).empty())
        models.push_back(card);
    });
    std::vector<Change> changes = common_changes();
    for (int times = 0; times < 3; ++times) {
      for (Change& change : changes_of_lines(agreement)) changes.push_back(std::move(change));
    }
    constexpr int kFirst = 90000, kNamesakes = kFirst + 2;
    int code = kFirst;
    for (const Change& change : changes) {
      DbRecord card = models.at(static_cast<std::size_t>(++code) % models.size());
      // A list opens the first of its namesakes, so most have a name of their own.
      if (code > kNamesakes) card.set(card::kName, "BIZARRE " + std::to_string(code));
      change(card);
      database.put("VELANORO", std::to_string(code) + end, card);
    }
  }
}

}  // namespace velanor::test
