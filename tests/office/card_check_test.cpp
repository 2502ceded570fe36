#include "office/card_check.h"

#include <gtest/gtest.h>

#include "app/velanorctl/open_store.h"
#include "office/fault_list.h"
#include "velanor/memory_database.h"
#include "velanor/query.h"

namespace velanor::office {
namespace {

using store::DbRecord;

// A card of the demonstration in its latest year: with amendments, production staff, no end.
class CheckOfCards : public testing::Test {
 protected:
  void SetUp() override {
    const auto ids = database_->Select(
        store::DbQuery("SSELECT VELANORO AVEC 0 = \"[0012026\" AND AVEC 7 = \"P\" AND AVEC 23 = \"\"",
                       "VELANORO", "0")
            .encoded());
    id_ = ids(1);
    card_ = database_->OpenFile("VELANORO")->Read(id_);
  }
  std::string faults() const {
    std::string text;
    for (const auto& fault : check_.faults_of(id_, card_)) text += fault.sentence() + "\n";
    return text;
  }

  std::unique_ptr<store::Database> database_ = app::open_store({.url = "", .demo = true});
  CardCheck check_{*database_, [] { return entry::Date{15, 3, 2026}; }};
  std::string id_;
  DbRecord card_;
};

TEST_F(CheckOfCards, EveryCardOfTheDemonstrationIsRight) {
  EXPECT_TRUE(check_.faults_of_references().empty());
  const auto cards = database_->OpenFile("VELANORO");
  const auto ids = database_->Select(store::DbQuery("SSELECT VELANORO", "VELANORO", "0").encoded());
  ASSERT_GT(ids.DCount(), 500);
  for (int i = 1; i <= ids.DCount(); ++i) {
    const auto faults = check_.faults_of(ids(i), cards->Read(ids(i)));
    ASSERT_TRUE(faults.empty()) << ids(i) << " " << faults.front().sentence();
  }
}

// An element is set, a sentence is expected and no other.
TEST_F(CheckOfCards, EachFaultIsToldInItsOwnWords) {
  const DbRecord good = card_;
  const auto start = std::string(good(8));
  const int today = *entry::day_number({15, 3, 2026});
  const struct {
    int attribute;
    std::string text, told;
  } cases[] = {
      {1, "", "Le nom du salarié est obligatoire.\n"},
      {2, "", "L'horaire mensuel de l'établissement est obligatoire.\n"},
      {3, "", "La convention collective est obligatoire.\n"},
      {3, "77", "La convention collective « 77 » n'existe pas dans CONVENTIONCOL.\n"},
      {4, "", "Le secteur est obligatoire.\n"},
      {4, "999", "Le secteur « 999 » n'existe pas dans SECTEUR.\n"},
      {5, "", "La commune est obligatoire.\n"},
      {5, "Atlantis", "La commune « Atlantis » n'existe pas dans COMMUNES.\n"},
      {6, "X", "Le type de contrat est illisible : « X ».\n"},
      {9, "hier", "La date de naissance est illisible : « hier ».\n"},
      {19, "", "Le profil de paie est obligatoire.\n"},
      {21, "10001", "Le pourcentage des heures exonérées ne peut être supérieur à 100.\n"},
      {21, "", "Le pourcentage des heures exonérées est obligatoire.\n"},
      {23, "1", "La date de fin de contrat doit être supérieure ou égale à la date de début.\n"},
      {23, start, "Un motif de fin de contrat est obligatoire.\n"},
      {40, "001",
       "L'établissement est obligatoire.\nL'établissement « 001 » n'existe pas dans ETABLISSEMENT.\n"},
      {40, "002001", "L'établissement « 002001 » n'est pas de l'entité de la fiche.\n"},
      {1, std::string(51, 'A'),
       "Le nom dépasse les 50 caractères de sa case : « " + std::string(51, 'A') + " ».\n"},
      {22, "10000000",
       "Le plafond de sécurité sociale dépasse les 8 caractères de sa case : « 100000,00 ».\n"},
      {41, "-150", "La part salariale de la mutuelle est au-dessous de zéro : « -1,50 ».\n"},
      {9, "999999999", "La date de naissance est illisible : « 999999999 ».\n"},
      {9, std::to_string(std::stoi(start) + 1),
       "La date de naissance est après la date de début de contrat.\n"},
      {9, start, ""},
      {45, std::to_string(today + 1), "La date d'entrée dans la branche est dans le futur.\n"},
      {45, std::to_string(today), ""},
      {43, "000", "La charge de mutuelle « 000 » n'existe pas dans RUBCHARGE.\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.told);
    card_ = good;
    card_.set(c.attribute, c.text);
    EXPECT_EQ(faults(), c.told);
  }
}

TEST_F(CheckOfCards, ListsAreJudgedAsTheScreenReadsThem) {
  const DbRecord good = card_;
  card_.set(11, 1, "1");
  EXPECT_EQ(faults(), "Le total de la répartition des activités est différent de 100.\n");
  card_ = good;
  card_.set(10, "");
  EXPECT_EQ(faults(),
            "Au moins une activité est obligatoire.\n"
            "Des lignes d'activité suivent une activité vide : l'écran ne les montre pas.\n");
  card_ = good;
  for (int attribute : {12, 13, 14, 15, 16, 17, 18, 30, 31, 32, 33, 38}) card_.set(attribute, "");
  EXPECT_EQ(faults(), "Une date d'effet est obligatoire.\n");
  card_ = good;
  for (int attribute : {30, 31, 32, 33}) card_.set(attribute, 1, "");
  EXPECT_EQ(faults().substr(0, 44), "Aucun détail n'a été saisi pour l'avenant");
  card_ = good;
  card_.set(12, card_.Count(12) + 1, "1");
  card_.set(30, card_.Count(12), "001");
  EXPECT_EQ(faults(), "Les dates d'effet des avenants ne se suivent pas.\n");
  card_.set(12, card_.Count(12), card_(12, card_.Count(12) - 1));
  EXPECT_EQ(faults(), "Les dates d'effet des avenants ne se suivent pas.\n");
}

// Someone who is to be hired later has been born all the same, and may be new to the branch then.
TEST_F(CheckOfCards, NobodyIsBornAfterToday) {
  const std::string tomorrow = std::to_string(*entry::day_number({16, 3, 2026}));
  for (const int attribute : {8, 9, 45}) card_.set(attribute, tomorrow);
  EXPECT_NE(faults().find("La date de naissance est dans le futur.\n"), std::string::npos) << faults();
  EXPECT_EQ(faults().find("branche"), std::string::npos);
  card_.set(9, std::to_string(*entry::day_number({15, 3, 2026})));
  EXPECT_EQ(faults().find("naissance"), std::string::npos);
}

TEST_F(CheckOfCards, AmendmentsStartWhereTheContractOrTheBudgetDoes) {
  for (int attribute : {12, 13, 14, 15, 16, 17, 18, 30, 31, 32, 33, 38}) card_.set(attribute, "");
  card_.set(30, 1, "001");
  const std::string reference(database_->OpenFile("BUDGETPARAM")
                                  ->Read("1")(1, database_->OpenFile("BUDGETPARAM")->Read("1").Count(1)));
  const int day = std::stoi(reference);
  const struct {
    int start, effective;
    const char* told;
  } cases[] = {
      {day - 1, day, ""},
      {day - 1, day + 1,
       "La date d'effet de l'avenant le plus ancien ne peut être supérieure au 01/01/2026.\n"},
      {day, day, ""},
      {day, day + 1,
       "Un avenant avec une date d'effet égale à la date de début de contrat doit obligatoirement "
       "exister.\n"},
  };
  for (const auto& c : cases) {
    card_.set(8, std::to_string(c.start));
    card_.set(12, 1, std::to_string(c.effective));
    EXPECT_EQ(faults(), c.told);
  }
}

TEST(FaultsOfManyCards, AreGroupedByKindTheMostFrequentFirst) {
  FaultList list;
  list.add("1", {card::Fault("Le secteur « … » n'existe pas.", "7"), card::Fault("Le nom manque.")});
  list.add("2", {});
  list.add("3", {card::Fault("Le nom manque.")});
  list.add("4", {card::Fault("La grille « … » n'existe pas.", "8"),
                 card::Fault("La grille « … » n'existe pas.", "9")});
  std::string shown;
  for (const auto* kind : list.most_frequent_first()) {
    shown += std::to_string(kind->cards) + " " + kind->sentence + "\n";
    for (const auto& line : kind->lines) shown += line + "\n";
  }
  EXPECT_EQ(shown,
            "2 Le nom manque.\n1 : Le nom manque.\n3 : Le nom manque.\n"
            "1 La grille « … » n'existe pas.\n4 : La grille « 8 » n'existe pas.\n4 : La grille « 9 » "
            "n'existe pas.\n"
            "1 Le secteur « … » n'existe pas.\n1 : Le secteur « 7 » n'existe pas.\n");
  EXPECT_EQ(list.cards(), 3);
  EXPECT_EQ(list.faults(), 5);
}

TEST(CheckOfReferences, WhatTheScreenCannotStartWithoutIsTold) {
  store::MemoryDatabase empty;
  const CardCheck check(empty);
  ASSERT_EQ(check.faults_of_references().size(), 6u);
  EXPECT_EQ(check.faults_of_references().front().sentence(),
            "L'enregistrement « FINCONTRAT » manque dans TABLES : importez ce fichier.");
  EXPECT_EQ(check.faults_of_references().back().sentence(),
            "L'enregistrement « 1 » manque dans BUDGETPARAM : importez ce fichier.");
}

}  // namespace
}  // namespace velanor::office
