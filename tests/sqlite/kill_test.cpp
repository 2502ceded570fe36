// Programs that die without a warning while they save.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <iostream>
#include <map>
#include <random>

#include "sqlite/snapshot.h"
#include "sqlite/temporary_folder.h"
#include "support/so_far.h"

namespace velanor::store {
namespace {

constexpr int kCards = 5;

// Both attributes are written by one save: what differs is half of one.
DbRecord card_of(int save) { return record(std::to_string(save) + "^" + std::to_string(save)); }

// Saves for ever, and says through the pipe which save has returned.
[[noreturn]] void save_until_killed(const std::string& path, int first, int pipe) {
  SqliteDatabase database(path);
  const auto file = database.OpenFile("F");
  for (int save = first;; ++save) {
    file->write(std::to_string(save % kCards), card_of(save));
    if (write(pipe, &save, sizeof save) != sizeof save) _exit(1);
  }
}

// The last save that was acknowledged by a program that was killed after some time.
int run_and_kill(const std::string& path, int first, int microseconds) {
  int ends[2];
  EXPECT_EQ(pipe(ends), 0);
  const pid_t child = fork();
  if (child == 0) {
    close(ends[0]);
    save_until_killed(path, first, ends[1]);
  }
  close(ends[1]);
  int save = first - 1;
  // It is at work once it has acknowledged something.
  EXPECT_EQ(read(ends[0], &save, sizeof save), static_cast<ssize_t>(sizeof save));
  usleep(static_cast<useconds_t>(microseconds));
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  int told;
  while (read(ends[0], &told, sizeof told) == sizeof told) save = told;
  close(ends[0]);
  return save;
}

TEST(KilledProgram, LosesNoAcknowledgedSaveAndLeavesNoneHalfDone) {
  const int cycles = long_tests() ? 10'000 : 300;
  const TemporaryFolder folder;
  const std::string path = folder.file("base");
  { const SqliteDatabase made(path, {.missing = SqliteDatabase::Missing::kCreate}); }
  std::mt19937 random(3);
  std::map<int, int> last;  // of each card, the save that was acknowledged
  int next = 0, acknowledged = 0;
  for (int cycle = 0; cycle < cycles; ++cycle) {
    const int until = run_and_kill(path, next, static_cast<int>(random() % 6000));
    for (int save = next; save <= until; ++save) last[save % kCards] = save;
    acknowledged += until - next + 1;
    SqliteDatabase database(path);
    ASSERT_TRUE(database.damages().empty());
    ASSERT_TRUE(database.damaged_records().empty());
    for (auto& [card, save] : last) {
      const DbRecord found = database.OpenFile("F")->Read(std::to_string(card));
      ASSERT_EQ(found(1), found(2)) << "half a save";
      const int is = std::stoi(std::string(found(1)));
      // One more may have been made that could no longer be told.
      ASSERT_TRUE(is == save || is == until + 1) << is << " instead of " << save;
      save = is;
      ASSERT_TRUE(history_is_whole(database, "F", std::to_string(card)));
    }
    next = until + 2;
  }
  std::cout << "kill -9: " << cycles << " cycles, " << acknowledged
            << " saves acknowledged, none lost, none half done" << test::so_far() << "\n";
}

}  // namespace
}  // namespace velanor::store
