// Selections that are kept and patched, over saves of this program and of others, against the plainest
// reading.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <stdexcept>

#include "sqlite/temporary_folder.h"
#include "store/plain_selection.h"
#include "store/sqlite/connection.h"
#include "velanor/sqlite_database.h"

namespace velanor::store {
namespace {

using namespace plain;

class KeptSelections : public ::testing::Test {
 protected:
  std::unique_ptr<SqliteDatabase> open() {
    return std::make_unique<SqliteDatabase>(
        path_, SqliteDatabase::Options{.missing = SqliteDatabase::Missing::kCreate});
  }
  // What the file says of itself, on a connection of its own.
  std::int64_t number(const std::string& sql) {
    sqlite::Connection connection(path_, sqlite::Missing::kFail, 1000);
    return connection.number(sql);
  }
  void run(const char* sql) { sqlite::Connection(path_, sqlite::Missing::kFail, 1000).run(sql); }

  TemporaryFolder folder_;
  std::string path_ = folder_.file("base");
};

std::vector<std::string> found(Database& database, const std::string& statement) {
  const DbResult result = database.Select(DbQuery(statement, "F", "0 2").encoded());
  std::vector<std::string> rows;
  for (int i = 1; i <= result.DCount(); ++i) rows.emplace_back(result(i));
  return rows;
}

TEST_F(KeptSelections, SayWhatALookAtEveryRecordSaysWhoeverWrites) {
  Dice dice(7);
  std::unique_ptr<SqliteDatabase> clerks[] = {open(), open()};
  std::map<std::string, DbRecord> stored;
  std::vector<PlainStatement> statements;
  statements.reserve(25);
  for (int i = 0; i < 25; ++i) statements.push_back(dice.statement());
  const auto write = [&](Database& database, std::map<std::string, DbRecord>& records) {
    const std::string id = dice.id();
    if (dice.one_in(4)) {
      database.OpenFile("F")->DeleteRecord(id);
      records.erase(id);
    } else {
      records[id] = dice.card();
      database.OpenFile("F")->write(id, records[id]);
    }
  };
  for (int round = 0; round < 700; ++round) {
    for (int i = dice.below(4); i > 0; --i) {
      SqliteDatabase& clerk = *clerks[dice.below(2)];
      if (!dice.one_in(5)) {
        write(clerk, stored);
        continue;
      }
      // A change of several, which may be given up after somebody has looked at it.
      auto meant = stored;
      const bool fails = dice.one_in(2);
      try {
        clerk.in_one_change([&] {
          for (int j = 0; j < 3; ++j) write(clerk, meant);
          found(clerk, written(statements.front()));
          if (fails) throw std::runtime_error("given up");
        });
        stored = meant;
      } catch (const std::runtime_error&) {
      }
    }
    if (dice.one_in(40)) clerks[dice.below(2)] = open();
    const std::vector<Card> cards(stored.begin(), stored.end());
    const PlainStatement& statement = statements[static_cast<std::size_t>(dice.below(25))];
    std::vector<std::string> rows;
    for (const std::string& id : selected(statement, cards)) {
      std::string text(stored.at(id)(2));
      std::replace(text.begin(), text.end(), kValueMark, kSubvalueMark);
      rows.push_back(std::string(id).append(1, kValueMark).append(text));
    }
    for (const auto& clerk : clerks) ASSERT_EQ(found(*clerk, written(statement)), rows) << written(statement);
  }
}

constexpr const char* kList = "SSELECT F AVEC 0 = \"[07\" PAR 1";

void fill(Database& database, int count) {
  database.in_one_change([&] {
    const auto file = database.OpenFile("F");
    for (int i = 0; i < count; ++i) {
      DbRecord card;
      card.set(1, "Name " + std::to_string(i * 7919 % 1000));
      file->write(std::to_string(10'000 + i) + (i % 2 == 0 ? "07" : "08"), card);
    }
  });
}

TEST_F(KeptSelections, AreTakenUpByTheNextProgramAndBroughtUpToDate) {
  fill(*open(), 2000);
  const auto before = found(*open(), kList);
  ASSERT_EQ(before.size(), 1000u);
  EXPECT_EQ(number("SELECT count(*) FROM kept"), 1);

  // What is read now can only come from what was kept.
  run("UPDATE record SET tail = CAST(x'00' || tail AS BLOB)");
  run("DELETE FROM changed; UPDATE file SET revision = (SELECT revision FROM kept)");
  EXPECT_EQ(found(*open(), kList), before);
}

TEST_F(KeptSelections, AreOfNoUseWhereTheyAreDamagedOrTheFileKnowsNoMoreWhatHasChanged) {
  fill(*open(), 2000);
  found(*open(), kList);
  fill(*open(), 2000);  // changes nothing
  const auto file = open()->OpenFile("F");
  auto expected = found(*open(), kList);
  const std::string gone = expected.front().substr(0, 7);

  const auto clerk = open();
  clerk->OpenFile("F")->DeleteRecord(gone);
  expected.erase(expected.begin());
  run("DELETE FROM changed");
  EXPECT_EQ(found(*open(), kList), expected);
  run("UPDATE kept SET content = CAST(substr(content, 1, 100) || x'FF' || substr(content, 102) AS BLOB)");
  EXPECT_EQ(found(*open(), kList), expected);
  run("UPDATE kept SET content = x''");
  EXPECT_EQ(found(*open(), kList), expected);
  // Another tool gives a record another id, for which nobody can name both.
  run("UPDATE record SET id = '9999907', tail = CAST('7099999' AS BLOB), sum = 0 WHERE id = '1000207'");
  EXPECT_THROW(found(*open(), kList), DbError) << "its checksum is over its id";
}

TEST_F(KeptSelections, AreNotKeptWhereThatWouldMakeAnybodyWait) {
  fill(*open(), 2000);
  const auto reader = open();
  sqlite::Connection writer(path_, sqlite::Missing::kFail, 0);
  writer.run("BEGIN IMMEDIATE");
  EXPECT_EQ(found(*reader, kList).size(), 1000u);
  writer.run("ROLLBACK");
  EXPECT_EQ(number("SELECT count(*) FROM kept"), 0);
  reader->in_one_change([&] { EXPECT_EQ(found(*reader, "SSELECT F PAR 1").size(), 2000u); });
  EXPECT_EQ(number("SELECT count(*) FROM kept"), 0) << "nothing of a change that may be given up";
}

TEST_F(KeptSelections, NameNobodyOnceTheHistoryIsPurged) {
  fill(*open(), 2000);
  const auto clerk = open();
  found(*clerk, kList);
  ASSERT_EQ(number("SELECT count(*) FROM kept"), 1);
  clerk->history()->purge(0);
  EXPECT_EQ(number("SELECT count(*) FROM kept"), 0);
}

}  // namespace
}  // namespace velanor::store
