// The SQLite store against the in-memory one: whatever is done to both, they hold the same.
#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>
#include <random>

#include "sqlite/disk.h"
#include "sqlite/snapshot.h"
#include "sqlite/temporary_folder.h"
#include "support/so_far.h"
#include "velanor/memory_database.h"

namespace velanor::store {
namespace {

std::string all_of(Database& database) {
  std::string text;
  for (const char* file : {"F", "G"}) {
    const DbResult found =
        database.Select(DbQuery(std::string("SSELECT ") + file + " PAR 0", file, "0").encoded());
    for (int i = 1; i <= found.DCount(); ++i) {
      text += std::string(file) + " " + std::string(found(i)) + " " +
              shown(database.OpenFile(file)->Read(found(i))) + "\n";
    }
  }
  return text;
}

// One write or deletion, the same on both.
struct Act {
  std::string file, id;
  std::optional<DbRecord> content;
  Expected expected = Expected::anything();

  std::uint32_t on(Database& database) const try {
    const auto opened = database.OpenFile(file);
    content ? opened->write(id, *content, expected) : opened->remove(id, expected);
    return 0;
  } catch (const DbError& error) {
    return error.number();
  }
};

class Stores {
 public:
  explicit Stores(unsigned seed) : random_(seed) {
    disk_.forget();
    open();
  }

  void step() {
    const auto what = below(20);
    if (what == 0) return change();
    if (what == 1) return open();
    if (what == 2) return back_up_or_restore();
    both(act());
  }

  std::string of_sqlite() { return all_of(*sqlite_); }
  std::string of_memory() { return all_of(memory_); }
  int conflicts() const { return conflicts_; }
  int undone() const { return undone_; }
  int restored() const { return restored_; }

 private:
  unsigned below(unsigned n) { return static_cast<unsigned>(random_() % n); }
  void open() {
    sqlite_.reset();
    sqlite_ = std::make_unique<SqliteDatabase>(
        folder_.file("base"), SqliteDatabase::Options{.missing = SqliteDatabase::Missing::kCreate});
  }

  DbRecord content() { return record(std::string(below(3), 'a') + "^" + std::to_string(below(3))); }

  Act act() {
    Act act{below(2) == 0 ? "F" : "G", std::to_string(below(6)), {}};
    if (below(3) > 0) act.content = content();
    const auto kind = below(4);
    const auto stored = memory_.find(act.file, act.id);
    if (kind == 1) act.expected = Expected::absent();
    if (kind == 2) act.expected = Expected::record(stored.value_or(content()));
    if (kind == 3) act.expected = Expected::record(content());
    return act;
  }

  void both(const Act& act) {
    const std::uint32_t by_memory = act.on(memory_);
    EXPECT_EQ(act.on(*sqlite_), by_memory);
    conflicts_ += by_memory == kConflict;
  }

  // Every other one fails at its end.
  void change() {
    std::vector<Act> acts;
    for (unsigned n = below(6) + 1; n > 0; --n) acts.push_back(act());
    const bool fails = below(2) == 0;
    std::vector<std::uint32_t> answers[2];
    Database* const databases[] = {&memory_, sqlite_.get()};
    for (int i = 0; i < 2; ++i) {
      try {
        databases[i]->in_one_change([&] {
          for (const Act& one : acts) answers[i].push_back(one.on(*databases[i]));
          if (fails) throw std::runtime_error("stop");
        });
      } catch (const std::runtime_error&) {
        undone_ += i;
      }
    }
    EXPECT_EQ(answers[0], answers[1]);
  }

  void back_up_or_restore() {
    const std::string copy = folder_.file("copy");
    if (!std::filesystem::exists(copy)) {
      sqlite_->back_up(copy);
      kept_.clear();
      for (const char* file : {"F", "G"}) {
        memory_.for_each(file, [&](std::string_view id, const DbRecord& content) {
          kept_.push_back({file, std::string(id), content});
        });
      }
      return;
    }
    sqlite_.reset();
    SqliteDatabase::restore(copy, folder_.file("base"));
    std::filesystem::remove(copy);
    open();
    for (const char* file : {"F", "G"}) {
      for (int id = 0; id < 6; ++id) memory_.remove(file, std::to_string(id));
    }
    for (const Act& act : kept_) memory_.put(act.file, act.id, *act.content);
    ++restored_;
  }

  std::mt19937 random_;
  Disk disk_;
  TemporaryFolder folder_;
  MemoryDatabase memory_;
  std::unique_ptr<SqliteDatabase> sqlite_;
  std::vector<Act> kept_;
  int conflicts_ = 0, undone_ = 0, restored_ = 0;
};

TEST(Agreement, SqliteHoldsWhatTheMemoryStoreHoldsAfterWhateverIsDone) {
  const int steps = long_tests() ? 500'000 : 5000;
  Stores stores(17);
  for (int n = 0; n < steps; ++n) {
    stores.step();
    ASSERT_EQ(stores.of_sqlite(), stores.of_memory()) << "after step " << n;
  }
  std::cout << "agreement: " << steps << " steps, " << stores.conflicts() << " conflicts, " << stores.undone()
            << " changes undone, " << stores.restored() << " restores, no difference" << test::so_far()
            << "\n";
  EXPECT_GT(stores.conflicts(), 20);
  EXPECT_GT(stores.undone(), 3);
  EXPECT_GT(stores.restored(), 3);
}

}  // namespace
}  // namespace velanor::store
