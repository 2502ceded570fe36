// Several clerks who save the same cards at the same time, in one file, and merge where they meet.
#include <gtest/gtest.h>
#include <sched.h>

#include <cstdlib>
#include <iostream>

#include "app/velanorctl/open_store.h"
#include "card/record/merge.h"
#include "sqlite/temporary_folder.h"
#include "support/so_far.h"
#include "support/together.h"
#include "velanor/sqlite_database.h"

namespace velanor::card {
namespace {

using store::DbRecord;
using store::SqliteDatabase;

constexpr int kClerks = 8, kCards = 10;

std::string id_of(int card) { return "9000" + std::to_string(card) + "0012026"; }

// Each clerk counts his own saves of a card in the hourly rate of an amendment of his own.
int count_at(const DbRecord& card, int clerk) {
  return std::stoi(std::string(element(card, kHourlyRate, clerk + 1)));
}
DbRecord new_card() {
  constexpr int kFirstDay = 20'000;
  DbRecord card;
  set_element(card, kName, "MARTIN");
  for (int clerk = 0; clerk < kClerks; ++clerk) {
    set_element(card, kEffective, clerk + 1, std::to_string(kFirstDay + clerk));
    set_element(card, kHourlyRate, clerk + 1, "0");
  }
  return card;
}
DbRecord counted_up(DbRecord card, int clerk) {
  set_element(card, kHourlyRate, clerk + 1, std::to_string(count_at(card, clerk) + 1));
  return card;
}

class MergingClerks : public testing::Test {
 protected:
  std::unique_ptr<SqliteDatabase> open() {
    return std::make_unique<SqliteDatabase>(
        folder_.file("base"),
        SqliteDatabase::Options{.missing = SqliteDatabase::Missing::kCreate, .patience = 60'000});
  }
  void SetUp() override {
    const auto database = open();
    database->in_one_change([&] {
      app::StoreSink sink([&](auto file, auto id, const auto& record) { database->put(file, id, record); });
      demo::fill(sink);
      for (int n = 0; n < kCards; ++n) database->put("VELANORO", id_of(n), new_card());
    });
  }

  // As the component saves: what somebody else has written meanwhile is merged, and saved again.
  static void save(store::DbFile& file, const Reading& reading, int card, DbRecord before, DbRecord mine) {
    while (true) try {
        return file.write(id_of(card), mine, store::Expected::record(before));
      } catch (const store::DbError& error) {
        if (error.number() != store::kConflict) throw;
        const DbRecord theirs = file.Read(id_of(card));
        const Merge merge(Draft(reading, before), Draft(reading, theirs), Draft(reading, mine));
        if (!merge.clashes().empty()) throw std::runtime_error("two changes of " + merge.clashes()[0].name);
        mine = merge.merged({});
        before = theirs;
      }
  }

  // How many saves were acknowledged.
  int work(int clerk, bool merges) {
    const auto database = open();
    const auto file = database->OpenFile("VELANORO");
    control::Procedure procedure(*database);
    procedure.OuvrirFichiers();
    const auto entry = entry::make_util_saisie();
    const Reading reading{Codec(*entry), Labels(procedure)};
    for (int n = 0; n < times_; ++n) {
      const int card = (clerk + n) % kCards;
      const DbRecord before = file->Read(id_of(card));
      sched_yield();
      const DbRecord mine = counted_up(before, clerk);
      merges ? save(*file, reading, card, before, mine) : file->write(id_of(card), mine);
    }
    return times_;
  }

  int counted() {
    int sum = 0;
    const auto database = open();
    for (int n = 0; n < kCards; ++n) {
      const DbRecord card = database->OpenFile("VELANORO")->Read(id_of(n));
      for (int clerk = 0; clerk < kClerks; ++clerk) sum += count_at(card, clerk);
    }
    return sum;
  }
  std::size_t versions() {
    std::size_t sum = 0;
    const auto database = open();
    for (int n = 0; n < kCards; ++n) sum += database->history()->versions("VELANORO", id_of(n)).size();
    return sum;
  }

  TemporaryFolder folder_;
  const int times_ = std::getenv("VELANOR_LONG") != nullptr ? 1000 : 40;
};

TEST_F(MergingClerks, FindEveryAcknowledgedChangeInTheCardsAndEverySaveInTheirHistory) {
  const int acknowledged = test::together(kClerks, [&](int clerk) { return work(clerk, true); });
  std::cout << "clerks merging: " << acknowledged << " saves acknowledged, " << acknowledged - counted()
            << " lost" << test::so_far() << "\n";
  EXPECT_EQ(acknowledged, kClerks * times_);
  EXPECT_EQ(counted(), acknowledged);
  EXPECT_EQ(versions(), static_cast<std::size_t>(acknowledged + kCards));
}

// Else the test above proves nothing.
TEST_F(MergingClerks, LoseChangesWhereNobodyLooksWhatHasBeenWrittenMeanwhile) {
  int lost = 0;
  // They need not meet at the first try.
  for (int tries = 0; lost == 0 && tries < 20; ++tries) {
    const int before = counted();
    const int acknowledged = test::together(kClerks, [&](int clerk) { return work(clerk, false); });
    lost = acknowledged - (counted() - before);
  }
  std::cout << "clerks who look at nothing: " << lost << " acknowledged changes lost" << test::so_far()
            << "\n";
  EXPECT_GT(lost, 0);
}

}  // namespace
}  // namespace velanor::card
