// What helps while a card is entered, beside what its controls hold and say.
#include <gtest/gtest.h>

#include "control/user_acts.h"

namespace velanor::test {
namespace {

using user::Acts;
using user::choose, user::click, user::edit, user::focus, user::page, user::pick, user::type;

class EntryAids : public testing::Test {
 protected:
  EntryAids() {
    load(memory_, "lib/cards.play");
    office_.component.init();
    act({type("Txt_Asso", "001"), type("Txt_Aidant", "00010")});
  }
  void act(const Acts& acts) {
    for (const user::Act& step : acts) step(office_);
  }
  std::string share(int line) const { return std::string(component_.card_in_hand()(11, line)); }

  store::MemoryDatabase memory_;
  Office office_{memory_};
  ControleVelanor& component_ = office_.component;
  card::CardScreen& ui_ = office_.ui;
};

TEST_F(EntryAids, TheRemainderOfTheSplitIsInSightAndOneActPutsItOnTheCurrentLine) {
  EXPECT_EQ(component_.split_told(), "Tout est réparti");
  EXPECT_EQ(component_.put_remainder(), "Choisissez d'abord une activité de la liste.");
  act({pick("Lst_Activites", 0)});
  EXPECT_EQ(component_.put_remainder(), "Il ne reste rien à répartir.") << "it has what remains";
  act({edit("Lst_Activites", 0), type("Txt_Pourc", "20")});
  EXPECT_EQ(component_.split_told(), "Reste à répartir : 66,67 %") << "for the line under entry";
  act({click("Cmd_OkAct")});
  EXPECT_EQ(component_.split_told(), "Reste à répartir : 46,67 %");
  act({edit("Lst_Activites", 1)});
  ASSERT_EQ(component_.put_remainder(), "");
  EXPECT_EQ(ui_.Txt_Pourc.text(), "80,00") << "proposed, and not confirmed";
  EXPECT_EQ(share(2), "3333");
  act({click("Cmd_AnnulAct"), pick("Lst_Activites", 0)});
  ASSERT_EQ(component_.put_remainder(), "");
  EXPECT_EQ(share(1), "6667");
  EXPECT_EQ(ui_.Lst_Activites.index(), 0);
  EXPECT_EQ(component_.split_told(), "Tout est réparti");
  ASSERT_TRUE(component_.undo());
  EXPECT_EQ(share(1), "2000") << "it is a step as any other";
  // A new line takes what remains before its activity is chosen.
  act({click("Cmd_AjAct")});
  ASSERT_EQ(component_.put_remainder(), "");
  EXPECT_EQ(ui_.Txt_Pourc.text(), "46,67");
  EXPECT_EQ(ui_.focus(), &ui_.Cbo_Activites);
  act({click("Cmd_AnnulAct"), edit("Lst_Activites", 0), type("Txt_Pourc", "90"), click("Cmd_OkAct")});
  EXPECT_EQ(component_.split_told(), "Réparti en trop : 23,33 %");
}

TEST_F(EntryAids, ItemsAreRepeatedOnAnAmendmentThatHasNone) {
  const auto items = [&](int line) { return std::string(component_.card_in_hand()(30, line)); };
  act({page(1)});
  EXPECT_EQ(component_.repeat_items(), "Choisissez d'abord un avenant.");
  act({pick("Lst_DatEffet", 1)});
  EXPECT_EQ(component_.repeat_items(), "Cet avenant a déjà des rubriques.");
  act({click("Cmd_AjDetail"), type("Txt_DatEffet", "15/11/2026"), choose("Cbo_Qualif", 0),
       type("Txt_DatDepGrille", ""), type("Txt_TxHor", "13")});
  EXPECT_EQ(component_.repeat_items(), "Terminez d'abord la saisie en cours.");
  act({click("Cmd_OkDetail")});
  ASSERT_EQ(ui_.Lst_DatEffet.index(), 2);
  ASSERT_EQ(component_.repeat_items(), "");
  EXPECT_EQ(items(3), items(2));
  EXPECT_EQ(component_.card_in_hand()(31, 3), "15167");
  EXPECT_EQ(ui_.Lst_DureMens.line(2), "151,67") << "of production staff they make the time";
  EXPECT_EQ(component_.undo_name(), "rubriques de la ligne du 15/11/2026 modifiées");
  ASSERT_TRUE(component_.undo());
  EXPECT_EQ(items(3), "");
  // The hours of the items on the screen, as they are confirmed.
  EXPECT_EQ(component_.hours_told(), "");
  act({pick("Lst_DatEffet", 1), click("Cmd_Detail")});
  EXPECT_EQ(component_.hours_told(), "Total des heures : 151,67");
  act({edit("Lst_Code", 0), type("Txt_Base", "100")});
  EXPECT_EQ(component_.hours_told(), "Total des heures : 151,67");
  act({click("Cmd_OK")});
  EXPECT_EQ(component_.hours_told(), "Total des heures : 100,00");
  EXPECT_EQ(component_.put_remainder(), "Terminez d'abord la saisie en cours.");
  act({click("Cmd_Retour")});
  EXPECT_EQ(component_.hours_told(), "");
}

TEST_F(EntryAids, NothingIsEnteredOnACardThatIsRead) {
  ASSERT_TRUE(component_.open("001", "2025", "00010").is_open());
  EXPECT_EQ(component_.put_remainder(), "Cette fiche se consulte seulement.");
  EXPECT_EQ(component_.repeat_items(), "Cette fiche se consulte seulement.");
  act({click("Cmd_Annul")});
  EXPECT_EQ(component_.put_remainder(), "Ouvrez d'abord une fiche.");
  EXPECT_EQ(component_.split_told(), "");
}

TEST_F(EntryAids, TheFieldInHandIsThatOfItsControlAndLine) {
  const struct {
    Acts acts;
    int attribute;
    std::string line;
  } cases[] = {
      {{focus("Txt_NomAidant")}, 1, ""},
      {{focus("Cbo_Secteur")}, 4, ""},
      {{focus("Cbo_NatureContrat")}, 44, ""},
      {{focus("Opt_CDI")}, 6, ""},
      {{pick("Lst_Activites", 1)}, 11, "001020"},
      {{edit("Lst_Activites", 0), focus("Txt_Pourc")}, 11, "001010"},
      {{click("Cmd_AnnulAct"), page(1), pick("Lst_TxHor", 1)}, 17, "21186"},
      {{edit("Lst_DatEffet", 0), focus("Txt_TxHor")}, 17, "20455"},
      {{click("Cmd_AnnulDetail"), focus("Cbo_Profil1")}, 19, ""},
      {{click("Cmd_AjDetail")}, 0, ""},
      {{click("Cmd_AnnulDetail"), pick("Lst_DatEffet", 0), click("Cmd_Detail")}, 0, ""},
  };
  for (const auto& [acts, attribute, line] : cases) {
    SCOPED_TRACE(attribute);
    act(acts);
    const auto place = component_.field_in_hand();
    EXPECT_EQ(place ? place->attribute : 0, attribute);
    EXPECT_EQ(place ? place->line : "", line);
  }
}

}  // namespace
}  // namespace velanor::test
