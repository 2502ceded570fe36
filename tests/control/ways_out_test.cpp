// Whichever call of the store fails, whatever the user was doing: the screen is in a state that a
// clerk knows, and can be left.
#include <gtest/gtest.h>

#include "control/user_acts.h"
#include "support/failing_database.h"

namespace velanor::test {
namespace {

using user::Acts, user::after;
using user::choose, user::click, user::edit, user::page, user::pick, user::type;

struct Story {
  const char* name;
  Acts before;
  user::Act act;
};

std::vector<Story> stories() {
  const Acts entity{type("Txt_Asso", "001")};
  const Acts open = after(entity, {type("Txt_Aidant", "00010"), page(1)});
  const Acts adding = after(open, {click("Cmd_AjDetail")});
  const Acts items = after(open, {pick("Lst_DatEffet", 1), click("Cmd_Detail")});
  return {
      {"choosing an entity", {}, type("Txt_Asso", "001")},
      {"choosing another year", entity, choose("Cbo_Periode", 1)},
      {"choosing an employee", entity, choose("Cbo_Aidant", 1)},
      {"reading a closed year", after(entity, {choose("Cbo_Periode", 1)}), choose("Cbo_Aidant", 0)},
      {"a new card", entity, click("Cmd_Ajout")},
      {"a new amendment", open, click("Cmd_AjDetail")},
      {"its date", adding, type("Txt_DatEffet", "01/02/2026")},
      {"its grid", after(adding, {type("Txt_DatEffet", "01/02/2026")}), choose("Cbo_Grille", 0)},
      {"its qualifications", adding, choose("Cbo_Qualif", 0)},
      {"its grid taken away", after(open, {edit("Lst_DatEffet", 0)}), type("Cbo_Grille", "")},
      {"it is abandoned", after(open, {edit("Lst_DatEffet", 0)}), click("Cmd_AnnulDetail")},
      {"an amendment edited", open, edit("Lst_DatEffet", 0)},
      {"an amendment confirmed", after(open, {edit("Lst_DatEffet", 0)}), click("Cmd_OkDetail")},
      {"an amendment removed", after(open, {edit("Lst_DatEffet", 0)}), click("Cmd_SuppDetail")},
      {"its items", after(open, {pick("Lst_DatEffet", 0)}), click("Cmd_Detail")},
      {"items filled from a template",
       after(open, {[](Office& office) {
                      auto& ui = office.ui;
                      EXPECT_EQ(office.hand.double_click(ui.Lst_DatEffet, 0), "");
                      EXPECT_EQ(office.hand.replace_text(ui.Txt_DatEffet, "01/03/2026"), "");
                      EXPECT_EQ(office.hand.click(ui.Cmd_OkDetail), "");
                      EXPECT_EQ(office.hand.click(ui.Cmd_Detail), "");
                      while (office.ui.Lst_DatEffet.count() > 0 && office.control("Lst_Code").enabled()) {
                        auto& codes = dynamic_cast<screen::ListBox&>(office.control("Lst_Code"));
                        if (codes.count() == 0) break;
                        EXPECT_EQ(office.hand.double_click(codes, 0), "");
                        EXPECT_EQ(office.hand.click(office.control("Cmd_Supprimer")), "");
                      }
                    },
                    click("Cmd_SaisieAuto"), type("Txt_NbHresTrav", "100")}),
       click("Cmd_OK")},
      {"items left", after(items, {edit("Lst_Code", 0), type("Txt_Base", "200"), click("Cmd_OK")}),
       click("Cmd_Retour")},
      {"saving", open, click("Cmd_OK")},
      {"deleting", open, click("Cmd_Supp")},
      {"duplicating", open, click("Cmd_Copier")},
      {"duplicating after a deletion", after(open, {click("Cmd_Supp")}), click("Cmd_Copier")},
      {"giving up", open, click("Cmd_Annul")},
  };
}

// Presses "Annuler" (and in a form that is left by it, "Retour") until nothing is open, then "Sortir".
void leave(Office& office) {
  for (int presses = 0; presses < 8 && !office.ui.Cmd_Sortir.enabled(); ++presses) {
    if (office.hand.cancel().empty()) continue;
    EXPECT_EQ(office.hand.click(office.control("Cmd_Retour")), "");
  }
  EXPECT_EQ(office.hand.click(office.ui.Cmd_Sortir), "");
  EXPECT_TRUE(office.component.closed());
}

// What a card of entity 001 in its latest year looks like when nothing was done to it.
void browses(Office& office) {
  card::CardScreen& ui = office.ui;
  EXPECT_TRUE(ui.Txt_Asso.enabled());
  EXPECT_EQ(ui.Txt_Aidant.text(), "");
  EXPECT_EQ(ui.Txt_ConvCol.text() + ui.Txt_DatDeb.text() + ui.Txt_NomAidant.text(), "");
  EXPECT_EQ(ui.Lst_DatEffet.count() + ui.Lst_Activites.count(), 0);
  EXPECT_FALSE(ui.Cmd_OK.enabled() || ui.Cmd_Annul.enabled());
  EXPECT_TRUE(ui.Cbo_Aidant.visible());
}

TEST(WaysOut, AFailureAtAnyCallLeavesAStateThatCanBeLeft) {
  for (const Story& story : stories()) {
    bool finished = false;
    for (int n = 1; !finished; ++n) {
      SCOPED_TRACE(std::string(story.name) + ", call " + std::to_string(n));
      ASSERT_LT(n, 200);
      store::MemoryDatabase memory;
      load(memory, "lib/cards.play");
      store::FailingDatabase failing(memory);
      Office office(failing);
      office.component.init();
      for (const user::Act& step : story.before) step(office);
      ASSERT_EQ(failing.failures(), 0);
      failing.fail_at(n);
      try {
        story.act(office);
        finished = failing.failures() == 0;
      } catch (const store::DbError& error) {
        EXPECT_TRUE(std::string(error.what()).ends_with(store::kPlannedFailure)) << error.what();
      }
      failing.fail_at(0);
      EXPECT_EQ(office.toolkit.hourglasses, 0);
      const bool entering = office.ui.Cmd_OkDetail.enabled();
      EXPECT_EQ(office.ui.Txt_DatEffet.enabled(), entering) << "an entry half open";
      EXPECT_EQ(office.ui.Lst_DatEffet.enabled() && entering, false);
      if (office.ui.Cmd_Sortir.enabled() && office.component.screen().top().name() == "ControleVelanor")
        browses(office);
      leave(office);
    }
  }
}

}  // namespace
}  // namespace velanor::test
