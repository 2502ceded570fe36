// A whole base between two stores, as velanorctl copies it.
#include <gtest/gtest.h>

#include "app/velanorctl/base_copy.h"
#include "postgres/server.h"
#include "sqlite/temporary_folder.h"
#include "store/notation.h"
#include "velanor/memory_database.h"
#include "velanor/sqlite_database.h"

namespace velanor::store {
namespace {

class BaseCopy : public testing::Test {
 protected:
  std::unique_ptr<PostgresDatabase> open(const std::string& base, const std::string& user) {
    return std::make_unique<PostgresDatabase>(server_.url(base, user));
  }

  Server& server_ = Server::instance();
};

TEST_F(BaseCopy, BetweenServersBringsEveryVersionAndEveryDeletionAlong) {
  const std::string old_base = server_.new_base(), new_base = server_.new_base();
  const auto from = open(old_base, "clerk"), to = open(new_base, "manager");
  const auto file = from->OpenFile("F");
  for (const char* content : {"a", "b^x|y", "c"}) file->write("1", record(content));
  file->write("é 2", record("gone"));
  file->DeleteRecord("é 2");
  file->write("3", record("gone"));
  file->DeleteRecord("3");
  file->write("3", record("back"));
  from->put("G", "1", record(""));
  const auto report = app::copy_base(*from, *to);
  EXPECT_EQ(report.records, 3u);
  EXPECT_EQ(report.deleted, 1u);
  EXPECT_EQ(report.versions, 9u);
  for (const char* id : {"1", "é 2", "3"}) {
    const auto before = from->history()->versions("F", id), after = to->history()->versions("F", id);
    EXPECT_EQ(told(after), told(before));
    for (std::size_t i = 0; i < std::min(before.size(), after.size()); ++i)
      EXPECT_EQ(after[i].time, before[i].time);
  }
  const auto clerk = open(new_base, "anne");
  EXPECT_EQ(all_of(*clerk, "SSELECT F AVEC 0 = \"[1\"", "F"), "1|c\n") << "found by its end";
  clerk->put("F", "é 2", record("again"));
  EXPECT_EQ(told(clerk->history()->versions("F", "é 2")), "1 clerk gone\n2 clerk -\n3 anne again\n");
}

// Number, author, time and content of each.
std::string all_versions(Database& database, std::string_view file, std::string_view id) {
  std::string text;
  for (const Version& version : database.history()->versions(file, id)) {
    text += std::to_string(version.number) + " " + version.author + " " + std::to_string(version.time) + " " +
            (version.record ? shown(*version.record) : "-") + "\n";
  }
  return text;
}

TEST_F(BaseCopy, FromAFileToAServerAndBackIsTheSameVersionByVersion) {
  const TemporaryFolder folder;
  using Sqlite = SqliteDatabase;
  std::int64_t now = 1'700'000'000;
  const auto file_at = [&](const char* name) {
    return std::make_unique<Sqlite>(folder.file(name), Sqlite::Options{.missing = Sqlite::Missing::kCreate,
                                                                       .clock = [&] { return now++; }});
  };
  const auto from = file_at("from"), back = file_at("back");
  const auto server = open(server_.new_base(), "manager");
  from->history()->set_author("Anne Petit");
  for (const char* content : {"a", "b^x|y", "c"}) from->put("F", "1", record(content));
  from->put("F", "é 2", record("gone"));
  from->OpenFile("F")->DeleteRecord("é 2");
  from->put("F", "é 2", record("back"));
  from->put("ONLYDELETED", "3", record("gone"));
  from->OpenFile("ONLYDELETED")->DeleteRecord("3");
  EXPECT_EQ(app::copy_base(*from, *server).versions, 8u);
  EXPECT_EQ(app::copy_base(*server, *back).versions, 8u);
  const std::pair<const char*, const char*> records[] = {{"F", "1"}, {"F", "é 2"}, {"ONLYDELETED", "3"}};
  for (const auto& [file, id] : records) {
    EXPECT_NE(all_versions(*from, file, id), "");
    EXPECT_EQ(all_versions(*server, file, id), all_versions(*from, file, id));
    EXPECT_EQ(all_versions(*back, file, id), all_versions(*from, file, id));
  }
  EXPECT_EQ(back->history()->deleted("ONLYDELETED", ""), std::vector<std::string>{"3"});
  EXPECT_TRUE(back->damages().empty() && back->disagreements().empty() && back->damaged_records().empty());
  back->put("F", "1", record("next"));
  EXPECT_EQ(back->history()->versions("F", "1").back().number, 4u);
  EXPECT_EQ(back->history()->purge(now), from->history()->purge(now) + 1);
}

TEST_F(BaseCopy, ToAndFromAStoreWithoutHistoryBringsTheRecords) {
  MemoryDatabase memory, back;
  memory.put("F", "1", record("a^b|c"));
  memory.put("G", "x", record(""));
  const auto server = open(server_.new_base(), "clerk");
  EXPECT_EQ(app::copy_base(memory, *server).records, 2u);
  const auto report = app::copy_base(*server, back);
  EXPECT_EQ(report.records, 2u);
  EXPECT_EQ(report.versions, 0u);
  EXPECT_EQ(back.find("F", "1"), record("a^b|c"));
  EXPECT_EQ(back.files(), memory.files());
}

TEST_F(BaseCopy, ATargetThatHoldsRecordsIsRefusedAndWhatFailsMidwayLeavesNothing) {
  const auto target = open(server_.new_base(), "clerk");
  MemoryDatabase memory;
  for (int i = 0; i < 5; ++i) memory.put("F", std::to_string(i), record("a"));
  int steps = 0;
  const auto stop = [&] {
    if (++steps == 3) throw std::runtime_error("stop");
  };
  EXPECT_THROW(app::copy_base(memory, *target, stop), std::runtime_error);
  EXPECT_TRUE(target->files().empty());
  target->put("OTHER", "1", record("x"));
  EXPECT_NE(failure([&] { app::copy_base(memory, *target); }).find("contient déjà des enregistrements"),
            std::string::npos);
  EXPECT_EQ(target->files(), std::vector<std::string>{"OTHER"});
  const auto source = open(server_.new_base(), "clerk"), clerk = open(server_.new_base(), "clerk");
  source->put("F", "1", record("a"));
  EXPECT_NE(failure([&] { app::copy_base(*source, *clerk); }).find("vous n'en avez pas le droit"),
            std::string::npos)
      << "a clerk lays down no history";
}

}  // namespace
}  // namespace velanor::store
