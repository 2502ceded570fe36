// What becomes of writes when the connection, the server or the program goes in the middle of them.
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <iostream>
#include <thread>

#include "postgres/cutting_proxy.h"
#include "postgres/server.h"
#include "store/notation.h"

namespace velanor::store {
namespace {

bool is_long() { return std::getenv("VELANOR_LONG") != nullptr; }

class LostConnection : public testing::Test {
 protected:
  std::unique_ptr<PostgresDatabase> open_through(const CuttingProxy& proxy, int patience = 5) {
    PostgresDatabase::Options options;
    options.connect_seconds = patience;
    return std::make_unique<PostgresDatabase>(server_.url_by(proxy.folder(), base_), options);
  }
  std::string versions(std::string_view id) { return told(open_base(base_)->history()->versions("F", id)); }

  Server& server_ = Server::instance();
  std::string base_ = server_.new_base();
};

TEST_F(LostConnection, ASaveThatIsCutAtAnyMessageIsDoneOnce) {
  CuttingProxy proxy(server_.socket());
  const auto database = open_through(proxy);
  const auto looking = open_base(base_);
  const auto file = database->OpenFile("F");
  int cuts = 0;
  std::string before;
  for (int message = 1;; ++message) {
    SCOPED_TRACE(message);
    const std::string content = "content " + std::to_string(message);
    proxy.cut_at(message);
    EXPECT_EQ(failure([&] {
                before.empty() ? file->write("1", record(content), Expected::absent())
                               : file->write("1", record(content), Expected::record(record(before)));
              }),
              "");
    const auto versions = looking->history()->versions("F", "1");
    ASSERT_EQ(versions.size(), static_cast<std::size_t>(message));
    EXPECT_EQ(shown(*versions.back().record), content);
    before = content;
    if (!proxy.has_cut()) break;
    ++cuts;
  }
  proxy.cut_at(0);
  EXPECT_GT(cuts, 9) << "both ways, from the first message to the last";
  std::cout << "cut save: " << cuts << " places, each saved once\n";
}

TEST_F(LostConnection, AChangeThatIsCutAtAnyMessageIsDoneAsAWholeOrNotAtAllAndSaidAsItIs) {
  CuttingProxy proxy(server_.socket());
  const auto database = open_through(proxy);
  const auto looking = open_base(base_);
  int done = 0, failed = 0, after_commit = 0;
  for (int message = 1;; ++message) {
    SCOPED_TRACE(message);
    const std::string content = "content " + std::to_string(message);
    proxy.cut_at(message);
    const std::string sentence = failure([&] {
      database->in_one_change([&] {
        database->put("F", "1", record(content));
        database->put("G", "2", record(content));
        database->OpenFile("F")->DeleteRecord("old");
      });
    });
    const bool is_there = looking->OpenFile("F")->find("1") == record(content);
    EXPECT_EQ(is_there, looking->OpenFile("G")->find("2") == record(content)) << "half of it";
    EXPECT_EQ(is_there, sentence.empty()) << sentence;
    is_there ? ++done : ++failed;
    if (!proxy.has_cut()) break;
    after_commit += is_there ? 1 : 0;
  }
  proxy.cut_at(0);
  EXPECT_GT(failed, 10);
  EXPECT_GT(after_commit, 0) << "no cut fell behind the commit";
  std::cout << "cut change: " << failed << " undone and said so, " << done << " done, " << after_commit
            << " of them without an answer to the commit\n";
}

TEST_F(LostConnection, WhatIsWrittenAfterALossInsideAChangeIsNoPartOfAnything) {
  CuttingProxy proxy(server_.socket());
  const auto database = open_through(proxy);
  const auto change = [&] {
    database->put("F", "1", record("a"));
    proxy.cut_at(1);
    EXPECT_NE(failure([&] { database->put("F", "2", record("b")); }), "");
    EXPECT_NE(failure([&] { database->put("F", "3", record("c")); }), "");
    EXPECT_NE(failure([&] { database->OpenFile("F")->find("1"); }), "");
  };
  EXPECT_THROW(database->in_one_change(change), DbError) << "it swallowed the failures";
  EXPECT_EQ(all_of(*database, "SSELECT F", "F"), "");
  database->put("F", "4", record("d"));
  EXPECT_EQ(all_of(*database, "SSELECT F", "F"), "4|d\n");
}

TEST_F(LostConnection, AReadIsMadeAgainAndAnythingMayHaveChangedMeanwhile) {
  CuttingProxy proxy(server_.socket());
  const auto database = open_through(proxy);
  database->put("F", "1", record("a"));
  const auto news = database->news();
  std::size_t cuts = 0;
  for (int message = 1; message == 1 || proxy.has_cut(); ++message) {
    proxy.cut_at(message);
    EXPECT_EQ(failure([&] { EXPECT_EQ(database->OpenFile("F")->find("1"), record("a")); }), "");
    cuts += proxy.has_cut() ? 1 : 0;
  }
  proxy.cut_at(0);
  EXPECT_GT(cuts, 5u);
  const auto changes = news->take();
  EXPECT_EQ(changes.size(), cuts);
  for (const Change& change : changes) EXPECT_EQ(change.file, "");
}

TEST_F(LostConnection, NewsComeThroughTheNextConnectionToo) {
  CuttingProxy proxy(server_.socket());
  const auto database = open_through(proxy), others = open_base(base_);
  const auto news = database->news();
  proxy.close_gate(true);
  while (failure([&] { database->OpenFile("F")->find("1"); }).empty()) continue;
  EXPECT_EQ(news->take().size(), 0u) << "nothing can be read anew yet";
  proxy.close_gate(false);
  database->OpenFile("F")->find("1");
  EXPECT_EQ(news->take().size(), 1u);
  others->put("F", "1", record("x"));
  pollfd waited{news->descriptor(), POLLIN, 0};
  EXPECT_EQ(::poll(&waited, 1, 5000), 1);
  const auto changes = news->take();
  ASSERT_EQ(changes.size(), 1u);
  EXPECT_EQ(changes.front().id, "1");
}

TEST_F(LostConnection, AServerThatIsAwayIsSaidAndASaveMadeAgainIsDoneOnce) {
  CuttingProxy proxy(server_.socket());
  const auto database = open_through(proxy, 1);
  const auto file = database->OpenFile("F");
  file->write("1", record("a"));
  const auto save = [&] {
    return failure([&] { file->write("1", record("b"), Expected::record(record("a"))); });
  };
  // The answer is lost, and then the server: nobody can know.
  proxy.cut_at(9);
  std::thread gatekeeper([&] {
    while (!proxy.has_cut()) std::this_thread::yield();
    proxy.close_gate(true);
  });
  const std::string unknown = save();
  gatekeeper.join();
  EXPECT_NE(unknown.find("on ne sait pas encore si c'est enregistré"), unknown.npos) << unknown;
  EXPECT_EQ(versions("1"), "1 clerk a\n2 clerk b\n");
  EXPECT_NE(save(), "");
  const std::string reading = failure([&] { file->find("2"); });
  EXPECT_NE(reading.find("Rien n'a été modifié, et ce qui est à l'écran y reste"), reading.npos) << reading;
  proxy.close_gate(false);
  EXPECT_EQ(save(), "") << "his own save passed for another clerk's";
  EXPECT_EQ(versions("1"), "1 clerk a\n2 clerk b\n");
  EXPECT_NE(save(), "") << "a new save, which expects what is no longer there";
}

// ---- The server dies.

// Saves under one id, each time expecting what it wrote before, and notes what it was told.
struct SavingClerk {
  SavingClerk(const std::string& base, std::string own_id)
      : database(open_base(base)), id(std::move(own_id)) {}

