// The table of the employees beside the component, as a clerk works with it.
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QFile>
#include <QHeaderView>
#include <QMenu>
#include <QScrollBar>
#include <QTableView>
#include <filesystem>

#include "app/clerk.h"
#include "app/velanor/employees_dock.h"
#include "app/velanorctl/open_store.h"
#include "demo/demo.h"
#include "sqlite/temporary_folder.h"
#include "velanor/hand.h"
#include "velanor/sqlite_database.h"

namespace velanor::app {
namespace {

using screen::Answer;

class TableBesideTheCard : public testing::Test {
 protected:
  TableBesideTheCard() {
    database_.in_one_change([this] {
      StoreSink sink([&](auto file, auto id, const auto& record) { database_.put(file, id, record); });
      demo::fill(sink);
    });
    window_.resize(1800, 700);
    window_.show();
    window_.activateWindow();
    QCoreApplication::processEvents();
    window_.start();
    clerk_.type("Txt_Asso", "001");
    settle();
  }

  EmployeesDock& dock() { return *window_.findChild<EmployeesDock*>(); }
  QLineEdit& filter() { return *window_.findChild<QLineEdit*>("employees_filter"); }
  QTableView& table() { return *window_.findChild<QTableView*>("employees_table"); }
  std::string count() { return window_.findChild<QLabel*>("employees_count")->text().toStdString(); }
  QAction& action(const QString& text) {
    for (QAction* action : window_.findChildren<QAction*>()) {
      if (action->text().remove('&').startsWith(text)) return *action;
    }
    throw std::logic_error("there is no such entry");
  }
  // To whoever has the focus.
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QKeyEvent event(QEvent::KeyPress, key, modifiers);
    QCoreApplication::sendEvent(window_.focusWidget(), &event);
    settle();
  }
  void type(const QString& text) {
    for (const QChar character : text) {
      QKeyEvent key(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(character));
      QCoreApplication::sendEvent(window_.focusWidget(), &key);
    }
    settle();
  }
  void search(const QString& text) {
    action("Rechercher").trigger();
    settle();
    type(text);
  }
  std::string cell(int row, int column) {
    return table().model()->index(row, column).data().toString().toStdString();
  }
  std::string name(int row) { return cell(row, 1); }
  std::string open() { return window_.component().card_id().toStdString(); }
  bool examined() {
    return until([&] { return cell(table().model()->rowCount() - 1, 12) != ""; });
  }

