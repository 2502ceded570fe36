// What a clerk is warned of, beside the neighbouring card that is as it should be.
#include "office/warnings.h"

#include <gtest/gtest.h>

#include "office/checking.h"
#include "velanor/date.h"
#include "velanor/memory_database.h"

namespace velanor::office {
namespace {

using store::DbRecord;

constexpr std::string_view kId = "000100012026";
std::string day(int d, int month, int year) { return std::to_string(*entry::day_number({d, month, year})); }

// Looked at on 1 March 2026, for the budget of 2026.
class WarningsOfCards : public testing::Test {
 protected:
  WarningsOfCards() {
    database_.put("RUBSAISIE", "001", item("3"));
    database_.put("RUBSAISIE", "002", item("2"));
    card_.set(1, "MARTIN");
    card_.set(2, "15167");
    card_.set(6, "I");
    card_.set(7, "P");
    card_.set(8, day(1, 2, 2020));
    card_.set(9, day(1, 2, 1980));
    card_.set(10, 1, "001001");
    card_.set(10, 2, "001002");
    card_.set(11, 1, "6000");
    card_.set(11, 2, "4000");
    amend(1, day(1, 2, 2020), "12000", "15167");
    amend(2, day(1, 2, 2026), "12500", "15167");
  }
  static DbRecord item(const char* type) {
    DbRecord record;
    record.set(2, type);
    return record;
  }
  // With an item of hours and one that is none.
  void amend(int line, const std::string& from, const char* rate, const char* hours) {
    card_.set(12, line, from);
    card_.set(17, line, rate);
    card_.set(30, line, 1, "001");
    card_.set(31, line, 1, hours);
    card_.set(30, line, 2, "002");
    card_.set(31, line, 2, "99900");
  }
  // "name field line: sentence" a line.
  std::string told(std::string_view id = kId, int reference = *entry::day_number({1, 1, 2026})) const {
    std::string all;
    for (const Warning& warning :
         Warnings(database_, *entry::day_number({1, 3, 2026}), reference).of(id, card_)) {
      all.append(name_of(warning.kind).name).append(" ");
      all.append(std::to_string(warning.remark.field.number) + " " + std::to_string(warning.remark.line) +
                 ": ");
      all.append(warning.remark.sentence()).append("\n");
    }
    return all;
  }

