// The component and the command line on a server.
#include <gtest/gtest.h>

#include <cstdio>
#include <iostream>

#include "app/velanorctl/open_store.h"
#include "control/user_acts.h"
#include "postgres/cutting_proxy.h"
#include "postgres/server.h"
#include "store/notation.h"
#include "support/office.h"
#include "support/run_program.h"

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

// With 5 ms there and back, ten of them are what a clerk does not notice (50 ms).
TEST_F(DeskOnAServer, NoActCostsMoreThanSixRoundTripsAndOpeningACardAtMostThree) {
  const auto store = opened(server_.url(base_));
  auto& database = dynamic_cast<PostgresDatabase&>(*store);
  test::Office office(database);
  office.component.init();
  EXPECT_LE(database.round_trips(), 8u);
  std::string told = "start " + std::to_string(database.round_trips());
  const auto other = open_base(base_);
  const auto others_save = [&](test::Office&) {
    DbRecord card = other->OpenFile("VELANORO")->Read("000110012026");
    card.set(1, "AUTRE NOM");
    other->put("VELANORO", "000110012026", card);
    database.OpenFile("VELANORO")->find("1");  // with whose answer the news come
  };
  other->put("VELANORO", "000110012026", other->OpenFile("VELANORO")->Read("000100012026"));
  const auto hear = [&](test::Office& desk) { EXPECT_TRUE(desk.component.hear_news()); };
  const struct {
    const char* name;
    user::Act act;
    std::uint64_t most;
  } acts[] = {
      {"entity and year", user::type("Txt_Asso", "001"), 1},
      {"a first card", user::type("Txt_Aidant", "00010"), 3},
      {"amendments", user::page(1), 0},
      {"an amendment", user::pick("Lst_DatEffet", 1), 0},
      {"its items", user::click("Cmd_Detail"), 0},
      {"an item", user::edit("Lst_Code", 0), 0},
      {"its base", user::type("Txt_Base", "9"), 0},
      {"item kept", user::click("Cmd_OK"), 0},
      {"items closed", user::click("Cmd_Retour"), 0},
      {"saved", user::click("Cmd_OK"), 2},
      {"another card", user::type("Txt_Aidant", "00011"), 3},
      {"saved elsewhere", others_save, 1},
      {"heard", hear, 2},
      {"given up", user::click("Cmd_Annul"), 1},
      {"a third card", user::type("Txt_Aidant", "00010"), 3},
      {"duplicated", user::click("Cmd_Copier"), 2},
      {"deleted", user::click("Cmd_Supp"), 6},
      {"a new card", user::click("Cmd_Ajout"), 1},
  };
  for (const auto& [name, act, most] : acts) {
    SCOPED_TRACE(name);
    const auto before = database.round_trips();
    act(office);
    const auto trips = database.round_trips() - before;
    EXPECT_LE(trips, most);
    told.append(", ").append(name).append(" ").append(std::to_string(trips));
  }
  std::cout << "round trips: " << told << "\n";
}

// A server that goes in the middle of work.
TEST_F(DeskOnAServer, WhenTheServerGoesOneSentenceSaysSoTheCardStaysAndTheNextActTriesAgain) {
  CuttingProxy proxy(server_.socket());
  const auto store = opened(server_.url_by(proxy.folder(), base_));
  test::Office office(*store);
  office.component.init();
  const auto click = [&](const char* name) {
    return failure([&] {
      EXPECT_EQ(office.hand.click(dynamic_cast<screen::CommandButton&>(office.control(name))), "");
    });
  };
  for (const user::Act& act : {user::type("Txt_Asso", "001"), user::type("Txt_Aidant", "00010"),
                               user::type("Txt_HorMensEtab", "99")})
    act(office);
  proxy.close_gate(true);
  while (failure([&] { store->OpenFile("VELANORO")->find("1"); }).empty()) continue;
  const std::string told = click("Cmd_OK");
  EXPECT_NE(told.find("n'a pas pu être atteinte"), told.npos) << told;
  EXPECT_EQ(office.component.card_id(), "000100012026");
  EXPECT_EQ(office.ui.Txt_HorMensEtab.text(), "99,00");
  proxy.close_gate(false);
  EXPECT_EQ(click("Cmd_OK"), "");
  EXPECT_EQ(office.component.card_id(), "");
  EXPECT_EQ(open_base(base_)->OpenFile("VELANORO")->Read("000100012026")(2), "9900");
}

TEST_F(DeskOnAServer, TheSearchForAFreeCodeEndsAtTheFirstFailure) {
  CuttingProxy proxy(server_.socket());
  const auto store = opened(server_.url_by(proxy.folder(), base_));
  const auto& database = dynamic_cast<PostgresDatabase&>(*store);
  test::Office office(*store);
  office.component.init();
  for (const user::Act& act : {user::type("Txt_Asso", "001"), user::type("Txt_Aidant", "00010")}) act(office);
  proxy.close_gate(true);
  while (failure([&] { store->OpenFile("VELANORO")->find("1"); }).empty()) continue;
  const auto before = database.round_trips();
  EXPECT_NE(failure([&] { EXPECT_EQ(office.hand.click(office.ui.Cmd_Copier), ""); }), "");
  EXPECT_LE(database.round_trips() - before, 3u);
  proxy.close_gate(false);
  EXPECT_EQ(failure([&] { EXPECT_EQ(office.hand.click(office.ui.Cmd_Copier), ""); }), "");
  EXPECT_EQ(office.toolkit.messages.back(), "Cet aidant a été dupliqué sur le code 99999.");
}

// ---- The built program.

using test::Outcome;
constexpr auto run = test::run_program;

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
  const std::string card = " VELANORO 000100012026";
  opened(server_.url(fresh))->OpenFile("VELANORO")->write("000100012026", record("MARTIN ANNE"));
  const Outcome versions = run(VELANORCTL " history" + card + at),
                changes = run(VELANORCTL " diff" + card + at);
  EXPECT_NE(versions.output.find("clerk"), versions.output.npos) << versions.output;
  EXPECT_NE(changes.output.find("MARTIN JEANNE"), changes.output.npos) << changes.output;
  const Outcome restored = run(VELANORCTL " restore-version" + card + " 1" + at);
  EXPECT_NE(restored.output.find("est rétablie"), restored.output.npos) << restored.output;
  const std::string purge = VELANORCTL " purge-history --before 01/01/2100";
  EXPECT_EQ(run(purge + at).status, 1) << "without --oui";
  EXPECT_NE(run(purge + " --oui" + at).output.find("vous n'en avez pas le droit"), std::string::npos);
  const Outcome purged = run(purge + " --oui --store" + to);
  EXPECT_EQ(purged.status, 0) << purged.output;
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
