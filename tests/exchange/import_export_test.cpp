#include <gtest/gtest.h>

#include <sstream>

#include "app/velanorctl/open_store.h"
#include "exchange/export_csv.h"
#include "exchange/import_csv.h"
#include "sqlite/temporary_folder.h"
#include "store/notation.h"
#include "velanor/memory_database.h"
#include "velanor/sqlite_database.h"
#include "velanor/wrapped_database.h"

namespace velanor::exchange {
namespace {

using store::MemoryDatabase;
using store::record;

class Import : public testing::Test {
 protected:
  // "created changed", or the faults a line each.
  std::string import(const std::string& table, const std::string& file = "SECTEUR",
                     const ImportOptions& options = {}) {
    std::istringstream in(table);
    const ImportReport report = import_csv(in, database_, file, options);
    if (report.faults.empty())
      return std::to_string(report.created.size()) + " " + std::to_string(report.changed.size());
    std::string faults;
    for (const auto& fault : report.faults)
      faults += std::to_string(fault.line) + ": " + fault.sentence + "\n";
    return faults;
  }
  std::string shown(const std::string& file, const std::string& id) {
    const auto found = database_.find(file, id);
    return found ? store::shown(*found) : "absent";
  }

  MemoryDatabase database_;
};

TEST_F(Import, PutsFieldsWhereTheirHeadingsSay) {
  EXPECT_EQ(import("id;1 Libellé;3,2;30,1,2\n001;Ville;b;x\n002;Bourg;;\n"), "2 0");
  EXPECT_EQ(shown("SECTEUR", "001"), "Ville^^|b^^^^^^^^^^^^^^^^^^^^^^^^^^^~x");
  EXPECT_EQ(shown("SECTEUR", "002"), "Bourg");
}

TEST_F(Import, KeepsNothingWhenARowIsWrongAndNamesEachByItsLine) {
  EXPECT_EQ(import("id;1\n001;Ville\n;vide\n002\n001;Encore\n\"3\"x;y\n"),
            "3: l'identifiant est vide\n"
            "4: 1 champ au lieu de 2\n"
            "5: l'identifiant « 001 » est déjà dans une ligne au-dessus\n"
            "6: un guillemet fermant est suivi d'autre chose que d'un séparateur\n");
  EXPECT_TRUE(database_.files().empty());
}

TEST_F(Import, AskForColumnsThatItCanPlace) {
  EXPECT_EQ(import("id;Nom;Surnom;0;1 Encore\n1;a;b;c;d\n"),
            "1: la colonne « Surnom » n'est pas connue\n1: la colonne « 0 » n'est pas connue\n"
            "1: la colonne « 1 Encore » est là deux fois\n");
  EXPECT_EQ(import("1;2\na;b\n"), "1: il faut une colonne « id »\n");
  EXPECT_EQ(import("Code;Nom\n1;A\n", "VELANORO"),
            "1: il faut une colonne « id », ou les colonnes « Code », « Entité » et « Année »\n");
  EXPECT_EQ(import(""), "1: le tableau est vide ; sa première ligne doit nommer les colonnes\n");
}

TEST_F(Import, ATableThatAsksForTooMuchIsRefusedBeforeItTakesTheRoom) {
  ImportOptions options;
  options.limits = {.columns = 3, .rows = 2, .bytes = 20'000, .remarks = 2};
  EXPECT_EQ(import("id;1;2;3\n001;a;b;c\n", "SECTEUR", options), "1: plus de 3 champs\n");
  EXPECT_EQ(import("id;1\n1;a\n2;b;;;;;;;;\n", "SECTEUR", options), "3: plus de 3 champs\n");
  EXPECT_EQ(import("id;1\n1;a\n2;b\n3;c\n", "SECTEUR", options), "4: le tableau a plus de 2 lignes\n");
  EXPECT_EQ(import("id;9999,9999,9999\n1;a\n2;b\n", "SECTEUR", options),
            "2: jusqu'ici, les enregistrements prennent plus de 0 Mo\n");
  EXPECT_EQ(import("id;10000;1,10000\n"),
            "1: la colonne « 10000 » n'est pas connue\n1: la colonne « 1,10000 » n'est pas connue\n");
  options.limits.rows = 100;
  std::istringstream in("id;1\n;x\n1\n2\n3\n");
  const ImportReport report = import_csv(in, database_, "SECTEUR", options);
  EXPECT_EQ(report.faults.size(), 2U);
  EXPECT_EQ(report.remarks_left_out, 2U);
  EXPECT_TRUE(database_.files().empty());
}

TEST_F(Import, NoElementHasTwoColumns) {
  EXPECT_EQ(import("id;Part 1;11,1\n", "VELANORO"), "1: la colonne « 11,1 » est là deux fois\n");
  EXPECT_EQ(import("id;11,1,1;11,1\n", "VELANORO"), "1: la colonne « 11,1 » est là deux fois\n");
  EXPECT_EQ(import("id;1;1,2\n"), "1: la colonne « 1,2 » est là deux fois\n");
}

// A database in which somebody else saves a record between the reading of a table and its writing.
TEST_F(Import, WhatSomebodyElseSavesMeanwhileIsNotOverwritten) {
  class Meddled : public store::WrappedDatabase {
   public:
    explicit Meddled(MemoryDatabase& memory) : WrappedDatabase(memory), memory_(memory) {}
    int times = 1;

   private:
    void in_one_change(const std::function<void()>& writes) override {
      if (times-- > 0) memory_.put("SECTEUR", "001", record("Bourg^theirs" + std::to_string(times)));
      WrappedDatabase::in_one_change(writes);
    }
    MemoryDatabase& memory_;
  } meddled(database_);
  database_.put("SECTEUR", "001", record("Ville"));
  std::istringstream in("id;1\n001;Bord\n002;Lac\n");
  EXPECT_EQ(import_csv(in, meddled, "SECTEUR").changed.size(), 1U);
  EXPECT_EQ(shown("SECTEUR", "001"), "Bord^theirs0");
  meddled.times = 1000;
  std::istringstream again("id;1\n001;Rive\n003;Mer\n");
  EXPECT_THROW(import_csv(again, meddled, "SECTEUR"), store::DbError);
  EXPECT_EQ(shown("SECTEUR", "003"), "absent");
}

TEST_F(Import, ChangesOnlyTheElementsThatHaveAColumn) {
  database_.put("SECTEUR", "001", record("Ville^b^c"));
  EXPECT_EQ(import("id;1;2\n001;Bourg;\n"), "0 1");
  EXPECT_EQ(shown("SECTEUR", "001"), "Bourg^^c");
}

TEST_F(Import, BarsPartTheValuesOfAnAttributeAndANumberedColumnKeepsThem) {
  EXPECT_EQ(import("id;1;2;3,1\n1;a|b||c;d|;e|f\n"), "1 0");
  EXPECT_EQ(shown("SECTEUR", "001"), "a|b||c^d^e|f");
  EXPECT_EQ((*database_.find("SECTEUR", "001"))(3, 1), "e|f");
  EXPECT_EQ(import("id;1\n1;x\n"), "0 1");
  EXPECT_EQ((*database_.find("SECTEUR", "001"))(1), "x");
}

TEST_F(Import, RowsOfOneIdAreTheValuesOfAListAndAFaultElsewhere) {
  EXPECT_EQ(import("id;2 Code;3 Libellé\nFINCONTRAT;1;Démission\nFINCONTRAT;2;\nQUALIF;AS;Soins\n", "TABLES"),
            "2 0");
  EXPECT_EQ(shown("TABLES", "FINCONTRAT"), "^01|02^Démission");
  EXPECT_EQ(import("id;2 Code\nFINCONTRAT;05\n", "TABLES"), "0 1");
  EXPECT_EQ(shown("TABLES", "FINCONTRAT"), "^05^Démission");
  const std::string twice = "3: l'identifiant « A » est déjà dans une ligne au-dessus\n";
  EXPECT_EQ(import("id;2,1\nA;x\nA;y\n", "TABLES"), twice) << "a column that names its value";
  EXPECT_EQ(import("id;2\nA;x\nA;y\n"), twice) << "a file that is no list";
  EXPECT_EQ(import("id;2\nA;x\nB;y\nA;z\n", "TABLES"), "4" + twice.substr(1)) << "rows apart";
}

TEST_F(Import, IdsAndCodesThatASpreadsheetHasStrippedFindTheirZeros) {
  const struct {
    const char *file, *id, *stored;
  } cases[] = {
      {"ASSOCIATION", "1", "001"},
      {"CONVENTIONCOL", "1", "01"},
      {"SECTEUR", " 10 ", "010"},
      {"PROFIL", "7", "007"},
      {"RUBCHARGE", "801", "801"},
      {"RUBSAISIE", "2", "002"},
      {"COMMUNES", "1001", "01001"},
      {"COMMUNES", "2A004", "2A004"},
      {"ETABLISSEMENT", "1002", "001002"},
      {"ACTIVITES", "12900", "012900"},
      {"GRILLESCCBUDGET", "1101", "01101"},
      {"BUDGETTRAMESAISIE", "102", "0102"},
      {"BUDGETHISTORCUMUL", "10012026", "000010012026"},
      {"TABLES", "7", "7"},
      {"BUDGETPARAM", "1", "1"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.file) + " " + c.id);
    EXPECT_EQ(import("id;1\n" + std::string(c.id) + ";x\n", c.file), "1 0");
    EXPECT_NE(shown(c.file, c.stored), "absent");
  }
  EXPECT_EQ(import("id;1\n12;x\n", "ETABLISSEMENT"), "2: « 12 » n'est pas un identifiant de ETABLISSEMENT\n");
  EXPECT_EQ(import("id;10\n1;1|6\n", "BUDGETPARAM"), "0 1");
  EXPECT_EQ((*database_.find("BUDGETPARAM", "1"))(10, 2), "06");
}

TEST_F(Import, WhatSpreadsheetsLeaveBesideATableIsNoFault) {
  EXPECT_EQ(import("\xEF\xBB\xBFid;1 Nom;;\r\n1;Ville;;\r\n2;Bourg\r\n;;;\r\n;;;\r\n"), "2 0");
  EXPECT_EQ(import("id;1;\n1;Ville;note\n"), "2: 3 champs au lieu de 2\n");
}

TEST_F(Import, ARehearsalSaysEverythingAndWritesNothing) {
  database_.put("SECTEUR", "001", record("Ville^b"));
  database_.put("SECTEUR", "002", record("Bourg^b"));
  std::istringstream in("id;1;2\n1;Ville;c\n2;Bourg;b\n3;Port;\n");
  const ImportReport report = import_csv(in, database_, "SECTEUR", {.rehearsal = true});
  ASSERT_EQ(report.created.size(), 1u);
  EXPECT_EQ(report.created.front().id, "003");
  ASSERT_EQ(report.changed.size(), 1u);
  EXPECT_EQ(report.changed.front().changes, std::vector<std::string>{"2"});
  EXPECT_EQ(report.unchanged, 1);
  EXPECT_EQ(shown("SECTEUR", "001"), "Ville^b");
  EXPECT_EQ(shown("SECTEUR", "003"), "absent");
  EXPECT_EQ(import("id;1\n1;x;y\n", "SECTEUR", {.rehearsal = true}), "2: 3 champs au lieu de 2\n");
}

TEST(ImportIntoAFile, AFailureInTheMiddleLeavesTheBaseAsItWas) {
  TemporaryFolder folder;
  store::SqliteDatabase::Options created;
  created.missing = store::SqliteDatabase::Missing::kCreate;
  store::SqliteDatabase database(folder.file("base"), created);
  std::istringstream in("id;1\n001;Ville\n002;Bourg\n");
  int rows = 0;
  EXPECT_THROW(import_csv(in, database, "SECTEUR", {},
                          [&] {
                            if (++rows == 2) throw std::runtime_error("stop");
                          }),
               std::runtime_error);
  EXPECT_TRUE(database.files().empty());
}

std::string exported(store::Database& database, std::string_view file, const ExportOptions& options = {}) {
  std::ostringstream out;
  export_csv(out, database, file, options);
  return out.str();
}

TEST(Export, AValueHasOneColumnHoweverManyEachRecordHas) {
  MemoryDatabase database;
  database.put("F", "1", record("a^x"));
  database.put("F", "2", record("^y|z^~q"));
  database.put("F", "3", record(""));
  EXPECT_EQ(exported(database, "F"),
            "id;1;2,1;2,2;3,1,1;3,1,2\n"
            "1;a;x;;;\n2;;y;z;;q\n3;;;;;\n");
}

TEST(Export, HeadsItsColumnsByWhatStandsThere) {
  MemoryDatabase database;
  const auto headings = [&](const char* file, const char* stored, Headings kind) {
    database.put(file, "1", record(stored));
    const std::string table = exported(database, file, {.headings = kind});
    return table.substr(0, table.find('\n'));
  };
  EXPECT_EQ(headings("SECTEUR", "Ville", Headings::kPositions), "id;1 Nom");
  EXPECT_EQ(headings("SECTEUR", "Ville", Headings::kNames), "id;1 Nom");
  EXPECT_EQ(headings("COMMUNES", "Ville", Headings::kPositions), "id;1 nom");
  EXPECT_EQ(headings("BUDGETPARAM", "1|2^^x", Headings::kPositions),
            "id;1,1 Date de référence;1,2 Date de référence;3");
  EXPECT_EQ(headings("VELANORO", "A^1^^^^^^^^^001|002", Headings::kPositions),
            "id;1 Nom;2 Horaire de l'établissement;11,1 Part;11,2 Part");
  EXPECT_EQ(headings("VELANORO", "A^1^^^^^^^^^001|002", Headings::kNames),
            "id;Nom;Horaire de l'établissement;Part 1;Part 2");
}

}  // namespace
}  // namespace velanor::exchange
