// The checks under the card, as a clerk goes through them by the keyboard.
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>

#include "app/clerk.h"
#include "app/velanor/checks_dock.h"
#include "app/velanorctl/open_store.h"
#include "demo/demo.h"
#include "sqlite/temporary_folder.h"
#include "velanor/hand.h"
#include "velanor/sqlite_database.h"

namespace velanor::app {
namespace {

constexpr const char* kId = "000020012026";

class ChecksOfAYear : public testing::Test {
 protected:
  ChecksOfAYear() {
    database_.in_one_change([this] {
      StoreSink sink([&](auto file, auto id, const auto& record) { database_.put(file, id, record); });
      demo::fill(sink);
    });
    change([](store::DbRecord& card) { card.set(19, ""); });
    window_.show();
    window_.activateWindow();
    QCoreApplication::processEvents();
    window_.start();
  }
  void change(const std::function<void(store::DbRecord&)>& what) {
    store::DbRecord card = stored();
    what(card);
    database_.put("VELANORO", kId, card);
  }
  store::DbRecord stored() { return database_.OpenFile("VELANORO")->Read(kId); }

  void press_f8() {
    for (QAction* action : window_.findChildren<QAction*>()) {
      if (action->shortcut() == QKeySequence(Qt::Key_F8)) action->trigger();
    }
    settle();
    until([this] { return !heading().starts_with("Contrôle en cours"); });
  }
  void key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, bool held = false) {
    QKeyEvent press(QEvent::KeyPress, key, modifiers, "", held);
    QCoreApplication::sendEvent(&table(), &press);
    settle();
  }
  QTableWidget& table() { return *dock().findChild<QTableWidget*>(); }
  ChecksDock& dock() { return *window_.findChild<ChecksDock*>(); }
  std::string heading() { return dock().findChild<QLabel*>("completeness")->text().toStdString(); }
  // The first line whose remark begins so; -1: none.
  int line_of(const char* code, const char* remark) {
    for (int row = 0; row < table().rowCount(); ++row) {
      if (table().item(row, 0)->text() == code && table().item(row, 3)->text().startsWith(remark)) return row;
    }
    return -1;
  }
  void choose(const char* remark) {
    ASSERT_GE(line_of("00002", remark), 0) << remark;
    table().selectRow(line_of("00002", remark));
  }
  const screen::Control* focus() { return window_.component().screen().top().focus(); }

