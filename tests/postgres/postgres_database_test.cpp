#include "velanor/postgres_database.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <iostream>
#include <random>

#include "postgres/server.h"
#include "store/contract.h"
#include "store/notation.h"
#include "velanor/memory_database.h"

namespace velanor::store {
namespace {

INSTANTIATE_TEST_SUITE_P(Postgres, StoreContract,
                         testing::Values(StoreFactory{
                             "Postgres", [] { return open_base(Server::instance().new_base()); }}),
                         [](const auto& factory) { return factory.param.name; });

class PostgresBase : public testing::Test {
 protected:
  std::unique_ptr<PostgresDatabase> open(const std::string& user = "clerk",
                                         const PostgresDatabase::Options& options = {}) {
    return std::make_unique<PostgresDatabase>(server_.url(base_, user), options);
  }
  std::string versions(Database& database, std::string_view id) {
    return told(database.history()->versions("F", id));
  }

  Server& server_ = Server::instance();
  std::string base_ = server_.new_base();
};

TEST_F(PostgresBase, TwoClerksSeeEachOthersWritesInListsThatTheyHaveAskedBefore) {
  const auto first = open(), second = open();
  const char* list = "SSELECT SECTEUR PAR 1";
  EXPECT_EQ(all_of(*first, list, "SECTEUR"), "");
  second->put("SECTEUR", "001", record("Ville"));
  EXPECT_EQ(all_of(*first, list, "SECTEUR"), "001|Ville\n");
  first->put("SECTEUR", "002", record("Bourg"));
  EXPECT_EQ(all_of(*second, list, "SECTEUR"), "002|Bourg\n001|Ville\n");
  second->OpenFile("SECTEUR")->DeleteRecord("001");
  EXPECT_EQ(all_of(*first, list, "SECTEUR"), "002|Bourg\n");
  EXPECT_EQ(first->files(), std::vector<std::string>{"SECTEUR"});
}

TEST_F(PostgresBase, ASelectionIsOneRoundTripAndOneThatNobodyChangedIsTheSameAnswer) {
  const auto first = open(), second = open();
  first->put("COMMUNES", "1", record("Ville"));
  const std::string request = DbQuery("SSELECT COMMUNES PAR 1", "COMMUNES", "0 1").encoded();
  const auto trips = [&](const std::function<void()>& act) {
    const auto before = first->round_trips();
    act();
    return first->round_trips() - before;
  };
  DbResult found;
  EXPECT_EQ(trips([&] { found = first->Select(request); }), 1u);
  second->put("VELANORO", "1", record("x"));
  EXPECT_EQ(trips([&] { EXPECT_TRUE(found.same_rows(first->Select(request))); }), 1u);
  second->put("COMMUNES", "2", record("Bourg"));
  EXPECT_EQ(trips([&] { EXPECT_EQ(first->Select(request).DCount(), 2); }), 1u);
  EXPECT_EQ(trips([&] { first->put("COMMUNES", "3", record("x")); }), 1u);
  EXPECT_EQ(trips([&] { first->OpenFile("COMMUNES")->find("3"); }), 1u);
}

TEST_F(PostgresBase, AnUndoneChangeLeavesNothingEvenInKeptLists) {
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
  EXPECT_EQ(all_of(*database, list, "SECTEUR"), "001|Ville\n");
  database->put("SECTEUR", "003", record("Autre"));
  EXPECT_EQ(all_of(*database, list, "SECTEUR"), "003|Autre\n001|Ville\n");
  database->put("NEUF", "2", record("y"));
  EXPECT_EQ(all_of(*open(), "SSELECT NEUF PAR 0", "NEUF"), "2|y\n");
}

TEST_F(PostgresBase, AChangeIsSeenByOthersOnlyWhenItIsCompleteAndAViewStaysAsItWas) {
  const auto writer = open(), reader = open();
  const char* list = "SSELECT SECTEUR PAR 0";
  writer->put("SECTEUR", "001", record("Ville"));
  writer->in_one_change([&] {
    writer->put("SECTEUR", "002", record("Bourg"));
    EXPECT_FALSE(reader->OpenFile("SECTEUR")->find("002"));
    EXPECT_EQ(all_of(*reader, list, "SECTEUR"), "001|Ville\n");
  });
  EXPECT_EQ(all_of(*reader, list, "SECTEUR"), "001|Ville\n002|Bourg\n");
  reader->in_one_view([&] {
    EXPECT_EQ(all_of(*reader, list, "SECTEUR"), "001|Ville\n002|Bourg\n");
    writer->put("SECTEUR", "003", record("Autre"));
    EXPECT_EQ(all_of(*reader, list, "SECTEUR"), "001|Ville\n002|Bourg\n");
    EXPECT_NE(failure([&] { reader->put("SECTEUR", "004", record("x")); }), "");
    EXPECT_NE(failure([&] { reader->in_one_change([] {}); }), "");
    EXPECT_EQ(all_of(*reader, list, "SECTEUR"), "001|Ville\n002|Bourg\n") << "the refusal ended the view";
  });
  EXPECT_EQ(all_of(*reader, list, "SECTEUR"), "001|Ville\n002|Bourg\n003|Autre\n");
}

// ---- History.

TEST_F(PostgresBase, EveryVersionIsKeptWithItsAuthorDeletionsIncludedAndNumbersNeverRepeat) {
  const auto paul = open("clerk"), anne = open("anne");
  paul->history()->set_author("Paul\xFE Petit");
  paul->put("F", "1", record("a^b"));
  anne->put("F", "1", record("c"));
  paul->OpenFile("F")->DeleteRecord("1");
  paul->OpenFile("F")->DeleteRecord("1");
  EXPECT_EQ(versions(*anne, "1"), "1 Paul\xEF\xBF\xBD Petit a^b\n2 anne c\n3 Paul\xEF\xBF\xBD Petit -\n");
  EXPECT_EQ(anne->history()->deleted("F", ""), std::vector<std::string>{"1"});
  anne->put("F", "1", record(""));
  anne->put("F", "1", record(""));
  EXPECT_EQ(versions(*anne, "1"),
            "1 Paul\xEF\xBF\xBD Petit a^b\n2 anne c\n3 Paul\xEF\xBF\xBD Petit -\n4 anne \n")
      << "what changes nothing is no version";
  EXPECT_TRUE(anne->history()->deleted("F", "").empty());
  EXPECT_GT(anne->history()->versions("F", "1").front().time, 1'700'000'000);
  EXPECT_EQ(versions(*anne, "2"), "");
}

TEST_F(PostgresBase, AnUndoneChangeAndARefusedWriteLeaveNoVersion) {
  const auto database = open();
  database->put("F", "1", record("a"));
  const auto file = database->OpenFile("F");
  EXPECT_THROW(file->write("1", record("b"), Expected::absent()), DbError);
  EXPECT_THROW(file->write("1", record("b"), Expected::record(record("c"))), DbError);
  EXPECT_THROW(file->remove("1", Expected::record(record("c"))), DbError);
  EXPECT_THROW(file->write("2", record("b"), Expected::record(record("c"))), DbError);
  const auto broken = [&] {
    database->put("F", "1", record("b"));
    file->DeleteRecord("1");
    EXPECT_EQ(versions(*database, "1"), "1 clerk a\n2 clerk b\n3 clerk -\n");
    throw std::runtime_error("stop");
  };
  EXPECT_THROW(database->in_one_change(broken), std::runtime_error);
  EXPECT_EQ(versions(*database, "1"), "1 clerk a\n");
  EXPECT_EQ(versions(*database, "2"), "");
}

TEST_F(PostgresBase, DeletedRecordsAreFoundByTheEndOfTheirIdsTheLatestFirst) {
  const auto database = open();
  const auto file = database->OpenFile("F");
  for (const char* id : {"1-26", "2-26", "3-26", "3-25"}) file->write(id, record(id));
  for (const char* id : {"2-26", "1-26", "3-25", "3-26"}) file->DeleteRecord(id);
  file->write("1-26", record("again"));
  EXPECT_EQ(database->history()->deleted("F", "-26"), (std::vector<std::string>{"3-26", "2-26"}));
  EXPECT_EQ(database->history()->deleted("F", ""), (std::vector<std::string>{"3-26", "3-25", "2-26"}));
  EXPECT_TRUE(database->history()->deleted("G", "").empty());
}

TEST_F(PostgresBase, OnlyTheOwnerPurgesAndNumbersGoOn) {
  const auto clerk = open(), manager = open("manager");
  const auto file = clerk->OpenFile("F");
  for (const char* content : {"a", "b", "c"}) file->write("1", record(content));
  file->write("2", record("x"));
  file->DeleteRecord("2");
  constexpr std::int64_t kLater = 4'000'000'000;
  EXPECT_NE(failure([&] { clerk->history()->purge(kLater); }), "");
  EXPECT_EQ(versions(*clerk, "1"), "1 clerk a\n2 clerk b\n3 clerk c\n");
  EXPECT_EQ(manager->history()->purge(1'000), 0u);
  EXPECT_EQ(manager->history()->purge(kLater), 3u);
  EXPECT_EQ(versions(*clerk, "1"), "3 clerk c\n");
  EXPECT_EQ(versions(*clerk, "2"), "2 clerk -\n");
  file->write("2", record("back"));
  EXPECT_EQ(versions(*clerk, "2"), "2 clerk -\n3 clerk back\n");
}

// ---- Against the in-memory store.

TEST_F(PostgresBase, AgreesWithTheMemoryStoreRecordByRecord) {
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
      "SSELECT F",
  };
  const char* const letters[] = {"1", "2", "é", "ÿ"};
  const char* const contents[] = {"a", "b^x|y", "é~z", "B", ""};
  std::mt19937 random(11);
  const auto database = open(), other = open();
  MemoryDatabase memory;
  int writes = 0, conflicts = 0, undone = 0;
  const auto random_write = [&](Database& postgres) {
    std::string id;
    for (auto size = 1 + random() % 2; size > 0; --size) id += letters[random() % 4];
    const DbRecord content = record(contents[random() % 5]), seen = record(contents[random() % 5]);
    const auto kind = random() % 4;
    const Expected expected = kind == 0   ? Expected::absent()
                              : kind == 1 ? Expected::record(seen)
                                          : Expected::anything();
    const bool removes = random() % 3 == 0;
    const auto act = [&](Database& store) {
      const auto file = store.OpenFile("F");
      return failure([&] { removes ? file->remove(id, expected) : file->write(id, content, expected); });
    };
    const std::string there = act(postgres), here = act(memory);
    EXPECT_EQ(there, here);
    ++writes;
    conflicts += there.empty() ? 0 : 1;
  };
  const auto random_change = [&](Database& postgres) {
    const bool fails = random() % 2 == 0;
    undone += fails ? 1 : 0;
    const auto change = [&] {
      for (int i = 0; i < 4; ++i) random_write(postgres);
      if (fails) throw std::runtime_error("stop");
    };
    try {
      memory.in_one_change([&] { postgres.in_one_change(change); });
      EXPECT_FALSE(fails);
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(), "stop");
    }
  };
  for (int round = 0; round < 1500 && !HasFailure(); ++round) {
    Database& postgres = round % 3 == 0 ? *other : *database;
    random() % 10 == 0 ? random_change(postgres) : random_write(postgres);
    const char* statement = statements[random() % std::size(statements)];
    const char* attributes = random() % 2 == 0 ? "0" : "0 1 2";
    ASSERT_EQ(all_of(*database, statement, "F", attributes), all_of(memory, statement, "F", attributes))
        << statement << " in round " << round;
  }
  EXPECT_GT(conflicts, 100);
  std::cout << "random comparison: " << writes << " writes, " << conflicts << " conflicts, " << undone
            << " changes undone, no difference\n";
}

// ---- Texts.

TEST_F(PostgresBase, HostileTextsComeBackAsWrittenOrAreRefusedWithASentence) {
  const std::string texts[] = {"'; DROP TABLE velanor.stored; --",
                               "\"[x]\"",
                               "100%_\\",
                               "$1 $$ $body$",
                               "\\x00\\000",
                               std::string("a\xFE") + "b\xFD" + "c\xFC",
                               std::string("a\0b", 3),
                               "\xC3",
                               "\xED\xA0\x80",
                               "\xF4\x90\x80\x80",
                               std::string("\xE2\x80\xAE") + "fiche\xE2\x80\x8F",
                               "\xEF\xBF\xBF",
                               "e\xCC\x81",
                               " ",
                               "\t\n\r",
                               std::string(2000, 'x'),
                               std::string(2001, 'x'),
                               std::string(1 << 20, 'y')};
  const auto database = open(), other = open();
  int kept = 0, refused = 0;
  for (const std::string& text : texts) {
    SCOPED_TRACE(testing::PrintToString(text.substr(0, 40)) + " of " + std::to_string(text.size()));
    const auto file = database->OpenFile("F");
    DbRecord content;
    content.set(2, 1, text);
    file->write("fixed", content);
    EXPECT_EQ(other->OpenFile("F")->Read("fixed"), content);
    const std::string sentence = failure([&] { file->write(text, content); });
    const bool can_be_an_id = text.size() <= 2000 && clean_text(text) == text;
    EXPECT_EQ(sentence.empty(), can_be_an_id) << sentence;
    EXPECT_LT(sentence.size(), text.size() + 300);
    (can_be_an_id ? kept : refused)++;
    if (can_be_an_id) {
      EXPECT_EQ(other->OpenFile("F")->Read(text), content);
      file->remove(text, Expected::record(content));
    }
    EXPECT_EQ(other->OpenFile("F")->find(text), std::nullopt);
    EXPECT_EQ(all_of(*other, "SSELECT F", "F", "0"), "fixed\n");
    EXPECT_EQ(failure([&] { database->OpenFile(text)->find("1"); }), "");
  }
  EXPECT_EQ(server_.ask(base_, "SELECT count(*) FROM velanor.stored WHERE NOT deleted"), "1");
  std::cout << "hostile texts: " << kept << " kept as ids, " << refused << " refused, all kept as contents\n";
}

// ---- What others write is told.

bool readable(int descriptor, int milliseconds) {
  pollfd waited{descriptor, POLLIN, 0};
  return ::poll(&waited, 1, milliseconds) == 1;
}

// "FILE/ID/AUTHOR" of each, a line.
std::string taken(News& news) {
  std::string lines;
  for (const Change& change : news.take())
    lines.append(change.file).append("/").append(change.id).append("/").append(change.author).append("\n");
  return lines;
}

TEST_F(PostgresBase, WhatOthersSaveWakesEachReaderAndIsToldWithItsAuthor) {
  const auto mine = open(), others = open("anne");
  others->history()->set_author("Anne Petit");
  const auto news = mine->news(), as_well = mine->news();
  mine->put("VELANORO", "000010072026", record("x"));
  EXPECT_EQ(taken(*news), "") << "one's own writes";
  others->put("VELANORO", "é 'x'", record("y"));
  ASSERT_TRUE(readable(news->descriptor(), 5000));
  EXPECT_EQ(taken(*news), "VELANORO/é 'x'/Anne Petit\n");
  EXPECT_FALSE(readable(news->descriptor(), 0)) << "nothing more to tell";
  ASSERT_TRUE(readable(as_well->descriptor(), 0)) << "one reader took the other's news";
  EXPECT_EQ(taken(*as_well), "VELANORO/é 'x'/Anne Petit\n");
  others->OpenFile("VELANORO")->DeleteRecord("é 'x'");
  mine->OpenFile("VELANORO")->find("1");
  ASSERT_TRUE(readable(news->descriptor(), 5000)) << "it came with an answer, and the socket is empty";
  EXPECT_EQ(taken(*news), "VELANORO/é 'x'/Anne Petit\n");
  others->in_one_change([&] {
    for (int i = 0; i < 300; ++i) others->put("G", std::to_string(i), record("z"));
  });
  mine->OpenFile("G")->find("1");
  const auto changes = news->take();
  ASSERT_EQ(changes.size(), 101u) << "of a large change the file";
  EXPECT_EQ(changes.back().file, "G");
  EXPECT_EQ(changes.back().id, "");
}

TEST_F(PostgresBase, WhoNeverTakesHisNewsIsToldInTheEndThatAnythingMayHaveChanged) {
  const auto mine = open(), others = open();
  const auto news = mine->news();
  for (int i = 0; i < 1005; ++i) {
    others->put("F", std::to_string(i), record("z"));
    if (i % 100 == 0) mine->OpenFile("F")->find("1");
  }
  const auto changes = news->take();
  EXPECT_LE(changes.size(), 1000u);
  EXPECT_EQ(changes.front().file, "");
}

TEST_F(PostgresBase, KeptRecordsCostNoRoundTripUntilSomebodyChangesTheirFile) {
  PostgresDatabase::Options options;
  options.kept_files = {"RUBSAISIE", "LARGE"};
  const auto mine = open("clerk", options), others = open();
  others->in_one_change([&] {
    for (int i = 0; i < 50; ++i) others->put("RUBSAISIE", std::to_string(i), record("old"));
    for (int i = 0; i < 2001; ++i) others->put("LARGE", std::to_string(i), record("old"));
  });
  for (const char* name : {"RUBSAISIE", "LARGE"}) {
    SCOPED_TRACE(name);
    const auto file = mine->OpenFile(name);
    const auto found = [&](std::string_view id) {
      const auto record = file->find(id);
      return record ? shown(*record) : "none";
    };
    for (const char* id : {"7", "8", "none"}) found(id);
    const auto before = mine->round_trips();
    EXPECT_EQ(found("7"), "old");
    EXPECT_EQ(found("none"), "none");
    EXPECT_EQ(mine->round_trips(), before);
    others->put(name, "7", record("new"));
    // A card is read anew, and brings the news of all that was written before.
    mine->OpenFile("VELANORO")->find("1");
    EXPECT_EQ(found("7"), "new");
    mine->put(name, "7", record("mine"));
    EXPECT_EQ(found("7"), "mine");
    others->put(name, "none", record("there"));
    mine->in_one_view([&] { EXPECT_EQ(found("none"), "there"); });
    EXPECT_THROW(mine->in_one_change([&] {
      mine->put(name, "7", record("undone"));
      EXPECT_EQ(found("7"), "undone");
      throw std::runtime_error("stop");
    }),
                 std::runtime_error);
    EXPECT_EQ(found("7"), "mine");
  }
}

TEST_F(PostgresBase, SelectionsOverKeptFilesCostNoRoundTripUntilSomebodyChangesThem) {
  PostgresDatabase::Options options;
  options.kept_files = {"RUBSAISIE", "LARGE", "EMPTY"};
  const auto mine = open("clerk", options), others = open();
  others->in_one_change([&] {
    for (int i = 0; i < 50; ++i) others->put("RUBSAISIE", std::to_string(i), record("old"));
    for (int i = 0; i < 2001; ++i) others->put("LARGE", std::to_string(i), record("old"));
  });
  for (const std::string name : {"RUBSAISIE", "LARGE", "EMPTY"}) {
    SCOPED_TRACE(name);
    const auto agrees = [&](const std::string& conditions) {
      std::string statement = "SSELECT ";
      statement.append(name).append(conditions);
      EXPECT_EQ(all_of(*mine, statement, name), all_of(*others, statement, name)) << statement;
    };
    const auto trips_of = [&](const std::function<void()>& act) {
      const auto before = mine->round_trips();
      act();
      return mine->round_trips() - before;
    };
    // The news of what was written before come with the first answer at the latest, and drop it then.
    agrees("");
    agrees("");
    EXPECT_EQ(trips_of([&] { agrees(""); }), 0u);
    EXPECT_EQ(trips_of([&] { agrees(" AVEC 0 = \"1]\" PAR-DECR 1 PAR 0"); }), name == "LARGE" ? 1u : 0u);
    others->put(name, "7", record("new"));
    others->OpenFile(name)->DeleteRecord("8");
    mine->OpenFile("VELANORO")->find("1");  // with whose answer the news come
    agrees("");
    mine->put(name, "9", record("mine"));
    agrees("");
    EXPECT_THROW(mine->in_one_change([&] {
      mine->put(name, "10", record("undone"));
      EXPECT_NE(all_of(*mine, "SSELECT " + name, name).find("10|undone"), std::string::npos);
      throw std::runtime_error("undone");
    }),
                 std::runtime_error);
    agrees("");
  }
}

}  // namespace
}  // namespace velanor::store
