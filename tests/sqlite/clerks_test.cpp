// Several programs that write the same cards at the same time.
#include <gtest/gtest.h>
#include <sched.h>

#include <iostream>

#include "sqlite/snapshot.h"
#include "sqlite/temporary_folder.h"
#include "support/so_far.h"
#include "support/together.h"

namespace velanor::store {
namespace {

constexpr int kClerks = 8, kCards = 10;

class Clerks : public testing::Test {
 protected:
  std::unique_ptr<SqliteDatabase> open() {
    return std::make_unique<SqliteDatabase>(
        path_, SqliteDatabase::Options{.missing = SqliteDatabase::Missing::kCreate, .patience = 60'000});
  }
  void SetUp() override {
    const auto database = open();
    for (int card = 0; card < kCards; ++card) database->put("F", std::to_string(card), record("0"));
  }
  int counted() {
    int sum = 0;
    const auto database = open();
    for (int card = 0; card < kCards; ++card)
      sum += std::stoi(std::string(database->OpenFile("F")->Read(std::to_string(card))(1)));
    return sum;
  }
  // Reads a card and writes it one higher; how often it was acknowledged.
  int count_up(int clerk, int times, bool expects) {
    const auto database = open();
    const auto file = database->OpenFile("F");
    int acknowledged = 0;
    for (int n = 0; n < times; ++n) {
      const std::string id = std::to_string((clerk + n) % kCards);
      const DbRecord before = file->Read(id);
      const DbRecord after = record(std::to_string(std::stoi(std::string(before(1))) + 1));
      // So that clerks meet.
      sched_yield();
      try {
        file->write(id, after, expects ? Expected::record(before) : Expected::anything());
        ++acknowledged;
      } catch (const DbError& error) {
        if (error.number() != kConflict) throw;
      }
    }
    return acknowledged;
  }

  TemporaryFolder folder_;
  std::string path_ = folder_.file("base");
  const int times_ = long_tests() ? 500 : 40;
};

TEST_F(Clerks, WhoExpectWhatTheyReadLoseNoAcknowledgedChange) {
  const int acknowledged = test::together(kClerks, [&](int clerk) { return count_up(clerk, times_, true); });
  EXPECT_EQ(counted(), acknowledged);
  EXPECT_GT(acknowledged, kCards);
  std::cout << "clerks expecting what they read: " << kClerks * times_ << " tries, " << acknowledged
            << " acknowledged, " << acknowledged - counted() << " lost" << test::so_far() << "\n";
}

// Else the test above proves nothing.
TEST_F(Clerks, WhoExpectNothingLoseChanges) {
  int lost = 0, tries = 0;
  // They need not meet at the first try.
  for (; lost == 0 && tries < 20; ++tries) {
    const int before = counted();
    const int acknowledged =
        test::together(kClerks, [&](int clerk) { return count_up(clerk, times_, false); });
    lost = acknowledged - (counted() - before);
  }
  EXPECT_GT(lost, 0);
  std::cout << "clerks expecting nothing: " << lost << " acknowledged changes lost, at try " << tries
            << test::so_far() << "\n";
}

TEST_F(Clerks, AreNotKeptFromSavingByABackupWhichHoldsOneMomentOfTheirWork) {
  int backups = 0;
  const int acknowledged = test::together(kClerks, [&](int clerk) {
    if (clerk > 0) return count_up(clerk, times_, true);
    const auto database = open();
    for (int n = 0; n < 5; ++n) database->back_up(folder_.file("copie" + std::to_string(n)));
    return 0;
  });
  EXPECT_EQ(counted(), acknowledged);
  for (int n = 0; n < 5; ++n) {
    SqliteDatabase copy(folder_.file("copie" + std::to_string(n)));
    EXPECT_TRUE(copy.damages().empty() && copy.damaged_records().empty());
    for (int card = 0; card < kCards; ++card) EXPECT_TRUE(history_is_whole(copy, "F", std::to_string(card)));
    ++backups;
  }
  std::cout << "clerks beside backups: " << acknowledged << " acknowledged, " << acknowledged - counted()
            << " lost, " << backups << " backups sound" << test::so_far() << "\n";
}

TEST_F(Clerks, WhoCreateCardsNeverGetOneCodeTwice) {
  const int made = test::together(kClerks, [&](int clerk) {
    const auto database = open();
    const auto file = database->OpenFile("NEW");
    int created = 0;
    while (created < times_ / 4) {
      const DbResult last = database->Select(DbQuery("SSELECT NEW PAR-DECR 0", "NEW", "0").encoded());
      const int next = last.DCount() == 0 ? 10'001 : std::stoi(std::string(last(1))) + 1;
      try {
        file->write(std::to_string(next), record(std::to_string(clerk)), Expected::absent());
        ++created;
      } catch (const DbError& error) {
        if (error.number() != kConflict) throw;
      }
    }
    return created;
  });
  const auto database = open();
  const DbResult all = database->Select(DbQuery("SSELECT NEW", "NEW", "0").encoded());
  EXPECT_EQ(all.DCount(), made);
  for (int i = 1; i <= all.DCount(); ++i)
    EXPECT_EQ(database->history()->versions("NEW", all(i)).size(), 1u)
        << "somebody wrote over another's card";
  std::cout << "clerks creating cards: " << made << " created, " << all.DCount() << " codes" << test::so_far()
            << "\n";
}

}  // namespace
}  // namespace velanor::store