  void save() {
    const int next = attempts++;
    const auto expected = last < 0 ? Expected::absent() : Expected::record(record(std::to_string(last)));
    const std::string sentence =
        failure([&] { database->OpenFile("F")->write(id, record(std::to_string(next)), expected); });
    if (sentence.empty()) {
      acknowledged.push_back(last = next);
    } else if (sentence.find("on ne sait pas") != sentence.npos) {
      ++unknown;
      --attempts;  // the same again, as the sentence says
    } else {
      refused.push_back(sentence);
    }
  }

  std::unique_ptr<PostgresDatabase> database;
  std::string id;
  int attempts = 0, last = -1, unknown = 0;
  std::vector<int> acknowledged;
  std::vector<std::string> refused;
};

TEST_F(LostConnection, NoAcknowledgedSaveIsLostWhenTheServerIsKilled) {
  server_.set_durable(true);
  const int cycles = is_long() ? 300 : 5;
  std::vector<std::unique_ptr<SavingClerk>> clerks;
  for (int n = 0; n < 3; ++n) clerks.push_back(std::make_unique<SavingClerk>(base_, std::to_string(n)));
  std::atomic<bool> ended = false;
  std::atomic<int> saves = 0;
  std::vector<std::thread> threads;
  for (const auto& clerk : clerks) {
    threads.emplace_back([&, c = clerk.get()] {
      while (!ended) {
        c->save();
        ++saves;
      }
    });
  }
  for (int cycle = 0; cycle < cycles; ++cycle) {
    const int enough = saves + 40;
    while (saves < enough) std::this_thread::yield();
    server_.kill();
    server_.start();
    server_.set_durable(true);
  }
  ended = true;
  for (std::thread& thread : threads) thread.join();
  std::size_t acknowledged = 0, refused = 0;
  int unknown = 0;
  for (const auto& clerk : clerks) {
    // One that was left unknown at the very end is settled first.
    while (clerk->acknowledged.empty() || clerk->last + 1 != clerk->attempts) clerk->save();
    const auto versions = open_base(base_)->history()->versions("F", clerk->id);
    std::vector<int> stored;
    for (const Version& version : versions) stored.push_back(std::stoi(shown(*version.record)));
    EXPECT_EQ(stored, clerk->acknowledged) << "what is stored is what was said to be, each once";
    for (const std::string& sentence : clerk->refused)
      EXPECT_NE(sentence.find("atteinte"), sentence.npos) << sentence;
    acknowledged += clerk->acknowledged.size();
    refused += clerk->refused.size();
    unknown += clerk->unknown;
  }
  server_.set_durable(false);
  std::cout << "killed server: " << cycles << " times, " << acknowledged
            << " saves acknowledged and none lost, " << refused << " refused, " << unknown
            << " unknown for a while\n";
}

TEST_F(LostConnection, NoAcknowledgedSaveIsLostWhenTheProgramIsKilled) {
  const int cycles = is_long() ? 1'000 : 50;
  int acknowledged = 0;
  for (int cycle = 0; cycle < cycles; ++cycle) {
    const std::string id = "killed " + std::to_string(cycle);
    int pipe_ends[2];
    ASSERT_EQ(pipe(pipe_ends), 0);
    const pid_t child = fork();
    if (child == 0) {
      const auto database = open_base(base_);
      for (int n = 1;; ++n) {
        database->in_one_change([&] {
          database->put("F", id, record(std::to_string(n)));
          database->put("G", id, record(std::to_string(n)));
        });
        [[maybe_unused]] const auto written = ::write(pipe_ends[1], &n, sizeof n);
      }
    }
    close(pipe_ends[1]);
    int last = 0;
    for (int n = 0; last < 20 + cycle % 40 && ::read(pipe_ends[0], &n, sizeof n) == sizeof n;) last = n;
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    for (int n = 0; ::read(pipe_ends[0], &n, sizeof n) == sizeof n;) last = n;
    close(pipe_ends[0]);
    ASSERT_GE(last, 20);
    acknowledged += last;
    // What he left open is undone before another may write there.
    const auto database = open_base(base_);
    database->in_one_change([&] {
      database->put("F", id, record("next"));
      const auto versions = database->history()->versions("F", id);
      const auto before = versions.size() - 1;
      EXPECT_GE(before, static_cast<std::size_t>(last));
      EXPECT_LE(before, static_cast<std::size_t>(last) + 1) << "one change was under way";
      EXPECT_EQ(database->history()->versions("G", id).size(), before) << "half a change";
    });
  }
  std::cout << "killed program: " << cycles << " times, " << acknowledged
            << " changes acknowledged and none lost\n";
}

}  // namespace
}  // namespace velanor::store
