// A disk that fails at any call of any work.
#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>

#include "sqlite/disk.h"
#include "sqlite/snapshot.h"
#include "sqlite/temporary_folder.h"
#include "store/sqlite/connection.h"
#include "store/sqlite/schema.h"
#include "support/so_far.h"

namespace velanor::store {
namespace {

namespace fs = std::filesystem;

// As the work finds it: closed; of an earlier version; with the log that a killed program has left.
enum class Base { kClosed, kOlder, kKilled };

struct Work {
  const char* name;
  // Does it on the base in a folder.
  std::function<void(const std::string& folder)> act;
  Base base = Base::kClosed;
};

void on_base(const std::string& folder, const std::function<void(SqliteDatabase&)>& act) {
  SqliteDatabase database(folder + "base");
  act(database);
}

const Work kWorks[] = {
    {"save",
     [](auto& folder) { on_base(folder, [](auto& base) { base.put("F", "1", record("changed")); }); }},
    {"new card",
     [](auto& folder) {
       on_base(folder,
               [](auto& base) { base.OpenFile("F")->write("99", record("new"), Expected::absent()); });
     }},
    {"deletion",
     [](auto& folder) { on_base(folder, [](auto& base) { base.OpenFile("F")->DeleteRecord("1"); }); }},
    {"import",
     [](auto& folder) {
       on_base(folder, [](auto& base) {
         base.in_one_change([&] {
           for (int n = 0; n < 60; ++n)
             base.put(n % 2 == 0 ? "F" : "G", std::to_string(n), record(std::string(2000, 'i')));
         });
       });
     }},
    {"backup", [](auto& folder) { on_base(folder, [&](auto& base) { base.back_up(folder + "new"); }); }},
    {"new base",
     [](auto& folder) {
       SqliteDatabase::build(folder + "new", [](auto& base) {
         for (int n = 0; n < 20; ++n) base.put("F", std::to_string(n), record("built"));
         return true;
       });
     }},
    {"restore", [](auto& folder) { SqliteDatabase::restore(folder + "backup", folder + "base"); }},
    {"migration", [](auto& folder) { on_base(folder, [](auto&) {}); }, Base::kOlder},
    {"recovery",
     [](auto& folder) { on_base(folder, [](auto& base) { base.put("F", "3", record("changed")); }); },
     Base::kKilled},
};

void lay_base(const std::string& folder, Base kind) {
  if (kind == Base::kOlder) {
    sqlite::Connection old(folder + "base", sqlite::Missing::kCreate, 100);
    sqlite::prepare(old, sqlite::schema_steps().first(1));
    old.run(
        "INSERT INTO file(name) VALUES ('F'); INSERT INTO record(file, id, tail, content) "
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 9) "
        "SELECT 1, CAST(i AS TEXT), CAST(i AS BLOB), CAST(printf('%03000d', i) AS BLOB) FROM n");
    return;
  }
  SqliteDatabase base(folder + "base", {.missing = SqliteDatabase::Missing::kCreate});
  base.history()->set_author("paul");
  base.in_one_change([&] {
    for (int n = 0; n < 20; ++n) base.put("F", std::to_string(n), record("old" + std::to_string(n)));
  });
  base.put("F", "1", record("second"));
  base.back_up(folder + "backup");
  base.put("F", "2", record("after the backup"));
  if (kind == Base::kClosed) return;
  // As the files stand while it is open.
  for (const char* name : {"base", "base-wal"}) fs::copy(folder + name, folder + "killed-" + name);
}

// The files of a work, in a folder of its own.
void copy_base(const std::string& from, const std::string& to) {
  fs::copy(from, to, fs::copy_options::recursive);
  for (const char* name : {"base", "base-wal"}) {
    if (fs::exists(to + "killed-" + name)) fs::rename(to + "killed-" + name, to + name);
  }
}

// What stands in the folder: the base, and the new one, or that it is not there.
std::string state_of(const std::string& folder) {
  std::string state;
  for (const char* name : {"base", "new"}) {
    if (!fs::exists(folder + name)) {
      state += std::string(name) + " absent\n";
      continue;
    }
    SqliteDatabase database(folder + name);
    for (const std::string& damage : database.damages()) state += "DAMAGE " + damage;
    for (const auto& damage : database.damaged_records()) state += "DAMAGE " + damage.sentence;
    for (const std::string& damage : database.disagreements()) state += "DAMAGE " + damage;
    state += snapshot(database);
  }
  return state;
}

class Tally {
 public:
  int cases = 0, told = 0, unharmed = 0;
};

class FailingDisk : public testing::Test {
 protected:
  // What fails to be synced is looked at here, not what is left when the power goes.
  FailingDisk() { disk_.forget(); }
  // Whether a call was there to fail.
  bool run(const Work& work, Disk::Fault fault, Disk::Lasting lasting, int nth, const std::string& before,
           const std::string& after) {
    const TemporaryFolder own(TemporaryFolder::On::kMemory);
    const std::string folder = own.file("");
    copy_base(original_->file(""), folder);
    std::string error;
    disk_.fail(fault, nth, lasting);
    try {
      work.act(folder);
    } catch (const DbError& failure) {
      error = failure.what();
    }
    const bool failed = disk_.failed() > 0;
    disk_.work();
    if (!failed) return false;
    ++tally_.cases;
    error.empty() ? ++tally_.unharmed : ++tally_.told;
    const std::string state = state_of(folder);
    EXPECT_TRUE(state == after || (!error.empty() && state == before)) << error << "\n" << state;
    for (const auto& entry : fs::directory_iterator(folder))
      EXPECT_FALSE(entry.path().string().ends_with(".partiel")) << entry.path();
    return true;
  }

