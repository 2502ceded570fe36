#include "velanor/sqlite_database.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "sqlite/temporary_folder.h"
#include "store/contract.h"
#include "store/notation.h"
#include "store/sqlite/failure.h"
#include "store/sqlite/unfinished_file.h"
#include "support/as_nobody.h"
#include "velanor/memory_database.h"

namespace velanor::store {
namespace {

SqliteDatabase::Options created(int patience = 5000) {
  return {.missing = SqliteDatabase::Missing::kCreate, .patience = patience};
}

// A database whose file goes with it.
struct OwnFile {
  TemporaryFolder folder;
};
class OwnSqliteDatabase : private OwnFile, public SqliteDatabase {
 public:
  OwnSqliteDatabase() : SqliteDatabase(folder.file("base"), created()) {}
};

INSTANTIATE_TEST_SUITE_P(Sqlite, StoreContract,
                         testing::Values(StoreFactory{"Sqlite",
                                                      [] { return std::make_unique<OwnSqliteDatabase>(); }}),
                         [](const auto& factory) { return factory.param.name; });

std::string all_of(Database& database, std::string_view statement, std::string_view file,
                   std::string_view attributes = "0 1") {
  const DbResult found = database.Select(DbQuery(statement, file, attributes).encoded());
  std::string text;
  for (int i = 1; i <= found.DCount(); ++i) text += shown(found(i)) + "\n";
  return text;
}

class SqliteFile : public testing::Test {
 protected:
  std::unique_ptr<SqliteDatabase> open(int patience = 5000) {
    return std::make_unique<SqliteDatabase>(path_, created(patience));
  }
  std::string failure(const std::function<void()>& action) {
    try {
      action();
    } catch (const DbError& error) {
      EXPECT_EQ(error.number(), kStoreFailure);
      return error.what();
    }
    return "no failure";
  }

