#include "store/sqlite/backups.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "sqlite/temporary_folder.h"
#include "store/notation.h"
#include "store/sqlite/connection.h"
#include "store/sqlite/failure.h"

namespace velanor::store::sqlite {
namespace {

namespace fs = std::filesystem;

class DatedBackups : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_directory(folder_.file("sauvegardes"));
    database_.put("SECTEUR", "001", record("Ville"));
  }
  static TimeOfDay on_day(int day) {
    std::tm now{};
    now.tm_year = 126;
    now.tm_mon = 10;
    now.tm_mday = day;
    now.tm_hour = 9;
    timegm(&now);  // days go on in the next month
    return [=] { return now; };
  }
  Backups::Report back_up(int day, int keep, const std::string& name = "paie") {
    return Backups(folder_.file("sauvegardes"), name, keep, on_day(day)).make(database_);
  }
  void write(const std::string& name, const std::string& text) const {
    std::ofstream(folder_.file("sauvegardes/" + name)) << text;
  }
  std::set<std::string> names() const {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_.file("sauvegardes")))
      names.insert(entry.path().filename().string());
    return names;
  }

  TemporaryFolder folder_;
  SqliteDatabase database_{folder_.file("paie.db"), {.missing = SqliteDatabase::Missing::kCreate}};
};

using Names = std::set<std::string>;

TEST_F(DatedBackups, KeepsTheNewestAndNamesThemByTheirMoment) {
  for (const int day : {3, 1, 2}) back_up(day, 3);
  EXPECT_EQ(names(),
            (Names{"paie-20261101-090000.db", "paie-20261102-090000.db", "paie-20261103-090000.db"}));
  EXPECT_EQ(back_up(4, 2).removed.size(), 2u);
  EXPECT_EQ(names(), (Names{"paie-20261103-090000.db", "paie-20261104-090000.db"}));
  SqliteDatabase copy(folder_.file("sauvegardes/paie-20261104-090000.db"));
  EXPECT_EQ(copy.OpenFile("SECTEUR")->Read("001")(1), "Ville");
}

TEST_F(DatedBackups, TwoWithinOneSecondBothStayAndTheLaterOneIsTheNewer) {
  for (int n = 0; n < 11; ++n) back_up(1, 11);
  EXPECT_EQ(names().size(), 11u);
  EXPECT_EQ(names().count("paie-20261101-090000-11.db"), 1u);
  back_up(1, 2);
  EXPECT_EQ(names(), (Names{"paie-20261101-090000-11.db", "paie-20261101-090000-12.db"}));
}

TEST_F(DatedBackups, NothingButItsOwnBackupsGoes) {
  back_up(1, 9, "autre");
  fs::copy(folder_.file("sauvegardes/autre-20261101-090000.db"), folder_.file("sauvegardes/paie.db"));
  fs::copy(folder_.file("sauvegardes/paie.db"), folder_.file("sauvegardes/paie-20260101-090000-0.db"));
  fs::create_directory(folder_.file("sauvegardes/paie-20260103-090000.db"));
  fs::create_symlink(folder_.file("paie.db"), folder_.file("sauvegardes/paie-20260104-090000.db"));
  for (const char* name : {"notes.txt", "paie-20260102-090000.db", "paie-20260102-090000.db.partiel",
                           "paie-2026010x-090000.db", "paie-20260102-090000-ancienne.db", "paie-20260102.db"})
    write(name, "à garder");
  const Names before = names();
  back_up(2, 1);
  EXPECT_TRUE(back_up(3, 1).removed.size() == 1);
  Names after = names();
  EXPECT_EQ(after.erase("paie-20261103-090000.db"), 1u);
  EXPECT_EQ(after, before);
}

TEST_F(DatedBackups, TheOneJustMadeStaysWhateverTheClockSaidBefore) {
  back_up(20, 1);
  const auto report = back_up(5, 1);
  EXPECT_EQ(names(), Names{"paie-20261105-090000.db"});
  EXPECT_EQ(report.removed.size(), 1u);
}

TEST_F(DatedBackups, AFolderThatIsNotThereIsNotMade) {
  fs::remove(folder_.file("sauvegardes"));
  EXPECT_THROW(back_up(1, 1), DbError);
  EXPECT_FALSE(fs::exists(folder_.file("sauvegardes")));
}

TEST_F(DatedBackups, WhatAKilledOneLeavesIsRemovedByTheNext) {
  for (const char* name :
       {"paie-20260101-090000.db.0123456789ab.partiel", "paie-20260101.db.0123456789ab.partiel"})
    write(name, "reste");
  back_up(1, 3);
  EXPECT_EQ(names(), (Names{"paie-20261101-090000.db", "paie-20260101.db.0123456789ab.partiel"}));
}

// ---- Those that are made by themselves.

TEST_F(DatedBackups, TheFirstOpeningOfADayMakesOneThatOnlyItsOwnerCanRead) {
  const std::string folder = folder_.file("paie.db.sauvegardes");
  const auto on = [&](int day) { return Backups::beside(folder_.file("paie.db"), on_day(day)); };
  EXPECT_TRUE(on(1).newest_first().empty());
  EXPECT_EQ(on(1).make_daily(database_).value().path, folder + "/paie-20261101-090000.db");
  EXPECT_FALSE(on(1).make_daily(database_)) << "a second one on one day";
  database_.put("SECTEUR", "001", record("Bourg"));
  for (int day = 2; day <= 40; ++day) EXPECT_TRUE(on(day).make_daily(database_));
  const auto backups = on(40).newest_first();
  ASSERT_EQ(backups.size(), 30u);
  EXPECT_EQ(backups.front().made.tm_mon, 11) << "the fortieth of November";
  EXPECT_EQ(backups.back().made.tm_mday, 11);
  EXPECT_EQ(backups.back().size, fs::file_size(backups.back().path));
  EXPECT_EQ(fs::status(folder).permissions(), fs::perms::owner_all);
  EXPECT_EQ(fs::status(backups.front().path).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(DatedBackups, NoneIsMadeByItselfOfABaseWithoutRecordsNorWhereALinkStands) {
  SqliteDatabase empty(folder_.file("vide.db"), {.missing = SqliteDatabase::Missing::kCreate});
  EXPECT_FALSE(Backups::beside(folder_.file("vide.db")).make_daily(empty));
  EXPECT_FALSE(fs::exists(folder_.file("vide.db.sauvegardes")));
  fs::create_directory_symlink(folder_.file("sauvegardes"), folder_.file("paie.db.sauvegardes"));
  EXPECT_THROW(Backups::beside(folder_.file("paie.db")).make_daily(database_), DbError);
  EXPECT_TRUE(names().empty());
}

TEST_F(DatedBackups, AreFoundDamagedByAllThatCanBeWrongWithThem) {
  const std::string path = back_up(1, 3).path;
  EXPECT_NO_THROW(verify_backup(path));
  const auto change = [&](const char* sql) { Connection(path, Missing::kFail, 1000).run(sql); };
  change("UPDATE record SET content = x'56'");
  EXPECT_THROW(verify_backup(path), DamagedError);
  fs::resize_file(path, fs::file_size(path) - 4096);
  EXPECT_THROW(verify_backup(path), DamagedError);
  EXPECT_THROW(verify_backup(folder_.file("absente")), DbError);
  write("texte", std::string(9000, 'x'));
  EXPECT_THROW(verify_backup(folder_.file("sauvegardes/texte")), DbError);
}

}  // namespace
}  // namespace velanor::store::sqlite
