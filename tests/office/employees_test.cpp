// The table of the employees: what its rows say, how they are found and sorted.
#include "office/employees.h"

#include <gtest/gtest.h>

#include "app/velanorctl/open_store.h"
#include "office/employee_filter.h"
#include "velanor/memory_database.h"

namespace velanor::office {
namespace {

const entry::Date kToday{15, 3, 2026};

std::string day(int d, int m, int y) { return std::to_string(*entry::day_number({d, m, y})); }

// The reference files of the demonstration, and cards of its own in the year 2030 of its first entity.
class TableOfEmployees : public testing::Test {
 protected:
  TableOfEmployees() {
    good_ = database_->OpenFile("VELANORO")->Read("000010012026");
    add("00101", "Émond Zoé", {{7, "A"}, {6, "D"}, {23, day(31, 8, 2026)}});
    add("00102", "EMERY Luc", {{7, "A"}, {6, "I"}, {23, ""}});
    add("00103", "DÉMARET Jean-Paul", {{7, "A"}, {6, "D"}, {23, day(1, 9, 2026)}});
    add("00104", "Zimmer Ève", {{7, "A"}, {6, "I"}, {23, day(30, 6, 2025)}});
    employees_.read(kReach);
    while (employees_.examine(100)) {
    }
  }

  using Changes = std::vector<std::pair<int, std::string>>;
  store::DbRecord card(const std::string& name, const Changes& changes) const {
    store::DbRecord record = good_;
    record.set(1, name);
    for (const auto& [attribute, text] : changes) record.set(attribute, text);
    return record;
  }
  void add(const std::string& code, const std::string& name, const Changes& changes) {
    write(code, card(name, changes));
  }
  void write(const std::string& code, const store::DbRecord& record) {
    database_->OpenFile("VELANORO")->write(code + "0012030", record);
  }
  // The codes of rows, "101 102".
  std::string codes(const std::vector<int>& rows) const {
    std::string text;
    for (const int row : rows) text += (text.empty() ? "" : " ") + employees_.id(row).substr(2, 3);
    return text;
  }
  std::string found(std::string_view typed) const {
    return codes(Filter(typed, employees_.today()).filtered(employees_, employees_.sorted({Column::kCode})));
  }
  std::string cell(const std::string& code, Column column) const {
    for (int row = 0; row < employees_.count(); ++row) {
      if (employees_.id(row).starts_with(code)) return employees_.at(row, column).shown;
    }
    return "no such row";
  }