  TemporaryFolder folder_;
  store::SqliteDatabase database_{folder_.file("base"), {.missing = store::SqliteDatabase::Missing::kCreate}};
  MainWindow window_{database_};
  Clerk clerk_{window_};
};

TEST_F(TableBesideTheCard, OpensACardByAPartOfItsNameAndSavesAChangeInFewKeys) {
  EXPECT_EQ(count(), "177 sur 177");
  search("fabienn");
  EXPECT_EQ(name(0), "HUET FABIENNE");
  EXPECT_EQ(window_.focusWidget(), &filter());
  press(Qt::Key_Return);
  EXPECT_EQ(open(), "000010012026");
  EXPECT_TRUE(window_.component().isAncestorOf(window_.focusWidget())) << "the card has the keys";
  EXPECT_EQ(filter().text(), "fabienn");
}

TEST_F(TableBesideTheCard, GoesOnToTheNextCardOfTheTableAsItIsFilteredAndSorted) {
  search("huet");
  const int shown = table().model()->rowCount();
  ASSERT_EQ(shown, 3);
  press(Qt::Key_Down);
  press(Qt::Key_Return);
  EXPECT_EQ(open(), "000140012026");
  action("Fiche suivante").trigger();
  EXPECT_EQ(open(), "000270012026");
  action("Fiche suivante").trigger();
  EXPECT_EQ(open(), "000270012026");
  EXPECT_EQ(clerk_.status(), "C'est la dernière fiche du tableau.");
  table().sortByColumn(1, Qt::DescendingOrder);
  action("Fiche suivante").trigger();
  EXPECT_EQ(open(), "000140012026");
  action("Fiche précédente").trigger();
  EXPECT_EQ(open(), "000270012026");
  action("Fiche précédente").trigger();
  EXPECT_EQ(clerk_.status(), "C'est la première fiche du tableau.");
}

// The question that leaves a card names no line.
TEST_F(TableBesideTheCard, DoesNotTakeTheClerkAwayFromALineThatIsBeingEntered) {
  search("huet");
  press(Qt::Key_Down);
  press(Qt::Key_Return);
  const std::string card = open();
  clerk_.click("Cmd_AjAct");
  clerk_.put("Txt_Pourc", "10");
  action("Fiche suivante").trigger();
  EXPECT_EQ(open(), card);
  EXPECT_EQ(clerk_.status(), "Confirmez ou abandonnez d'abord la ligne en cours de saisie.");
  clerk_.click("Cmd_AnnulAct");
  EXPECT_EQ(clerk_.status(), "") << "it holds no longer";
  action("Fiche suivante").trigger();
  EXPECT_NE(open(), card);
  filter().setText("xyz:abc");
  settle();
  EXPECT_EQ(count(), "0 sur 177 – « xyz:abc » n'est ni une colonne ni une comparaison");
}

// One that has left the table is followed by what has come up into its place.
TEST_F(TableBesideTheCard, GoesOnFromWhereASavedCardHasLeftTheTable) {
  search("huet nom:l");
  ASSERT_EQ(name(0), "HUET LILIANE");
  filter().setText("huet -nom:zz");
  settle();
  press(Qt::Key_Return);
  ASSERT_EQ(open(), "000010012026");
  clerk_.put("Txt_NomAidant", "DURAND FABIENNE");
  clerk_.click("Cmd_OK");
  settle();
  EXPECT_EQ(table().model()->rowCount(), 2);
  action("Fiche suivante").trigger();
  EXPECT_EQ(open(), "000140012026");
}

TEST_F(TableBesideTheCard, AsksAsTheComponentAsksAndKeepsWhatIsNotSaved) {
  search("fabienn");
  press(Qt::Key_Return);
  clerk_.put("Txt_HorMensEtab", "99");
  search("liliane");
  clerk_.answer_next(Answer::No);
  press(Qt::Key_Return);
  EXPECT_EQ(open(), "000010012026");
  EXPECT_EQ(clerk_.status(), "La fiche ouverte est restée à l'écran.");
  EXPECT_TRUE(window_.component().modified());
  clerk_.answer_next(Answer::Yes);
  action("Rechercher").trigger();
  press(Qt::Key_Return);
  EXPECT_EQ(open(), "000140012026");
}

TEST_F(TableBesideTheCard, OpensNothingWhileAMessageOrASheetWaits) {
  const std::string refusal = "Terminez d'abord ce qui est ouvert sur la fiche.";
  search("fabienn");
  press(Qt::Key_Return);
  clerk_.at_next_message([&](qt::MessageSheet& sheet) {
    for (const char* entry : {"Fiche suivante", "Fiche précédente", "Rechercher", "Exporter le tableau"}) {
      window_.tell({});
      action(entry).trigger();
      EXPECT_EQ(clerk_.status(), refusal) << entry;
    }
    window_.tell({});
    filter().setFocus();
    press(Qt::Key_Return);
    EXPECT_EQ(clerk_.status(), refusal);
    sheet.button(Answer::No)->click();
  });
  clerk_.click("Cmd_Supp");
  EXPECT_EQ(open(), "000010012026");
  auto& amendments = static_cast<screen::ListBox&>(*window_.component().screen().base().find("Lst_DatEffet"));
  amendments.set_index(0);
  clerk_.click("Cmd_Detail");
  ASSERT_NE(window_.component().open_sheet(), nullptr);
  window_.tell({});
  action("Fiche suivante").trigger();
  EXPECT_EQ(clerk_.status(), refusal);
  EXPECT_EQ(open(), "000010012026");
}

TEST_F(TableBesideTheCard, EscapeClearsTheFilterAndThenGoesBackToTheFieldOfTheCard) {
  search("fabienn");
  press(Qt::Key_Return);
  clerk_.widget("Txt_NomAidant").setFocus(Qt::TabFocusReason);
  search("zzz");
  EXPECT_EQ(count(), "0 sur 177");
  press(Qt::Key_Return);
  EXPECT_EQ(open(), "000010012026") << "there is nothing to open";
  press(Qt::Key_Escape);
  EXPECT_EQ(count(), "177 sur 177");
  EXPECT_EQ(table().currentIndex().row(),
            static_cast<EmployeesModel*>(table().model())->row_of("000010012026"));
  EXPECT_EQ(window_.focusWidget(), &filter());
  press(Qt::Key_Escape);
  EXPECT_EQ(window_.focusWidget()->objectName(), "Txt_NomAidant");
  EXPECT_EQ(open(), "000010012026") << "the card was not left";
}

TEST_F(TableBesideTheCard, FollowsWhatIsSavedCopiedAndDeletedWithoutLosingItsPlace) {
  ASSERT_TRUE(examined());
  table().selectRow(60);
  table().verticalScrollBar()->setValue(50);
  const std::string chosen = name(60);
  const int scrolled = table().verticalScrollBar()->value();
  ASSERT_GT(scrolled, 0);
  const auto place_is_kept = [&] {
    const auto rows = table().selectionModel()->selectedRows(1);
    ASSERT_EQ(rows.size(), 1);
    EXPECT_EQ(rows.front().data().toString().toStdString(), chosen);
    EXPECT_EQ(table().verticalScrollBar()->value(), scrolled);
  };
  store::DbRecord theirs = database_.OpenFile("VELANORO")->Read("000010012026");
  theirs.set(1, "ZZ FABIENNE");
  database_.put("VELANORO", "000010012026", theirs);
  QEvent activated(QEvent::WindowActivate);
  QCoreApplication::sendEvent(&window_, &activated);
  settle();
  EXPECT_EQ(name(176), "ZZ FABIENNE") << "another program has saved it";
  place_is_kept();
  ASSERT_TRUE(examined());
  clerk_.open_card("00014");
  clerk_.answer_next(Answer::Ok);
  clerk_.click("Cmd_Copier");
  settle();
  EXPECT_EQ(count(), "178 sur 178");
  clerk_.answer_next(Answer::Yes);
  clerk_.click("Cmd_Supp");
  settle();
  EXPECT_EQ(count(), "177 sur 177");
}

TEST_F(TableBesideTheCard, ReachesAllEntitiesAndYearsAndOpensThere) {
  window_.findChild<QCheckBox*>()->setFocus();
  dock().findChild<QCheckBox*>()->click();
  settle();
  EXPECT_EQ(count(), "979 sur 979");
  EXPECT_FALSE(table().isColumnHidden(14));
  search("entite:002 annee<2026");
  press(Qt::Key_Return);
  EXPECT_EQ(open().substr(5, 3), "002");
  EXPECT_NE(open().substr(8), "2026");
  EXPECT_EQ(count().substr(count().find(' ')), " sur 979");
}

TEST_F(TableBesideTheCard, CopiesAndExportsWhatIsShown) {
  auto name_of_formula = database_.OpenFile("VELANORO")->Read("000010012026");
  name_of_formula.set(1, "=HUET FABIENNE");
  database_.put("VELANORO", "000010012026", name_of_formula);
  QEvent activated(QEvent::WindowActivate);
  QCoreApplication::sendEvent(&window_, &activated);
  ASSERT_TRUE(examined());
  action("Code").setChecked(false);
  search("huet");
  table().setFocus();
  table().selectRow(0);
  press(Qt::Key_C, Qt::ControlModifier);
  const QString copied = QGuiApplication::clipboard()->text();
  EXPECT_EQ(copied.section('\n', 0, 0), "Nom\tContrat\tFin\tHeures\tÉtat");
  EXPECT_EQ(copied.count('\n'), 2);
  const std::string path = folder_.file("employes.csv");
  dock().export_to(QString::fromStdString(path));
  ASSERT_TRUE(until([&] { return clerk_.status().find(" lignes écrites dans ") != std::string::npos; }))
      << clerk_.status();
  QFile file(QString::fromStdString(path));
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const QString table = QString::fromUtf8(file.readAll());
  EXPECT_EQ(table.section('\n', 0, 0), "Nom;Contrat;Fin;Heures;État");
  EXPECT_NE(table.indexOf("'=HUET FABIENNE;CDI;;"), -1) << table.toStdString();
  EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0600));
}

