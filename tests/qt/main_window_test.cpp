// The whole window: that every control of every form stands on it, and that it asks before it goes.
#include "app/velanor/main_window.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QTimer>
#include <set>

#include "qt/message_sheet.h"
#include "support/office.h"

namespace velanor::app {
namespace {

using Names = std::set<std::string>;

class MainWindowTest : public testing::Test {
 protected:
  MainWindowTest() {
    test::load(database_, "lib/cards.play");
    // The hours are asked for an amendment without items.
    store::DbRecord card = *database_.find("VELANORO", "000100012026");
    for (int attribute = 30; attribute <= 33; ++attribute) card.set(attribute, 1, "");
    database_.put("VELANORO", "000100012026", card);
    QObject::connect(&window_, &MainWindow::closed, &window_, [this] { ++times_closed_; });
    window_.show();
    window_.start();
  }

  screen::Screen& screen() { return window_.component().screen(); }
  template <typename Control>
  Control& control(const char* name) {
    return dynamic_cast<Control&>(*screen().top().find(name));
  }
  void open_card() {
    screen::Hand hand(screen());
    EXPECT_EQ(hand.type(control<screen::TextBox>("Txt_Asso"), "001"), "");
    EXPECT_EQ(hand.type(control<screen::TextBox>("Txt_Aidant"), "00010"), "");
    ASSERT_FALSE(control<screen::CommandButton>("Cmd_Sortir").enabled());
  }
  void open_items_of_first_amendment() {
    open_card();
    EXPECT_EQ(screen::Hand(screen()).pick(control<screen::ListBox>("Lst_DatEffet"), 0), "");
    click("Cmd_Detail");
    ASSERT_EQ(screen().top().name(), "Frm_RubSaisie");
  }
  void click(const char* name) {
    EXPECT_EQ(screen::Hand(screen()).click(control<screen::CommandButton>(name)), "");
  }
  // Controls of the topmost form that no widget shows.
  Names without_widget() {
    Names names;
    for (const screen::Control* shown : screen().top().controls()) {
      if (!window_.component().widget_of(*shown)) names.insert(shown->name());
    }
    return names;
  }
  // Closes the window and answers what it asks; how many questions came.
  int close(screen::Answer answer) {
    int questions = 0;
    const auto answering =
        QObject::connect(&window_.component(), &qt::ControleVelanorWidget::message_opened, &window_, [&] {
          ++questions;
          QTimer::singleShot(0, &window_, [&] { emit window_.component().open_message()->answered(answer); });
        });
    window_.close();
    QCoreApplication::processEvents();
    QObject::disconnect(answering);
    return questions;
  }

  store::MemoryDatabase database_;
  MainWindow window_{database_};
  int times_closed_ = 0;
};

// A control that a page has forgotten cannot be seen, and nothing else says so. The headings of a table
// are its own, and the menu is made when it pops up.
TEST_F(MainWindowTest, ShowsEveryControlOfEveryForm) {
  const Names menus{"Mnu_Aide", "Mnu_Sommaire"};
  const Names headings{"Etq_DatEffet",  "Etq_DatDepGrille", "Etq_Qualif", "Etq_Grille",
                       "Etq_Categorie", "Etq_NouvMes",      "Etq_TxHor",  "Etq_DureMens"};
  Names expected = headings;
  expected.insert(menus.begin(), menus.end());
  EXPECT_EQ(without_widget(), expected);
  open_items_of_first_amendment();
  EXPECT_EQ(without_widget(), (Names{"Etq_Code", "Etq_LibRub", "Etq_Base", "Etq_Taux", "Etq_Montant"}));
  click("Cmd_SaisieAuto");
  ASSERT_EQ(screen().top().name(), "Frm_SaisieHres");
  EXPECT_EQ(without_widget(), Names());
}

TEST_F(MainWindowTest, ClosesAtOnceWhenNoCardIsOpen) {
  EXPECT_EQ(close(screen::Answer::No), 0);
  EXPECT_EQ(times_closed_, 1);
  EXPECT_FALSE(window_.isVisible());
}

TEST_F(MainWindowTest, AsksBeforeItClosesOnAnOpenCard) {
  open_card();
  EXPECT_EQ(close(screen::Answer::No), 1);
  EXPECT_EQ(times_closed_, 0);
  EXPECT_TRUE(window_.isVisible());
  EXPECT_FALSE(control<screen::CommandButton>("Cmd_Sortir").enabled()) << "the card was given up";
  EXPECT_EQ(close(screen::Answer::Yes), 1);
  EXPECT_EQ(times_closed_, 1);
  EXPECT_FALSE(window_.isVisible());
}

TEST_F(MainWindowTest, AsksBeforeItClosesOnAForm) {
  open_items_of_first_amendment();
  EXPECT_EQ(close(screen::Answer::No), 1);
  EXPECT_EQ(times_closed_, 0);
  EXPECT_EQ(screen().top().name(), "Frm_RubSaisie");
}

}  // namespace
}  // namespace velanor::app

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
