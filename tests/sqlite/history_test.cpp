#include "velanor/history.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "sqlite/temporary_folder.h"
#include "store/notation.h"
#include "store/sqlite/connection.h"
#include "store/sqlite/schema.h"
#include "support/as_nobody.h"
#include "velanor/sqlite_database.h"

namespace velanor::store {
namespace {

// "1 paul 100 a^b": number, author, time and content of each version, "-" for a deletion.
std::string told(const std::vector<Version>& versions) {
  std::string text;
  for (const Version& version : versions) {
    text += std::to_string(version.number) + " " + version.author + " " + std::to_string(version.time) + " ";
    text += (!version.sound ? "?" : version.record ? shown(*version.record) : "-") + "\n";
  }
  return text;
}

class HistoryOfAFile : public testing::Test {
 protected:
  std::unique_ptr<SqliteDatabase> open(const std::string& author = "paul") {
    auto database = std::make_unique<SqliteDatabase>(
        path_,
        SqliteDatabase::Options{
            .missing = SqliteDatabase::Missing::kCreate, .patience = 1000, .clock = [this] { return now_; }});
    database->history()->set_author(author);
    return database;
  }
  std::string versions(Database& database, std::string_view id) {
    return told(database.history()->versions("F", id));
  }

  TemporaryFolder folder_;
  std::string path_ = folder_.file("base");
  std::int64_t now_ = 100;
};

TEST_F(HistoryOfAFile, EveryVersionIsKeptWithItsAuthorAndItsTimeDeletionsIncluded) {
  const auto paul = open("paul"), anne = open("anne");
  paul->put("F", "1", record("a^b"));
  now_ = 200;
  anne->put("F", "1", record("c"));
  now_ = 300;
  paul->OpenFile("F")->DeleteRecord("1");
  EXPECT_EQ(versions(*anne, "1"), "1 paul 100 a^b\n2 anne 200 c\n3 paul 300 -\n");
  now_ = 400;
  anne->put("F", "1", record(""));
  EXPECT_EQ(versions(*open(), "1"), "1 paul 100 a^b\n2 anne 200 c\n3 paul 300 -\n4 anne 400 \n");
  EXPECT_EQ(versions(*anne, "2"), "");
  EXPECT_TRUE(anne->history()->versions("G", "1").empty());
}

TEST_F(HistoryOfAFile, AWriteThatChangesNothingOrIsRefusedIsNoVersion) {
  const auto database = open();
  const auto file = database->OpenFile("F");
  file->DeleteRecord("1");
  file->write("1", record("a"), Expected::absent());
  now_ = 200;
  file->write("1", record("a"));
  file->write("1", record("a"), Expected::record(record("a")));
  EXPECT_THROW(file->write("1", record("b"), Expected::absent()), DbError);
  EXPECT_THROW(file->write("1", record("b"), Expected::record(record("c"))), DbError);
  EXPECT_THROW(file->remove("1", Expected::record(record("c"))), DbError);
  EXPECT_EQ(versions(*database, "1"), "1 paul 100 a\n");
  file->remove("1", Expected::record(record("a")));
  file->DeleteRecord("1");
  EXPECT_EQ(versions(*database, "1"), "1 paul 100 a\n2 paul 200 -\n");
}

TEST_F(HistoryOfAFile, AnUndoneChangeLeavesNoVersion) {
  const auto database = open();
  database->put("F", "1", record("a"));
  const auto broken = [&] {
    database->put("F", "1", record("b"));
    database->put("F", "2", record("c"));
    database->OpenFile("F")->DeleteRecord("1");
    EXPECT_EQ(versions(*database, "1"), "1 paul 100 a\n2 paul 100 b\n3 paul 100 -\n");
    throw std::runtime_error("stop");
  };
  EXPECT_THROW(database->in_one_change(broken), std::runtime_error);
  EXPECT_EQ(versions(*database, "1"), "1 paul 100 a\n");
  EXPECT_EQ(versions(*database, "2"), "");
  EXPECT_TRUE(database->history()->deleted("F", "").empty());
}

TEST_F(HistoryOfAFile, TheSystemsUserWritesUntilAHostNamesAnother) {
  SqliteDatabase database(path_, {.missing = SqliteDatabase::Missing::kCreate});
  database.put("F", "1", record("a"));
  database.history()->set_author("Anne\xFE Petit");
  database.put("F", "1", record("b"));
  const auto versions = database.history()->versions("F", "1");
  ASSERT_EQ(versions.size(), 2u);
  EXPECT_EQ(versions[0].author, getpwuid(geteuid())->pw_name);
  EXPECT_EQ(versions[1].author, "Anne\xEF\xBF\xBD Petit") << "an author is clean text like any other";
  EXPECT_GT(versions[0].time, 1'700'000'000);
}

TEST_F(HistoryOfAFile, DeletedRecordsAreFoundByTheEndOfTheirIdsTheLatestFirst) {
  const auto database = open();
  const auto file = database->OpenFile("F");
  for (const char* id : {"1-26", "2-26", "3-26", "3-25"}) file->write(id, record(id));
  for (const char* id : {"2-26", "1-26", "3-25", "3-26"}) {
    ++now_;
    file->DeleteRecord(id);
  }
  file->write("1-26", record("again"));
  EXPECT_EQ(database->history()->deleted("F", "-26"), (std::vector<std::string>{"3-26", "2-26"}));
  EXPECT_EQ(database->history()->deleted("F", ""), (std::vector<std::string>{"3-26", "3-25", "2-26"}));
  EXPECT_TRUE(database->history()->deleted("G", "").empty());
}

TEST_F(HistoryOfAFile, APurgeForgetsWhatWasReplacedBeforeAndNumbersGoOn) {
  const auto database = open();
  const auto file = database->OpenFile("F");
  for (now_ = 100; now_ <= 500; now_ += 100) file->write("1", record(std::to_string(now_)));
  now_ = 250;
  file->write("2", record("x"));
  file->DeleteRecord("2");
  now_ = 600;
  EXPECT_EQ(database->history()->purge(300), 2u) << "version 1 of each: replaced at 200 and at 250";
  EXPECT_EQ(versions(*database, "1"), "2 paul 200 200\n3 paul 300 300\n4 paul 400 400\n5 paul 500 500\n");
  EXPECT_EQ(versions(*database, "2"), "2 paul 250 -\n");
  EXPECT_EQ(database->history()->purge(9999), 3u);
  file->write("1", record("new"));
  file->write("2", record("back"));
  EXPECT_EQ(versions(*database, "1"), "5 paul 500 500\n6 paul 600 new\n");
  EXPECT_EQ(versions(*database, "2"), "2 paul 250 -\n3 paul 600 back\n");
  EXPECT_EQ(database->history()->purge(9999), 2u) << "a deletion that no longer holds goes too";
}

// ---- Files of the first version.

class AnOlderFile : public HistoryOfAFile {
 protected:
  void SetUp() override {
    sqlite::Connection old(path_, sqlite::Missing::kCreate, 1000);
    sqlite::prepare(old, sqlite::schema_steps().first(1));
    old.run(
        "INSERT INTO file(name) VALUES ('F');"
        "INSERT INTO record(file, id, tail, content) VALUES (1, '12', x'3231', CAST('Ville' AS BLOB)), (1, "
        "'13', "
        "x'3331', x'')");
  }
};

TEST_F(AnOlderFile, IsReadAsItWasAndBeginsItsHistoryWithWhatItHolds) {
  const auto database = open();
  EXPECT_EQ(shown(database->OpenFile("F")->Read("12")), "Ville");
  EXPECT_EQ(versions(*database, "12"), "1  0 Ville\n");
  database->put("F", "12", record("Bourg"));
  EXPECT_EQ(versions(*database, "12"), "1  0 Ville\n2 paul 100 Bourg\n");
  EXPECT_EQ(database->Select(DbQuery("SSELECT F AVEC 0 = \"[3\"", "F", "0").encoded())(1), "13");
}

TEST_F(AnOlderFile, ThatMayNotBeWrittenIsReadWithoutBeingBroughtUpToDate) {
  namespace fs = std::filesystem;
  fs::permissions(path_, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  fs::permissions(folder_.file(""), fs::perms::all & ~(fs::perms::others_write | fs::perms::group_write));
  const test::AsNobody nobody;
  SqliteDatabase database(path_);
  EXPECT_TRUE(database.read_only());
  EXPECT_EQ(shown(database.OpenFile("F")->Read("12")), "Ville");
  EXPECT_EQ(database.Select(DbQuery("SSELECT F AVEC 1 = \"Ville\"", "F", "0").encoded())(1), "12");
  EXPECT_EQ(database.Select(DbQuery("SSELECT F AVEC 0 = \"[3\"", "F", "0").encoded())(1), "13");
  EXPECT_EQ(versions(database, "12"), "1  0 Ville\n");
  EXPECT_EQ(database.files(), std::vector<std::string>{"F"});
  EXPECT_THROW(database.put("F", "12", record("x")), DbError);
}

TEST_F(HistoryOfAFile, OfAFileThatMayNotBeWrittenIsReadTooAndNotPurged) {
  namespace fs = std::filesystem;
  {
    const auto database = open();
    database->put("F", "1", record("a"));
    database->put("F", "1", record("b"));
  }
  fs::permissions(path_, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  fs::permissions(folder_.file(""), fs::perms::all);
  const test::AsNobody nobody;
  SqliteDatabase database(path_);
  EXPECT_EQ(versions(database, "1"), "1 paul 100 a\n2 paul 100 b\n");
  EXPECT_THROW(database.history()->purge(9999), DbError);
}

}  // namespace
}  // namespace velanor::store