TEST_F(TableBesideTheCard, AnExportTakesNoBasesPlace) {
  dock().export_to(QString::fromStdString(folder_.file("base")));
  EXPECT_TRUE(until([&] { return clerk_.status().find("c'est une base de fiches") != std::string::npos; }));
  EXPECT_TRUE(store::SqliteDatabase::is_at(folder_.file("base")));
}

TEST_F(TableBesideTheCard, KeepsItsColumnsAndItsPlaceForTheNextWindow) {
  action("Secteur").setChecked(true);
  table().sortByColumn(0, Qt::DescendingOrder);
  const auto kept = window_.layout_now();
  MainWindow next(database_);
  next.resize(1800, 700);
  next.set_layout(kept);
  next.show();
  next.start();
  auto* table = next.findChild<QTableView*>("employees_table");
  EXPECT_TRUE(table->isVisible());
  EXPECT_FALSE(table->isColumnHidden(3));
  EXPECT_EQ(table->horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);
  next.findChild<EmployeesDock*>()->hide();
  MainWindow third(database_);
  third.resize(1800, 700);
  third.set_layout(next.layout_now());
  third.show();
  third.start();
  EXPECT_FALSE(third.findChild<EmployeesDock*>()->isVisible());
}

TEST_F(TableBesideTheCard, OnANarrowWindowItComesWhenCalledAndGoesWhenACardIsOpen) {
  MainWindow narrow(database_);
  narrow.resize(1264, 680);
  narrow.show();
  narrow.start();
  auto* dock = narrow.findChild<EmployeesDock*>();
  EXPECT_FALSE(dock->isVisible());
  Clerk clerk(narrow);
  clerk.type("Txt_Asso", "001");
  for (QAction* action : narrow.findChildren<QAction*>()) {
    if (action->text().remove('&').startsWith("Rechercher")) action->trigger();
  }
  settle();
  EXPECT_TRUE(dock->isVisible());
  EXPECT_EQ(narrow.focusWidget()->objectName(), "employees_filter");
  QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
  QCoreApplication::sendEvent(narrow.focusWidget(), &enter);
  settle();
  EXPECT_FALSE(narrow.component().card_id().isEmpty());
  EXPECT_FALSE(dock->isVisible());
}

}  // namespace
}  // namespace velanor::app
