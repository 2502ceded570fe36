// A card as a value, without a screen.
#include "card/record/draft.h"

#include <gtest/gtest.h>

#include "card/record/record_compare.h"
#include "card/record/rules.h"
#include "card/record/saving.h"
#include "support/office.h"

namespace velanor::card {
namespace {

class DraftTest : public testing::Test {
 protected:
  DraftTest() {
    test::load(database_, "lib/cards.play");
    procedure_.OuvrirFichiers();
  }

  Draft stored(std::string_view id = "000100012026") {
    return Draft(reading_, database_.OpenFile("VELANORO")->Read(id));
  }
  AmendmentText line(std::string date, std::string rate) {
    return {{std::move(date), "", "AD", "", "", "NON", std::move(rate), "10,00"}, ""};
  }

  store::MemoryDatabase database_;
  control::Procedure procedure_{database_};
  std::unique_ptr<entry::UtilSaisie> entry_ = entry::make_util_saisie();
  Reading reading_{Codec(*entry_), Labels(procedure_)};
};

TEST_F(DraftTest, WhatReadsAsBeforeIsStoredAsBefore) {
  Draft card = stored();
  const std::pair<Field, const char*> kOdd[] = {{kCeiling, "n/c"},       {kBirth, "x"},
                                                {kEndReason, "99"},      {kMonthlyTime, ""},
                                                {kContractNature, "77"}, {kHourlyRate, "012"}};
  for (const auto& [field, text] : kOdd) card.put_stored(field, text);
  const Draft before = card;
  card.put(kCeiling, card.shown(kCeiling));
  card.put(kBirth, card.shown(kBirth));
  card.put(kEndReason, card.shown(kEndReason));
  card.put(kContractNature, card.shown(kContractNature));
  card.put(kEducation, card.shown(kEducation));
  for (int i = 0; i < card.amendments(); ++i) card.change_amendment(i, card.amendment(i));
  for (int i = 0; i < card.activities(); ++i) card.change_share(i, card.activity(i).share);
  for (int i = 0; i < card.amendments(); ++i) card.put_items(i, card.items(i));
  EXPECT_TRUE(same_record(card.record(), before.record()));
  card.put(kCeiling, "12,5");
  card.put(kBirth, "01/01/1980");
  card.put(kEndReason, "Démission");
  EXPECT_EQ(element(card.record(), kCeiling), "1250");
  EXPECT_EQ(element(card.record(), kBirth), "4384");
  EXPECT_EQ(element(card.record(), kEndReason), "01");
  EXPECT_EQ(element(before.record(), kCeiling), "n/c") << "a copy is another value";
}

TEST_F(DraftTest, AnAmendmentTakesItsItemsAlongWhereverItGoes) {
  Draft card = stored();
  const auto items = [&](int amendment) {
    std::string codes;
    for (const ItemText& item : card.items(amendment)) codes += item.code + item.figures[0].stored + " ";
    return codes;
  };
  ASSERT_EQ(items(0), "00110400 003 ");
  ASSERT_EQ(items(1), "00115167 ");
  EXPECT_EQ(card.position_for(20456), 1);
  card.insert_amendment(1, line("02/01/2024", "12,000"));
  EXPECT_EQ(items(0) + "|" + items(1) + "|" + items(2), "00110400 003 ||00115167 ");
  // The first one passes the others.
  AmendmentText first = card.amendment(0);
  first.shown[column_of(kEffective)] = "01/02/2026";
  EXPECT_EQ(card.change_amendment(0, first), 2);
  EXPECT_EQ(items(0) + "|" + items(1) + "|" + items(2), "|00115167 |00110400 003 ");
  EXPECT_EQ(card.amendment(2).grid, "01410");
  EXPECT_EQ(card.amendment(0).shown[column_of(kHourlyRate)], "12,000");
  card.remove_amendment(1);
  EXPECT_EQ(items(0) + "|" + items(1), "|00110400 003 ");
  EXPECT_EQ(card.amendments(), 2);
}

TEST_F(DraftTest, DatesOutOfOrderAreLeftWhereTheyStandUnlessTheyAreChanged) {
  Draft card = stored();
  card.put_stored(kEffective, {});
  card.remove_amendment(0);
  card.insert_amendment(0, line("01/03/2026", "10,000"));
  card.insert_amendment(1, line("01/01/2026", "11,000"));
  AmendmentText late = card.amendment(0);
  late.shown[column_of(kMonthlyTime)] = "80,00";
  EXPECT_EQ(card.change_amendment(0, late), 0);
  EXPECT_EQ(element(card.record(), kMonthlyTime, 1), "8000");
  late.shown[column_of(kEffective)] = "02/03/2026";
  EXPECT_EQ(card.change_amendment(0, late), 1);
}

TEST_F(DraftTest, SavingWritesOutWhatTheScreenImplies) {
  Draft card = stored();
  card.put_stored(kName, "zoé");
  card.put_stored(kContractType, {});
  card.put_stored(kEndReason, "01");
  card.put_monthly_time(0, "100,00");
  store::DbRecord record = card.record();
  complete(record);
  EXPECT_EQ(element(record, kName), "ZOÉ");
  EXPECT_EQ(element(record, kContractType), "I");
  EXPECT_EQ(element(record, kEndReason), "") << "no end";
  EXPECT_EQ(element(record, kMonthlyTime), "") << "production staff: from the items";
  EXPECT_EQ(element(record, kNewMeasure, 1), "O");
  EXPECT_EQ(element(record, kNewMeasure, 2), "N");
}

TEST_F(DraftTest, EveryFaultIsFoundInTheOrderOfTheScreen) {
  EXPECT_EQ(faults_of(stored().record(), reading_.codec, 21186).size(), 0u);
  Draft card = stored();
  for (const Field& field : std::initializer_list<Field>{kSector, kProfile1, kExemptedHours})
    card.put_stored(field, {});
  card.put_items(1, {});
  std::vector<std::string> sentences;
  for (const Fault& fault : faults_of(card.record(), reading_.codec, 21186))
    sentences.push_back(fault.sentence());
  EXPECT_EQ(sentences,
            (std::vector<std::string>{"Le secteur est obligatoire.", "Le profil de paie est obligatoire.",
                                      "Le pourcentage des heures exonérées est obligatoire.",
                                      "Aucun détail n'a été saisi pour l'avenant du 01/01/2026."}));
  EXPECT_EQ(faults_of(card.record(), reading_.codec, 21186).front().field.number, kSector.number);
}

}  // namespace
}  // namespace velanor::card
