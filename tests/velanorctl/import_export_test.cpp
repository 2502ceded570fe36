#include <gtest/gtest.h>

#include <sstream>

#include "app/velanorctl/export_csv.h"
#include "app/velanorctl/import_csv.h"
#include "app/velanorctl/open_store.h"
#include "sqlite/temporary_folder.h"
#include "store/memory_database.h"
#include "store/notation.h"
#include "store/sqlite/sqlite_database.h"

namespace velanor::app {
namespace {

using store::MemoryDatabase;
using store::record;

class Import : public testing::Test {
 protected:
  // "created changed", or the faults a line each.
  std::string import(const std::string& table, const std::string& file = "SECTEUR") {
    std::istringstream in(table);
    const ImportReport report = import_csv(in, database_, file);
    if (report.faults.empty()) return std::to_string(report.created) + " " + std::to_string(report.changed);
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
            "4: 1 champs au lieu de 2\n"
            "5: l'identifiant « 001 » est déjà dans une ligne au-dessus\n"
            "6: un guillemet fermant est suivi d'autre chose que d'un séparateur\n");
  EXPECT_TRUE(database_.files().empty());
}

TEST_F(Import, AskForColumnsThatItCanPlace) {
  EXPECT_EQ(import("id;Nom;0\n1;a;b\n"),
            "1: la colonne « Nom » n'est pas connue\n1: la colonne « 0 » n'est pas connue\n");
  EXPECT_EQ(import("1;2\na;b\n"), "1: il faut une colonne « id »\n");
  EXPECT_EQ(import("Code;Nom\n1;A\n", "VELANORO"),
            "1: il faut une colonne « id », ou les colonnes « Code », « Entité » et « Année »\n");
  EXPECT_EQ(import(""), "1: le tableau est vide ; sa première ligne doit nommer les colonnes\n");
}

TEST_F(Import, ChangesOnlyTheElementsThatHaveAColumn) {
  database_.put("SECTEUR", "001", record("Ville^b^c"));
  EXPECT_EQ(import("id;1;2\n001;Bourg;\n"), "0 1");
  EXPECT_EQ(shown("SECTEUR", "001"), "Bourg^^c");
}

TEST_F(Import, APersonnelListGivesAnEntityItsFirstYear) {
  EXPECT_EQ(import("Code;Entité;Année;Nom;Convention;Établissement;Type de contrat;Personnel;"
                   "Début de contrat;Horaire de l'établissement;Date d'effet 1;Taux horaire 1;Base 1.2\n"
                   "12;7;2026;Müller Zoé;1;2;cdi;Production;1/2/2024;151,67;01/02/24;12,345;10\n",
                   "VELANORO"),
            "1 0");
  const auto card = database_.find("VELANORO", "000120072026");
  ASSERT_TRUE(card);
  const struct {
    int attribute;
    const char* stored;
  } expected[] = {{1, "MÜLLER ZOÉ"}, {2, "15167"},  {3, "01"},     {6, "I"},  {7, "P"},
                  {8, "20486"},      {12, "20486"}, {17, "12345"}, {39, "0"}, {40, "007002"}};
  for (const auto& e : expected) EXPECT_EQ((*card)(e.attribute), e.stored) << "attribute " << e.attribute;
  EXPECT_EQ((*card)(31, 1, 2), "1000");
  const auto years = database_.Select(
      store::DbQuery("SSELECT VELANORO PAR CodeAsso PAR-DECR Annee", "VELANORO", "0").encoded());
  EXPECT_EQ(years.DCount(), 1);
}

TEST_F(Import, AFieldThatTheScreenWouldRefuseIsAFault) {
  EXPECT_EQ(import("id;Début de contrat;Plafond;Personnel\n"
                   "000010012026;31/02/2024;cher;Z\n12;;;\n",
                   "VELANORO"),
            "2: Début de contrat : « 31/02/2024 » n'est pas une date (jj/mm/aaaa)\n"
            "2: Plafond : « cher » n'est pas un nombre\n"
            "2: Personnel : « Z » n'est pas PRODUCTION ou ADMINISTRATION\n"
            "3: « 12 » n'est pas un code de salarié (5 chiffres), d'entité (3) et une année (4)\n");
}

TEST_F(Import, ResultsThatNoLongerFitACardAreEmptiedAndOthersKept) {
  store::DbRecord card = record("MARTIN^15167^01^001");
  card.set(25, "99");
  card.set(39, "1");
  database_.put("VELANORO", "000010012026", card);
  import("id;Secteur\n000010012026;2\n", "VELANORO");
  EXPECT_EQ((*database_.find("VELANORO", "000010012026"))(25), "99");
  import("id;Convention\n000010012026;3\n", "VELANORO");
  EXPECT_EQ((*database_.find("VELANORO", "000010012026"))(25), "");
  EXPECT_EQ((*database_.find("VELANORO", "000010012026"))(39), "1");
}

TEST(ImportIntoAFile, AFailureInTheMiddleLeavesTheBaseAsItWas) {
  TemporaryFolder folder;
  store::SqliteDatabase::Options created;
  created.missing = store::SqliteDatabase::Missing::kCreate;
  store::SqliteDatabase database(folder.file("base"), created);
  std::istringstream in("id;1\n001;Ville\n002;Bourg\n");
  int rows = 0;
  EXPECT_THROW(import_csv(in, database, "SECTEUR",
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

TEST(Export, WhatItWritesComesBackTheSameInEveryForm) {
  const auto demonstration = open_store({.url = "", .demo = true});
  for (const char* file : {"VELANORO", "TABLES", "GRILLESCCBUDGET", "RUBSAISIE", "BUDGETPARAM"}) {
    for (const char separator : {';', ','}) {
      for (const Headings headings : {Headings::kPositions, Headings::kNames}) {
        SCOPED_TRACE(std::string(file) + separator);
        MemoryDatabase copy;
        std::istringstream table(
            exported(*demonstration, file, {.headings = headings, .separator = separator}));
        EXPECT_TRUE(import_csv(table, copy, file).faults.empty());
        EXPECT_EQ(exported(copy, file), exported(*demonstration, file));
      }
    }
  }
}

}  // namespace
}  // namespace velanor::app
