// What an import makes of cards, and which it refuses.
#include <gtest/gtest.h>

#include <sstream>

#include "control/session/card_id.h"
#include "exchange/import_csv.h"
#include "store/notation.h"
#include "velanor/memory_database.h"

namespace velanor::exchange {
namespace {

using store::record;

class ImportOfCards : public testing::Test {
 protected:
  void SetUp() override {
    for (const auto& [file, ids] : {std::pair{"ASSOCIATION", "004 007"},
                                    {"CONVENTIONCOL", "01"},
                                    {"SECTEUR", "010"},
                                    {"ETABLISSEMENT", "007002 007012"},
                                    {"ACTIVITES", "007010 007900 004010"},
                                    {"PROFIL", "007"},
                                    {"GRILLESCCBUDGET", "01101"},
                                    {"RUBSAISIE", "001 022"}}) {
      std::istringstream words(ids);
      for (std::string id; words >> id;) database_.put(file, id, record("x"));
    }
    database_.put("COMMUNES", "01001", record("Niort"));
    database_.put("TABLES", "FINCONTRAT", record("^01|02"));
    database_.put("TABLES", "QUALIF", record("^AS|007"));
    options_.clock = [] { return entry::Date{15, 3, 2026}; };
  }
  // "created changed", or the faults a line each; the remarks after either.
  std::string import(const std::string& table) {
    std::istringstream in(table);
    const ImportReport report = import_csv(in, database_, "VELANORO", options_);
    std::string told;
    for (const auto& fault : report.faults) told += std::to_string(fault.line) + ": " + fault.sentence + "\n";
    if (report.faults.empty())
      told = std::to_string(report.created.size()) + " " + std::to_string(report.changed.size());
    for (const auto& remark : report.remarks)
      told += "\n" + std::to_string(remark.line) + "? " + remark.sentence;
    return told;
  }
  store::DbRecord card(const std::string& id = "000120072026") {
    return database_.find("VELANORO", id).value_or(record("absent"));
  }

