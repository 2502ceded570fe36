// The power is cut at any moment between any two calls of the disk.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "sqlite/disk.h"
#include "sqlite/snapshot.h"
#include "sqlite/temporary_folder.h"
#include "store/checked_writes.h"
#include "store/sqlite/sqlite_backend.h"
#include "support/so_far.h"

namespace velanor::store {
namespace {

namespace fs = std::filesystem;

constexpr int kCards = 6;
constexpr int kSaves = 240;

std::string content(std::int64_t save) {
  const std::string number = std::to_string(save);
  return number + "^" + std::string(static_cast<std::size_t>(save % 7) * 300, 'c') + "^" + number;
}
std::string id_of(std::int64_t save) { return "card" + std::to_string(save % kCards); }

// Saves one after the other, each marked once it is acknowledged; at times the log is brought over beside
// it, at times everything is closed and opened anew.
void save_cards(Disk& disk, const std::string& path, const char* settings) {
  std::int64_t save = 0;
  for (int round = 0; round < 4; ++round) {
    sqlite::SqliteBackend backend(path, sqlite::Missing::kCreate, 1000, [] { return 1; });
    backend.connection().run(settings);
    sqlite::Connection other(path, sqlite::Missing::kFail, 1000);
    other.run(settings);
    for (int n = 0; n < kSaves / 4; ++n) {
      ++save;
      put_checked(backend, "F", id_of(save), record(content(save)), Expected::anything());
      disk.mark(save);
      if (n % 13 == 12) other.text("PRAGMA wal_checkpoint(PASSIVE)");
    }
  }
}

struct Losses {
  int states = 0, lost = 0, damaged = 0;
};

// Number of the save that a content is whole of; -1 for any other content.
std::int64_t save_in(const DbRecord& found) {
  const std::string number(found(1));
  if (number.empty() || number.find_first_not_of("0123456789") != number.npos) return -1;
  const std::int64_t save = std::stoll(number);
  return shown(found) == content(save) ? save : -1;
}

void judge(const std::string& path, const std::vector<std::int64_t>& acknowledged, Losses& losses) {
  ++losses.states;
  try {
    SqliteDatabase database(path, {.missing = SqliteDatabase::Missing::kCreate});
    bool lost = false, damaged = !database.damages().empty() || !database.damaged_records().empty();
    for (int card = 0; card < kCards; ++card) {
      const std::int64_t last = acknowledged[static_cast<std::size_t>(card)];
      const auto found = database.OpenFile("F")->find("card" + std::to_string(card));
      if (!found) {
        lost |= last > 0;
        continue;
      }
      const std::int64_t save = save_in(*found);
      damaged |= save < 0 || !history_is_whole(database, "F", "card" + std::to_string(card));
      lost |= save < last;
    }
    losses.lost += lost;
    losses.damaged += damaged;
  } catch (const DbError&) {
    ++losses.damaged;
  }
}

Losses cut_power(const char* settings, int states) {
  const TemporaryFolder folder(TemporaryFolder::On::kMemory);
  Disk disk;
  disk.remember();
  save_cards(disk, folder.file("base"), settings);
  disk.forget();
  const auto& events = disk.events();
  std::mt19937 random(7);
  std::vector<std::size_t> moments;
  moments.reserve(static_cast<std::size_t>(states));
  for (int n = 0; n < states; ++n) moments.push_back(random() % (events.size() + 1));
  std::sort(moments.begin(), moments.end());
  PowerCut cut(events);
  Losses losses;
  std::vector<std::int64_t> acknowledged(kCards);
  std::size_t seen = 0;
  const TemporaryFolder after(TemporaryFolder::On::kMemory);
  for (const std::size_t moment : moments) {
    for (; seen < moment; ++seen) {
      if (events[seen].kind == Disk::Event::Kind::kMark)
        acknowledged[static_cast<std::size_t>(events[seen].at % kCards)] = events[seen].at;
    }
    for (const auto& entry : fs::directory_iterator(after.file(""))) fs::remove(entry.path());
    for (const auto& [path, bytes] : cut.state_at(moment, random)) {
      if (path.empty()) continue;
      std::ofstream(after.file(fs::path(path).filename().string()), std::ios::binary) << bytes;
    }
    if (fs::exists(after.file("base")))
      fs::permissions(after.file("base"), fs::perms::owner_read | fs::perms::owner_write);
    judge(after.file("base"), acknowledged, losses);
  }
  return losses;
}

void tell(const char* what, const Losses& losses) {
  std::cout << "power cut, " << what << ": " << losses.states << " states, " << losses.lost
            << " with an acknowledged save lost, " << losses.damaged << " damaged" << test::so_far() << "\n";
}

TEST(PowerCutTest, LosesNoAcknowledgedSaveAndLeavesNoneHalfDone) {
  const Losses losses = cut_power("PRAGMA synchronous = FULL", long_tests() ? 200'000 : 5000);
  tell("synchronous FULL", losses);
  EXPECT_EQ(losses.lost, 0);
  EXPECT_EQ(losses.damaged, 0);
}

// Else the simulation proves nothing: NORMAL syncs the log before it is brought over, and no save.
TEST(PowerCutTest, LosesSavesWhereTheyAreNotSynced) {
  const int states = long_tests() ? 1000 : 100;
  for (const char* settings : {"PRAGMA synchronous = NORMAL", "PRAGMA synchronous = OFF"}) {
    const Losses losses = cut_power(settings, states);
    tell(settings + std::string_view("PRAGMA ").size(), losses);
    EXPECT_GT(losses.lost, states / 10) << settings;
  }
}

}  // namespace
}  // namespace velanor::store
