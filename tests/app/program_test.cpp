// The program with its windows: starts, several databases, settings, the end.
#include "app/velanor/program.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <filesystem>

#include "app/clerk.h"
#include "app/velanor/backups_dialog.h"
#include "app/velanor/new_base_dialog.h"
#include "app/velanor/start_page.h"
#include "store/sqlite/backups.h"
#include "support/as_nobody.h"
#include "support/run_program.h"
#include "velanor/sqlite_database.h"

namespace velanor::app {
namespace {

using screen::Answer;

store::SqliteDatabase::Options created() { return {.missing = store::SqliteDatabase::Missing::kCreate}; }

class ProgramTest : public testing::Test {
 protected:
  ProgramTest() {
    for (const char* variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"})
      qputenv(variable, folder_.path().toUtf8());
    QFile::setPermissions(folder_.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  }
  // A folder of settings that others have not seen: the toolkit looks for it only once.
  static void SetUpTestSuite() {
    static QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
  }
  void SetUp() override {
    QSettings("velanor", "velanor").clear();
    QSettings("Unknown Organization", "velanor").clear();
  }

  QString path(const char* name) const { return folder_.filePath(name); }
  // Demonstration data.
  QString base(const char* name) const {
    store::SqliteDatabase database(path(name).toStdString(), created());
    StoreSink sink([&](auto file, auto id, const auto& record) { database.put(file, id, record); });
    database.in_one_change([&] { demo::fill(sink); });
    return path(name);
  }
  QString empty_base(const char* name) const {
    const store::SqliteDatabase database(path(name).toStdString(), created());
    return path(name);
  }
  static StoreOptions named(const QString& path) {
    StoreOptions options;
    options.url = path.toStdString();
    return options;
  }
  // The first window, on demonstration data.
  MainWindow& start(Program& program, const char* name) const {
    program.start(named(base(name)));
    return *program.windows().front();
  }
  // A further window, as the menu of the first opens it.
  static MainWindow& open(Program& program, const QString& path) {
    const std::size_t before = program.windows().size();
    emit program.windows().front()->open_asked(path);
    EXPECT_TRUE(until([&] { return program.windows().size() > before; })) << path.toStdString();
    return *program.windows().back();
  }
  static std::vector<std::string> titles(const Program& program) {
    std::vector<std::string> titles;
    for (MainWindow* window : program.windows()) titles.push_back(Clerk(*window).title());
    return titles;
  }

  QTemporaryDir folder_;
};

// ---- Several windows.

TEST_F(ProgramTest, ABaseWithoutItsListsIsToldOverTheWindowThatIsOpenAndLosesNothingThere) {
  Program program;
  MainWindow& first = start(program, "fiches.db");
  Clerk clerk(first);
  clerk.open_card("00001");
  clerk.at_next_message([&](qt::MessageSheet& question) {
    emit first.open_asked(empty_base("vide.db"));
    EXPECT_TRUE(until([&] { return first.findChild<QMessageBox*>(); }));
    auto* box = first.findChild<QMessageBox*>();
    EXPECT_TRUE(box->text().contains("vide.db » ne peut pas être ouverte")) << box->text().toStdString();
    box->accept();
    EXPECT_EQ(first.component().open_message(), &question);
    question.button(Answer::No)->click();
  });
  clerk.click("Cmd_Supp");
  EXPECT_EQ(program.windows().size(), 1U);
  EXPECT_EQ(clerk.title(), "00001 HUET FABIENNE – fiches.db – Fiches du personnel");
}

// ---- The start page.

TEST_F(ProgramTest, WithoutABaseTheStartPageIsThereAndAWindowOpensOneInItsPlace) {
  Program program;
  program.start({});
  MainWindow& window = *program.windows().front();
  EXPECT_FALSE(window.has_base());
  EXPECT_TRUE(window.start_page().isVisible());
  emit window.open_asked(base("fiches.db"));
  ASSERT_TRUE(until([&] { return window.has_base(); }));
  EXPECT_EQ(program.windows().size(), 1U);
  Clerk(window).open_card("00001");
}

TEST_F(ProgramTest, WhatFailsAtTheStartIsToldOnTheStartPageWhichGoesOn) {
  for (const char* name : {"absente.db", "vide.db"}) {
    SCOPED_TRACE(name);
    if (QString(name) == "vide.db") empty_base(name);
    Program program;
    program.start(named(path(name)));
    MainWindow& window = *program.windows().front();
    EXPECT_TRUE(window.start_page().isVisible());
    EXPECT_TRUE(
        window.start_page().failure().startsWith("La base « " + path(name) + " » ne peut pas être ouverte"))
        << window.start_page().failure().toStdString();
    emit window.open_asked(base((QString("fiches-") + name).toUtf8()));
    ASSERT_TRUE(until([&] { return window.has_base(); }));
    EXPECT_EQ(window.start_page().failure(), "");
  }
}

// What it reads first is there, and behind that a record is damaged.
TEST_F(ProgramTest, ABaseWhoseComponentDoesNotStartLeavesTheStartPageUsable) {
  const QString broken = base("abimee.db");
  QFile script(path("damage.py"));
  ASSERT_TRUE(script.open(QIODevice::WriteOnly));
  script.write(R"py(
import sqlite3, sys
base = sqlite3.connect(sys.argv[1])
base.execute("UPDATE record SET content = x'41' WHERE id = '001' AND file = "
             "(SELECT number FROM file WHERE name = 'ASSOCIATION')")
base.commit()
)py");
  script.close();
  ASSERT_EQ(
      test::run_program("python3 " + script.fileName().toStdString() + " " + broken.toStdString()).status, 0);
  Program program;
  program.start(named(broken));
  MainWindow& window = *program.windows().front();
  EXPECT_FALSE(window.has_base());
  EXPECT_FALSE(window.start_page().failure().isEmpty());
  emit window.open_asked(base("fiches.db"));
  ASSERT_TRUE(until([&] { return window.has_base(); }));
}

TEST_F(ProgramTest, RecentBasesAreOpenedAndTakenOffByTheKeyboard) {
  const QString away = path("clef/fiches.db"), one = base("une.db");
  Settings().remember(one);
  Settings().remember(away);
  Settings().set_last({});
  Program program;
  program.start({});
  MainWindow& window = *program.windows().front();
  auto& list = *window.findChild<QListWidget*>("start_recent");
  window.activateWindow();
  ASSERT_TRUE(until([&] { return list.hasFocus(); }));
  EXPECT_TRUE(list.item(0)->text().contains("Introuvable")) << list.item(0)->text().toStdString();
  const auto press = [&](Qt::Key key) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(&list, &event);
    settle();
  };
  press(Qt::Key_Return);
  EXPECT_FALSE(window.start_page().failure().isEmpty());
  press(Qt::Key_Delete);
  EXPECT_EQ(Settings().recent(), QStringList{one});
  press(Qt::Key_Return);
  ASSERT_TRUE(until([&] { return window.has_base(); }));
  EXPECT_EQ(Clerk(window).title(), "une.db – Fiches du personnel");
}

TEST_F(ProgramTest, ClosingTheBaseAsksAndLeadsBackToTheStartPageAlsoAtTheNextStart) {
  {
    Program program;
    MainWindow& window = start(program, "fiches.db");
    Clerk clerk(window);
    clerk.open_card("00001");
    clerk.answer_next(Answer::No);
    emit window.base_close_asked();
    ASSERT_TRUE(until([&] { return clerk.said.size() == 1; }));
    settle();
    EXPECT_TRUE(window.has_base());
    clerk.answer_next(Answer::Yes);
    emit window.base_close_asked();
    ASSERT_TRUE(until([&] { return !window.has_base(); }));
    EXPECT_TRUE(window.start_page().isVisible());
    EXPECT_EQ(Clerk(window).title(), "Fiches du personnel");
    window.close();
    EXPECT_TRUE(until([&] { return program.windows().empty(); }));
  }
  Program program;
  program.start({});
  EXPECT_FALSE(program.windows().front()->has_base());
}

TEST_F(ProgramTest, TheExampleIsACopyOfItsOwn) {
  Program program;
  program.start({});
  MainWindow& window = *program.windows().front();
  emit window.example_asked();
  ASSERT_TRUE(until([&] { return window.has_base(); }));
  EXPECT_TRUE(QFileInfo(Settings().recent().front()).fileName().startsWith("exemple-"));
  Clerk(window).open_card("00001");
}

TEST_F(ProgramTest, ANewBaseIsMadeOfTheTablesOfAFolderOrNotAtAll) {
  Program program;
  program.start({});
  MainWindow& window = *program.windows().front();
  QDir().mkpath(path("tableaux"));
  const auto write = [&](const char* name, const QByteArray& text) {
    QFile file(path("tableaux/") + name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
  };
  write("SECTEUR.csv", "id;1\n001;Nord\n001;Sud\n");
  write("notes.csv", "rien\n");
  emit window.new_base_asked();
  ASSERT_TRUE(until([&] { return window.findChild<NewBaseDialog*>(); }));
  QPointer<NewBaseDialog> dialog = window.findChild<NewBaseDialog*>();
  const auto text = [&](const char* name) { return dialog->findChild<QLabel*>(name)->text().toStdString(); };
  const auto go_on = [&] { dialog->findChild<QPushButton*>("new_base_go_on")->click(); };
  dialog->findChild<QLineEdit*>("new_base_path")->setText(base("une.db"));
  go_on();
  EXPECT_EQ(text("new_base_told"), "Ce fichier existe déjà, et n'est pas remplacé. Donnez un autre nom.");
  dialog->findChild<QLineEdit*>("new_base_path")->setText(path("neuve.db"));
  dialog->findChild<QAbstractButton*>("new_tables")->click();
  dialog->findChild<QLineEdit*>("new_base_folder")->setText(path("tableaux"));
  const auto report = [&] {
    return dialog->findChild<QPlainTextEdit*>("new_base_report")->toPlainText().toStdString();
  };
  go_on();
  ASSERT_TRUE(until([&] { return !report().empty(); }));
  EXPECT_NE(report().find("SECTEUR.csv:3 : l'identifiant « 001 » est déjà dans une ligne au-dessus"),
            std::string::npos)
      << report();
  EXPECT_NE(report().find("notes.csv"), std::string::npos);
  go_on();
  ASSERT_TRUE(until([&] { return dialog->findChild<QPushButton*>("new_base_go_on")->isEnabled(); }));
  EXPECT_FALSE(QFile::exists(path("neuve.db")));
  write("SECTEUR.csv", "id;1\n001;Nord\n002;Sud\n");
  go_on();
  ASSERT_TRUE(until([&] { return text("new_base_told").starts_with("Les tableaux sont justes."); }));
  EXPECT_FALSE(QFile::exists(path("neuve.db"))) << "nothing is written before it is wanted";
  go_on();
  ASSERT_TRUE(until([&] { return window.has_base(); }));
  EXPECT_EQ(Clerk(window).title(), "neuve.db – Fiches du personnel");
  store::SqliteDatabase made(path("neuve.db").toStdString());
  EXPECT_EQ(made.OpenFile("SECTEUR")->Read("002")(1), "Sud");
}

// ---- Several bases.

TEST_F(ProgramTest, ABaseThatIsOpenAlreadyComesToTheFront) {
  Program program;
  const QString one = base("une.db");
  program.start(named(one));
  MainWindow& first = *program.windows().front();
  MainWindow& second = open(program, base("deux.db"));
  ASSERT_TRUE(until([&] { return second.isActiveWindow(); }));
  QFile::link(one, path("lien.db"));
  emit second.open_asked(path("lien.db"));
  EXPECT_TRUE(until([&] { return first.isActiveWindow(); }));
  EXPECT_EQ(program.windows().size(), 2U);
}

TEST_F(ProgramTest, WhatCannotBeOpenedIsToldAndNoWindowGoes) {
  Program program;
  program.start(named(base("fiches.db")));
  QFile other(path("lettre.txt"));
  ASSERT_TRUE(other.open(QIODevice::WriteOnly));
  other.write(QByteArray(200, 'x'));
  other.close();
  MainWindow& window = *program.windows().front();
  for (const char* name : {"absente.db", "lettre.txt"}) {
    SCOPED_TRACE(name);
    emit window.open_asked(path(name));
    ASSERT_TRUE(until([&] { return window.findChild<QMessageBox*>(); }));
    auto* box = window.findChild<QMessageBox*>();
    EXPECT_TRUE(box->text().startsWith("La base « " + path(name) + " » ")) << box->text().toStdString();
    box->button(QMessageBox::Ok)->click();
    settle();
  }
  EXPECT_EQ(titles(program), std::vector<std::string>{"fiches.db – Fiches du personnel"});
}

TEST_F(ProgramTest, OfTwoMessagesTheNewestIsAnsweredFirst) {
  Program program;
  MainWindow& first = start(program, "une.db");
  MainWindow& second = open(program, base("deux.db"));
  Clerk one(first), two(second);
  one.open_card("00001");
  two.open_card("00001");
  one.at_next_message([&](qt::MessageSheet& older) {
    two.at_next_message([&](qt::MessageSheet& newer) {
      first.activateWindow();
      QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, "\r");
      QCoreApplication::sendEvent(older.button(Answer::No), &enter);
      first.close();
      EXPECT_TRUE(older.isVisible());
      EXPECT_TRUE(until([&] { return second.isActiveWindow(); }));
      newer.button(Answer::No)->click();
    });
    two.click("Cmd_Supp");
    older.button(Answer::No)->click();
  });
  one.click("Cmd_Supp");
  EXPECT_EQ(titles(program),
            (std::vector<std::string>{"00001 HUET FABIENNE – une.db – Fiches du personnel",
                                      "00001 HUET FABIENNE – deux.db – Fiches du personnel"}));
}

// ---- The end.

TEST_F(ProgramTest, QuittingAsksInEachWindowThatHasAnOpenCard) {
  Program program;
  MainWindow& first = start(program, "une.db");
  MainWindow& second = open(program, base("deux.db"));
  MainWindow& third = open(program, base("trois.db"));
  Clerk one(first), two(second), three(third);
  one.open_card("00001");
  two.open_card("00001");
  one.answer_next(Answer::Yes);
  two.answer_next(Answer::No);
  emit third.quit_asked();
  EXPECT_TRUE(until([&] { return two.said.size() == 1 && program.windows().size() == 2; }));
  EXPECT_EQ(one.said.size(), 1U);
  EXPECT_EQ(two.title(), "00001 HUET FABIENNE – deux.db – Fiches du personnel");
  two.answer_next(Answer::Yes);
  emit third.quit_asked();
  EXPECT_TRUE(until([&] { return program.windows().empty(); }));
}

TEST_F(ProgramTest, QuittingWhileAMessageWaitsEndsItAndGoesOn) {
  Program program;
  MainWindow& first = start(program, "une.db");
  MainWindow& second = open(program, base("deux.db"));
  Clerk one(first), two(second);
  one.open_card("00001");
  one.at_next_message([&](qt::MessageSheet&) {
    one.answer_next(Answer::Yes);
    emit second.quit_asked();
  });
  one.click("Cmd_Supp");
  EXPECT_TRUE(until([&] { return program.windows().empty(); }));
  EXPECT_EQ(one.said.size(), 1U);
}

TEST_F(ProgramTest, ClosingTheLastWindowEndsTheProgramAndOnlyThat) {
  Program program;
  MainWindow& first = start(program, "une.db");
  MainWindow& second = open(program, base("deux.db"));
  bool lived = false;
  QTimer::singleShot(0, &program, [&] {
    first.close();
    until([&] { return program.windows().size() == 1; });
    settle();
    lived = second.isVisible();
    second.close();
  });
  QTimer::singleShot(10'000, &program, [] { QCoreApplication::exit(9); });
  EXPECT_EQ(QCoreApplication::exec(), 0);
  EXPECT_TRUE(lived);
}

// ---- A base that may not be written.

TEST_F(ProgramTest, ABackupTakesThePlaceOfTheBaseWhenThatIsConfirmed) {
  const QString file = base("fiches.db");
  const auto backups = store::sqlite::Backups::beside(file.toStdString());
  Program program;
  MainWindow& first = start(program, "fiches.db");
  ASSERT_TRUE(until([&] { return backups.newest_first().size() == 1; })) << "the day's";
  Clerk(first).open_card("00001");
  Clerk(first).put("Txt_HorMensEtab", "99");
  Clerk(first).click("Cmd_OK");
  const auto take = [&](MainWindow& window, QMessageBox::StandardButton answer) {
    for (QAction* action : window.findChildren<QAction*>()) {
      if (action->text().startsWith("Reprendre")) action->trigger();
    }
    auto* dialog = window.findChild<BackupsDialog*>();
    ASSERT_NE(dialog, nullptr);
    QTimer::singleShot(0, dialog, [&, dialog] {
      auto* question = dialog->findChild<QMessageBox*>();
      EXPECT_EQ(question->defaultButton(), question->button(QMessageBox::No));
      question->button(answer)->click();
    });
    for (auto* button : dialog->findChildren<QPushButton*>()) {
      if (button->text().contains("Reprendre")) button->click();
    }
    dialog->close();
    settle();
  };
  const auto hours = [&] {
    MainWindow& window = *program.windows().front();
    Clerk clerk(window);
    clerk.open_card("00001");
    std::string text = clerk.widget<QLineEdit>("Txt_HorMensEtab").text().toStdString();
    clerk.answer_next(Answer::Yes);
    clerk.click("Cmd_Annul");
    return text;
  };
  take(first, QMessageBox::No);
  EXPECT_EQ(hours(), "99,00");
  {
    const store::SqliteDatabase elsewhere(file.toStdString());
    take(*program.windows().front(), QMessageBox::Yes);
    ASSERT_EQ(program.windows().size(), 1U);
    auto* told = program.windows().front()->findChild<QMessageBox*>();
    ASSERT_NE(told, nullptr);
    EXPECT_TRUE(told->text().contains("un programme s'en sert")) << told->text().toStdString();
    told->accept();
    settle();
    EXPECT_EQ(hours(), "99,00");
  }
  take(*program.windows().front(), QMessageBox::Yes);
  ASSERT_EQ(program.windows().size(), 1U);
  EXPECT_NE(Clerk(*program.windows().front()).status().find("gardée sous « fiches.db.avant-"),
            std::string::npos);
  EXPECT_EQ(hours(), "151,67");
}

TEST_F(ProgramTest, AProtectedBaseIsConsultedAndSaysSo) {
  namespace fs = std::filesystem;
  const QString file = base("fiches.db");
  fs::permissions(file.toStdString(), fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  fs::permissions(folder_.path().toStdString(), fs::perms::all);
  const test::AsNobody nobody;
  Program program;
  program.start(named(file));
  Clerk clerk(*program.windows().front());
  EXPECT_EQ(clerk.title(), "fiches.db – Consultation seule – Fiches du personnel");
  EXPECT_EQ(clerk.mode(), "Consultation seule");
  EXPECT_EQ(clerk.status(),
            "Cette base est protégée en écriture : les fiches se consultent, rien ne peut être enregistré.");
  clerk.open_card("00001");
  EXPECT_EQ(clerk.widget<QLineEdit>("Txt_Etat").text(), "Consultation");
  for (const char* closed : {"Txt_HorMensEtab", "Cmd_OK", "Cmd_Supp", "Cmd_Copier"})
    EXPECT_FALSE(clerk.widget(closed).isEnabled()) << closed;
  EXPECT_EQ(clerk.said, std::vector<std::string>());
}

TEST_F(ProgramTest, TheFirstOpeningOfADayMakesABackupAndOneThatFailsIsTold) {
  const QString file = base("fiches.db");
  const auto backups = store::sqlite::Backups::beside(file.toStdString());
  for (int opening = 0; opening < 2; ++opening) {
    Program program;
    program.start(named(file));
    EXPECT_TRUE(until([&] { return backups.newest_first().size() == 1; }));
  }
  EXPECT_NO_THROW(store::sqlite::verify_backup(backups.newest_first().front().path));
  const QString other = base("autres.db");
  QFile(other + ".sauvegardes").open(QIODevice::WriteOnly);
  Program program;
  program.start(named(other));
  Clerk clerk(*program.windows().front());
  EXPECT_TRUE(until([&] { return !clerk.status().empty(); }));
  EXPECT_EQ(clerk.status().find("La sauvegarde du jour n'a pas été faite. Le dossier de sauvegarde « "), 0u)
      << clerk.status();
}

TEST_F(ProgramTest, ABaseThatOthersCanReadIsRemarkedOn) {
  const QString file = base("fiches.db");
  QFile::setPermissions(file, QFile::permissions(file) | QFile::ReadOther);
  QFile::setPermissions(folder_.path(), QFile::permissions(folder_.path()) | QFile::ExeOther);
  Program program;
  program.start(named(file));
  EXPECT_NE(Clerk(*program.windows().front()).status().find("peut être lue par d'autres utilisateurs"),
            std::string::npos);
}

// ---- From one start to the next.

TEST_F(ProgramTest, TheBaseThatWasInUseLastIsOpenedAgainUnlessOneIsNamed) {
  const QString one = base("une.db"), two = base("deux.db");
  {
    Program program;
    program.start(named(one));
    open(program, two).close();
    program.windows().front()->close();
    EXPECT_TRUE(until([&] { return program.windows().empty(); }));
  }
  {
    Program program;
    program.start({});
    EXPECT_EQ(titles(program), std::vector<std::string>{"une.db – Fiches du personnel"});
  }
  Program program;
  program.start(named(two));
  EXPECT_EQ(titles(program), std::vector<std::string>{"deux.db – Fiches du personnel"});
}

TEST_F(ProgramTest, ALastBaseThatIsAwayIsToldAndStaysTheLast) {
  const QString away = path("clef/fiches.db");
  Settings().remember(away);
  Program program;
  program.start({});
  const MainWindow& window = *program.windows().front();
  EXPECT_TRUE(window.start_page().failure().startsWith("La base « " + away + " » ne peut pas être ouverte."))
      << window.start_page().failure().toStdString();
  EXPECT_EQ(Settings().last(), away);
}

TEST_F(ProgramTest, TheFilesThatAnEarlierVersionRememberedAreTakenOver) {
  const QStringList former{path("une.db"), path("deux.db")};
  QSettings("Unknown Organization", "velanor").setValue("recent", former);
  EXPECT_EQ(Settings().recent(), former);
  EXPECT_EQ(Settings().last(), former.first());
  Settings().remember(path("trois.db"));
  EXPECT_EQ(Settings().recent(), (QStringList{path("trois.db")} + former));
  EXPECT_EQ(QSettings("Unknown Organization", "velanor").value("recent").toStringList(), former);
}

TEST_F(ProgramTest, AWindowStandsWhereTheLastOneStoodAndASecondOneDoesNotCoverIt) {
  const QString one = base("une.db");
  const QRect place(40, 50, 1300, 660);
  {
    Program program;
    program.start(named(one));
    program.windows().front()->setGeometry(place);
    program.windows().front()->close();
    EXPECT_TRUE(until([&] { return program.windows().empty(); }));
  }
  Program program;
  program.start(named(one));
  MainWindow& first = *program.windows().front();
  EXPECT_EQ(first.geometry().topLeft(), place.topLeft());
  MainWindow& second = open(program, base("deux.db"));
  EXPECT_GE(second.y(), first.y() + 20);
  EXPECT_GE(second.x(), first.x() + 20);
}

}  // namespace
}  // namespace velanor::app
