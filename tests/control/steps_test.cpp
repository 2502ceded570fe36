// Taking back what was confirmed on the open card, and doing it again.
#include <gtest/gtest.h>

#include "control/user_acts.h"
#include "support/failing_database.h"

namespace velanor::test {
namespace {

using user::Acts, user::after;
using user::choose, user::click, user::edit, user::focus, user::page, user::pick, user::type;

class Steps : public testing::Test {
 protected:
  Steps() {
    load(memory_, "lib/cards.play");
    office_.component.init();
    act({type("Txt_Asso", "001"), type("Txt_Aidant", "00010")});
  }
  void act(const Acts& acts) {
    for (const user::Act& step : acts) step(office_);
  }
  std::string back() const { return component_.undo_name(); }
  std::string forth() const { return component_.redo_name(); }

  store::MemoryDatabase memory_;
  store::FailingDatabase failing_{memory_};
  Office office_{failing_};
  ControleVelanor& component_ = office_.component;
  card::CardScreen& ui_ = office_.ui;
};

TEST_F(Steps, AreNamedInTheWordsOfTheScreenAndLeadToWhatTheyChanged) {
  const struct {
    Acts acts;
    std::string name;
    const screen::Control* place;
  } cases[] = {
      {{type("Txt_NomAidant", "ROUX"), focus("Txt_Secteur")},
       "Nom (MARTIN JEANNE → ROUX)",
       &ui_.Txt_NomAidant},
      {{click("Opt_CDD")}, "Type de contrat (CDI → CDD)", &ui_.Opt_CDI},
      {{type("Txt_HresExo", "50"), focus("Txt_Profil1")},
       "Heures exonérées (100,00 → 50,00)",
       &ui_.Txt_HresExo},
      {{edit("Lst_Activites", 1), type("Txt_Pourc", "20"), click("Cmd_OkAct")},
       "activité « ",
       &ui_.Lst_Activites},
      {{page(1), click("Cmd_AjDetail"), type("Txt_DatEffet", "15/11/2026"), choose("Cbo_Qualif", 0),
        type("Txt_DatDepGrille", ""), type("Txt_TxHor", "13"), click("Cmd_OkDetail")},
       "ligne du 15/11/2026 ajoutée",
       &ui_.Lst_DatEffet},
      {{page(1), pick("Lst_DatEffet", 1), click("Cmd_SuppDetail")},
       "ligne du 01/01/2026 supprimée",
       &ui_.Lst_DatEffet},
      {{page(1), edit("Lst_DatEffet", 1), type("Txt_DatEffet", "01/02/2026"), click("Cmd_OkDetail")},
       "ligne du 01/01/2026 modifiée",
       &ui_.Lst_DatEffet},
      {{page(1), pick("Lst_DatEffet", 1), click("Cmd_Detail"), edit("Lst_Code", 0), click("Cmd_Supprimer"),
        click("Cmd_Retour")},
       "rubriques de la ligne du 01/01/2026 modifiées",
       &ui_.Lst_DatEffet},
  };
  for (const auto& [acts, name, place] : cases) {
    const std::string before = component_.card_as_entered().encoded();
    act(acts);
    SCOPED_TRACE(back());
    EXPECT_EQ(back().rfind(name, 0), 0U) << name;
    const std::string after = component_.card_as_entered().encoded();
    EXPECT_NE(after, before);
    const std::string done = back();
    ASSERT_TRUE(component_.undo());
    EXPECT_EQ(component_.card_as_entered().encoded(), before);
    EXPECT_FALSE(component_.modified());
    EXPECT_EQ(ui_.focus(), place);
    EXPECT_EQ(back(), "");
    EXPECT_EQ(forth(), done);
    ASSERT_TRUE(component_.redo());
    EXPECT_EQ(component_.card_as_entered().encoded(), after);
    EXPECT_EQ(forth(), "");
    ASSERT_TRUE(component_.undo());
  }
}

TEST_F(Steps, AreOnesOfTheScreenAsItThenCanBeUsed) {
  act({page(1), type("Txt_DatFin", "30/09/2026"), focus("Txt_Profil1")});
  ASSERT_TRUE(ui_.Cbo_MotifFin.enabled());
  ASSERT_TRUE(component_.undo());
  EXPECT_TRUE(ui_.Txt_DatFin.is_empty());
  EXPECT_FALSE(ui_.Cbo_MotifFin.enabled());
  ASSERT_TRUE(component_.redo());
  EXPECT_TRUE(ui_.Cbo_MotifFin.enabled());
  // Two more, the last of which is taken back: what comes then takes its place.
  act({type("Txt_Profil1", "002"), focus("Txt_Profil2"), type("Txt_HresExo", "40"), focus("Txt_Profil1")});
  ASSERT_TRUE(component_.undo());
  act({type("Txt_HresExo", "60"), focus("Txt_Profil1")});
  EXPECT_EQ(forth(), "");
  while (component_.undo()) continue;
  act({click("Cmd_OK")});
  EXPECT_EQ(component_.state(), control::State::kNone);
  EXPECT_EQ(back(), "") << "steps end with the card";
}

TEST_F(Steps, RestWhileSomethingIsEnteredAndWhereNothingCanBeChanged) {
  act({click("Opt_CDD")});
  const std::string step = back();
  const auto none = [&](const char* where) {
    EXPECT_EQ(back() + forth(), "") << where;
    EXPECT_FALSE(component_.undo()) << where;
    EXPECT_TRUE(ui_.Opt_CDD.value());
  };
  act({edit("Lst_Activites", 0)});
  none("an activity");
  act({click("Cmd_AnnulAct"), page(1), edit("Lst_DatEffet", 0)});
  none("an amendment");
  act({click("Cmd_AnnulDetail"), pick("Lst_DatEffet", 0), click("Cmd_Detail")});
  none("the items");
  act({click("Cmd_Retour")});
  EXPECT_EQ(back(), step);
  ASSERT_TRUE(component_.undo());
  ASSERT_TRUE(component_.open("001", "2025", "00010").is_open());
  EXPECT_FALSE(component_.undo());
  office_.toolkit.answer = [&](const screen::Message&) {
    EXPECT_FALSE(component_.undo()) << "a message waits";
    return screen::Answer::Yes;
  };
  ASSERT_TRUE(component_.open("001", "2026", "00010").is_open());
  act({click("Opt_CDD"), click("Cmd_Annul")});
}

TEST_F(Steps, JudgeFirstWhatHasJustBeenTyped) {
  act({click("Opt_CDD"), page(1), type("Txt_HresExo", "7")});
  EXPECT_EQ(back(), "Heures exonérées (100,00 → 7,00)");
  ASSERT_TRUE(component_.undo());
  EXPECT_EQ(ui_.Txt_HresExo.text(), "100,00");
  EXPECT_TRUE(ui_.Opt_CDD.value());
  ASSERT_TRUE(component_.redo());
  EXPECT_EQ(ui_.Txt_HresExo.text(), "7,00");
  // What cannot stand is told as by a click elsewhere, and nothing is taken back over it.
  act({type("Txt_DatFin", "31/02/2026")});
  EXPECT_FALSE(component_.undo());
  EXPECT_EQ(office_.toolkit.messages.size(), 1U);
  EXPECT_EQ(ui_.focus(), &ui_.Txt_DatFin);
  act({type("Txt_DatFin", "")});
  // Half a label goes when it is left; that is what is taken back.
  act({page(0), type("Cbo_Secteur", "zzz")});
  office_.hand.leave().why();
  EXPECT_EQ(ui_.Cbo_Secteur.text(), "zzz") << "told, and kept";
  EXPECT_TRUE(component_.undo());
  EXPECT_NE(ui_.Cbo_Secteur.text(), "zzz");
  EXPECT_EQ(ui_.Txt_HresExo.text(), "7,00");
}

TEST_F(Steps, StayAsTheyAreWhereTheStoreFails) {
  act({page(1), pick("Lst_DatEffet", 1), click("Cmd_SuppDetail"), page(0), click("Opt_CDD")});
  const std::string before = component_.card_as_entered().encoded();
  ASSERT_TRUE(component_.undo());
  for (int n = 1; n < 40; ++n) {
    SCOPED_TRACE(n);
    failing_.fail_at(n);
    const int failures = failing_.failures();
    try {
      component_.undo();
    } catch (const store::DbError&) {
    }
    failing_.fail_at(0);
    // The lines that are shown are those of the card, whichever step it stands at.
    ASSERT_EQ(ui_.Lst_DatEffet.count(), static_cast<int>(component_.card_in_hand().Count(12)));
    ASSERT_EQ(back().empty(), !component_.modified());
    if (back().empty()) component_.redo();
    if (failing_.failures() == failures) break;
  }
  component_.redo();
  EXPECT_EQ(component_.card_as_entered().encoded(), before);
}

}  // namespace
}  // namespace velanor::test