  TemporaryFolder folder_;
  store::SqliteDatabase database_{folder_.file("base"), {.missing = store::SqliteDatabase::Missing::kCreate}};
  MainWindow window_{database_};
  Clerk clerk_{window_};
};

constexpr const char* kProfile = "Le profil de paie est obligatoire.";
constexpr const char* kReason = "Un motif de fin est choisi";

TEST_F(ChecksOfAYear, EnterOpensTheCardOnTheFieldThatIsWrong) {
  press_f8();
  EXPECT_EQ(clerk_.status(), "Choisissez d'abord l'entité et l'année dont vous contrôlez les fiches.");
  EXPECT_FALSE(dock().isVisible());
  clerk_.open_card("00001");
  press_f8();
  ASSERT_TRUE(dock().isVisible());
  const std::string told = heading();
  EXPECT_NE(told.find(" fiches complètes – 1 faute, "), std::string::npos) << told;
  choose(kProfile);
  key(Qt::Key_Return, Qt::NoModifier, true);
  EXPECT_EQ(window_.component().card_id(), "000010012026") << "a key that is held down opens nothing";
  key(Qt::Key_Return);
  EXPECT_EQ(window_.component().card_id(), kId);
  ASSERT_NE(focus(), nullptr);
  EXPECT_EQ(focus()->name(), "Txt_Profil1");
  EXPECT_FALSE(window_.component().modified());
}

TEST_F(ChecksOfAYear, AWarningOfAnAmendmentLeadsToItsLine) {
  change([](store::DbRecord& card) {
    card.set(17, 1, "30000");
    card.set(12, 2, std::to_string(std::stoi(std::string(card(12, 1))) + 1));
    for (const int attribute : {13, 14, 15, 16, 18, 38}) card.set(attribute, 2, card(attribute, 1));
    card.set(17, 2, "20000");
    card.set(30, 2, 1, card(30, 1, 1));
  });
  clerk_.open_card("00001");
  press_f8();
  choose("Le taux horaire est inférieur");
  key(Qt::Key_Enter);
  const auto& rates = dynamic_cast<screen::ListBox&>(*window_.component().screen().base().find("Lst_TxHor"));
  EXPECT_EQ(focus(), &rates);
  EXPECT_EQ(rates.index(), 1);
}

TEST_F(ChecksOfAYear, TheCardThatIsSavedIsLookedAtAgain) {
  clerk_.open_card("00001");
  press_f8();
  const std::string before = heading();
  clerk_.put("Txt_HorMensEtab", "1");
  clerk_.click("Cmd_OK");
  settle();
  EXPECT_GE(line_of("00001", "Les heures mensuelles dépassent"), 0) << heading();
  EXPECT_NE(heading(), before);
}

TEST_F(ChecksOfAYear, FollowsTheYearOnTheScreenWhatOthersSaveAndTheDays) {
  clerk_.open_card("00001");
  press_f8();
  ASSERT_GE(line_of("00002", kProfile), 0);
  clerk_.answer_next(screen::Answer::Yes);
  clerk_.click("Cmd_Annul");
  settle();
  auto& years = clerk_.widget<QComboBox>("Cbo_Periode");
  const int year = years.currentIndex();
  const auto at_year = [&](int index) {
    years.setFocus();
    years.setCurrentIndex(index);
    emit years.activated(index);
    settle();
  };
  at_year(year == 0 ? 1 : 0);
  EXPECT_TRUE(until([&] { return line_of("00002", kProfile) < 0; })) << heading();
  at_year(year);
  EXPECT_TRUE(until([&] { return line_of("00002", kProfile) >= 0; })) << heading();

  const int today = *entry::day_number(entry::system_clock()());
  store::SqliteDatabase other(folder_.file("base"));
  store::DbRecord card = stored();
  card.set(6, "D");
  card.set(23, std::to_string(today + 90));
  card.set(24, "01");
  other.put("VELANORO", kId, card);
  QEvent back(QEvent::WindowActivate);
  QCoreApplication::sendEvent(&window_, &back);
  constexpr const char* kSoon = "Le contrat à durée déterminée finit dans les 100 jours";
  auto& days = *dock().findChild<QSpinBox*>("days_ahead");
  days.setValue(100);
  EXPECT_TRUE(until([&] { return line_of("00002", kSoon) >= 0; })) << heading();
  EXPECT_EQ(window_.layout_now().days_ahead, 100);
  card.set(23, std::to_string(today + 101));
  other.put("VELANORO", kId, card);
  QCoreApplication::sendEvent(&window_, &back);
  EXPECT_TRUE(until([&] { return line_of("00002", kSoon) < 0; })) << heading();
}

TEST_F(ChecksOfAYear, WhoAnswersNoKeepsTheCardThatIsOpen) {
  clerk_.open_card("00001");
  clerk_.put("Txt_HorMensEtab", "99");
  press_f8();
  choose(kProfile);
  clerk_.answer_next(screen::Answer::No);
  key(Qt::Key_Return);
  EXPECT_EQ(window_.component().card_id(), "000010012026");
  EXPECT_TRUE(window_.component().modified());
  EXPECT_EQ(clerk_.status(), "La fiche ouverte est restée à l'écran.");
}

TEST_F(ChecksOfAYear, NothingIsDoneWhileAMessageWaits) {
  change([](store::DbRecord& card) {
    card.set(23, "");
    card.set(24, "01");
  });
  clerk_.open_card("00001");
  press_f8();
  choose(kReason);
  bool waited = false;
  clerk_.at_next_message([&](qt::MessageSheet& sheet) {
    waited = true;
    key(Qt::Key_Return);
    EXPECT_EQ(window_.component().card_id(), "000010012026");
    EXPECT_EQ(clerk_.status(), "Terminez d'abord ce qui est ouvert sur la fiche.");
    key(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_FALSE(database_.OpenFile("BUDGETREMARQUES")->find(kId));
    sheet.button(screen::Answer::No)->click();
  });
  clerk_.click("Cmd_Supp");
  settle();
  EXPECT_TRUE(waited);
}

TEST_F(ChecksOfAYear, AKindIsSetAsideShownAndTakenBack) {
  change([](store::DbRecord& card) {
    card.set(23, "");
    card.set(24, "01");
  });
  database_.history()->set_author("anne");
  clerk_.open_card("00001");
  press_f8();
  choose(kReason);
  key(Qt::Key_Delete);
  EXPECT_GE(line_of("00002", kReason), 0) << "that key alone is pressed by accident";
  key(Qt::Key_Delete, Qt::ControlModifier);
  EXPECT_EQ(line_of("00002", kReason), -1);
  EXPECT_NE(heading().find(", 1 de côté"), std::string::npos) << heading();
  const auto kept = database_.OpenFile("BUDGETREMARQUES")->Read(kId);
  EXPECT_EQ(kept(1), "motif-sans-fin");
  EXPECT_EQ(kept(2), "anne");
  press_f8();
  EXPECT_EQ(line_of("00002", kReason), -1) << "the base keeps it";
  dock().findChild<QCheckBox*>("with_asides")->click();
  choose(kReason);
  EXPECT_TRUE(table().item(table().currentRow(), 2)->text().startsWith("De côté (anne, "));
  dock().findChild<QPushButton*>("aside")->click();
  EXPECT_EQ(table().item(line_of("00002", kReason), 2)->text(), "Avertissement");
  choose(kProfile);
  EXPECT_FALSE(dock().findChild<QPushButton*>("aside")->isEnabled()) << "a fault is to be mended";
}

}  // namespace
}  // namespace velanor::app
