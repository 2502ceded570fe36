// The past of the open card and deleted cards, as a clerk takes them back.
#include <QAction>
#include <QComboBox>
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
  auto* dialog = opened<VersionsDialog>("Historique de la fiche");
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
  auto* dialog = opened<VersionsDialog>("Historique de la fiche");
  table(*dialog, "Versions de la fiche").selectRow(1);
  EXPECT_FALSE(button(*dialog, "Reprendre").isEnabled());
  button(*dialog, "Fermer").click();
  settle();
  EXPECT_EQ(hours(), "99");
}

TEST_F(PastOfCards, SomebodyElsesSaveMeanwhileIsNotOverwritten) {
  save_hours("140");
  clerk_.open_card("00001");
  auto* dialog = opened<VersionsDialog>("Historique de la fiche");
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
  auto* dialog = opened<VersionsDialog>("Historique de la fiche");
  table(*dialog, "Versions de la fiche").selectRow(1);
  EXPECT_FALSE(button(*dialog, "Reprendre").isEnabled());
}

// ---- Steps of the open card, and what helps to enter it.

TEST_F(PastOfCards, StepsAreNamedInTheMenuAndGoBackAndForth) {
  QAction& undo = action("Annuler");
  QAction& redo = action("Rétablir");
  const auto text = [](const QAction& action) { return action.text().remove('&').toStdString(); };
  clerk_.open_card("00001");
  EXPECT_FALSE(undo.isEnabled());
  clerk_.put("Txt_HorMensEtab", "140");
  EXPECT_EQ(text(undo), "Annuler : Horaire de l'établissement (151,67 → 140,00)");
  undo.trigger();
  EXPECT_EQ(hours(), "151,67");
  EXPECT_EQ(clerk_.status(), "Annulé : Horaire de l'établissement (151,67 → 140,00)");
  EXPECT_FALSE(window_.isWindowModified());
  EXPECT_FALSE(undo.isEnabled());
  redo.trigger();
  EXPECT_EQ(hours(), "140,00");
  // While a line is being entered there is none.
  clerk_.click("Cmd_AjAct");
  EXPECT_FALSE(undo.isEnabled());
  EXPECT_EQ(text(undo), "Annuler");
  clerk_.click("Cmd_AnnulAct");
  EXPECT_TRUE(undo.isEnabled());
  // Nor while a message waits.
  bool enabled = true;
  clerk_.at_next_message([&](qt::MessageSheet& sheet) {
    enabled = undo.isEnabled();
    undo.trigger();
    sheet.button(screen::Answer::No)->click();
  });
  clerk_.click("Cmd_Annul");
  EXPECT_FALSE(enabled);
  EXPECT_EQ(hours(), "140,00");
}

TEST_F(PastOfCards, TheCardThatWasDeletedLastComesBackFromTheStatusBarOrByTheSameKey) {
  auto& restore = *window_.findChild<QPushButton*>("restore");
  const auto before = stored();
  const auto give_up = [&] {
    clerk_.answer_next(screen::Answer::Yes);
    clerk_.click("Cmd_Annul");
  };
  const auto remove = [&] {
    clerk_.open_card("00001");
    EXPECT_TRUE(restore.isHidden());
    clerk_.answer_next(screen::Answer::Yes);
    clerk_.click("Cmd_Supp");
    settle();
    ASSERT_FALSE(stored());
  };
  remove();
  EXPECT_FALSE(restore.isHidden());
  restore.click();
  EXPECT_EQ(stored(), before);
  EXPECT_EQ(window_.component().card_id().toStdString(), "000010012026");
  EXPECT_TRUE(restore.isHidden());
  give_up();
  remove();
  EXPECT_EQ(action("Annuler").text().remove('&').toStdString().rfind("Annuler : fiche 00001 ", 0), 0U);
  action("Annuler").trigger();
  EXPECT_EQ(stored(), before);
  give_up();
  // Somebody has made a card of the code meanwhile: it stays.
  remove();
  store::DbRecord other = *before;
  other.set(1, "AUTREMENT");
  database_.put("VELANORO", "000010012026", other);
  action("Annuler").trigger();
  EXPECT_EQ(stored(), other);
  // Another card on the screen: the key is its own again.
  database_.OpenFile("VELANORO")->DeleteRecord("000010012026");
  clerk_.open_card("00002");
  EXPECT_FALSE(action("Annuler").isEnabled());
}

TEST_F(PastOfCards, TheKeysThatOpenedACardAreNoTextToBeTakenBack) {
  clerk_.type("Txt_Asso", "001");
  auto& years = clerk_.widget<QComboBox>("Cbo_Periode");
  years.setCurrentIndex(1);
  emit years.activated(1);
  clerk_.type("Txt_Aidant", "00001");
  ASSERT_EQ(window_.component().state(), control::State::kReading);
  auto& code = clerk_.widget<QLineEdit>("Txt_Aidant");
  EXPECT_FALSE(code.isUndoAvailable());
  code.undo();
  EXPECT_EQ(window_.component().state(), control::State::kReading);
}

TEST_F(PastOfCards, AFieldTellsWhatItWasAndTheSplitWhatItLeaves) {
  save_hours("140");
  EXPECT_FALSE(action("Historique du champ").isEnabled());
  clerk_.open_card("00001");
  clerk_.widget("Txt_HorMensEtab").setFocus(Qt::TabFocusReason);
  action("Historique du champ").trigger();
  EXPECT_EQ(clerk_.status().rfind("Horaire de l'établissement : était 151,67 jusqu'au ", 0), 0U);
  clerk_.widget("Txt_NomAidant").setFocus(Qt::TabFocusReason);
  action("Historique du champ").trigger();
  EXPECT_EQ(clerk_.status(), "Nom : n'a pas changé depuis que la fiche est gardée.");
  EXPECT_EQ(clerk_.widget<QLabel>("split_told").text(), "Tout est réparti");
  action("Reste de la répartition").trigger();
  EXPECT_EQ(clerk_.status(), "Choisissez d'abord une activité de la liste.");
}

}  // namespace
}  // namespace velanor::app