  TemporaryFolder folder_;
  std::string path_ = folder_.file("base.velanor");
};

TEST_F(SqliteFile, KeepsWhatWasWrittenForTheNextProgram) {
  open()->put("SECTEUR", "001", record("Ville^a|b~c"));
  const SqliteDatabase::Options existing;
  SqliteDatabase database(path_, existing);
  EXPECT_EQ(shown(database.OpenFile("SECTEUR")->Read("001")), "Ville^a|b~c");
  EXPECT_EQ(database.files(), std::vector<std::string>{"SECTEUR"});
}

TEST_F(SqliteFile, IsReadableByItsOwnerAlone) {
  const mode_t mask = umask(0);
  const auto database = open();
  database->put("SECTEUR", "001", record("x"));
  umask(mask);
  for (const char* companion : {"", "-wal", "-shm"}) {
    struct stat status {};
    ASSERT_EQ(stat((path_ + companion).c_str(), &status), 0) << companion;
    EXPECT_EQ(status.st_mode & 0777, 0600u) << companion;
  }
}

TEST_F(SqliteFile, TwoProgramsSeeEachOthersWritesInListsThatTheyHaveAskedBefore) {
  const auto first = open(), second = open();
  const char* list = "SSELECT SECTEUR PAR 1";
  EXPECT_EQ(all_of(*first, list, "SECTEUR"), "");
  second->put("SECTEUR", "001", record("Ville"));
  EXPECT_EQ(all_of(*first, list, "SECTEUR"), "001|Ville\n");
  first->put("SECTEUR", "002", record("Bourg"));
  EXPECT_EQ(all_of(*second, list, "SECTEUR"), "002|Bourg\n001|Ville\n");
  second->OpenFile("SECTEUR")->DeleteRecord("001");
  EXPECT_EQ(all_of(*first, list, "SECTEUR"), "002|Bourg\n");
}

TEST_F(SqliteFile, AListThatNobodyChangedIsTheSameAnswer) {
  const auto first = open(), second = open();
  first->put("COMMUNES", "1", record("Ville"));
  const std::string request = DbQuery("SSELECT COMMUNES PAR 1", "COMMUNES", "0 1").encoded();
  const DbResult before = first->Select(request);
  second->put("VELANORO", "1", record("x"));
  EXPECT_TRUE(before.same_rows(first->Select(request)));
}

TEST_F(SqliteFile, AnUndoneChangeLeavesNothingEvenInKeptLists) {
  const auto database = open();
  database->put("SECTEUR", "001", record("Ville"));
  const char* list = "SSELECT SECTEUR PAR 1";
  const auto broken = [&] {
    database->put("SECTEUR", "002", record("Bourg"));
    database->put("NEUF", "1", record("x"));
    EXPECT_EQ(all_of(*database, list, "SECTEUR"), "002|Bourg\n001|Ville\n");
    throw std::runtime_error("stop");
  };
  EXPECT_THROW(database->in_one_change(broken), std::runtime_error);
  // As many writes as inside the undone change: the list kept there must not come back.
  database->put("SECTEUR", "003", record("Autre"));
  EXPECT_EQ(all_of(*database, list, "SECTEUR"), "003|Autre\n001|Ville\n");
  database->put("NEUF", "2", record("y"));
  EXPECT_EQ(all_of(*open(), "SSELECT NEUF PAR 0", "NEUF"), "2|y\n");
}

TEST_F(SqliteFile, AChangeIsSeenByOthersOnlyWhenItIsComplete) {
  const auto writer = open(), reader = open();
  writer->put("SECTEUR", "001", record("Ville"));
  writer->in_one_change([&] {
    writer->put("SECTEUR", "002", record("Bourg"));
    EXPECT_FALSE(reader->OpenFile("SECTEUR")->find("002"));
  });
  EXPECT_TRUE(reader->OpenFile("SECTEUR")->find("002"));
}

TEST_F(SqliteFile, AViewStaysAsItWasWhileOthersWrite) {
  const auto reader = open(), writer = open();
  const char* list = "SSELECT SECTEUR PAR 0";
  writer->put("SECTEUR", "001", record("Ville"));
  reader->in_one_view([&] {
    EXPECT_EQ(all_of(*reader, list, "SECTEUR"), "001|Ville\n");
    writer->put("SECTEUR", "001", record("Bourg"));
    writer->put("SECTEUR", "002", record("Hameau"));
    EXPECT_EQ((*reader->OpenFile("SECTEUR")->find("001"))(1), "Ville");
    EXPECT_EQ(all_of(*reader, "SSELECT SECTEUR AVEC 0 >= \"001\" PAR 0", "SECTEUR"), "001|Ville\n");
  });
  EXPECT_EQ(all_of(*reader, list, "SECTEUR"), "001|Bourg\n002|Hameau\n");
}

// The child says through the pipe that a write has returned, then dies without a warning.
TEST_F(SqliteFile, AKilledProgramLosesNothingThatItWasToldIsWritten) {
  open();
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const pid_t child = fork();
  if (child == 0) {
    SqliteDatabase database(path_, created());
    const auto file = database.OpenFile("VELANORO");
    for (int n = 0;; ++n) {
      file->write(std::to_string(n), record("Fiche " + std::to_string(n)));
      if (write(ends[1], "", 1) != 1) _exit(1);
    }
  }
  close(ends[1]);
  constexpr int kAcknowledged = 40;
  char told;
  for (int n = 0; n < kAcknowledged; ++n) ASSERT_EQ(read(ends[0], &told, 1), 1);
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  close(ends[0]);
  const auto database = open();
  const auto file = database->OpenFile("VELANORO");
  for (int n = 0; n < kAcknowledged; ++n) {
    const auto found = file->find(std::to_string(n));
    ASSERT_TRUE(found) << n;
    EXPECT_EQ(shown(*found), "Fiche " + std::to_string(n));
  }
  EXPECT_TRUE(database->damages().empty());
}

TEST_F(SqliteFile, AgreesWithTheMemoryStoreThroughRandomWritesAndSelections) {
  const char* const statements[] = {
      "SSELECT F AVEC 0 = \"[12\" PAR 1",
      "SSELECT F AVEC 0 = \"1]\" PAR-DECR 1",
      "SSELECT F AVEC 0 = \"é]\"",
      "SSELECT F AVEC 0 = \"[é\"",
      "SSELECT F AVEC 0 = \"121\"",
      "SSELECT F AVEC 0 = \"[2]\" AND AVEC 1 # \"b\"",
      "SSELECT F AVEC 0 >= \"12\" AND < \"2\" PAR 1",
      "SSELECT F AVEC 0 = \"[1\" OR AVEC 0 = \"2]\"",
      "SSELECT F PAR 1 PAR-DECR 0",
  };
  const char* const letters[] = {"1", "2", "é", "ÿ"};
  const char* const contents[] = {"a", "b^x|y", "é~z", "B", ""};
  std::mt19937 random(11);
  const auto database = open();
  const auto other = open();
  MemoryDatabase memory;
  for (int round = 0; round < 150; ++round) {
    std::string id;
    for (auto size = 1 + random() % 4; size > 0; --size) id += letters[random() % 4];
    Database& sqlite = round % 3 == 0 ? *other : *database;
    if (random() % 3 == 0) {
      sqlite.OpenFile("F")->DeleteRecord(id);
      memory.remove("F", id);
    } else {
      const DbRecord content = record(contents[random() % 5]);
      sqlite.OpenFile("F")->write(id, content);
      memory.put("F", id, content);
    }
    const char* statement = statements[random() % std::size(statements)];
    const char* attributes = random() % 2 == 0 ? "0" : "0 1 2";
    ASSERT_EQ(all_of(*database, statement, "F", attributes), all_of(memory, statement, "F", attributes))
        << statement << " in round " << round;
  }
}

// ---- Failures.

TEST_F(SqliteFile, AFileThatIsNotThereIsNotCreatedUnlessThatIsAsked) {
  EXPECT_EQ(failure([&] { SqliteDatabase database(path_); }),
            "La base « " + path_ +
                " » ne peut pas être ouverte. Vérifiez que le fichier et son dossier existent et que vous "
                "avez le droit de les lire et d'y écrire.");
  EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(SqliteFile, WhatMayNotBeWrittenIsReadAndEveryWriteIsRefusedWithASentence) {
  namespace fs = std::filesystem;
  using fs::perms;
  open()->put("SECTEUR", "001", record("Ville"));
  constexpr perms kLook = perms::owner_read | perms::group_read | perms::others_read;
  constexpr perms kEnter = kLook | perms::owner_exec | perms::group_exec | perms::others_exec;
  const struct {
    const char* protected_part;
    perms file, folder;
  } cases[] = {{"file", kLook, perms::all},
               {"folder", kLook | perms::owner_write | perms::group_write | perms::others_write, kEnter},
               {"both", kLook, kEnter}};
  for (const auto& [protected_part, file, folder] : cases) {
    SCOPED_TRACE(protected_part);
    fs::permissions(path_, file);
    fs::permissions(folder_.file(""), folder);
    {
      const test::AsNobody nobody;
      SqliteDatabase database(path_);
      EXPECT_TRUE(database.read_only());
      EXPECT_EQ(all_of(database, "SSELECT SECTEUR PAR 1", "SECTEUR"), "001|Ville\n");
      EXPECT_EQ(failure([&] { database.put("SECTEUR", "002", record("x")); }),
                "La base « " + path_ +
                    " » n'a pas été modifiée : elle est en lecture seule. Demandez le droit d'écrire dans ce "
                    "fichier et dans son dossier.");
    }
    fs::permissions(folder_.file(""), perms::all);
    fs::permissions(path_, perms::owner_read | perms::owner_write);
    EXPECT_FALSE(open()->read_only()) << "companions of a reader keep the writer out";
  }
}

TEST_F(SqliteFile, AReaderSeesWhatAWriterWhoComesLaterWrites) {
  if (getuid() != 0) GTEST_SKIP() << "needs a second user";
  namespace fs = std::filesystem;
  open()->put("SECTEUR", "001", record("Ville"));
  constexpr fs::perms kMineToWrite = fs::perms::owner_all | fs::perms::group_read | fs::perms::others_read;
  fs::permissions(path_, kMineToWrite);
  fs::permissions(folder_.file(""), kMineToWrite | fs::perms::group_exec | fs::perms::others_exec);
  const char* list = "SSELECT SECTEUR PAR 1";
  std::unique_ptr<SqliteDatabase> reader;
  const auto seen = [&] {
    const test::AsNobody nobody;
    if (!reader) reader = std::make_unique<SqliteDatabase>(path_);
    return all_of(*reader, list, "SECTEUR");
  };
  EXPECT_EQ(seen(), "001|Ville\n");
  {
    const auto writer = open();
    writer->put("SECTEUR", "002", record("Bourg"));
    EXPECT_EQ(seen(), "002|Bourg\n001|Ville\n");
    writer->put("SECTEUR", "003", record("Autre"));
    EXPECT_EQ(seen(), "003|Autre\n002|Bourg\n001|Ville\n");
  }
  open()->put("SECTEUR", "004", record("Zone"));
  EXPECT_EQ(seen(), "003|Autre\n002|Bourg\n001|Ville\n004|Zone\n");
  EXPECT_TRUE(reader->read_only());
}

TEST_F(SqliteFile, AnotherKindOfFileIsRefusedAndLeftAsItIs) {
  const std::string text = std::string(3000, 'x');
  std::ofstream(path_) << text;
  EXPECT_EQ(
      failure([&] { open(); }),
      "La base « " + path_ + " » n'est pas une base de fiches du personnel. Choisissez un autre fichier.");
  std::string kept;
  std::getline(std::ifstream(path_), kept);
  EXPECT_EQ(kept, text);
}

TEST_F(SqliteFile, AWriteThatFindsTheBaseTakenSaysWhoToWaitForAndLosesNothing) {
  const auto holder = open(), waiting = open(1);
  holder->in_one_change([&] {
    holder->put("SECTEUR", "001", record("Ville"));
    EXPECT_EQ(failure([&] { waiting->put("SECTEUR", "002", record("Bourg")); }),
              "La base « " + path_ +
                  " » est occupée par un autre programme. Attendez qu'il ait terminé ou fermez-le, puis "
                  "recommencez.");
  });
  waiting->put("SECTEUR", "002", record("Bourg"));
  EXPECT_EQ(all_of(*holder, "SSELECT SECTEUR", "SECTEUR", "0"), "001\n002\n");
}

TEST_F(SqliteFile, DamageIsToldAsSuch) {
  {
    const auto database = open();
    database->in_one_change([&] {
      for (int n = 0; n < 3000; ++n) database->put("F", std::to_string(n), record("contenu"));
    });
  }
  std::fstream file(path_, std::ios::in | std::ios::out | std::ios::binary);
  file.seekp(8 * 4096);
  file << std::string(20 * 4096, '\x5A');
  file.close();
  const auto database = open();
  EXPECT_FALSE(database->damages().empty());
  EXPECT_EQ(
      failure([&] { all_of(*database, "SSELECT F AVEC 1 = \"x\"", "F"); }),
      "La base « " + path_ + " » est endommagée. Fermez le programme et reprenez la dernière sauvegarde.");
}

// ---- Backups.

TEST_F(SqliteFile, ABackupHoldsAllThatWasWrittenAndRefusesToReplaceAFile) {
  const auto database = open();
  for (int n = 0; n < 500; ++n) database->put("F", std::to_string(n), record("contenu"));
  const std::string copy = folder_.file("copie");
  double last = 0;
  database->back_up(copy, [&](double part) { last = part; });
  EXPECT_EQ(last, 1.0);
  SqliteDatabase restored(copy);
  EXPECT_EQ(all_of(restored, "SSELECT F", "F"), all_of(*database, "SSELECT F", "F"));
  struct stat status {};
  ASSERT_EQ(stat(copy.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
  EXPECT_EQ(failure([&] { database->back_up(copy); }),
            "Le fichier « " + copy + " » existe déjà. Donnez un autre nom, ou ôtez-le.");
}

TEST_F(SqliteFile, ABackupOfADamagedBaseIsRefusedAndLeavesNoFile) {
  {
    const auto database = open();
    for (int n = 0; n < 500; ++n) database->put("F", std::to_string(n), record("contenu"));
  }
  {
    // Past the schema, in the middle of the records: opening sees nothing of it.
    std::fstream file(path_, std::ios::in | std::ios::out | std::ios::binary);
    const auto size = std::filesystem::file_size(path_);
    file.seekp(static_cast<std::streamoff>(size / 2 / 4096 * 4096));
    file << std::string(4096, 'x');
  }
  SqliteDatabase damaged(path_);
  EXPECT_THROW(damaged.back_up(folder_.file("copie")), sqlite::DamagedError);
  EXPECT_EQ(
      failure([&] { damaged.back_up(folder_.file("copie")); }),
      "La base « " + path_ +
          " » est endommagée, elle n'a pas été sauvegardée. Fermez le programme et reprenez la dernière "
          "sauvegarde.");
  for (const auto& entry : std::filesystem::directory_iterator(folder_.file("")))
    EXPECT_EQ(entry.path().filename().string().find("copie"), std::string::npos) << entry.path();
}

TEST_F(SqliteFile, ABackupTouchesNoFileOfAnothersAndFollowsNoLink) {
  const auto database = open();
  const std::string other = folder_.file("autre");
  std::ofstream(other) << "à un autre";
  std::ofstream(folder_.file("copie.partiel")) << "à un autre";
  std::filesystem::create_symlink(other, folder_.file("copie.0123456789ab.partiel"));
  std::filesystem::create_symlink(other, folder_.file("lien"));
  EXPECT_THROW(database->back_up(folder_.file("lien")), NameTaken);
  database->back_up(folder_.file("copie"));
  EXPECT_EQ(std::filesystem::file_size(other), std::string("à un autre").size());
  EXPECT_TRUE(std::filesystem::exists(folder_.file("copie.partiel")));
  EXPECT_TRUE(std::filesystem::is_symlink(folder_.file("copie.0123456789ab.partiel")));
}

TEST_F(SqliteFile, WhatAKilledBackupLeavesIsRemovedByTheNextButNotWhatIsBeingMade) {
  const auto database = open();
  for (const char* ending : {"", "-wal", "-journal"})
    std::ofstream(folder_.file(std::string("copie.0123456789ab.partiel") + ending)) << "reste";
  const sqlite::UnfinishedFile under_way(folder_.file("copie"));
  EXPECT_FALSE(std::filesystem::exists(folder_.file("copie.0123456789ab.partiel")));
  EXPECT_FALSE(std::filesystem::exists(folder_.file("copie.0123456789ab.partiel-wal")));
  database->back_up(folder_.file("copie"));
  EXPECT_TRUE(std::filesystem::exists(under_way.path()));
}

TEST_F(SqliteFile, ANameThatIsTakenMeanwhileIsNotTakenAway) {
  const auto database = open();
  const std::string copy = folder_.file("copie");
  EXPECT_THROW(database->back_up(copy, [&](double) { std::ofstream(copy) << "à un autre"; }), NameTaken);
  EXPECT_EQ(std::filesystem::file_size(copy), std::string("à un autre").size());
  for (const auto& entry : std::filesystem::directory_iterator(folder_.file("")))
    EXPECT_FALSE(entry.path().string().ends_with(".partiel")) << entry.path();
}

TEST_F(SqliteFile, ADatabaseIsKnownByItsFile) {
  open();
  EXPECT_TRUE(SqliteDatabase::is_at(path_));
  EXPECT_FALSE(SqliteDatabase::is_at(folder_.file("absente")));
  std::ofstream(folder_.file("texte")) << std::string(200, 'x');
  EXPECT_FALSE(SqliteDatabase::is_at(folder_.file("texte")));
}

TEST_F(SqliteFile, ABackupThatFailsLeavesNoFile) {
  const auto database = open();
  EXPECT_NE(failure([&] { database->back_up(folder_.file("absent/copie")); }), "no failure");
  EXPECT_FALSE(std::filesystem::exists(folder_.file("absent")));
}

}  // namespace
}  // namespace velanor::store
