// Several clerks at the same cards.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <iostream>
#include <set>
#include <thread>

#include "postgres/server.h"
#include "store/notation.h"

namespace velanor::store {
namespace {

constexpr int kClerks = 8;

class ManyClerks : public testing::Test {
 protected:
  // Each clerk on a connection of his own.
  void all_at_once(const std::function<void(int clerk, PostgresDatabase&)>& work) {
    std::vector<std::thread> threads;
    for (int clerk = 0; clerk < kClerks; ++clerk) {
      threads.emplace_back([&, clerk] {
        const auto database = open_base(base_);
        work(clerk, *database);
      });
    }
    for (std::thread& thread : threads) thread.join();
  }

  Server& server_ = Server::instance();
  std::string base_ = server_.new_base();
};

// Every clerk adds one to each of ten cards again and again; what is lacking at the end was lost.
class Counting : public ManyClerks {
 protected:
  static constexpr int kCards = 10, kRounds = 6;

  int lost_when_writing(const std::function<Expected(const DbRecord&)>& expecting) {
    {
      const auto database = open_base(base_);
      for (int card = 0; card < kCards; ++card) database->put("F", std::to_string(card), record("0"));
    }
    all_at_once([&](int clerk, PostgresDatabase& database) {
      const auto file = database.OpenFile("F");
      for (int step = 0; step < kRounds * kCards;) {
        const std::string id = std::to_string((step + clerk) % kCards);
        const DbRecord seen = file->Read(id);
        const int next = std::stoi(std::string(seen(1))) + 1;
        try {
          file->write(id, record(std::to_string(next)), expecting(seen));
          ++step;
        } catch (const DbError& error) {
          if (error.number() != kConflict) throw;
          ++conflicts_;
        }
      }
    });
    int sum = 0;
    const auto database = open_base(base_);
    for (int card = 0; card < kCards; ++card)
      sum += std::stoi(shown(database->OpenFile("F")->Read(std::to_string(card))));
    return kClerks * kRounds * kCards - sum;
  }

  std::atomic<int> conflicts_ = 0;
};

TEST_F(Counting, LosesNothingWhereEachWriteExpectsWhatWasRead) {
  EXPECT_EQ(lost_when_writing([](const DbRecord& seen) { return Expected::record(seen); }), 0);
  EXPECT_GT(conflicts_, 0) << "nobody met anybody";
  std::cout << "8 clerks, 10 cards: 480 changes, " << conflicts_ << " conflicts, none lost\n";
}

TEST_F(Counting, LosesChangesWhereNothingIsExpectedSoTheTestCanSeeALoss) {
  const int lost = lost_when_writing([](const DbRecord&) { return Expected::anything(); });
  EXPECT_GT(lost, 0);
  std::cout << "8 clerks, 10 cards, nothing expected: " << lost << " of 480 changes lost\n";
}

TEST_F(ManyClerks, NeverGetOneCodeTwice) {
  constexpr int kEach = 12;
  std::vector<std::vector<int>> codes(kClerks);
  all_at_once([&](int clerk, PostgresDatabase& database) {
    const auto file = database.OpenFile("VELANORO");
    for (int code = 1; codes[static_cast<std::size_t>(clerk)].size() < kEach; ++code) {
      try {
        file->write(std::to_string(code), record("clerk " + std::to_string(clerk)), Expected::absent());
        codes[static_cast<std::size_t>(clerk)].push_back(code);
      } catch (const DbError& error) {
        if (error.number() != kConflict) throw;
      }
    }
  });
  const auto database = open_base(base_);
  std::set<int> all;
  for (int clerk = 0; clerk < kClerks; ++clerk) {
    for (const int code : codes[static_cast<std::size_t>(clerk)]) {
      EXPECT_TRUE(all.insert(code).second) << code;
      EXPECT_EQ(shown(database->OpenFile("VELANORO")->Read(std::to_string(code))),
                "clerk " + std::to_string(clerk));
    }
  }
  EXPECT_EQ(all.size(), kClerks * kEach);
  std::cout << "8 clerks creating: " << all.size() << " codes, each once\n";
}

// Files in both orders, deletions among them: whoever comes to a standstill would be told so.
TEST_F(ManyClerks, ChangesOfSeveralFilesDoNotWaitForEachOtherInACircle) {
  all_at_once([&](int clerk, PostgresDatabase& database) {
    for (int round = 0; round < 10; ++round) {
      const std::string own = std::to_string(clerk);
      database.in_one_change([&] {
        const bool forth = clerk % 2 == 0;
        database.put(forth ? "F" : "G", own, record(std::to_string(round)));
        database.put(forth ? "G" : "F", own, record(std::to_string(round)));
        if (round % 3 == 2) database.OpenFile("F")->DeleteRecord(own);
      });
    }
  });
  const auto database = open_base(base_);
  EXPECT_EQ(database->Select(DbQuery("SSELECT G", "G", "0").encoded()).DCount(), kClerks);
  EXPECT_EQ(database->history()->versions("F", "3").size(), 13u);
}

}  // namespace
}  // namespace velanor::store
