// One window of the program: what it tells of the card, and how it closes.
#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTableView>
#include <QTemporaryDir>
#include <set>

#include "app/clerk.h"
#include "app/velanor/consult_dialog.h"
#include "app/velanor/import_dialog.h"
#include "app/velanor/table_export_dialog.h"
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

// ---- The menus.

class Menu : public OneWindow {
 protected:
  QAction& entry(const QString& text) {
    for (QAction* action : window_.findChildren<QAction*>()) {
      if (action->text().remove('&').startsWith(text)) return *action;
    }
    throw std::logic_error("there is no such entry");
  }
  std::string alive() {
    std::string names;
    for (const char* name :
         {"Nouvelle fiche", "Enregistrer", "Abandonner", "Copier la fiche", "Supprimer la fiche"})
      names += entry(name).isEnabled() ? std::string(name).substr(0, 1) : "-";
    return names;
  }
};

TEST_F(Menu, ACommandIsAliveExactlyWhenItsButtonCanBeClicked) {
  EXPECT_EQ(alive(), "-----");
  clerk_.type("Txt_Asso", "001");
  EXPECT_EQ(alive(), "N----");
  clerk_.type("Txt_Aidant", "00001");
  EXPECT_EQ(alive(), "-EACS");
  clerk_.click("Cmd_AjAct");
  EXPECT_EQ(alive(), "-----") << "a line is being entered";
  clerk_.click("Cmd_AnnulAct");
  EXPECT_EQ(alive(), "-EACS");
  clerk_.at_next_message([&](qt::MessageSheet& question) {
    EXPECT_EQ(alive(), "-----") << "a message waits";
    question.button(Answer::No)->click();
  });
  entry("Supprimer la fiche").trigger();
  EXPECT_EQ(alive(), "-EACS");
  static_cast<screen::ListBox&>(*window_.component().screen().base().find("Lst_DatEffet")).set_index(0);
  clerk_.click("Cmd_Detail");
  ASSERT_NE(window_.component().open_sheet(), nullptr);
  settle();
  EXPECT_EQ(alive(), "-----") << "a form stands above";
}

TEST_F(Menu, SavingLeavesTheFieldFirstAndAbandoningAsks) {
  clerk_.open_card("00001");
  clerk_.type("Txt_DatNais", "99");
  clerk_.answer_next(Answer::Ok);
  entry("Enregistrer").trigger();
  ASSERT_EQ(clerk_.said.size(), 1U) << "the date that was begun is refused";
  EXPECT_EQ(window_.component().state(), control::State::kEditing);
  clerk_.put("Txt_DatNais", "16101975");
  clerk_.put("Txt_HorMensEtab", "99");
  clerk_.answer_next(Answer::No);
  entry("Abandonner").trigger();
  EXPECT_EQ(window_.component().state(), control::State::kEditing);
  entry("Enregistrer").trigger();
  EXPECT_EQ(clerk_.status(), "Fiche 00001 HUET FABIENNE enregistrée");
}

TEST_F(Menu, TheYearIsChangedOnlyWhileNoCardIsOpen) {
  const auto year = [&] { return clerk_.widget<QComboBox>("Cbo_Periode").currentText().toStdString(); };
  clerk_.type("Txt_Asso", "001");
  settle();
  EXPECT_FALSE(entry("Année suivante").isEnabled());
  entry("Année précédente").trigger();
  EXPECT_EQ(year(), "2025");
  settle();
  EXPECT_TRUE(entry("Année suivante").isEnabled());
  clerk_.type("Txt_Aidant", "00001");
  settle();
  EXPECT_FALSE(entry("Année suivante").isEnabled());
  EXPECT_FALSE(entry("Année précédente").isEnabled());
}

// The letters that the component answers are pressed all day.
TEST_F(Menu, NoKeysAreUsedTwiceAndNoLetterIsTheComponents) {
  std::set<QString> seen, letters;
  for (const QAction* action : window_.findChildren<QAction*>()) {
    const QString keys = action->shortcut().toString();
    EXPECT_TRUE(keys.isEmpty() || seen.insert(keys).second) << keys.toStdString();
  }
  // What is chosen from a list of its own has none.
  for (const QAction* bar : window_.menuBar()->actions()) {
    for (const QAction* action : bar->menu()->actions()) {
      const bool has = action->isSeparator() || action->menu() || !action->shortcut().isEmpty();
      EXPECT_TRUE(has || action->text().contains('\t')) << action->text().toStdString();
    }
  }
  const auto letter = [](const QString& text) { return QKeySequence::mnemonic(text).toString(); };
  for (const auto* label : window_.component().findChildren<QLabel*>()) letters.insert(letter(label->text()));
  for (const auto* button : window_.component().findChildren<QAbstractButton*>())
    letters.insert(letter(button->text()));
  for (const auto* bar : window_.component().findChildren<QTabBar*>()) {
    for (int tab = 0; tab < bar->count(); ++tab) letters.insert(letter(bar->tabText(tab)));
  }
  letters.erase(QString());
  ASSERT_GT(letters.size(), 10U);
  for (const QAction* menu : window_.menuBar()->actions()) {
    const QString own = letter(menu->text());
    EXPECT_TRUE(own.isEmpty() || letters.insert(own).second) << menu->text().toStdString();
  }
}

