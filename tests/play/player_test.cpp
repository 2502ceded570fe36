#include "play/player.h"

#include <gtest/gtest.h>

#include <sstream>

#include "play/small_component.h"
#include "velanor/memory_database.h"

namespace velanor::play {
namespace {

// Plays texts one after another on the same store and component.
class PlayerTest : public testing::Test {
 protected:
  // What it reported, without the name of the scenario.
  std::string play(const std::string& text) {
    std::istringstream in(text);
    const Scenario scenario = read_scenario(in, "t", ".");
    EXPECT_EQ(scenario.errors, std::vector<std::string>{});
    err_.str("");
    out_.str("");
    player_.play(scenario);
    return err_.str();
  }

  store::MemoryDatabase store_;
  RecordingDatabase database_{store_};
  MessageBoxes boxes_;
  bool init_fails_ = false;
  std::ostringstream out_, err_;
  Player player_{{database_, boxes_,
                  [this] {
                    if (init_fails_) throw store::DbError(store::kStoreFailure, "TABLES ne s'ouvre pas.");
                    return std::make_unique<SmallComponent>(database_, boxes_);
                  },
                  out_, err_}};
};

TEST_F(PlayerTest, WhatTheUserDoesIsReadBackFromTheControls) {
  EXPECT_EQ(play(R"(init
expect-form ControleVelanor
type Txt_Code a1b2
press Txt_Code 3
press Txt_Code 4
expect Txt_Code text 123
expect-focus Txt_Code
press Txt_Code Backspace
expect Txt_Code text 12
clear Txt_Code
expect Txt_Code text ""
leave
pick Cbo_Liste beta
expect Cbo_Liste text beta
expect Cbo_Liste index 1
expect Cbo_Liste items alpha|beta
expect Cbo_Liste count 2
pick Cbo_Liste #0
expect Cbo_Liste text alpha
pick Lst_Lignes deux
expect Lst_Lignes index 1
expect Lst_Lignes text deux
dblclick Lst_Lignes #0
expect Txt_Date text un
click Opt_CDI
expect Opt_CDI value yes
click Opt_CDD
expect Opt_CDI value no
scroll Bdv_Detail 4
expect Bdv_Detail value 4
expect Bdv_Detail max 5
expect Cmd_Gris enabled no
expect Txt_Deux visible yes
focus Txt_Deux
expect Ong_Pages page 1
tab 0
expect Ong_Pages page 0
expect Ong_Pages caption Un
rightclick
expect Mnu_Sommaire caption ouvert
click Mnu_Sommaire
expect Txt_Date text aide
shot nothing
)"),
            "");
  EXPECT_EQ(player_.tally().failed, 0);
}

TEST_F(PlayerTest, EachFailureSaysWhatWasExpectedAndWhatWasFound) {
  play("init\ntype Txt_Code 7\nclick Cmd_Avis\n");
  const std::pair<std::string_view, std::string> kCases[] = {
      {"expect Txt_Code text 007", R"(expected Txt_Code text "007", found "7")"},
      {"expect Txt_Code items 7",
       R"(expected Txt_Code items "7", found that this kind of control has no items)"},
      {"expect Txt_Rien text 7", R"(expected Txt_Rien text "7", found no control Txt_Rien on an open form)"},
      {"get Lst_Lignes caption",
       "expected to read Lst_Lignes.caption, found that this kind of control has no caption"},
      {"expect-focus Txt_Date", "expected the focus on Txt_Date, found it on Cmd_Avis"},
      {"expect-form Frm_Detail", "expected the topmost form Frm_Detail, found ControleVelanor"},
      {"expect-icon question",
       "expected the icon question on the message last expected, found that no message was expected"},
      {"expect-no-message", R"(expected no message, found "Attention.")"},
      {"expect-message Bravo", R"(expected the message "Bravo", found "Attention.")"},
      {"expect-message Bravo", R"(expected the message "Bravo", found none)"},
      {"expect-icon question", "expected the icon question on the message last expected, found exclamation"},
      {"expect-statement X", "expected the statement X, found none"},
      {"expect-record F 1 2 x", R"(expected F 1 2 "x", found no such record)"},
      {"click Cmd_Gris", "expected to carry out: click Cmd_Gris, found Cmd_Gris is disabled"},
      {"click Cmd_Rien", "expected to carry out: click Cmd_Rien, found no control Cmd_Rien on an open form"},
      {"type Cmd_Avis x", "expected to carry out: type Cmd_Avis x, found Cmd_Avis takes no text"},
      {"pick Txt_Code x", "expected to carry out: pick Txt_Code x, found Txt_Code has no lines"},
      {"pick Cbo_Liste gamma",
       "expected to carry out: pick Cbo_Liste gamma, found Cbo_Liste has no line \"gamma\""},
      {"pick Lst_Lignes #2", "expected to carry out: pick Lst_Lignes #2, found Lst_Lignes has no line 2"},
      {"dblclick Cbo_Liste #0",
       "expected to carry out: dblclick Cbo_Liste #0, found Cbo_Liste is no list box"},
      {"scroll Bdv_Detail 6",
       "expected to carry out: scroll Bdv_Detail 6, found Bdv_Detail goes from 0 to 5"},
      {"tab 2", "expected to carry out: tab 2, found there is no page 2"},
  };
  for (const auto& [line, failure] : kCases) {
    SCOPED_TRACE(line);
    EXPECT_EQ(play(std::string(line)), "t:1: " + failure + "\n");
  }
}

TEST_F(PlayerTest, AFailureDoesNotEndTheScenarioAndIsCounted) {
  EXPECT_EQ(play("put F 1 1 a\ninit\nexpect Txt_Code text 1\nget Txt_Code text\nexpect Txt_Code text \"\"\n"),
            "t:3: expected Txt_Code text \"1\", found \"\"\n");
  EXPECT_EQ(player_.tally().passed, 2);
  EXPECT_EQ(player_.tally().failed, 1);
  EXPECT_EQ(out_.str(), "Txt_Code.text = \n");
  EXPECT_EQ(exit_status(player_.tally()), 1);
}

TEST_F(PlayerTest, NothingCanBeDoneBeforeInit) {
  EXPECT_EQ(
      play("click Cmd_Avis\n"),
      "t:1: expected to carry out: click Cmd_Avis, found the component was not started: init comes first\n");
  EXPECT_EQ(play("expect-form none\nexpect-no-message\n"), "");
}

TEST_F(PlayerTest, AnInitThatFailsLeavesNoComponentAndTheScenarioGoesOn) {
  init_fails_ = true;
  EXPECT_EQ(play("init\nexpect-form none\n"),
            "t:1: expected to carry out: init, found the error: TABLES ne s'ouvre pas.\n");
  init_fails_ = false;
  EXPECT_EQ(play("init\nexpect-form ControleVelanor\n"), "");
}

TEST_F(PlayerTest, AnErrorOfTheStoreFailsItsActionAndTheComponentLivesOn) {
  EXPECT_EQ(play("init\ntype Txt_Code 1\nclick Cmd_Panne\ntype Txt_Code 2\nexpect Txt_Code text 12\n"),
            "t:3: expected to carry out: click Cmd_Panne, found the error: Le disque est plein.\n");
}

TEST_F(PlayerTest, QuestionsTakeTheQueuedAnswersInTurn) {
  EXPECT_EQ(play(R"(init
answer Oui Non
answer Annuler OK
click Cmd_Demande
expect Txt_Date text suite
click Cmd_Avis
click Cmd_Demande
expect Txt_Date text fin
click Cmd_Choix
click Cmd_Choix
expect Txt_Date text suite
expect-message "On continue ?"
expect-icon question
expect-message Attention.
expect-icon exclamation
expect-message "On continue ?"
expect-message "Deux lignes.\nOn garde ?"
expect-icon information
expect-message "Deux lignes.\nOn garde ?"
expect-no-message
)"),
            "");
}

TEST_F(PlayerTest, AQuestionWithoutItsAnswerFailsTheLineThatRaisedIt) {
  EXPECT_EQ(play("init\nclick Cmd_Demande\nexpect Txt_Date text fin\nexpect-message \"On continue ?\"\n"),
            "t:2: expected an answer in the queue, found none for the question \"On continue ?\"\n");
  EXPECT_EQ(play("answer OK Oui\nclick Cmd_Demande\nexpect Txt_Date text fin\nclick Cmd_Demande\n"),
            "t:2: expected an answer that the box offers, found OK for the question \"On continue ?\"\n");
}

TEST_F(PlayerTest, AStatementIsExpectedOnceAndWithItThoseBefore) {
  EXPECT_EQ(play(R"(init
click Cmd_Cherche
expect-statement "SSELECT SECTEUR PAR 1"
expect-statement "SSELECT SECTEUR PAR 1"
click Cmd_Cherche
click Cmd_Cherche
expect-statement "SSELECT SECTEUR PAR 1"
expect-statement "SSELECT SECTEUR PAR 1"
click Cmd_Cherche
expect-statement "SSELECT SECTEUR"
expect-statement "SSELECT SECTEUR PAR 1"
)"),
            "t:4: expected the statement SSELECT SECTEUR PAR 1, found none\n"
            "t:10: expected the statement SSELECT SECTEUR, found \"SSELECT SECTEUR PAR 1\"\n");
}

TEST_F(PlayerTest, ControlsOfTheTopmostFormComeFirst) {
  EXPECT_EQ(play(R"(init
type Txt_Code 1
click Cmd_Detail
expect-form Frm_Detail
type Txt_Code abc
expect Txt_Code text abc
expect Frm_Detail.Txt_Code text abc
expect ControleVelanor.Txt_Code text 1
expect Txt_Date text ""
expect-focus Txt_Code
click Cmd_OK
expect-form ControleVelanor
expect Txt_Date text fermé
expect Txt_Code text 1
)"),
            "");
  EXPECT_EQ(play("click Cmd_Detail\ntype Txt_Date x\nexpect-focus ControleVelanor.Cmd_Detail\n"
                 "click Frm_Detail.Txt_Date\nclose\nclick Cmd_Sortir\nexpect-form none\nclick Cmd_Avis\n"),
            "t:2: expected to carry out: type Txt_Date x, found Txt_Date stands behind the form Frm_Detail\n"
            "t:3: expected the focus on ControleVelanor.Cmd_Detail, found it nowhere\n"
            "t:4: expected to carry out: click Frm_Detail.Txt_Date, found no control Frm_Detail.Txt_Date on "
            "an open form\n"
            "t:8: expected to carry out: click Cmd_Avis, found Cmd_Avis is gone: the component was left\n");
}

TEST_F(PlayerTest, APickWhoseClickIsLostDoesNotLookForItsLine) {
  EXPECT_EQ(
      play("init\ntype Txt_Date non\npick Cbo_Liste beta\npick Lst_Lignes trois\nexpect-focus Txt_Date\n"
           "expect Cbo_Liste items \"\"\n"),
      "");
}

TEST_F(PlayerTest, ARecordIsWrittenReadAndPrintedByThePositionsOfItsElements) {
  EXPECT_EQ(play(R"(put F 1 1 un
put F 1 3,2 "trois deux"
put F 1 4,1,2 quatre
put F 1 5,1 cinq
put F 1 6,2,1 six
expect-record F 1 1 un
expect-record F 1 3,2 "trois deux"
expect-record F 1 4,1,2 quatre
expect-record F 1 9 ""
expect-absent F 2
record F 1
record F 2
remove F 1
expect-absent F 1
remove F 1
)"),
            "");
  EXPECT_EQ(out_.str(), "1 = un\n3,2 = trois deux\n4,1,2 = quatre\n5 = cinq\n6,2 = six\nabsent\n");
  EXPECT_EQ(
      play("put F 1 1,1,1 a\nput F 1 1,1,2 b\nput F 1 1,2 c\nexpect-record F 1 1 x\nexpect-absent F 1\n"),
      "t:4: expected F 1 1 \"x\", found \"a\\b|c\"\nt:5: expected no record 1 in F, found one\n");
}

TEST(Run, ASecondInitMakesItsComponentWhenTheFirstIsGone) {
  struct Counted : SmallComponent {
    Counted(store::Database& database, MessageBoxes& boxes, int& count)
        : SmallComponent(database, boxes), alive(++count) {}
    ~Counted() override { --alive; }
    int& alive;
  };
  store::MemoryDatabase store;
  RecordingDatabase database(store);
  MessageBoxes boxes;
  std::ostringstream out, err;
  int alive = 0;
  const auto make = [&] {
    EXPECT_EQ(alive, 0);
    return std::make_unique<Counted>(database, boxes, alive);
  };
  std::istringstream in("init\ninit\n");
  EXPECT_EQ(run(read_scenario(in, "t", "."), {database, boxes, make, out, err}), 0);
  EXPECT_EQ(alive, 0);
}

TEST(Run, ALineNotOfTheLanguageKeepsTheWholeScenarioFromBeingPlayed) {
  store::MemoryDatabase store;
  RecordingDatabase database(store);
  MessageBoxes boxes;
  std::ostringstream out, err;
  const std::pair<std::string, std::pair<int, std::string>> kCases[] = {
      {"put F 1 1 a\nexpect-record F 1 1 a\n", {0, "1 passed, 0 failed\n"}},
      {"expect-absent F 1\nexpect-form none\n", {1, "1 passed, 1 failed\n"}},
      {"remove F 1\nexpect-absent\n", {2, "0 passed, 0 failed\n"}},
      {"expect-record F 1 1 a\n", {0, "1 passed, 0 failed\n"}},
  };
  for (const auto& [text, ending] : kCases) {
    SCOPED_TRACE(text);
    out.str("");
    std::istringstream in(text);
    const int status = run(read_scenario(in, "t", "."), {database, boxes, nullptr, out, err});
    EXPECT_EQ(std::pair(status, out.str()), ending);
  }
}

}  // namespace
}  // namespace velanor::play
