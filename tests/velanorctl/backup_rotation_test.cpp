#include "app/velanorctl/backup_rotation.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "sqlite/temporary_folder.h"
#include "store/notation.h"

namespace velanor::app {
namespace {

namespace fs = std::filesystem;

class RotationOfBackups : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_directory(folder_.file("sauvegardes"));
    database_.put("SECTEUR", "001", store::record("Ville"));
  }
  RotationReport back_up(int day, int keep, const std::string& name = "paie") {
    std::tm now{};
    now.tm_year = 126;
    now.tm_mon = 10;
    now.tm_mday = day;
    now.tm_hour = 9;
    return back_up_in_rotation(database_, {folder_.file("sauvegardes"), name, keep}, [=] { return now; });
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
  store::SqliteDatabase database_{folder_.file("paie.db"),
                                  {.missing = store::SqliteDatabase::Missing::kCreate}};
};

using Names = std::set<std::string>;

TEST_F(RotationOfBackups, KeepsTheNewestAndNamesThemByTheirMoment) {
  for (const int day : {3, 1, 2}) back_up(day, 3);
  EXPECT_EQ(names(),
            (Names{"paie-20261101-090000.db", "paie-20261102-090000.db", "paie-20261103-090000.db"}));
  EXPECT_EQ(back_up(4, 2).removed.size(), 2u);
  EXPECT_EQ(names(), (Names{"paie-20261103-090000.db", "paie-20261104-090000.db"}));
  store::SqliteDatabase copy(folder_.file("sauvegardes/paie-20261104-090000.db"));
  EXPECT_EQ(copy.OpenFile("SECTEUR")->Read("001")(1), "Ville");
}

TEST_F(RotationOfBackups, TwoWithinOneSecondBothStayAndTheLaterOneIsTheNewer) {
  for (int n = 0; n < 11; ++n) back_up(1, 11);
  EXPECT_EQ(names().size(), 11u);
  EXPECT_EQ(names().count("paie-20261101-090000-11.db"), 1u);
  back_up(1, 2);
  EXPECT_EQ(names(), (Names{"paie-20261101-090000-11.db", "paie-20261101-090000-12.db"}));
}

TEST_F(RotationOfBackups, NothingButItsOwnBackupsGoes) {
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

TEST_F(RotationOfBackups, TheOneJustMadeStaysWhateverTheClockSaidBefore) {
  back_up(20, 1);
  const auto report = back_up(5, 1);
  EXPECT_EQ(names(), Names{"paie-20261105-090000.db"});
  EXPECT_EQ(report.removed.size(), 1u);
}

TEST_F(RotationOfBackups, AFolderThatIsNotThereIsNotMade) {
  fs::remove(folder_.file("sauvegardes"));
  EXPECT_THROW(back_up(1, 1), store::DbError);
  EXPECT_FALSE(fs::exists(folder_.file("sauvegardes")));
}

}  // namespace
}  // namespace velanor::app