  Disk disk_;
  std::unique_ptr<TemporaryFolder> original_;
  Tally tally_;
};

TEST_F(FailingDisk, IsToldAndLeavesTheOldStateOrTheNewOneAtEveryCallOfEveryWork) {
  for (const Work& work : kWorks) {
    SCOPED_TRACE(work.name);
    original_ = std::make_unique<TemporaryFolder>(TemporaryFolder::On::kMemory);
    lay_base(original_->file(""), work.base);
    std::string before, after;
    {
      const TemporaryFolder one, two;
      copy_base(original_->file(""), one.file(""));
      if (work.base != Base::kOlder) before = state_of(one.file(""));
      copy_base(original_->file(""), two.file(""));
      work.act(two.file(""));
      after = state_of(two.file(""));
      // A base that is looked at is brought up to date by that.
      if (work.base == Base::kOlder) before = after;
    }
    for (const auto fault : {Disk::Fault::kError, Disk::Fault::kFull, Disk::Fault::kSync, Disk::Fault::kRead,
                             Disk::Fault::kOpen}) {
      for (const auto lasting : {Disk::Lasting::kOnce, Disk::Lasting::kForEver}) {
        for (int nth = 1; run(work, fault, lasting, nth, before, after); ++nth)
          ASSERT_FALSE(HasFailure()) << "fault " << static_cast<int>(fault) << " at call " << nth;
      }
    }
  }
  std::cout << "failing disk: " << tally_.cases << " faults, " << tally_.told << " told, " << tally_.unharmed
            << " without harm; every state the old one or the new one" << test::so_far() << "\n";
  EXPECT_GT(tally_.told, 50);
}

// The sync of a save is what it is acknowledged by.
TEST_F(FailingDisk, NoSaveIsAcknowledgedWhoseSyncFailed) {
  const TemporaryFolder folder;
  lay_base(folder.file(""), Base::kClosed);
  SqliteDatabase database(folder.file("base"));
  database.put("F", "1", record("x"));
  for (const auto fault : {Disk::Fault::kSync, Disk::Fault::kError, Disk::Fault::kFull}) {
    disk_.fail(fault, 1, Disk::Lasting::kForEver);
    EXPECT_THROW(database.put("F", "1", record("y")), DbError);
    EXPECT_THROW(database.OpenFile("F")->DeleteRecord("1"), DbError);
    EXPECT_GT(disk_.failed(), 0);
    disk_.work();
    EXPECT_EQ(shown(database.OpenFile("F")->Read("1")), "x");
  }
  database.put("F", "1", record("z"));
  EXPECT_TRUE(history_is_whole(database, "F", "1"));
}

// Whoever catches the failure of one write and goes on must not make half a change.
TEST_F(FailingDisk, AChangeOfWhichOneWriteFailedIsUndoneAsAWhole) {
  const TemporaryFolder folder;
  lay_base(folder.file(""), Base::kClosed);
  SqliteDatabase database(folder.file("base"));
  const std::string before = snapshot(database);
  const auto change = [&] {
    database.put("F", "1", record("part"));
    // Larger than what is kept in memory, so that the disk is asked before the end.
    try {
      disk_.fail(Disk::Fault::kFull, 1, Disk::Lasting::kForEver);
      for (int n = 0; n < 60; ++n)
        database.put("F", "big" + std::to_string(n), record(std::string(900'000, 'x')));
      ADD_FAILURE() << "nothing failed";
    } catch (const DbError&) {
      disk_.work();
    }
    EXPECT_THROW(database.put("F", "2", record("part")), DbError);
  };
  EXPECT_THROW(database.in_one_change(change), DbError);
  disk_.work();
  EXPECT_EQ(snapshot(database), before);
  database.put("F", "1", record("whole"));
}

}  // namespace
}  // namespace velanor::store