  mutable store::MemoryDatabase database_;
  DbRecord card_;
};

TEST_F(WarningsOfCards, ACardAsItShouldBeIsNotWarnedOf) { EXPECT_EQ(told(), ""); }

// Elements are set (attribute, value, subvalue; 0: the whole), a sentence is expected and no other.
TEST_F(WarningsOfCards, EachKindIsToldAndItsNeighbourIsNot) {
  struct Set {
    int attribute, value, subvalue;
    std::string text;
  };
  const DbRecord good = card_;
  const Set fixed{6, 0, 0, "D"}, reason{24, 0, 0, "01"};
  const auto end = [](int d, int month, int year) { return Set{23, 0, 0, day(d, month, year)}; };
  const auto born = [](int d, int month, int year) { return Set{9, 0, 0, day(d, month, year)}; };
  const std::string soon = "fin-proche 23 0: Le contrat à durée déterminée finit dans les 60 jours : le ";
  const std::string in_year =
      "fin-dans-l-annee 23 0: Le contrat à durée déterminée finit avant la fin de l'année : le ";
  const struct {
    std::vector<Set> card;
    std::string told;
  } cases[] = {
      {{fixed, reason, end(1, 3, 2026)}, soon + "01/03/2026.\n"},
      {{fixed, reason, end(30, 4, 2026)}, soon + "30/04/2026.\n"},
      {{fixed, reason, end(1, 5, 2026)}, in_year + "01/05/2026.\n"},
      {{fixed, reason, end(28, 2, 2026)}, in_year + "28/02/2026.\n"},
      {{fixed, reason, end(30, 12, 2026)}, in_year + "30/12/2026.\n"},
      {{fixed, reason, end(31, 12, 2026)}, ""},
      {{reason, end(30, 4, 2026)}, ""},
      {{fixed}, "cdd-sans-fin 23 0: Le contrat à durée déterminée n'a pas de date de fin.\n"},
      {{reason}, "motif-sans-fin 23 0: Un motif de fin est choisi, sans date de fin de contrat.\n"},
      {{{11, 1, 0, "10000"}, {11, 2, 0, "0"}}, "part-nulle 11 2: L'activité « 002 » n'a aucune part.\n"},
      {{{11, 1, 0, "9999"}, {11, 2, 0, "1"}}, ""},
      {{{10, 2, 0, "001001"}},
       "activite-double 10 2: L'activité « 001 » est sur deux lignes de la répartition.\n"},
      {{{10, 2, 0, "002001"}},
       "activite-ailleurs 10 2: L'activité « 002001 » est celle d'une autre entité.\n"},
      {{{12, 1, 0, day(31, 1, 2026)}}, ""},
      {{{12, 1, 0, day(1, 2, 2026)}, {12, 2, 0, day(28, 2, 2026)}},
       "deux-avenants 12 2: Deux avenants prennent effet le même mois : 02/2026.\n"},
      {{{12, 1, 0, day(28, 2, 2025)}, {12, 2, 0, day(1, 2, 2026)}}, ""},
      {{{31, 2, 1, "15168"}},
       "heures 18 2: Les heures mensuelles dépassent celles de l'établissement : 151,68 pour 151,67.\n"},
      {{{18, 2, 0, "16000"}}, ""},
      {{{7, 0, 0, "A"}, {18, 2, 0, "16000"}},
       "heures 18 2: Les heures mensuelles dépassent celles de l'établissement : 160,00 pour 151,67.\n"},
      {{{7, 0, 0, "A"}, {31, 2, 1, "16000"}}, ""},
      {{{17, 2, 0, "11999"}},
       "taux-en-baisse 17 2: Le taux horaire est inférieur à celui de l'avenant précédent : 11,999 après "
       "12,000.\n"},
      {{{17, 2, 0, "12000"}}, ""},
      {{{17, 2, 0, ""}}, ""},
      {{born(2, 2, 2004)}, "naissance 9 0: L'âge au début du contrat est invraisemblable : 15 ans.\n"},
      {{born(1, 2, 2004)}, ""},
      {{born(1, 2, 1944)}, "naissance 9 0: L'âge au début du contrat est invraisemblable : 76 ans.\n"},
      {{born(2, 2, 1944)}, ""},
      {{born(2, 2, 2020)}, ""},  // a fault
      {{{9, 0, 0, "hier"}, {23, 0, 0, "demain"}, {6, 0, 0, "D"}, {12, 2, 0, "x"}}, ""},
  };
  for (const auto& c : cases) {
    card_ = good;
    std::string set;
    for (const Set& part : c.card) {
      set += std::to_string(part.attribute) + "=" + part.text + " ";
      if (part.value == 0) {
        card_.set(part.attribute, part.text);
      } else if (part.subvalue == 0) {
        card_.set(part.attribute, part.value, part.text);
      } else {
        card_.set(part.attribute, part.value, part.subvalue, part.text);
      }
    }
    EXPECT_EQ(told(), c.told) << set;
  }
}

// Of a year whose saving asks for it a fault tells it.
TEST_F(WarningsOfCards, AYearBeforeTheReferenceDateWantsAnAmendmentOnItsFirstDay) {
  const std::string told_of_2026 = "sans-avenant 12 1: Aucun avenant n'est en vigueur le 01/01/2026.\n";
  const int reference = *entry::day_number({1, 1, 2027});
  const struct {
    std::string start, end, first;
    int reference;
    std::string told;
  } cases[] = {
      {day(1, 2, 2020), "", day(2, 1, 2026), reference, told_of_2026},
      {day(1, 2, 2020), "", day(1, 1, 2026), reference, ""},
      {day(1, 1, 2026), "", day(2, 1, 2026), reference, told_of_2026},
      {day(2, 1, 2026), "", day(2, 1, 2026), reference, ""},
      {day(1, 2, 2020), day(31, 12, 2025), day(2, 1, 2026), reference, ""},
      {day(1, 2, 2020), "", day(2, 1, 2026), *entry::day_number({1, 1, 2026}), ""},
  };
  for (const auto& c : cases) {
    card_.set(8, c.start);
    card_.set(23, c.end);
    card_.set(12, 1, c.first);
    card_.set(9, "");
    EXPECT_EQ(told(kId, c.reference), c.told) << c.start << " " << c.first;
  }
}

TEST(NamesakesOfAYear, AreTheSameNameAndBirthDateOnTwoCardsOfAnEntity) {
  const struct {
    const char *id, *name, *birth;
  } cards[] = {
      {"000010012026", "LEFÈVRE ANNE", "4000"}, {"000020012026", "Lefevre Anne", "4000"},
      {"000030012026", "LEFÈVRE ANNE", "4001"}, {"000040012026", "LEFÈVRE ANNA", "4000"},
      {"000010022026", "LEFÈVRE ANNE", "4000"}, {"000010012025", "LEFÈVRE ANNE", "4000"},
      {"000050012026", "LEFÈVRE ANNE", ""},     {"000060012026", "LEFÈVRE ANNE", ""},
  };
  Namesakes people;
  for (const auto& c : cards) {
    DbRecord card;
    card.set(1, c.name);
    card.set(9, c.birth);
    people.note(c.id, card);
  }
  std::string told;
  for (const auto& found : people.found()) told += found.id + " " + found.warning.remark.sentence() + "\n";
  EXPECT_EQ(told,
            "000010012026 La même personne a une autre fiche : 00002.\n"
            "000020012026 La même personne a une autre fiche : 00001.\n");
}

TEST(KindsOfWarnings, AreFoundByTheirNames) {
  for (const WarningName& known : warning_names()) {
    EXPECT_EQ(warning_named(known.name), known.kind);
    EXPECT_EQ(name_of(known.kind).title, known.title);
  }
  EXPECT_FALSE(warning_named("autre"));
}

}  // namespace
}  // namespace velanor::office