  store::MemoryDatabase database_;
  ImportOptions options_;
};

TEST_F(ImportOfCards, APersonnelListGivesAnEntityItsFirstYear) {
  EXPECT_EQ(import("Code;Entité;Année;Nom;Convention;Établissement;Type de contrat;Personnel;"
                   "Début de contrat;Horaire de l'établissement;Date d'effet 1;Taux horaire 1;Base 1.2\n"
                   "12;7;2026;Müller Zoé;1;2;cdi;Production;1/2/2024;151,67;01/02/24;12,345;10\n"),
            "1 0");
  const struct {
    int attribute;
    const char* stored;
  } expected[] = {{1, "MÜLLER ZOÉ"}, {2, "15167"},  {3, "01"},     {6, "I"},  {7, "P"},
                  {8, "20486"},      {12, "20486"}, {17, "12345"}, {39, "0"}, {40, "007002"}};
  for (const auto& e : expected) EXPECT_EQ(card()(e.attribute), e.stored) << "attribute " << e.attribute;
  EXPECT_EQ(card()(31, 1, 2), "1000");
  card::name_id_parts(database_);
  const auto years = database_.Select(
      store::DbQuery("SSELECT VELANORO PAR CodeAsso PAR-DECR Annee", "VELANORO", "0").encoded());
  EXPECT_EQ(years.DCount(), 1);
}

TEST_F(ImportOfCards, AFieldThatTheScreenWouldRefuseIsAFault) {
  const std::string long_name(51, 'A');
  const struct {
    const char* heading;
    std::string field, told;
  } cases[] = {
      {"Début de contrat", "31/02/2024", "Début de contrat : « 31/02/2024 » n'est pas une date (jj/mm/aaaa)"},
      {"Plafond", "cher", "Plafond : « cher » n'est pas un nombre"},
      {"Plafond", "1,234", "Plafond : « 1,234 » a plus de 2 décimales"},
      {"Personnel", "Z", "Personnel : « Z » n'est pas PRODUCTION ou ADMINISTRATION"},
      {"Nom", long_name, "Le nom dépasse les 50 caractères de sa case : « " + long_name + " »."},
      {"1", long_name, "Le nom dépasse les 50 caractères de sa case : « " + long_name + " »."},
      {"Catégorie 2", "ABC", "La catégorie d'un avenant dépasse les 2 caractères de sa case : « ABC »."},
      {"Taux horaire 1", "1234,5", "Un taux horaire dépasse les 7 caractères de sa case : « 1234,500 »."},
      {"Base 1.1", "123456", "Une base de rubrique dépasse les 8 caractères de sa case : « 123456,00 »."},
      {"Part 1", "-1", "La part d'une activité est au-dessous de zéro : « -1,00 »."},
      {"22", "cher", "Le plafond de sécurité sociale est illisible : « cher »."},
      {"8", "hier", "La date de début de contrat est illisible : « hier »."},
      {"6", "X", "Le type de contrat est illisible : « X »."},
      {"Secteur", "999", "Le secteur « 999 » n'existe pas dans SECTEUR."},
      {"Rubrique 1.2", "2", "La rubrique « 002 » n'existe pas dans RUBSAISIE."},
      {"10", "007010|7011", "L'activité « 007011 » n'existe pas dans ACTIVITES."},
      {"Commune", "Atlantis", "La commune « Atlantis » n'existe pas dans COMMUNES."},
      {"Motif de fin", "9", "Le motif de fin de contrat « 09 » n'existe pas dans TABLES (FINCONTRAT)."},
      {"Date de naissance", "16/03/2026", "La date de naissance est dans le futur."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.heading);
    EXPECT_EQ(import("id;" + std::string(c.heading) + "\n000120072026;" + c.field + "\n"),
              "2: " + c.told + "\n");
  }
  EXPECT_EQ(import("id;Nom;Catégorie 1;Taux horaire 1;Date de naissance\n000120072026;" +
                   long_name.substr(1) + ";AB;999,999;15/03/2026\n"),
            "1 0\n2? Des lignes d'avenant suivent une date d'effet vide : l'écran ne les montre pas.")
      << "what just fits; the date may come with another table";
}

TEST_F(ImportOfCards, NobodyIsBornAfterTheContractStarts) {
  const std::string told = "2: La date de naissance est après la date de début de contrat.\n";
  EXPECT_EQ(import("id;Date de naissance;Début de contrat\n000120072026;02/01/2020;01/01/2020\n"), told);
  EXPECT_EQ(import("id;Date de naissance;Début de contrat\n000120072026;01/01/2020;01/01/2020\n"), "1 0");
  EXPECT_EQ(import("id;Début de contrat\n000120072026;31/12/2019\n"), told) << "beside what is stored";
}

TEST_F(ImportOfCards, CodesFindTheirZerosAndTheirEntity) {
  const struct {
    const char *heading, *field;
    int attribute;
    const char* stored;
  } cases[] = {
      {"Convention", "1", 3, "01"},
      {"3", "1", 3, "01"},
      {"Secteur", "10", 4, "010"},
      {"Établissement", "2", 40, "007002"},
      {"Établissement", "7012", 40, "007012"},
      {"40", "012", 40, "007012"},
      {"Activité 1", "010", 10, "007010"},
      {"Activité 1", "10", 10, "007010"},
      {"Activité 1", "7900", 10, "007900"},
      {"Activité 1", "004010", 10, "004010"},
      {"Grille 1", "1101", 15, "01101"},
      {"Rubrique 1.1", "22", 30, "022"},
      {"Motif de fin", "2", 24, "02"},
      {"Qualification 1", "7", 14, "007"},
      {"Qualification 1", "AS", 14, "AS"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.heading) + " " + c.field);
    EXPECT_EQ(import("id;" + std::string(c.heading) + "\n120072026;" + c.field + "\n").substr(0, 2),
              card()(1) == "absent" ? "1 " : "0 ");
    EXPECT_EQ(card()(c.attribute), c.stored);
  }
  EXPECT_EQ(import("id;10\n000130072026;10|900\n"), "1 0");
  EXPECT_EQ(card("000130072026")(10, 2), "007900");
}

TEST_F(ImportOfCards, ACardIsWrittenUnderAFullIdOrNotAtAll) {
  const struct {
    const char *parts, *told;
  } cases[] = {
      {";7;2026", "le code du salarié est vide"},
      {"12;;2026", "le code de l'entité est vide"},
      {"12;7;", "l'année est vide"},
      {"12;7;26", "« 26 » n'est pas une année (4 chiffres)"},
      {"123456;7;202", "« 123456 » n'est pas un code de salarié (5 chiffres)"},
      {"12;0071;2026", "« 0071 » n'est pas un code d'entité (3 chiffres)"},
      {"1A;7;2026", "« 1A » n'est pas un code de salarié (5 chiffres)"},
      {"12;8;2026", "L'entité « 008 » n'existe pas dans ASSOCIATION."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.parts);
    EXPECT_EQ(import("Code;Entité;Année;Nom\n" + std::string(c.parts) + ";A\n"),
              "2: " + std::string(c.told) + "\n");
  }
  for (const std::string id : {"12", "1200720261", "0001200720261", "00012007202A", "1,20E+08"}) {
    SCOPED_TRACE(id);
    const std::string told = import("id;Nom\n" + id + ";A\n");
    EXPECT_EQ(told.substr(0, 3), "2: ");
  }
  EXPECT_TRUE(database_.find("VELANORO", "001200720261") == std::nullopt);
  EXPECT_EQ(import("id;Nom\n120072026;A\n000120072026;B\n"),
            "3: l'identifiant « 000120072026 » est déjà dans une ligne au-dessus\n");
  const auto cards = database_.Select(store::DbQuery("SSELECT VELANORO", "VELANORO", "0").encoded());
  EXPECT_EQ(cards.DCount(), 0);
}

TEST_F(ImportOfCards, UnknownCodesAreTakenWhenThatIsAskedForAndEachIsTold) {
  options_.accept_unknown = true;
  EXPECT_EQ(import("Code;Entité;Année;Secteur;Profil 1\n12;8;2026;99;7\n13;7;2026;10;8\n"),
            "2 0\n2? L'entité « 008 » n'existe pas dans ASSOCIATION.\n2? Le secteur « 099 » n'existe pas "
            "dans SECTEUR.\n"
            "3? Le profil de paie « 008 » n'existe pas dans PROFIL.");
  EXPECT_EQ(card("000120082026")(4), "099");
  EXPECT_EQ(import("Code;Entité;Année;Secteur\n14;7;2026;1234\n"),
            "2: Le secteur dépasse les 3 caractères de sa case : « 1234 ».\n");
}

TEST_F(ImportOfCards, WhatStandsInTheBaseAlreadyIsNotJudgedAgain) {
  database_.put("VELANORO", "000120072026", record("A^15167^88^^Atlantis"));
  EXPECT_EQ(import("id;Nom;Convention;Commune\n000120072026;B;88;Atlantis\n"), "0 1");
  EXPECT_EQ(card()(1), "B");
}

TEST_F(ImportOfCards, ResultsThatNoLongerFitACardAreEmptiedAndOthersKept) {
  store::DbRecord stored = record("MARTIN^15167^01^001");
  stored.set(25, "99");
  stored.set(39, "1");
  database_.put("VELANORO", "000120072026", stored);
  EXPECT_EQ(import("id;Secteur\n000120072026;10\n"), "0 1");
  EXPECT_EQ(card()(25), "99");
  EXPECT_EQ(import("id;Horaire de l'établissement\n000120072026;150\n"), "0 1");
  EXPECT_EQ(card()(25), "");
  EXPECT_EQ(card()(39), "1");
}

}  // namespace
}  // namespace velanor::exchange
