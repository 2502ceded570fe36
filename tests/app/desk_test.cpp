// One window of the program: what it tells of the card, and how it closes.
#include <QApplication>
#include <QMenuBar>

#include "app/clerk.h"
#include "app/velanorctl/open_store.h"
#include "demo/demo.h"
#include "velanor/memory_database.h"

namespace velanor::app {
namespace {

using screen::Answer;

const std::string kEnd = " – Démonstration – Fiches du personnel";
const std::string kLossQuestion =
    "Une fiche est ouverte : ce qui n'est pas enregistré sera perdu.\r\nQuitter quand même ?";

class OneWindow : public testing::Test {
 protected:
  OneWindow() {
    StoreSink sink([&](auto file, auto id, const auto& record) { database_.put(file, id, record); });
    demo::fill(sink);
    window_.set_source({});
    window_.show();
    window_.activateWindow();
    QCoreApplication::processEvents();
    window_.start();
  }
  bool closed() const { return !window_.isVisible(); }

  store::MemoryDatabase database_;
  MainWindow window_{database_};
  Clerk clerk_{window_};
};

TEST_F(OneWindow, TitleNamesTheEmployeeOfTheCardThatIsOpen) {
  EXPECT_EQ(clerk_.title(), "Démonstration – Fiches du personnel");
  clerk_.open_card("00001");
  EXPECT_EQ(clerk_.title(), "00001 HUET FABIENNE" + kEnd);
  clerk_.answer_next(Answer::Yes);
  clerk_.click("Cmd_Annul");
  EXPECT_EQ(clerk_.title(), "Démonstration – Fiches du personnel");
  clerk_.click("Cmd_Ajout");
  EXPECT_EQ(clerk_.title(), "Nouvelle fiche" + kEnd);
  clerk_.put("Txt_NomAidant", "Durand Zoé");
  EXPECT_EQ(clerk_.title(), "Durand Zoé*" + kEnd);
}

TEST_F(OneWindow, TitleMarksAChangeAndNoLongerWhenItIsTakenBack) {
  clerk_.open_card("00001");
  const QString hours = clerk_.widget<QLineEdit>("Txt_HorMensEtab").text();
  clerk_.put("Txt_HorMensEtab", "99");
  EXPECT_EQ(clerk_.title(), "00001 HUET FABIENNE*" + kEnd);
  clerk_.put("Txt_HorMensEtab", hours);
  EXPECT_EQ(clerk_.title(), "00001 HUET FABIENNE" + kEnd);
  const bool fixed_term = clerk_.widget<QAbstractButton>("Opt_CDD").isChecked();
  clerk_.click(fixed_term ? "Opt_CDI" : "Opt_CDD");
  EXPECT_TRUE(window_.isWindowModified());
  clerk_.click(fixed_term ? "Opt_CDD" : "Opt_CDI");
  EXPECT_FALSE(window_.isWindowModified());
}

TEST_F(OneWindow, ALineThatIsOnlyLookedAtIsNoChangeAndOneThatIsEnteredIs) {
  clerk_.open_card("00001");
  clerk_.click("Cmd_AjAct");
  EXPECT_FALSE(window_.isWindowModified());
  clerk_.put("Txt_Pourc", "10");
  EXPECT_TRUE(window_.isWindowModified());
  clerk_.click("Cmd_AnnulAct");
  EXPECT_FALSE(window_.isWindowModified());
}

TEST_F(OneWindow, StatusBarTellsWhatWasSavedCopiedAndDeleted) {
  clerk_.open_card("00001");
  clerk_.answer_next(Answer::Ok);
  clerk_.click("Cmd_Copier");
  EXPECT_EQ(clerk_.status(), "Fiche 00001 HUET FABIENNE copiée sur le code 99999");
  clerk_.put("Txt_HorMensEtab", "99");
  clerk_.click("Cmd_OK");
  EXPECT_EQ(clerk_.status(), "Fiche 00001 HUET FABIENNE enregistrée");
  EXPECT_FALSE(window_.isWindowModified());
  clerk_.type("Txt_Aidant", "99999");
  EXPECT_EQ(clerk_.status(), "");
  clerk_.answer_next(Answer::Yes);
  clerk_.click("Cmd_Supp");
  EXPECT_EQ(clerk_.status(), "Fiche 99999 99999 supprimée");
}

TEST_F(OneWindow, ACopyOfWhatWasJustDeletedIsToldAsACopy) {
  clerk_.open_card("00001");
  clerk_.answer_next(Answer::Yes);
  clerk_.click("Cmd_Supp");
  clerk_.answer_next(Answer::Ok);
  clerk_.click("Cmd_Copier");
  EXPECT_EQ(clerk_.status(), "Fiche 00001 HUET FABIENNE copiée sur le code 99999");
}

TEST_F(OneWindow, ClosesAtOnceWhenNoCardIsOpen) {
  window_.close();
  EXPECT_TRUE(closed());
}

TEST_F(OneWindow, AsksBeforeItTakesAnOpenCardWithItAndEnterStays) {
  clerk_.open_card("00001");
  clerk_.at_next_message([&](qt::MessageSheet& sheet) {
    clerk_.said.push_back(sheet.message().text);
    EXPECT_EQ(sheet.message().preset, Answer::No);
    sheet.button(Answer::No)->click();
  });
  window_.close();
  window_.close();
  settle();
  EXPECT_FALSE(closed());
  clerk_.answer_next(Answer::Yes);
  window_.close();
  settle();
  EXPECT_TRUE(closed());
  EXPECT_EQ(clerk_.said, std::vector<std::string>(2, kLossQuestion));
}

TEST_F(OneWindow, ClosingWhileAMessageWaitsAnswersItNoAndGoesOnWithTheQuestion) {
  clerk_.open_card("00001");
  clerk_.at_next_message([&](qt::MessageSheet&) {
    clerk_.answer_next(Answer::Yes);
    window_.close();
  });
  clerk_.click("Cmd_Supp");
  EXPECT_TRUE(until([&] { return closed(); }));
  EXPECT_EQ(clerk_.said, std::vector{kLossQuestion});
  EXPECT_TRUE(database_.OpenFile("VELANORO")->find("000010012026")) << "the card was deleted";
}

TEST_F(OneWindow, ClosingWhileItAsksWhetherToLeaveLeavesTheQuestionStanding) {
  clerk_.open_card("00001");
  clerk_.at_next_message([&](qt::MessageSheet& sheet) {
    window_.close();
    EXPECT_TRUE(sheet.isVisible());
    sheet.button(Answer::No)->click();
  });
  EXPECT_FALSE(window_.may_leave(MainWindow::Leaving::kQuitting));
  settle();
  EXPECT_FALSE(closed());
  EXPECT_EQ(window_.component().open_message(), nullptr);
}

TEST_F(OneWindow, ClosesWithTheFormOfTheItemsOpen) {
  auto* window = new MainWindow(database_);
  window->show();
  window->start();
  Clerk clerk(*window);
  clerk.open_card("00001");
  auto& amendments = static_cast<screen::ListBox&>(*window->component().screen().base().find("Lst_DatEffet"));
  ASSERT_GT(amendments.count(), 0);
  amendments.set_index(0);
  clerk.click("Cmd_Detail");
  ASSERT_NE(window->component().open_sheet(), nullptr);
  clerk.answer_next(Answer::Yes);
  window->close();
  settle();
  EXPECT_EQ(clerk.said, std::vector{kLossQuestion});
  EXPECT_FALSE(window->isVisible());
  delete window;
}

}  // namespace
}  // namespace velanor::app
