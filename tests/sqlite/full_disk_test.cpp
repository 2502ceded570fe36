// A disk without room, at any size, and work that goes on when there is some again.
#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>
#include <map>
#include <random>

#include "sqlite/disk.h"
#include "sqlite/snapshot.h"
#include "sqlite/temporary_folder.h"
#include "support/so_far.h"

namespace velanor::store {
namespace {

namespace fs = std::filesystem;

constexpr const char* kNoRoom = "le disque est plein. Libérez de la place, puis recommencez.";

DbRecord card_of(int save) {
  return record(std::to_string(save) + "^" + std::string(static_cast<std::size_t>(save % 9) * 400, 'c') +
                "^" + std::to_string(save));
}

class FullDisk : public testing::Test {
 protected:
  // Saves until there is no room; how many were acknowledged. The message says what to do.
  int save_until_full(SqliteDatabase& database) {
    int saves = 0;
    try {
      for (;; ++saves) {
        const int save = next_++, card = save % 7;
        database.put("F", std::to_string(card), card_of(save));
        last_[card] = save;
      }
    } catch (const DbError& error) {
      EXPECT_NE(std::string(error.what()).find(kNoRoom), std::string::npos) << error.what();
    }
    return saves;
  }
  // Every card holds its last acknowledged save, whole.
  int lost(SqliteDatabase& database) {
    int lost = 0;
    for (const auto& [card, save] : last_) {
      const auto found = database.OpenFile("F")->find(std::to_string(card));
      lost += !found || shown(*found) != shown(card_of(save));
      EXPECT_TRUE(history_is_whole(database, "F", std::to_string(card)));
    }
    EXPECT_TRUE(database.damages().empty());
    EXPECT_TRUE(database.damaged_records().empty());
    return lost;
  }

  Disk disk_;
  TemporaryFolder folder_{TemporaryFolder::On::kMemory};
  std::string path_ = folder_.file("base");
  int next_ = 1;
  std::map<int, int> last_;
};

TEST_F(FullDisk, LosesNoAcknowledgedSaveAndWorkGoesOnWhenThereIsRoom) {
  const int rounds = long_tests() ? 2000 : 50;
  disk_.forget();
  std::mt19937 random(11);
  SqliteDatabase(path_, {.missing = SqliteDatabase::Missing::kCreate}).put("F", "x", record("x"));
  int acknowledged = 0, losses = 0;
  for (int round = 0; round < rounds; ++round) {
    auto database = std::make_unique<SqliteDatabase>(path_);
    disk_.leave_room(static_cast<std::int64_t>(random() % 300'000));
    acknowledged += save_until_full(*database);
    // Every other time the program is left and started again while there is no room.
    if (round % 2 == 0) {
      losses += lost(*database);
    } else {
      database.reset();
      disk_.make_room();
      database = std::make_unique<SqliteDatabase>(path_);
      losses += lost(*database);
    }
    disk_.make_room();
    database->put("F", "x", record(std::to_string(round)));
  }
  EXPECT_EQ(losses, 0);
  EXPECT_GT(disk_.turned_away(), rounds / 2);
  std::cout << "full disk: " << rounds << " rounds, " << acknowledged << " saves acknowledged, " << losses
            << " lost" << test::so_far() << "\n";
}

// What says success can be opened and holds everything; what fails leaves nothing.
TEST_F(FullDisk, ANewBaseAndABackupAreWholeOrNotThereAtEverySizeOfTheDisk) {
  disk_.forget();
  const int records = 300;
  const auto fill = [&](SqliteDatabase& database) {
    database.in_one_change([&] {
      for (int n = 0; n < records; ++n) database.put("F", std::to_string(n), card_of(n));
    });
    return true;
  };
  const struct {
    const char* what;
    std::function<void()> act;
  } works[] = {
      {"new base", [&] { SqliteDatabase::build(folder_.file("new"), fill); }},
      {"backup", [&] { SqliteDatabase(path_).back_up(folder_.file("new")); }},
      {"import",
       [&] {
         SqliteDatabase base(folder_.file("new"), {.missing = SqliteDatabase::Missing::kCreate});
         fill(base);
       }},
  };
  SqliteDatabase::build(path_, fill);
  const auto size = static_cast<std::int64_t>(fs::file_size(path_));
  int sizes = 0, succeeded = 0;
  for (const auto& [what, act] : works) {
    SCOPED_TRACE(what);
    const bool import = std::string_view(what) == "import";
    for (std::int64_t room = 0; room < 3 * size; room += size / (long_tests() ? 400 : 20)) {
      SCOPED_TRACE(room);
      for (const char* ending : {"", "-wal", "-shm"}) fs::remove(folder_.file("new") + ending);
      disk_.leave_room(room);
      bool said = true;
      try {
        act();
      } catch (const DbError& error) {
        said = false;
        EXPECT_NE(std::string(error.what()).find(kNoRoom), std::string::npos) << error.what();
      }
      disk_.make_room();
      ++sizes;
      succeeded += said;
      // An import into a base leaves the base, and nothing in it.
      ASSERT_EQ(fs::exists(folder_.file("new")), said || import);
      if (!said && !import) continue;
      SqliteDatabase made(folder_.file("new"));
      ASSERT_TRUE(made.damages().empty());
      ASSERT_TRUE(made.damaged_records().empty());
      const DbResult ids = made.Select(DbQuery("SSELECT F", "F", "0").encoded());
      ASSERT_EQ(ids.DCount(), said ? records : 0);
    }
  }
  EXPECT_GT(succeeded, 3);
  EXPECT_LT(succeeded, sizes);
  std::cout << "sizes of the disk: " << sizes << " works, " << succeeded
            << " said success and hold everything, the others left nothing" << test::so_far() << "\n";
}

}  // namespace
}  // namespace velanor::store