  static inline const Employees::Reach kReach{"001", "2030"};
  std::unique_ptr<store::Database> database_ = app::open_store({.url = "", .demo = true});
  store::DbRecord good_;
  Employees employees_{*database_, [] { return kToday; }};
};

TEST_F(TableOfEmployees, ReadInStepsItIsTheSameAndOneGivenUpIsReadAnew) {
  Employees steps(*database_, [] { return kToday; });
  ASSERT_TRUE(steps.begin(kReach));
  EXPECT_TRUE(steps.read_on(1));
  EXPECT_EQ(steps.count(), 1);
  ASSERT_TRUE(steps.begin(kReach)) << "it was not read to its end";
  int rounds = 1;
  while (steps.read_on(1)) ++rounds;
  EXPECT_EQ(rounds, 4);
  ASSERT_EQ(steps.count(), employees_.count());
  for (int row = 0; row < steps.count(); ++row) EXPECT_EQ(steps.id(row), employees_.id(row));
  EXPECT_FALSE(steps.begin(kReach)) << "nothing has changed";
}

TEST_F(TableOfEmployees, ShowsCodesByTheirLabelsAndLettersAsWords) {
  ASSERT_EQ(employees_.count(), 4);
  const auto label = [&](const char* file, int attribute) {
    return std::string(database_->OpenFile(file)->Read(good_(attribute))(1));
  };
  EXPECT_EQ(cell("00101", Column::kCode), "00101");
  EXPECT_EQ(cell("00101", Column::kName), "Émond Zoé");
  EXPECT_EQ(cell("00101", Column::kEstablishment), label("ETABLISSEMENT", 40));
  EXPECT_EQ(cell("00101", Column::kSector), label("SECTEUR", 4));
  EXPECT_EQ(cell("00101", Column::kAgreement), label("CONVENTIONCOL", 3));
  EXPECT_EQ(cell("00101", Column::kContract), "CDD");
  EXPECT_EQ(cell("00102", Column::kContract), "CDI");
  EXPECT_EQ(cell("00101", Column::kEnd), "31/08/2026");
  EXPECT_EQ(cell("00102", Column::kEnd), "");
  EXPECT_EQ(cell("00101", Column::kStaff), "Administration");
  EXPECT_EQ(cell("00101", Column::kAmendments), std::to_string(good_.Count(12)));
}

TEST_F(TableOfEmployees, CodesThatHaveLeftTheirFilesAndTextsThatAreNoDatesShowThemselves) {
  add("00105", "A", {{4, "777"}, {40, "001888"}, {6, "X"}, {23, "jamais"}});
  employees_.renew("001050012030");
  EXPECT_EQ(cell("00105", Column::kSector), "777");
  EXPECT_EQ(cell("00105", Column::kEstablishment), "888");
  EXPECT_EQ(cell("00105", Column::kContract), "X");
  EXPECT_EQ(cell("00105", Column::kEnd), "jamais");
}

// Of the amendments the last one that has begun; those of production staff have their hours in items.
TEST_F(TableOfEmployees, HoursAreThoseOfTheAmendmentInForceToday) {
  store::DbRecord record = card("Durée", {{7, "A"}, {2, "15000"}});
  for (const int attribute : {12, 18}) record.set(attribute, "");
  record.set(12, 1, day(1, 1, 2020));
  record.set(12, 2, day(15, 3, 2026));
  record.set(12, 3, day(16, 3, 2026));
  record.set(18, 1, "15000");
  record.set(18, 2, "10005");
  record.set(18, 3, "1");
  write("00106", record);
  record.set(7, "P");
  for (const int attribute : {30, 31}) record.set(attribute, "");
  std::string hours_item, other_item;
  const auto items = database_->Select(store::DbQuery("SSELECT RUBSAISIE", "RUBSAISIE", "0 2").encoded());
  for (int i = 1; i <= items.DCount(); ++i) (items(i, 2) == "3" ? hours_item : other_item) = items(i, 1);
  record.set(30, 2, 1, hours_item);
  record.set(30, 2, 2, other_item);
  record.set(30, 2, 3, hours_item);
  record.set(31, 2, 1, "5000");
  record.set(31, 2, 2, "99900");
  record.set(31, 2, 3, "2525");
  if (database_->OpenFile("RUBSAISIE")->Read(other_item)(2) == "4") record.set(31, 2, 2, "0");
  write("00107", record);
  record.set(12, 1, day(1, 4, 2026));
  record.set(12, 2, "");
  write("00108", record);
  for (const char* id : {"001060012030", "001070012030", "001080012030"}) employees_.renew(id);
  employees_.examine(100);
  EXPECT_EQ(cell("00106", Column::kHours), "100,05");
  EXPECT_EQ(cell("00106", Column::kFullTime), "0,67");
  EXPECT_EQ(cell("00107", Column::kHours), "75,25");
  EXPECT_EQ(cell("00107", Column::kFullTime), "0,50");
  EXPECT_EQ(cell("00108", Column::kHours), "") << "nothing is in force yet";
}

TEST_F(TableOfEmployees, StateIsWhatTheCheckFindsSomeCardsAtATime) {
  store::DbRecord sound = database_->OpenFile("VELANORO")->Read("000010012026");
  write("00109", sound);
  sound.set(1, "");
  write("00110", sound);
  sound.set(5, "");
  write("00111", sound);
  for (const char* code : {"00109", "00110", "00111"}) employees_.renew(std::string(code) + "0012030");
  EXPECT_EQ(cell("00109", Column::kState), "");
  EXPECT_TRUE(employees_.examine(2)) << "one is left";
  EXPECT_FALSE(employees_.examine(2));
  EXPECT_EQ(cell("00109", Column::kState), "complète");
  EXPECT_EQ(cell("00110", Column::kState), "1 faute");
  EXPECT_EQ(cell("00111", Column::kState), "2 fautes");
}

TEST_F(TableOfEmployees, IsFoundByWhatIsTyped) {
  const struct {
    const char *typed, *found;
  } cases[] = {
      {"", "101 102 103 104"},
      {"   ", "101 102 103 104"},
      {"em", "101 102 103"},
      {"EMO", "101"},
      {"émo", "101"},
      {"zoe", "101"},
      {"jean-paul", "103"},
      {"102", "102"},
      {"em cdd", "101 103"},
      {"em -cdd", "102"},
      {"-em", "104"},
      {"-", "101 102 103 104"},
      {"08/2026", "101"},
      {"nom:em", "101 102 103"},
      {"nom:", "101 102 103 104"},
      {"code:em", ""},
      {"-nom:em", "104"},
      {"contrat:cdi", "102 104"},
      {"contr:cdi", "102 104"},
      {"fin<01/09", "101 104"},
      {"fin<=01/09", "101 103 104"},
      {"fin>=01/09/2026", "103"},
      {"fin>31/08/26", "103"},
      {"fin=31/08/2026", "101"},
      {"fin=2026", "101 103"},
      {"fin>2025", "101 103"},
      {"fin>=2025", "101 103 104"},
      {"fin<=08/2026", "101 104"},
      {"-fin<01/09", "102 103"},
      {"FIN<01/09 -contrat:cdi", "101"},
      {"avenants>0", "101 102 103 104"},
      {"aven<0,5", ""},
      {"code<3", ""},
      {"fin<31/02", ""},
      {"fin<", ""},
      {"etp<x", ""},
      {"zzz:em", ""},
      {"e:em", ""},
      {"2030", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.typed);
    EXPECT_EQ(found(c.typed), c.found);
  }
}

TEST_F(TableOfEmployees, ComparesFiguresInTheirOwnDecimals) {
  add("00112", "H", {{7, "A"}, {2, "15000"}});
  auto record = database_->OpenFile("VELANORO")->Read("001120012030");
  record.set(12, "");
  record.set(12, 1, day(1, 1, 2020));
  record.set(18, "");
  record.set(18, 1, "7583");
  write("00112", record);
  employees_.renew("001120012030");
  employees_.examine(100);
  for (const auto* typed :
       {"heures=75,83", "heures=75.83", "heures<76", "heures>75,82", "etp>0,5", "etp<=0,51", "heures:75,8"})
    EXPECT_EQ(codes(Filter(std::string("nom:h code:112 ") + typed, employees_.today())
                        .filtered(employees_, employees_.sorted({}))),
              "112")
        << typed;
  for (const auto* typed : {"heures>75,83", "heures=75", "heures=75,831", "etp<0,51"})
    EXPECT_EQ(found(std::string("code:112 ") + typed), "") << typed;
}

TEST_F(TableOfEmployees, SortsNamesAsADictionaryAndDatesByTheirDay) {
  const struct {
    Sorting sorting;
    const char* codes;
  } cases[] = {
      {{Column::kName}, "103 102 101 104"},           {{Column::kName, true}, "104 101 102 103"},
      {{Column::kCode, true}, "104 103 102 101"},     {{Column::kEnd}, "104 101 103 102"},
      {{Column::kEnd, true}, "103 101 104 102"},      {{Column::kContract}, "103 101 102 104"},
      {{Column::kContract, true}, "102 104 103 101"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.codes);
    EXPECT_EQ(codes(employees_.sorted(c.sorting)), c.codes);
  }
}

TEST_F(TableOfEmployees, FiguresAreSortedByValue) {
  const std::pair<const char*, const char*> hours[] = {
      {"00201", "900"}, {"00202", "10000"}, {"00203", "15167"}};
  for (const auto& [code, figure] : hours) {
    store::DbRecord record = card("Durée", {{7, "A"}, {12, ""}, {18, ""}});
    record.set(12, 1, day(1, 1, 2020));
    record.set(18, 1, figure);
    write(code, record);
    employees_.renew(std::string(code) + "0012030");
  }
  employees_.examine(10);
  const Filter three("code:002", employees_.today());
  EXPECT_EQ(codes(three.filtered(employees_, employees_.sorted({Column::kHours}))), "201 202 203");
  EXPECT_EQ(codes(three.filtered(employees_, employees_.sorted({Column::kHours, true}))), "203 202 201");
}

TEST_F(TableOfEmployees, FollowsCardsOneByOneAndReadsNothingTwice) {
  EXPECT_FALSE(employees_.read(kReach)) << "nothing has changed";
  add("00120", "Neuf", {});
  EXPECT_TRUE(employees_.renew("001200012030"));
  EXPECT_EQ(found("nom:neuf"), "120");
  add("00120", "Nouveau", {});
  employees_.renew("001200012030");
  EXPECT_EQ(found("nom:neuf"), "");
  EXPECT_EQ(found("nom:nouveau"), "120");
  database_->OpenFile("VELANORO")->DeleteRecord("001200012030");
  employees_.renew("001200012030");
  EXPECT_EQ(employees_.count(), 4);
  EXPECT_FALSE(employees_.renew("000010012026")) << "of another year";
  EXPECT_TRUE(employees_.read(kReach));
}

TEST_F(TableOfEmployees, ReachesAllEntitiesAndYears) {
  employees_.read({});
  const auto all = employees_.sorted({});
  EXPECT_EQ(Filter("2030", employees_.today()).filtered(employees_, all).size(), 4u);
  EXPECT_EQ(Filter("annee=2030 entite:001", employees_.today()).filtered(employees_, all).size(), 4u);
  EXPECT_GT(Filter("entite:002", employees_.today()).filtered(employees_, all).size(), 4u);
  EXPECT_TRUE(employees_.renew("000010012026"));
}

}  // namespace
}  // namespace velanor::office
