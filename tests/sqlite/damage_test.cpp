// Records and files that somebody else, or a disk, has changed.
#include <gtest/gtest.h>

#include <filesystem>

#include "sqlite/temporary_folder.h"
#include "store/notation.h"
#include "store/sqlite/connection.h"
#include "store/sqlite/failure.h"
#include "velanor/sqlite_database.h"

namespace velanor::store {
namespace {

class Damage : public testing::Test {
 protected:
  void SetUp() override { fill(); }
  void fill() {
    std::filesystem::remove(path_);
    SqliteDatabase database(path_, {.missing = SqliteDatabase::Missing::kCreate,
                                    .patience = 1000,
                                    .clock = [] { return std::int64_t{1'773'316'800}; }});  // 12/03/2026
    for (const char* content : {"Ville", "Bourg"}) database.put("F", "12", record(content));
    database.put("F", "13", record("Hameau"));
  }
  // As another program would.
  void change(const char* sql) { sqlite::Connection(path_, sqlite::Missing::kFail, 1000).run(sql); }
  std::string failure(const std::function<void(SqliteDatabase&)>& act) {
    SqliteDatabase database(path_);
    try {
      act(database);
    } catch (const sqlite::DamagedRecord& error) {
      return error.what();
    }
    return "none";
  }

  TemporaryFolder folder_;
  std::string path_ = folder_.file("base");
  const std::string sentence_ =
      "L'enregistrement « 12 » du fichier F est endommagé dans la base « " + path_ +
      " ». La version du 12/03/2026 est saine : velanorctl restore-version F 12 1 --store " + path_;
};

void select(SqliteDatabase& database, const char* statement) {
  database.Select(DbQuery(statement, "F", "0 1").encoded());
}

TEST_F(Damage, OfARecordIsToldByWhateverReadsItWithTheVersionThatIsSound) {
  const struct {
    const char *what, *sql;
  } cases[] = {
      {"content", "UPDATE record SET content = x'56' WHERE id = '12'"},
      {"author", "UPDATE record SET author = 'x' WHERE id = '12'"},
      {"time", "UPDATE record SET time = time + 1 WHERE id = '12'"},
      {"number", "UPDATE record SET version = 7 WHERE id = '12'"},
      {"sum", "UPDATE record SET sum = sum + 1 WHERE id = '12'"},
      {"another's content",
       "UPDATE record SET (content, sum) = (SELECT content, sum FROM record WHERE id = '13') WHERE id = "
       "'12'"},
  };
  for (const auto& [what, sql] : cases) {
    SCOPED_TRACE(what);
    fill();
    change(sql);
    EXPECT_EQ(failure([](auto& base) { base.OpenFile("F")->find("12"); }), sentence_);
    EXPECT_EQ(failure([](auto& base) { select(base, "SSELECT F AVEC 1 = \"x\""); }), sentence_);
    EXPECT_EQ(failure([](auto& base) { select(base, "SSELECT F AVEC 0 = \"[2\""); }), sentence_);
    EXPECT_EQ(failure([](auto& base) { select(base, "SSELECT F AVEC 0 = \"12\""); }), sentence_);
    EXPECT_EQ(failure([](auto& base) { base.OpenFile("F")->Read("13"); }), "none");
    SqliteDatabase database(path_);
    EXPECT_TRUE(database.damages().empty()) << "the file itself is sound";
    const auto damaged = database.damaged_records();
    ASSERT_EQ(damaged.size(), 1u);
    EXPECT_EQ(damaged[0].sentence, sentence_);
    database.put("F", "12", record("neuf"));
    EXPECT_TRUE(database.damaged_records().empty());
    EXPECT_EQ(shown(database.OpenFile("F")->Read("12")), "neuf");
    EXPECT_EQ(database.history()->versions("F", "12").back().number, 3u);
  }
}

TEST_F(Damage, IsNeverWhatAClerkExpected) {
  change("UPDATE record SET content = x'56' WHERE id = '12'");
  EXPECT_EQ(failure([](auto& base) {
              base.OpenFile("F")->write("12", record("x"), Expected::record(record("Bourg")));
            }),
            sentence_);
  SqliteDatabase database(path_);
  EXPECT_THROW(database.OpenFile("F")->write("12", record("x"), Expected::absent()), DbError);
}

TEST_F(Damage, OfAnOldVersionLeavesTheRestReadable) {
  change("UPDATE history SET content = x'00' WHERE id = '12'");
  SqliteDatabase database(path_);
  EXPECT_EQ(shown(database.OpenFile("F")->Read("12")), "Bourg");
  const auto versions = database.history()->versions("F", "12");
  ASSERT_EQ(versions.size(), 2u);
  EXPECT_FALSE(versions[0].sound);
  EXPECT_FALSE(versions[0].record);
  EXPECT_TRUE(versions[1].sound);
  const auto damaged = database.damaged_records();
  ASSERT_EQ(damaged.size(), 1u);
  EXPECT_TRUE(damaged[0].in_history);
  EXPECT_EQ(
      damaged[0].sentence,
      "La version 1 de l'enregistrement « 12 » du fichier F est endommagée dans l'historique. Ce qui est "
      "stocké ne l'est pas.");
}

TEST_F(Damage, OfARecordWithoutASoundVersionSendsToTheBackup) {
  change("UPDATE record SET content = x'56' WHERE id = '13'");
  EXPECT_EQ(failure([](auto& base) { base.OpenFile("F")->find("13"); }),
            "L'enregistrement « 13 » du fichier F est endommagé dans la base « " + path_ +
                " ». Aucune version saine n'en est gardée : reprenez la dernière sauvegarde.");
}

TEST_F(Damage, OfWhatIsDerivedIsToldAndMadeAnew) {
  const struct {
    const char *sql, *told;
  } cases[] = {
      {"DROP INDEX record_by_tail", "l'index « record_by_tail » manque"},
      {"DROP TRIGGER record_updated", "le déclencheur « record_updated » manque"},
      {"DROP TRIGGER record_deleted; CREATE TRIGGER record_deleted AFTER DELETE ON record BEGIN SELECT 1; "
       "END",
       "le déclencheur « record_deleted » n'est pas comme prévu"},
      {"CREATE TRIGGER espion AFTER INSERT ON record BEGIN DELETE FROM history; END",
       "le déclencheur « espion » n'est pas de ce programme"},
      {"CREATE VIEW vue AS SELECT 1", "la vue « vue » n'est pas de ce programme"},
      {"UPDATE record SET tail = x'00' WHERE id = '12'",
       "l'identifiant retourné de 1 enregistrements est faux"},
  };
  EXPECT_TRUE(SqliteDatabase(path_).disagreements().empty());
  for (const auto& [sql, told] : cases) {
    SCOPED_TRACE(sql);
    change(sql);
    SqliteDatabase database(path_);
    EXPECT_EQ(database.disagreements(), std::vector<std::string>{told});
    database.repair();
    EXPECT_TRUE(database.disagreements().empty());
    EXPECT_EQ(database.Select(DbQuery("SSELECT F AVEC 0 = \"[2\"", "F", "0").encoded())(1), "12");
    EXPECT_EQ(shown(database.OpenFile("F")->Read("12")), "Bourg");
  }
}

TEST_F(Damage, ThatCannotBeMendedIsLeftAsItIs) {
  change("DROP INDEX record_by_tail; CREATE TABLE autre(x)");
  SqliteDatabase database(path_);
  const auto before = database.disagreements();
  EXPECT_EQ(before, (std::vector<std::string>{"l'index « record_by_tail » manque",
                                              "la table « autre » n'est pas de ce programme"}));
  EXPECT_THROW(database.repair(), sqlite::DamagedError);
  EXPECT_EQ(database.disagreements(), before);
}

}  // namespace
}  // namespace velanor::store
