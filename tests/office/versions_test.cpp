#include "office/versions.h"

#include <gtest/gtest.h>

#include "card/record/element.h"
#include "card/record/record_layout.h"
#include "office/deleted_cards.h"
#include "office/field_history.h"
#include "sqlite/temporary_folder.h"
#include "velanor/memory_database.h"
#include "velanor/sqlite_database.h"

namespace velanor::office {
namespace {

using card::element, card::set_element;
using store::DbRecord, store::SqliteDatabase;

constexpr const char* kFile = "VELANORO";
constexpr const char* kId = "000100012026";

class BringingBack : public testing::Test {
 protected:
  static DbRecord card(const char* hours, const char* result) {
    DbRecord card;
    set_element(card, card::kName, "MARTIN JEANNE");
    set_element(card, card::kMonthlyTime, 1, hours);
    set_element(card, card::kStatus, "1");
    for (const card::Field& field : card::kResults) set_element(card, field, result);
    return card;
  }
  void write(const DbRecord& card, const char* id = kId) { database_.OpenFile(kFile)->write(id, card); }
  DbRecord stored() { return database_.OpenFile(kFile)->Read(kId); }
  BroughtBack bring_back(std::uint64_t number) {
    const auto versions = versions_of(database_, kFile, kId);
    return office::bring_back(database_, kFile, kId, versions, version_numbered(versions, number));
  }
  TemporaryFolder folder_;
  SqliteDatabase database_{folder_.file("base"), {.missing = SqliteDatabase::Missing::kCreate}};
};

TEST_F(BringingBack, KeepsTheResultsThatStillFitTheCard) {
  write(card("10000", ""));
  write(card("10000", "777"));
  EXPECT_FALSE(bring_back(1).written) << "nothing but results differs, and they are right";
  DbRecord renamed = card("10000", "777");
  set_element(renamed, card::kEducation, "3");
  write(renamed);
  const BroughtBack back = bring_back(1);
  EXPECT_TRUE(back.written);
  EXPECT_EQ(back.number, 4U);
  EXPECT_EQ(stored(), card("10000", "777"));
}

TEST_F(BringingBack, EmptiesTheResultsThatWereComputedFromSomethingElse) {
  write(card("10000", "111"));
  write(card("12000", "222"));
  bring_back(1);
  EXPECT_EQ(element(stored(), card::kMonthlyTime, 1), "10000");
  EXPECT_EQ(element(stored(), card::kResults.front()), "");
}

TEST_F(BringingBack, ADeletedCardComesBackUncalculated) {
  write(card("10000", "111"));
  database_.OpenFile(kFile)->DeleteRecord(kId);
  const BroughtBack back = bring_back(1);
  EXPECT_TRUE(back.was_deleted);
  EXPECT_EQ(element(stored(), card::kStatus), "0");
  EXPECT_EQ(element(stored(), card::kResults.front()), "");
  EXPECT_EQ(element(stored(), card::kName), "MARTIN JEANNE");
}

TEST_F(BringingBack, OverwritesNobody) {
  write(card("10000", ""));
  write(card("12000", ""));
  const auto seen = versions_of(database_, kFile, kId);
  write(card("13000", ""));
  try {
    office::bring_back(database_, kFile, kId, seen, seen.front());
    ADD_FAILURE() << "written";
  } catch (const store::DbError& error) {
    EXPECT_EQ(error.number(), store::kConflict);
  }
  EXPECT_EQ(stored(), card("13000", ""));
  EXPECT_THROW(versions_of(database_, kFile, "999990012026"), store::DbError);
  store::MemoryDatabase memory;
  EXPECT_THROW(versions_of(memory, kFile, kId), store::DbError);
}

TEST_F(BringingBack, DeletedCardsAreThoseOfTheEntityAndYearThatAreNotThere) {
  const auto file = database_.OpenFile(kFile);
  for (const char* id : {"000100012026", "000110012026", "000100022026", "000100012025"}) {
    write(card("10000", ""), id);
    file->DeleteRecord(id);
  }
  write(card("10000", ""), "000110012026");
  write(card("10000", ""), "000120012026");
  const auto deleted = deleted_cards(database_, "001", "2026");
  ASSERT_EQ(deleted.size(), 1U);
  EXPECT_EQ(deleted.front().employee, "00010");
  EXPECT_EQ(deleted.front().name, "MARTIN JEANNE");
}

// ---- One field.

TEST_F(BringingBack, AFieldTellsWhatItReadBeforeOfItsOwnLine) {
  database_.history()->set_author("marie");
  DbRecord card = this->card("10000", "");
  set_element(card, card::kEffective, 1, "20455");
  write(card);
  const auto was = [&](int attribute, const char* line) {
    std::vector<std::string> texts;
    for (const FieldWas& past : field_history(database_, kId, {attribute, line})) {
      EXPECT_EQ(past.until.size(), 10U);
      EXPECT_EQ(past.author, "marie");
      texts.push_back(past.value);
    }
    return texts;
  };
  const auto months = [&](const char* date) { return was(card::kMonthlyTime.number, date); };
  EXPECT_TRUE(months("20455").empty());
  set_element(card, card::kMonthlyTime, 1, "7583");
  write(card);
  // Another line comes before it, and one field changes that has nothing to do with it.
  card.Insert(card::kEffective.number, 1, "20000");
  card.Insert(card::kMonthlyTime.number, 1, "5000");
  write(card);
  set_element(card, card::kName, "");
  write(card);
  set_element(card, card::kMonthlyTime, 2, "15167");
  set_element(card, card::kName, "ROUX");
  write(card);
  EXPECT_EQ(months("20455"), (std::vector<std::string>{"75,83", "100,00"}));
  EXPECT_TRUE(months("20000").empty());
  EXPECT_EQ(was(card::kName.number, ""), (std::vector<std::string>{"", "MARTIN JEANNE"}));
  const FieldWas empty{"", "12/03/2026", "marie"};
  EXPECT_EQ(empty.text(), "était vide jusqu'au 12/03/2026 (marie)");
}

}  // namespace
}  // namespace velanor::office