TEST_F(Menu, WhatWasToldOfAWaitingMessageIsWipedWithIt) {
  clerk_.open_card("00001");
  clerk_.at_next_message([&](qt::MessageSheet& question) {
    entry("Consulter").trigger();
    EXPECT_EQ(clerk_.status(), "Terminez d'abord ce qui est ouvert sur la fiche.");
    question.button(Answer::No)->click();
  });
  clerk_.click("Cmd_Supp");
  settle();
  EXPECT_EQ(clerk_.status(), "");
}

// ---- Tables.

TEST_F(Menu, ATableIsJudgedThenImportedInOneGoAndNotUnderAnOpenCard) {
  const QTemporaryDir folder;
  const QString path = folder.filePath("SECTEUR.csv");
  const auto write = [&](const QByteArray& text) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
  };
  clerk_.open_card("00001");
  entry("Importer une table").trigger();
  EXPECT_EQ(window_.findChild<ImportDialog*>(), nullptr);
  clerk_.answer_next(Answer::Yes);
  clerk_.click("Cmd_Annul");
  entry("Importer une table").trigger();
  auto* dialog = window_.findChild<ImportDialog*>();
  ASSERT_NE(dialog, nullptr);
  dialog->findChild<QLineEdit*>("import_path")->setText(path);
  EXPECT_EQ(dialog->findChild<QComboBox*>("import_file")->currentData().toString(), "SECTEUR");
  auto& go_on = *dialog->findChild<QPushButton*>("import_go_on");
  const auto report = [&] {
    return dialog->findChild<QPlainTextEdit*>("import_report")->toPlainText().toStdString();
  };
  write("id;1\n001;Centre\n001;Bourg\n");
  go_on.click();
  EXPECT_NE(report().find("SECTEUR.csv:3 : l'identifiant « 001 » est déjà"), std::string::npos) << report();
  write("id;1\n001;Le bourg\n777;Littoral\n");
  go_on.click();
  EXPECT_NE(report().find("SECTEUR.csv : 1 enregistrement à créer, 1 à modifier, 0 inchangé"),
            std::string::npos)
      << report();
  EXPECT_NE(report().find("crée 777"), std::string::npos) << report();
  EXPECT_FALSE(database_.OpenFile("SECTEUR")->find("777")) << "a rehearsal writes nothing";
  bool reopened = false;
  QObject::connect(&window_, &MainWindow::reopen_asked, &window_, [&] { reopened = true; });
  go_on.click();
  EXPECT_EQ(database_.OpenFile("SECTEUR")->Read("777")(1), "Littoral");
  EXPECT_TRUE(reopened);
  dialog->close();
}

TEST_F(Menu, ATableIsConsultedAndFilteredAndExported) {
  entry("Consulter une table").trigger();
  auto* dialog = window_.findChild<ConsultDialog*>();
  ASSERT_NE(dialog, nullptr);
  auto& file = *dialog->findChild<QComboBox*>("table_file");
  EXPECT_EQ(file.findData("VELANORO"), -1);
  file.setCurrentIndex(file.findData("COMMUNES"));
  dialog->findChild<QLineEdit*>("table_filter")->setText("orleans 45");
  const auto* rows = dialog->findChild<QTableView*>("table_rows")->model();
  ASSERT_GT(rows->rowCount(), 0);
  ASSERT_LT(rows->rowCount(), 50);
  dialog->close();
  settle();
  const QTemporaryDir folder;
  TableExportDialog out({{}, database_}, database_, nullptr);
  out.setAttribute(Qt::WA_DeleteOnClose, false);
  auto& choice = *out.findChild<QComboBox*>("export_file");
  choice.setCurrentIndex(choice.findData("SECTEUR"));
  out.export_to(folder.filePath("s.csv"));
  QFile table(folder.filePath("s.csv"));
  ASSERT_TRUE(table.open(QIODevice::ReadOnly));
  EXPECT_TRUE(QString::fromUtf8(table.readAll()).contains("002;Nord"));
  constexpr auto kOthers = QFileDevice::ReadGroup | QFileDevice::ReadOther;
  EXPECT_FALSE(table.permissions() & kOthers);
}

}  // namespace
}  // namespace velanor::app
