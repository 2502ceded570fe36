// The year of the open card under it, and the calculator beside it.
#include <QApplication>
#include <QClipboard>
#include <QTableWidget>

#include "app/clerk.h"
#include "app/velanor/year_dock.h"
#include "app/velanorctl/open_store.h"
#include "demo/demo.h"
#include "velanor/hand.h"
#include "velanor/memory_database.h"

namespace velanor::app {
namespace {

class YearUnderTheCard : public testing::Test {
 protected:
  YearUnderTheCard() {
    StoreSink sink([&](auto file, auto id, const auto& record) { database_.put(file, id, record); });
    demo::fill(sink);
    window_.show();
    window_.activateWindow();
    QCoreApplication::processEvents();
    window_.start();
  }
  YearDock& dock() { return *window_.findChild<YearDock*>(); }
  QTableWidget& table() { return *window_.findChild<QTableWidget*>("year_table"); }
  std::string cell(int line, int column) {
    settle();
    return table().item(line, column) ? table().item(line, column)->text().toStdString() : "nothing";
  }
  QLineEdit& box(const char* name) { return *dock().findChild<QLineEdit*>(name); }
  std::string told() { return dock().findChild<QLabel*>("calculator_told")->text().toStdString(); }
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QKeyEvent event(QEvent::KeyPress, key, modifiers);
    QCoreApplication::sendEvent(window_.focusWidget(), &event);
  }
  // As keys in a box, in the place of what it holds.
  void type(const char* name, const QString& text) {
    box(name).clear();
    for (const QChar character : text) {
      QKeyEvent key(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(character));
      QCoreApplication::sendEvent(&box(name), &key);
    }
  }

  store::MemoryDatabase database_;
  MainWindow window_{database_};
  Clerk clerk_{window_};
};

TEST_F(YearUnderTheCard, FollowsWhatIsTypedAndNotSaved) {
  EXPECT_FALSE(dock().isVisible()) << "there is little room";
  clerk_.open_card("00001");
  dock().action()->trigger();
  EXPECT_EQ(cell(2, 0), "100,10");
  EXPECT_EQ(cell(3, 0), "0,66");
  EXPECT_EQ(cell(2, 12), "1201,20");
  clerk_.type("Txt_HorMensEtab", "100");
  EXPECT_EQ(cell(3, 0), "1,00");
  clerk_.put("Txt_DatFin", "10/06/2026");
  clerk_.type("Txt_DatFin", "");
  EXPECT_EQ(cell(0, 5), "1–10");
  EXPECT_EQ(cell(0, 6), "hors contrat");
  EXPECT_EQ(table().item(2, 5)->data(Qt::AccessibleDescriptionRole).toString().toStdString(),
            "Juin 2026 : du 1 au 10, avenant du 01/10/2021, 100,10 heures par mois, Intervention employé "
            "degré 1 ; du 11 au 30, hors contrat ; en tout 33,37 heures, ETP 0,33.");
  clerk_.answer_next(screen::Answer::Yes);
  clerk_.click("Cmd_Annul");
  EXPECT_EQ(cell(2, 0), "nothing");
  EXPECT_TRUE(table().isHidden());
}

// The line is still open; its date could stand.
TEST_F(YearUnderTheCard, ShowsTheAmendmentThatIsBeingEntered) {
  clerk_.open_card("00001");
  dock().action()->trigger();
  screen::Hand hand(window_.component().screen());
  auto& form = window_.component().screen().base();
  ASSERT_EQ(hand.show_page(1), "");
  ASSERT_EQ(hand.click(*form.find("Cmd_AjDetail")), "");
  clerk_.put("Txt_DatEffet", "15/03/2026");
  clerk_.type("Txt_DatEffet", "");
  clerk_.type("Txt_TxHor", "");
  EXPECT_EQ(cell(0, 2), "1–14 | 15–31");
  EXPECT_EQ(cell(1, 2), "01/10/2021 → 15/03/2026");
}

TEST_F(YearUnderTheCard, TakesAndGivesBackTheKeyboardAndIsCopied) {
  clerk_.open_card("00001");
  clerk_.widget("Txt_HorMensEtab").setFocus(Qt::TabFocusReason);
  dock().action()->trigger();
  EXPECT_EQ(window_.focusWidget(), &table());
  press(Qt::Key_C, Qt::ControlModifier);
  const QString copied = QGuiApplication::clipboard()->text();
  EXPECT_EQ(copied.section('\n', 0, 0).left(17), "\tJanvier\tFévrier\t");
  EXPECT_EQ(copied.section('\n', 3, 3).left(14), "Heures\t100,10\t");
  press(Qt::Key_Escape);
  EXPECT_EQ(window_.focusWidget()->objectName(), "Txt_HorMensEtab");
  EXPECT_TRUE(dock().isVisible());
  dock().action()->trigger();
  dock().action()->trigger();
  EXPECT_FALSE(dock().isVisible());
  EXPECT_EQ(window_.focusWidget()->objectName(), "Txt_HorMensEtab");
  EXPECT_FALSE(window_.component().card_id().isEmpty()) << "the card was not left";
}

TEST_F(YearUnderTheCard, CalculatesBothWaysAndTakesNoTextForAFigure) {
  clerk_.open_card("00001");
  dock().action()->trigger();
  settle();
  type("calculator_hours", "104");
  EXPECT_EQ(box("calculator_percent").text(), "68,57");
  EXPECT_EQ(told(), "ETP 0,69");
  type("calculator_percent", "50");
  EXPECT_EQ(box("calculator_hours").text(), "75,84");
  type("calculator_full", "120");
  EXPECT_EQ(box("calculator_hours").text(), "60,00") << "the percentage was typed last";
  for (const char* wrong : {",", "12a", "-3", "1000000"}) {
    type("calculator_hours", wrong);
    EXPECT_EQ(box("calculator_percent").text(), "") << wrong;
    EXPECT_EQ(told().rfind("« " + std::string(wrong) + " » n'est pas ", 0), 0U) << told();
  }
  type("calculator_hours", "60");
  for (const char* wrong : {",", "0"}) {
    type("calculator_full", wrong);
    EXPECT_EQ(box("calculator_percent").text(), "") << wrong;
    EXPECT_NE(told(), "") << wrong;
  }
}

}  // namespace
}  // namespace velanor::app
