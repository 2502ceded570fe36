// Where a base may stand, what happens when it does not stay there, and putting a backup in its place.
#include "store/sqlite/place.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "sqlite/disk.h"
#include "sqlite/snapshot.h"
#include "sqlite/temporary_folder.h"
#include "store/sqlite/connection.h"
#include "store/sqlite/failure.h"

namespace velanor::store {
namespace {

namespace fs = std::filesystem;

class Place : public testing::Test {
 protected:
  std::unique_ptr<SqliteDatabase> open(int patience = 1000) {
    return std::make_unique<SqliteDatabase>(
        path_, SqliteDatabase::Options{.missing = SqliteDatabase::Missing::kCreate, .patience = patience});
  }
  static std::string failure(const std::function<void()>& act) {
    try {
      act();
    } catch (const DbError& error) {
      return error.what();
    }
    return "none";
  }

  TemporaryFolder folder_;
  std::string path_ = folder_.file("base");
};

TEST_F(Place, OfAnotherKindIsRefusedWithASentence) {
  open();
  const std::string link = folder_.file("lien"), subfolder = folder_.file("dossier");
  fs::create_symlink(path_, link);
  fs::create_directory(subfolder);
  EXPECT_EQ(
      failure([&] { SqliteDatabase database(link); }),
      "La base « " + link + " » n'a pas été ouverte : c'est un lien. Donnez le chemin du fichier lui-même.");
  EXPECT_EQ(failure([&] { SqliteDatabase database(subfolder); }),
            "La base « " + subfolder +
                " » n'a pas été ouverte : ce n'est pas un fichier. Donnez le chemin d'un fichier de base.");
  fs::create_symlink(folder_.file("absent"), folder_.file("vide"));
  EXPECT_NE(failure([&] {
              SqliteDatabase database(folder_.file("vide"), {.missing = SqliteDatabase::Missing::kCreate});
            }),
            "none");
  EXPECT_FALSE(fs::exists(folder_.file("absent"))) << "a link was followed";
}

// As linux/magic.h and the manual of statfs name them.
TEST(NetworkShare, IsKnownByItsFileSystem) {
  for (const unsigned long shared : {0x6969ul, 0xFF534D42ul, 0x517Bul, 0xFE534D42ul, 0xFFFFFFFFFF534D42ul})
    EXPECT_TRUE(sqlite::is_network(shared)) << shared;
  for (const unsigned long local : {0xEF53ul, 0x01021994ul, 0x9123683Eul, 0x58465342ul})
    EXPECT_FALSE(sqlite::is_network(local)) << local;
}

TEST_F(Place, ThatTheFileHasLeftTakesNoMoreSaves) {
  const struct {
    const char* what;
    std::function<void()> happens;
  } cases[] = {
      {"removed", [&] { fs::remove(path_); }},
      {"moved", [&] { fs::rename(path_, path_ + ".ailleurs"); }},
      {"replaced",
       [&] {
         fs::rename(path_, path_ + ".ancien");
         std::ofstream(path_) << "autre";
       }},
      {"without its log", [&] { fs::remove(path_ + "-wal"); }},
  };
  for (const auto& [what, happens] : cases) {
    SCOPED_TRACE(what);
    for (const auto& entry : fs::directory_iterator(folder_.file(""))) fs::remove(entry.path());
    const auto database = open();
    database->put("F", "1", record("a"));
    happens();
    EXPECT_EQ(
        failure([&] { database->put("F", "1", record("b")); }),
        "La base « " + path_ +
            " » n'est plus à sa place : son fichier a été déplacé, supprimé ou remplacé pendant qu'il était "
            "ouvert. Rien n'a été écrit. Fermez le programme, remettez le fichier, puis recommencez.");
    EXPECT_NE(failure([&] { database->OpenFile("F")->DeleteRecord("1"); }), "none");
    EXPECT_EQ(shown(database->OpenFile("F")->Read("1")), "a");
  }
}

TEST_F(Place, ThatIsLeftWithinAChangeIsToldAtItsEnd) {
  const auto database = open();
  database->put("F", "1", record("a"));
  EXPECT_NE(failure([&] {
              database->in_one_change([&] {
                database->put("F", "1", record("b"));
                fs::rename(path_, path_ + ".ailleurs");
              });
            }).find("Ce qui vient d'être écrit est perdu"),
            std::string::npos);
}

TEST_F(Place, OfAFileWhoseJournalIsOfAnotherModeAndTakenIsToldInTime) {
  open()->put("F", "1", record("a"));
  sqlite::Connection(path_, sqlite::Missing::kFail, 100).text("PRAGMA journal_mode = DELETE");
  sqlite::Connection holder(path_, sqlite::Missing::kFail, 100);
  holder.run("BEGIN IMMEDIATE");
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(failure([&] { open(300); }), "La base « " + path_ +
                                             " » est occupée par un autre programme. Attendez qu'il ait "
                                             "terminé ou fermez-le, puis recommencez.");
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

// ---- A backup in its place.

TEST_F(Place, TakenByABackupKeepsTheOldBaseWithAllThatItHeld) {
  open()->put("F", "1", record("a"));
  open()->back_up(folder_.file("copie"));
  open()->put("F", "1", record("b"));
  const std::string aside = SqliteDatabase::restore(folder_.file("copie"), path_);
  EXPECT_EQ(shown(open()->OpenFile("F")->Read("1")), "a");
  EXPECT_EQ(aside.find(path_ + ".avant-"), 0u) << aside;
  EXPECT_EQ(shown(SqliteDatabase(aside).OpenFile("F")->Read("1")), "b");
  struct stat status {};
  ASSERT_EQ(stat(path_.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
  fs::remove(path_);
  EXPECT_EQ(SqliteDatabase::restore(folder_.file("copie"), path_), "");
  EXPECT_EQ(shown(open()->OpenFile("F")->Read("1")), "a");
}

TEST_F(Place, IsNotTakenWhileSomebodyUsesTheBaseOrByWhatIsNoSoundBackup) {
  const auto user = open();
  user->put("F", "1", record("a"));
  user->back_up(folder_.file("copie"));
  user->put("F", "1", record("b"));
  EXPECT_EQ(
      failure([&] { SqliteDatabase::restore(folder_.file("copie"), path_); }),
      "La base « " + path_ +
          " » n'a pas été remplacée : un programme s'en sert. Fermez tous les programmes, puis recommencez.");
  std::ofstream(folder_.file("texte")) << std::string(5000, 'x');
  EXPECT_NE(failure([&] { SqliteDatabase::restore(folder_.file("texte"), path_); }), "none");
  EXPECT_NE(failure([&] { SqliteDatabase::restore(folder_.file("absente"), path_); }), "none");
  sqlite::Connection(folder_.file("autre"), sqlite::Missing::kCreate, 100).run("CREATE TABLE t(x)");
  EXPECT_NE(failure([&] { SqliteDatabase::restore(folder_.file("autre"), path_); }), "none");
  fs::resize_file(folder_.file("copie"), fs::file_size(folder_.file("copie")) - 4096);
  EXPECT_NE(failure([&] { SqliteDatabase::restore(folder_.file("copie"), path_); }), "none");
  user->put("F", "2", record("c"));
  EXPECT_EQ(shown(user->OpenFile("F")->Read("1")), "b");
  for (const auto& entry : fs::directory_iterator(folder_.file("")))
    EXPECT_FALSE(entry.path().string().ends_with(".partiel")) << entry.path();
}

// ---- New bases.

TEST_F(Place, OfANewBaseStaysEmptyWhereItCannotBeBroughtThere) {
  Disk disk;
  const auto build = [&] {
    SqliteDatabase::build(path_, [&](SqliteDatabase& database) {
      database.put("F", "1", record("a"));
      // From here on nothing reaches the disk: what is in the log stays in the log.
      disk.fail(Disk::Fault::kFull, 1, Disk::Lasting::kForEver);
      return true;
    });
  };
  EXPECT_NE(failure(build), "none");
  EXPECT_GT(disk.failed(), 0);
  EXPECT_TRUE(fs::is_empty(folder_.file("")));
  disk.work();
  EXPECT_EQ(failure([&] { SqliteDatabase::build(path_, [](SqliteDatabase&) { return false; }); }), "none");
  EXPECT_TRUE(fs::is_empty(folder_.file("")));
}

}  // namespace
}  // namespace velanor::store
