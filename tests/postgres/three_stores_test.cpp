// The three stores against one model: whatever is written, deleted, undone or brought back, they hold the
// same, and those with a history the same versions.
#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <map>
#include <random>

#include "postgres/server.h"
#include "sqlite/temporary_folder.h"
#include "store/notation.h"
#include "velanor/memory_database.h"
#include "velanor/sqlite_database.h"

namespace velanor::store {
namespace {

using Versions = std::vector<std::optional<DbRecord>>;

// Every version of every id; a record that never was has none.
struct Model {
  std::map<std::string, Versions, std::less<>> versions;

  std::optional<DbRecord> now(const std::string& id) const {
    const auto found = versions.find(id);
    return found == versions.end() ? std::nullopt : found->second.back();
  }
  // Whether it was as expected.
  bool write(const std::string& id, const std::optional<DbRecord>& content, const Expected& expected) {
    const auto before = now(id);
    if (!expected.holds_for(before)) return false;
    if (content != before) versions[id].push_back(content);
    return true;
  }
};

class ThreeStores : public testing::Test {
 protected:
  static constexpr const char* kFile = "F";

  ThreeStores() {
    for (Database* store : stores_) files_.push_back(store->OpenFile(kFile));
  }

  auto& any(auto& from) { return from[random_() % std::size(from)]; }

  void write(const std::string& id, const std::optional<DbRecord>& content, const Expected& expected) {
    const bool done = model_.write(id, content, expected);
    for (std::size_t i = 0; i < files_.size(); ++i) {
      const std::string told = failure(
          [&] { content ? files_[i]->write(id, *content, expected) : files_[i]->remove(id, expected); });
      ASSERT_EQ(told.empty(), done) << "store " << i << ": " << told;
    }
    ++(done ? written_ : refused_);
  }

  void random_write() {
    const std::string id = any(kIds);
    const DbRecord content = record(any(kContents)), seen = record(any(kContents));
    const auto expected = std::array{Expected::anything(), Expected::absent(), Expected::record(seen),
                                     Expected::record(model_.now(id).value_or(seen))};
    const bool removes = random_() % 4 == 0;
    write(id, removes ? std::nullopt : std::optional(content), any(expected));
  }

  // What "Reprendre cette version" does.
  void bring_back() {
    const std::string id = any(kIds);
    const auto known = model_.versions.find(id);
    if (known == model_.versions.end()) return;
    const std::optional<DbRecord> wanted = any(known->second);
    if (!wanted) return;
    const auto now = model_.now(id);
    write(id, wanted, now ? Expected::record(*now) : Expected::absent());
    ++brought_back_;
  }

  void random_change() {
    const bool fails = random_() % 2 == 0;
    const Model before = model_;
    const auto change = [&] {
      for (int i = 0; i < 3; ++i) random_write();
      if (fails) throw std::runtime_error("undone");
    };
    try {
      memory_.in_one_change([&] { sqlite_->in_one_change([&] { postgres_->in_one_change(change); }); });
    } catch (const std::runtime_error&) {
      model_ = before;
      ++undone_;
    }
  }

  void compare_records(const std::string& id) {
    for (std::size_t i = 0; i < files_.size(); ++i)
      ASSERT_EQ(files_[i]->find(id), model_.now(id)) << i << " " << id;
    for (Database* store : {static_cast<Database*>(sqlite_.get()), static_cast<Database*>(postgres_.get())}) {
      const auto kept = store->history()->versions(kFile, id);
      const auto known = model_.versions.find(id);
      const Versions expected = known == model_.versions.end() ? Versions() : known->second;
      ASSERT_EQ(kept.size(), expected.size()) << id;
      for (std::size_t n = 0; n < kept.size(); ++n) {
        ASSERT_EQ(kept[n].record, expected[n]) << id << " version " << n + 1;
        ASSERT_EQ(kept[n].number, n + 1);
      }
    }
  }
  void compare_all() {
    for (const char* id : kIds) compare_records(id);
    std::string expected;
    for (const char* statement : kStatements) {
      const std::string told = all_of(memory_, statement, kFile);
      for (Database* store : stores_) ASSERT_EQ(all_of(*store, statement, kFile), told) << statement;
    }
  }

  static constexpr const char* kIds[] = {"1",  "2",  "11", "12", "21",    "é",
                                         "1é", "é1", "[1", "1]", "'\"%_", "ÿ"};
  static constexpr const char* kContents[] = {"a", "b^x|y", "é~z", "B", "", "a^^c", "100%_'\""};
  static constexpr const char* kStatements[] = {
      "SSELECT F", "SSELECT F PAR 1 PAR-DECR 0", "SSELECT F AVEC 0 = \"[1\"",
      "SSELECT F AVEC 0 = \"1]\" PAR 1", "SSELECT F AVEC 1 # \"a\""};

  Server& server_ = Server::instance();
  const TemporaryFolder folder_;
  MemoryDatabase memory_;
  std::unique_ptr<SqliteDatabase> sqlite_ = std::make_unique<SqliteDatabase>(
      folder_.file("base"), SqliteDatabase::Options{.missing = SqliteDatabase::Missing::kCreate});
  std::unique_ptr<PostgresDatabase> postgres_ = open_base(server_.new_base());
  std::vector<Database*> stores_{&memory_, sqlite_.get(), postgres_.get()};
  std::vector<std::unique_ptr<DbFile>> files_;
  Model model_;
  std::mt19937 random_{17};
  int written_ = 0, refused_ = 0, brought_back_ = 0, undone_ = 0;
};

TEST_F(ThreeStores, HoldTheSameWhateverIsDoneToThem) {
  const int operations = std::getenv("VELANOR_LONG") != nullptr ? 500'000 : 5'000;
  for (int n = 0; n < operations && !HasFatalFailure(); ++n) {
    const auto kind = random_() % 20;
    kind == 0 ? random_change() : kind < 4 ? bring_back() : random_write();
    if (n % 10 == 0) compare_records(any(kIds));
    if (n % 500 == 0) compare_all();
  }
  compare_all();
  EXPECT_GT(refused_, operations / 20);
  EXPECT_GT(brought_back_, operations / 50);
  std::cout << "three stores: " << operations << " operations, " << written_ << " writes, " << refused_
            << " refused, " << brought_back_ << " versions brought back, " << undone_
            << " changes undone, no difference\n";
}

}  // namespace
}  // namespace velanor::store
