#include "store/sqlite/schema.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "sqlite/temporary_folder.h"
#include "store/sqlite/failure.h"
#include "velanor/sqlite_database.h"

namespace velanor::store::sqlite {
namespace {

class Schema : public testing::Test {
 protected:
  Connection connect() { return Connection(path_, Missing::kCreate, 1000); }
  std::string refusal(std::span<const char* const> steps = schema_steps()) {
    Connection connection = connect();
    try {
      prepare(connection, steps);
    } catch (const DbError& error) {
      return error.what();
    }
    return "";
  }

  TemporaryFolder folder_;
  std::string path_ = folder_.file("base");
};

constexpr const char* kLaterSteps[] = {
    "CREATE TABLE file(name TEXT)",
    "ALTER TABLE file ADD COLUMN author TEXT; UPDATE file SET author = 'inconnu'",
};

TEST_F(Schema, AnOlderFileTakesTheStepsThatItLacksAndKeepsItsContent) {
  Connection old = connect();
  prepare(old, std::span(kLaterSteps).first(1));
  old.run("INSERT INTO file VALUES ('F')");
  Connection later = connect();
  prepare(later, kLaterSteps);
  EXPECT_EQ(later.text("SELECT name || ' ' || author FROM file"), "F inconnu");
  EXPECT_EQ(later.number("PRAGMA user_version"), 2);
}

TEST_F(Schema, AStepThatFailsLeavesTheFileAtItsVersion) {
  Connection old = connect();
  prepare(old, std::span(kLaterSteps).first(1));
  const char* const broken[] = {kLaterSteps[0], "CREATE TABLE extra(x); SELECT * FROM nowhere"};
  EXPECT_NE(refusal(broken), "");
  EXPECT_EQ(old.number("PRAGMA user_version"), 1);
  EXPECT_EQ(old.number("SELECT count(*) FROM sqlite_schema WHERE name = 'extra'"), 0);
}

TEST_F(Schema, AFileOfALaterVersionIsRefused) {
  Connection later = connect();
  prepare(later);
  later.run("PRAGMA user_version = 99");
  EXPECT_EQ(refusal(),
            "La base « " + path_ +
                " » a été écrite par une version plus récente du programme. Installez cette version "
                "pour l'ouvrir ; la base n'a pas été modifiée.");
  EXPECT_EQ(later.number("PRAGMA user_version"), 99);
}

TEST_F(Schema, ASqliteFileOfAnotherProgramIsRefusedAndLeftAsItIs) {
  Connection other = connect();
  other.run("CREATE TABLE notes(text); INSERT INTO notes VALUES ('x')");
  EXPECT_EQ(refusal(), "La base « " + path_ +
                           " » n'est pas une base de fiches du personnel. Choisissez un autre fichier.");
  EXPECT_EQ(other.text("PRAGMA journal_mode"), "delete");
  EXPECT_EQ(other.number("SELECT count(*) FROM sqlite_schema"), 1);
}

TEST_F(Schema, WritesAreForcedToTheDiskAheadOfTheFile) {
  Connection connection = connect();
  prepare(connection);
  constexpr int kFull = 2;
  EXPECT_EQ(connection.number("PRAGMA synchronous"), kFull);
  EXPECT_EQ(connection.text("PRAGMA journal_mode"), "wal");
}

TEST_F(Schema, AFullDiskRefusesAWriteWithASentenceAndKeepsTheRest) {
  Connection connection = connect();
  connection.run("CREATE TABLE t(x); INSERT INTO t VALUES (1); PRAGMA max_page_count = 4");
  try {
    connection.run("INSERT INTO t VALUES (zeroblob(100000))");
    FAIL();
  } catch (const DbError& error) {
    EXPECT_EQ(error.number(), kStoreFailure);
    EXPECT_EQ(error.what(), "La base « " + path_ +
                                " » n'a pas été modifiée : le disque est plein. Libérez de la place, puis "
                                "recommencez.");
  }
  EXPECT_EQ(connection.number("SELECT count(*) FROM t"), 1);
}

TEST_F(Schema, AProtectedFileRefusesAWriteWithASentence) {
  Connection connection = connect();
  prepare(connection);
  connection.run("PRAGMA query_only = 1");
  try {
    connection.run("INSERT INTO file(name) VALUES ('F')");
    FAIL();
  } catch (const DbError& error) {
    EXPECT_EQ(error.what(),
              "La base « " + path_ +
                  " » n'a pas été modifiée : elle est en lecture seule. Demandez le droit d'écrire dans ce "
                  "fichier et dans son dossier.");
  }
}

TEST(Failure, ExtendedCodesAreToldLikeTheirKindAndUnknownOnesInSqlitesWords) {
  EXPECT_STREQ(
      failure(SQLITE_IOERR_FSYNC, "b", "").what(),
      "La base « b » ne répond pas : le disque a refusé la lecture ou l'écriture. Vérifiez le disque "
      "ou la liaison avec lui, puis recommencez.");
  EXPECT_STREQ(failure(SQLITE_CORRUPT_INDEX, "b", "").what(),
               "La base « b » est endommagée. Fermez le programme et reprenez la dernière sauvegarde.");
  EXPECT_STREQ(failure(SQLITE_MISMATCH, "b", "odd").what(),
               "La base « b » a répondu par une erreur (20, « odd »). Recommencez ; si l'erreur revient, "
               "vérifiez la base par « velanorctl check ».");
}

}  // namespace
}  // namespace velanor::store::sqlite
