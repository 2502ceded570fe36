// The log is brought into the file beside those who save.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iostream>
#include <thread>

#include "sqlite/snapshot.h"
#include "sqlite/temporary_folder.h"
#include "store/checked_writes.h"
#include "store/sqlite/sqlite_backend.h"

namespace velanor::store {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int kPages = 1200;  // more than a log holds before it is brought over

void save_pages(SqliteDatabase& database, int first) {
  database.in_one_change([&] {
    for (int n = 0; n < kPages; ++n)
      database.put("F", std::to_string(first + n), record(std::string(3000, 'x')));
  });
}

// Whether it comes true before anybody would call it stalled.
bool comes_true(const std::function<bool()>& condition) {
  const auto until = Clock::now() + std::chrono::seconds(30);
  while (!condition()) {
    if (Clock::now() > until) return false;
    std::this_thread::yield();
  }
  return true;
}

TEST(Checkpoint, TheLogIsBroughtOverWithoutAnybodyClosingAndAfterAReaderHasGone) {
  const TemporaryFolder folder;
  const std::string path = folder.file("base");
  const SqliteDatabase::Options created{.missing = SqliteDatabase::Missing::kCreate};
  SqliteDatabase writer(path, created);
  save_pages(writer, 0);
  constexpr auto kOnce = std::uintmax_t{kPages} * 3000;
  EXPECT_TRUE(comes_true([&] { return fs::file_size(path) > kOnce; }));
  writer.in_one_view([&] {
    SqliteDatabase(path).put("F", "from another program", record("x"));
    SqliteDatabase other(path);
    save_pages(other, kPages);
    EXPECT_EQ(shown(other.OpenFile("F")->Read("from another program")), "x");
    EXPECT_LT(fs::file_size(path), 2 * kOnce) << "brought over below a reader";
    // What a view keeps from being brought over is known by then.
    save_pages(other, 2 * kPages);
  });
  writer.put("F", "last", record("x"));
  EXPECT_TRUE(comes_true([&] { return fs::file_size(path) > 3 * kOnce; }));
}

struct Latency {
  double half, most, longest;  // milliseconds: median, 99.9 of 100, all
};

Latency latency_of(bool beside) {
  const TemporaryFolder folder;
  sqlite::SqliteBackend backend(folder.file("base"), sqlite::Missing::kCreate, 5000, [] { return 1; });
  put_checked(backend, "F", "0", record("first"));
  if (!beside) sqlite3_wal_autocheckpoint(backend.connection().handle(), 1000);
  std::vector<double> times;
  for (int n = 0; n < 5000; ++n) {
    const auto start = Clock::now();
    put_checked(backend, "F", std::to_string(n * 7919 % 3000),
                record(std::to_string(n) + std::string(1000, 'x')));
    times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
  }
  std::sort(times.begin(), times.end());
  return {times[times.size() / 2], times[times.size() * 999 / 1000], times.back()};
}

TEST(Checkpoint, StallsNoSave) {
  if (!long_tests()) GTEST_SKIP() << "measures for minutes";
  for (const bool beside : {false, true}) {
    const Latency latency = latency_of(beside);
    std::cout << "5000 saves, checkpoints " << (beside ? "beside them" : "within them") << ": median "
              << latency.half << " ms, 99.9 % " << latency.most << " ms, longest " << latency.longest
              << " ms\n";
  }
}

}  // namespace
}  // namespace velanor::store
