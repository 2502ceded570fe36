// The component and the command line on a server.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <iostream>

#include "app/velanorctl/open_store.h"
#include "control/user_acts.h"
#include "postgres/server.h"
#include "store/notation.h"
#include "support/office.h"

namespace velanor::store {
namespace {

namespace user = test::user;

std::unique_ptr<Database> opened(const std::string& url) {
  app::StoreOptions options;
  options.url = url;
  return app::open_store(options);
}

class DeskOnAServer : public testing::Test {
 protected:
  void SetUp() override { test::load(*open_base(base_), "lib/cards.play"); }

  Server& server_ = Server::instance();
  std::string base_ = server_.new_base();
};

// At a hundredth of a second for there and back, five of them are what a clerk does not notice.
TEST_F(DeskOnAServer, NoActAtACardCostsMoreThanFiveRoundTripsAndOpeningOneAtMostThree) {
  const auto store = opened(server_.url(base_));
  auto& database = dynamic_cast<PostgresDatabase&>(*store);
  test::Office office(database);
  office.component.init();
  const struct {
    const char* name;
    user::Act act;
    std::uint64_t most;
  } acts[] = {
      {"the entity", user::type("Txt_Asso", "001"), 5},
      {"a card", user::type("Txt_Aidant", "00010"), 3},
      {"the amendments", user::page(1), 5},
      {"an amendment", user::pick("Lst_DatEffet", 1), 5},
      {"its items", user::click("Cmd_Detail"), 5},
      {"an item", user::edit("Lst_Code", 0), 5},
      {"its base", user::type("Txt_Base", "9"), 5},
      {"kept", user::click("Cmd_OK"), 5},
      {"back", user::click("Cmd_Retour"), 5},
      {"saved", user::click("Cmd_Valid"), 5},
  };
  std::string told;
  for (const auto& [name, act, most] : acts) {
    SCOPED_TRACE(name);
    const auto before = database.round_trips();
    act(office);
    const auto trips = database.round_trips() - before;
    EXPECT_LE(trips, most);
    told.append(told.empty() ? "" : ", ").append(name).append(" ").append(std::to_string(trips));
  }
  std::cout << "round trips: " << told << "\n";
}

// ---- The built program.

struct Outcome {
  int status;
  std::string output;
};

// Both outputs together.
Outcome run(const std::string& command) {
  std::FILE* pipe = popen(("{ " + command + "; } 2>&1").c_str(), "r");
  std::string output;
  std::array<char, 4096> buffer;
  while (const auto size = std::fread(buffer.data(), 1, buffer.size(), pipe))
    output.append(buffer.data(), size);
  return {WEXITSTATUS(pclose(pipe)), output};
}

TEST_F(DeskOnAServer, TheCommandLinePreparesABaseFillsItAndReadsIt) {
  const TemporaryFolder folder;
  const std::string fresh = "from_the_command_line", file = folder.file("base.db");
  server_.run("postgres", "CREATE DATABASE " + fresh);
  const std::string psql =
      Server::programs() + "/psql -q -v ON_ERROR_STOP=1 '" + server_.url(fresh, "postgres") + "'";
  const std::string to = " '" + server_.url(fresh, "manager") + "'",
                    at = " --store '" + server_.url(fresh) + "'";
  EXPECT_EQ(run(VELANORCTL " select 'SSELECT SECTEUR'" + at).status, 1) << "it is not prepared";
  EXPECT_EQ(run(VELANORCTL " setup-server | " + psql + " >/dev/null").output, "");
  EXPECT_EQ(run(VELANORCTL " copy --from '" + server_.url(base_, "manager") + "' --to" + to).status, 0);
  const Outcome again = run(VELANORCTL " copy --from '" + server_.url(base_) + "' --to" + to);
  EXPECT_EQ(again.status, 1);
  EXPECT_NE(again.output.find("contient déjà des enregistrements"), again.output.npos) << again.output;
  EXPECT_EQ(run(VELANORCTL " copy --from" + to + " --to " + file).status, 0);
  const std::string question = " select 'SSELECT VELANORO PAR 1' '0 1'";
  const Outcome here = run(VELANORCTL + question + at),
                there = run(VELANORCTL + question + " --store " + file);
  EXPECT_EQ(here.status, 0);
  EXPECT_GT(here.output.size(), 100u);
  EXPECT_EQ(here.output, there.output);
  const Outcome backup = run(VELANORCTL " backup " + folder.file("copie") + at);
  EXPECT_NE(backup.output.find("est sur un serveur"), backup.output.npos) << backup.output;
}

TEST_F(DeskOnAServer, APasswordOnTheCommandLineIsSeenByNobody) {
  const std::string url = "postgresql://clerk:s3cret@/" + base_ + "?host=" + server_.folder();
  for (const std::string& arguments :
       {" check " + url, " check --store='" + url + "' --demo", " select x --store " + url + "x",
        " backup x --store " + url, " --store=" + url}) {
    const Outcome outcome = run(VELANORCTL + arguments);
    EXPECT_NE(outcome.status, 0);
    EXPECT_EQ(outcome.output.find("s3cret"), outcome.output.npos) << outcome.output;
  }
  // It waits for its scenario on standard input.
  std::FILE* pipe = popen(("exec " VELANORCTL " play --store '" + url + "' >/dev/null").c_str(), "w");
  const std::string hidden = "play --store postgresql://clerk@/" + base_;
  std::string all;
  for (int tries = 0; tries < 1000 && all.find(hidden) == all.npos; ++tries)
    all = run("cat /proc/[0-9]*/cmdline 2>/dev/null | tr '\\0' ' '; true").output;
  pclose(pipe);
  EXPECT_NE(all.find(hidden), all.npos);
  EXPECT_EQ(all.find("s3cret"), all.npos);
}

}  // namespace
}  // namespace velanor::store
