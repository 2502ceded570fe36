// The past of the open card and deleted cards, as a clerk takes them back.
#include <QAction>
#include <QMenuBar>
#include <QPushButton>
#include <QTableWidget>

#include "app/clerk.h"
#include "app/velanor/deleted_cards_dialog.h"
#include "app/velanor/versions_dialog.h"
#include "app/velanorctl/open_store.h"
#include "demo/demo.h"
#include "sqlite/temporary_folder.h"
#include "velanor/hand.h"
#include "velanor/sqlite_database.h"

namespace velanor::app {
namespace {

class PastOfCards : public testing::Test {
 protected:
  PastOfCards() {
    database_.in_one_change([this] {
      StoreSink sink([&](auto file, auto id, const auto& record) { database_.put(file, id, record); });
      demo::fill(sink);
    });
    window_.show();
    window_.activateWindow();
    QCoreApplication::processEvents();
    window_.start();
  }

  QAction& action(const QString& text) {
    for (QAction* action : window_.findChildren<QAction*>()) {
      if (action->text().remove('&').startsWith(text)) return *action;
    }
    throw std::logic_error("there is no such entry");
  }
  template <typename Dialog>
  Dialog* opened(const QString& entry) {
    action(entry).trigger();
    return window_.findChild<Dialog*>();
  }
  static QPushButton& button(const QDialog& dialog, const QString& text) {
    for (auto* button : dialog.findChildren<QPushButton*>()) {
      if (button->text().remove('&').startsWith(text)) return *button;
    }
    throw std::logic_error("there is no such button");
  }
  static QTableWidget& table(const QDialog& dialog, const QString& name) {
    for (auto* table : dialog.findChildren<QTableWidget*>()) {
      if (table->accessibleName() == name) return *table;
    }
    throw std::logic_error("there is no such table");
  }
  static std::string line(const QTableWidget& table, int row, int first = 0) {
    QStringList cells;
    for (int c = first; c < table.columnCount(); ++c) cells << table.item(row, c)->text();
    return cells.join("|").toStdString();
  }
  std::string hours() { return clerk_.widget<QLineEdit>("Txt_HorMensEtab").text().toStdString(); }
  std::optional<store::DbRecord> stored() { return database_.OpenFile("VELANORO")->find("000010012026"); }
  void save_hours(const char* text) {
    clerk_.open_card("00001");
    clerk_.put("Txt_HorMensEtab", text);
    clerk_.click("Cmd_OK");
    settle();
  }

  TemporaryFolder folder_;
  store::SqliteDatabase database_{folder_.file("base"), {.missing = store::SqliteDatabase::Missing::kCreate}};
  MainWindow window_{database_};
  Clerk clerk_{window_};
};

TEST_F(PastOfCards, TheOpenCardIsTakenBackToAnEarlierVersion) {
  EXPECT_FALSE(action("Historique de la fiche").isEnabled());
  save_hours("140");
  save_hours("130");
  clerk_.open_card("00001");
  auto* dialog = opened<VersionsDialog>("De la fiche ouverte");
  ASSERT_NE(dialog, nullptr);
  QTableWidget& versions = table(*dialog, "Versions de la fiche");
  ASSERT_EQ(versions.rowCount(), 3);
  EXPECT_FALSE(button(*dialog, "Reprendre").isEnabled()) << "it is what is stored";
  versions.selectRow(1);
  EXPECT_EQ(line(table(*dialog, "Ce que cette version a changé"), 0),
            "Horaire de l'établissement|151,67|140,00");
  EXPECT_FALSE(button(*dialog, "Reprendre").isDefault());
  button(*dialog, "Reprendre").click();
  settle();
  EXPECT_EQ(hours(), "140,00");
  EXPECT_EQ(window_.component().state(), control::State::kEditing);
  EXPECT_FALSE(window_.component().modified());
  EXPECT_NE(clerk_.status().find("reprise : fiche 00001"), std::string::npos) << clerk_.status();
  EXPECT_EQ(window_.findChild<VersionsDialog*>(), nullptr);
}

TEST_F(PastOfCards, WhatIsNotSavedStandsInTheWayOfAnEarlierVersion) {
  save_hours("140");
  clerk_.open_card("00001");
  clerk_.put("Txt_HorMensEtab", "99");
  auto* dialog = opened<VersionsDialog>("De la fiche ouverte");
  table(*dialog, "Versions de la fiche").selectRow(1);
  EXPECT_FALSE(button(*dialog, "Reprendre").isEnabled());
  button(*dialog, "Fermer").click();
  settle();
  EXPECT_EQ(hours(), "99");
}

TEST_F(PastOfCards, SomebodyElsesSaveMeanwhileIsNotOverwritten) {
  save_hours("140");
  clerk_.open_card("00001");
  auto* dialog = opened<VersionsDialog>("De la fiche ouverte");
  QTableWidget& versions = table(*dialog, "Versions de la fiche");
  versions.selectRow(1);
  store::DbRecord theirs = *stored();
  theirs.set(5, "Albi");
  database_.put("VELANORO", "000010012026", theirs);
  QTimer::singleShot(0, dialog, [dialog] { dialog->findChild<QDialog*>()->close(); });
  button(*dialog, "Reprendre").click();
  EXPECT_EQ(versions.rowCount(), 3);
  EXPECT_EQ((*stored())(5), "Albi");
}

TEST_F(PastOfCards, ADeletedCardIsBroughtBackAndOpened) {
  action("Fiches supprimées").trigger();
  EXPECT_EQ(clerk_.status(),
            "Choisissez d'abord l'entité et l'année dont vous cherchez une fiche supprimée.");
  clerk_.open_card("00001");
  clerk_.answer_next(screen::Answer::Yes);
  clerk_.click("Cmd_Supp");
  settle();
  ASSERT_FALSE(stored());
  auto* dialog = opened<DeletedCardsDialog>("Fiches supprimées");
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ(line(table(*dialog, "Fiches supprimées"), 0).substr(0, 20), "00001|HUET FABIENNE|");
  button(*dialog, "Rétablir").click();
  settle();
  EXPECT_TRUE(stored());
  EXPECT_EQ(window_.component().card_id(), "000010012026");
  EXPECT_EQ(clerk_.status(), "Fiche 00001 HUET FABIENNE rétablie");
}

TEST_F(PastOfCards, AYearThatIsOverIsReadAlone) {
  clerk_.type("Txt_Asso", "001");
  auto& years = dynamic_cast<screen::ComboBox&>(*window_.component().screen().base().find("Cbo_Periode"));
  ASSERT_GT(years.count(), 1);
  ASSERT_EQ(screen::Hand(window_.component().screen()).choose(years, years.count() - 1), "");
  clerk_.type("Txt_Aidant", "00001");
  ASSERT_EQ(window_.component().state(), control::State::kReading);
  store::DbRecord card = window_.component().card_in_hand();
  card.set(5, "Albi");
  database_.put("VELANORO", window_.component().card_id().toStdString(), card);
  auto* dialog = opened<VersionsDialog>("De la fiche ouverte");
  table(*dialog, "Versions de la fiche").selectRow(1);
  EXPECT_FALSE(button(*dialog, "Reprendre").isEnabled());
}

}  // namespace
}  // namespace velanor::app
