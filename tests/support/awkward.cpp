#include "support/awkward.h"

#include <functional>
#include <string>
#include <vector>

#include "card/record/element.h"
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

void set_values(DbRecord& card, const card::Field& field, const std::vector<std::string>& values) {
  set_element(card, field, "");
  for (const std::string& value : values) set_element(card, field, store::kAppend, value);
}

void empty(DbRecord& card, std::initializer_list<card::Field> fields) {
  for (const card::Field& field : fields) set_element(card, field, "");
}

// Two amendments on the given grids, otherwise as the card's first.
void put_grids(DbRecord& card, const std::vector<std::string>& dates, const std::vector<std::string>& grids) {
  set_element(card, card::kContractStart, dates.front());
  set_values(card, card::kEffective, dates);
  set_values(card, card::kGridStart, dates);
  set_values(card, card::kGrid, grids);
  const std::string qualification(element(card, card::kQualification, 1)),
      measure(element(card, card::kNewMeasure, 1));
  empty(card, {card::kQualification, card::kCategory, card::kHourlyRate, card::kMonthlyTime,
               card::kNewMeasure, card::kItemCode, card::kItemBase, card::kItemRate, card::kItemAmount});
  for (int i = 1; i <= static_cast<int>(dates.size()); ++i) {
    set_element(card, card::kQualification, i, qualification);
    set_element(card, card::kNewMeasure, i, measure);
    set_element(card, card::kItemCode, i, 1, "001");
    set_element(card, card::kItemBase, i, 1, std::to_string(10000 + i));
    set_element(card, card::kItemRate, i, 1, "0");
    set_element(card, card::kItemAmount, i, 1, "");
  }
}

void put_dates(DbRecord& card, const std::vector<std::string>& dates) {
  const std::string grid(element(card, card::kGrid, 1));
  put_grids(card, dates, std::vector<std::string>(dates.size(), grid));
}

// More items than the form shows at once, some that cannot be entered by hand or have left their file.
void put_many_items(DbRecord& card) {
  for (int i = 1; i <= card.Count(card::kEffective.number); ++i) {
    for (int n = 1; n <= 20; ++n) {
      const char* const code = n == 4 ? "041" : n == 8 ? "999" : n % 2 == 0 ? "022" : "001";
      set_element(card, card::kItemCode, i, n, code);
      set_element(card, card::kItemBase, i, n, std::to_string(100 * n));
      set_element(card, card::kItemRate, i, n, n % 2 == 0 ? "3800" : "0");
      set_element(card, card::kItemAmount, i, n, n % 2 == 0 ? std::to_string(38 * n) : "");
    }
  }
}

void put_unknown_codes(DbRecord& card) {
  set_element(card, card::kTown, "Atlantide");
  set_element(card, card::kSector, "555");
  set_element(card, card::kProfile1, "998");
  set_element(card, card::kProfile2, "999");
  set_element(card, card::kContractEnd, day(31, 12, 2026));
  set_element(card, card::kEndReason, "77");
  set_element(card, card::kContractNature, "88");
  set_element(card, card::kEducation, "9");
  set_element(card, card::kMutualCharge, "999");
  set_element(card, card::kActivity, 1, "001999");
  set_element(card, card::kGrid, 1, "01999");
  set_element(card, card::kQualification, 1, "ZZZ");
}

void put_long_figures(DbRecord& card) {
  for (const auto& figure : {card::kCeiling, card::kSocialBase, card::kMutualEmployee, card::kMutualEmployer,
                             card::kExemptedHours})
    set_element(card, figure, "123456789012");
  set_element(card, card::kEstablishmentHours, "1234567");
  set_element(card, card::kShare, 1, "12345678");
  set_element(card, card::kHourlyRate, 1, "987654321");
  set_element(card, card::kMonthlyTime, 1, "987654321");
  set_element(card, card::kItemBase, 1, 1, "987654321");
  set_element(card, card::kItemRate, 1, 1, "987654321");
  set_element(card, card::kItemAmount, 1, 1, "987654321");
}

void put_unreadable_figures(DbRecord& card) {
  set_element(card, card::kBirth, "hier");
  set_element(card, card::kSocialBase, "abc");
  set_element(card, card::kExemptedHours, "1e3");
  set_element(card, card::kGridStart, 1, "99999999");
  set_element(card, card::kHourlyRate, 1, "x1");
  set_element(card, card::kShare, 1, "tout");
  set_element(card, card::kItemBase, 1, 1, "b1");
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
      [](DbRecord& card) { set_element(card, card::kEstablishment, "002002"); },
      [](DbRecord& card) { set_element(card, card::kEstablishment, "001003"); },
      [](DbRecord& card) {
        card = {};
        set_element(card, card::kName, "SANS RIEN");
      },
      [](DbRecord& card) {
        empty(card, {card::kActivity, card::kShare, card::kEffective});
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
      if (id.ends_with(end) && element(card, card::kAgreement) == agreement &&
          element(card, card::kContractEnd).empty())
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
      if (code > kNamesakes) set_element(card, card::kName, "BIZARRE " + std::to_string(code));
      change(card);
      database.put("VELANORO", std::to_string(code) + end, card);
    }
  }
}

}  // namespace velanor::test
