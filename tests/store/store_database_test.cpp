#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "store/memory_backend.h"
#include "velanor/backend.h"

namespace velanor::store {
namespace {

class WithoutMemory : public MemoryBackend {
 public:
  std::optional<DbRecord> find(std::string_view, std::string_view) override { throw std::bad_alloc(); }
  bool put(std::string_view, std::string_view, const DbRecord&, const Expected&) override {
    throw std::bad_alloc();
  }
  bool erase(std::string_view, std::string_view, const Expected&) override { throw std::bad_alloc(); }
  void scan(std::string_view, const Narrowing&, Content, const Visit&) override { throw std::bad_alloc(); }
};

TEST(StoreDatabase, WithoutMemoryEveryCallEndsWithASentence) {
  StoreDatabase database(std::make_unique<WithoutMemory>());
  const auto file = database.OpenFile("F");
  const std::function<void()> calls[] = {
      [&] { file->find("1"); },
      [&] { file->write("1", DbRecord()); },
      [&] { file->DeleteRecord("1"); },
      [&] { database.Select(DbQuery("SSELECT F", "F", "0").encoded()); },
  };
  for (const auto& call : calls) {
    try {
      call();
      ADD_FAILURE() << "no failure";
    } catch (const DbError& error) {
      EXPECT_STREQ(error.what(),
                   "Il n'y a plus assez de mémoire. Fermez d'autres programmes, puis recommencez.");
    }
  }
}

// Counts the scans, and forgets what has changed where it is told to.
class Counted : public MemoryBackend {
 public:
  void scan(std::string_view file, const Narrowing& narrowing, Content content, const Visit& visit) override {
    ++scans;
    MemoryBackend::scan(file, narrowing, content, visit);
  }
  std::optional<std::uint64_t> changes_since(std::string_view file, std::uint64_t seen,
                                             const VisitChange& visit) override {
    return forgets ? std::nullopt : MemoryBackend::changes_since(file, seen, visit);
  }
  int scans = 0;
  bool forgets = false;
};

class KeptSelection : public ::testing::Test {
 protected:
  std::string list(const std::string& conditions = " PAR 1") {
    const auto found = database_.Select(DbQuery("SSELECT F" + conditions, "F", "0 1").encoded());
    std::string rows;
    for (int i = 1; i <= found.DCount(); ++i)
      rows += std::string(found(i, 1)) + "=" + std::string(found(i, 2)) + " ";
    return rows;
  }
  void write(const std::string& id, const std::string& name) {
    DbRecord record;
    record.set(1, name);
    database_.OpenFile("F")->write(id, record);
  }

  Counted* backend_ = new Counted;
  StoreDatabase database_{std::unique_ptr<Backend>(backend_)};
};

TEST_F(KeptSelection, IsScannedOnceAndThenFollowsWhatIsWritten) {
  for (const char* id : {"3", "1", "2"}) write(id, "b");
  EXPECT_EQ(list(), "1=b 2=b 3=b ");
  write("2", "a");
  EXPECT_EQ(list(), "2=a 1=b 3=b ") << "moved";
  write("2", "c");
  write("0", "b");
  EXPECT_EQ(list(), "0=b 1=b 3=b 2=c ") << "moved again, and one that is new";
  database_.OpenFile("F")->DeleteRecord("1");
  EXPECT_EQ(list(), "0=b 3=b 2=c ");
  EXPECT_THROW(database_.in_one_change([&] {
    write("9", "a");
    EXPECT_EQ(list(), "9=a 0=b 3=b 2=c ") << "what is written within a change is seen in it";
    throw std::runtime_error("given up");
  }),
               std::runtime_error);
  EXPECT_EQ(list(), "0=b 3=b 2=c ") << "and not behind it";
  EXPECT_EQ(backend_->scans, 1);
  backend_->forgets = true;
  write("3", "z");
  EXPECT_EQ(list(), "0=b 2=c 3=z ");
  EXPECT_EQ(backend_->scans, 2);
}

TEST_F(KeptSelection, RunsOfEqualKeysStayTogetherOverAllBlocks) {
  const auto name = [](int i) { return std::string(1, static_cast<char>('a' + i / 1000)); };
  const auto request = DbQuery("SSELECT F PAR 1", "F", "0").encoded();
  for (int i = 0; i < 3000; ++i) write(std::to_string(10'000 + i), name(i));
  for (const int added : {0, 1, 1000, 2000}) {
    // Into the middle of blocks that are full, until they divide.
    for (int i = 0; i < added; ++i) write(std::to_string(10'400) + std::to_string(1000 + i), name(1500));
    const DbResult found = database_.Select(request);
    std::vector<int> ends;
    for (int i = 1; i <= found.DCount(); i = found.run_end(i)) ends.push_back(found.run_end(i));
    EXPECT_EQ(ends, (std::vector{1001, 2001 + added, 3001 + added}));
    for (int i = 2; i <= 1000; ++i) ASSERT_LT(found(i - 1), found(i));
  }
}

TEST_F(KeptSelection, TheLatestStayWithinTheirBounds) {
  write("1", "a");
  for (int i = 0; i < 200; ++i) list(" AVEC 1 = " + std::to_string(i));
  EXPECT_EQ(backend_->scans, 200);
  list(" AVEC 1 = 199");
  EXPECT_EQ(backend_->scans, 200);
  list(" AVEC 1 = 0");
  EXPECT_EQ(backend_->scans, 201);

  // Two that are too large together; the one asked for last is kept.
  for (int i = 0; i < 4; ++i) write("large" + std::to_string(i), std::string(10 << 20, 'x'));
  list(" AVEC 0 = \"large]\" PAR 0");
  list(" AVEC 0 = \"large]\" PAR-DECR 0");
  const int scans = backend_->scans;
  list(" AVEC 0 = \"large]\" PAR-DECR 0");
  EXPECT_EQ(backend_->scans, scans);
  list(" AVEC 0 = \"large]\" PAR 0");
  EXPECT_EQ(backend_->scans, scans + 1);
}

TEST_F(KeptSelection, ANameThatComesToMeanSomethingElseIsSelectedAnew) {
  for (const char* id : {"1b", "2a"}) write(id, "");
  database_.name_id_part("F", "Part", {.first = 1});
  EXPECT_EQ(list(" PAR Part"), "1b= 2a= ");
  database_.name_id_part("F", "Part", {.first = 2});
  EXPECT_EQ(list(" PAR Part"), "2a= 1b= ");
}

}  // namespace
}  // namespace velanor::store
