// The program and its windows on a server: the dialog, what is remembered, what others save.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QCompleter>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <fstream>

#include "app/clerk.h"
#include "app/velanor/program.h"
#include "app/velanor/server_dialog.h"
#include "postgres/server.h"
#include "support/run_program.h"

namespace velanor::app {
namespace {

TEST(ServerAddressTest, IsTheSameBackAndForth) {
  const ServerAddress addresses[] = {
      {"serveur", "", "fiches", "anne", "", "verify-full", ""},
      {"10.0.0.1", "5433", "fiches", "", "", "", ""},
      {"::1", "5433", "fiches", "anne", "s3cret", "require", ""},
      {"/run/postgresql", "", "fiches de paie/é?&", "a@b:c%", "p@ss:/?#[]%&= é", "disable",
       "connect_timeout=3"},
  };
  for (const ServerAddress& address : addresses) {
    const QString url = address.url_with_password();
    SCOPED_TRACE(url.toStdString());
    const ServerAddress back = ServerAddress::of(url);
    EXPECT_EQ(back.url_with_password(), url);
    for (const auto part :
         {&ServerAddress::host, &ServerAddress::port, &ServerAddress::base, &ServerAddress::user,
          &ServerAddress::password, &ServerAddress::tls, &ServerAddress::more})
      EXPECT_EQ(back.*part, address.*part);
    EXPECT_EQ(ServerAddress::of(address.url()).password, "");
  }
  EXPECT_EQ(ServerAddress::of("postgresql:///fiches?host=/run&password=x&user=anne").url(),
            "postgresql://anne@%2Frun/fiches");
}

class ServerWindow : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    static QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
  }
  ServerWindow() {
    for (const char* variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"})
      qputenv(variable, folder_.path().toUtf8());
    QFile::setPermissions(folder_.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QSettings("velanor", "velanor").clear();
  }
  void SetUp() override {
    static const std::string filled = demonstration();
    base_ = server_.new_base(filled);
  }
  // Filled once; of the towns, which are many, with some.
  static std::string demonstration() {
    const std::string base = store::Server::instance().new_base();
    const auto database = store::open_base(base);
    StoreSink sink([&](auto file, auto id, const auto& record) {
      if (file != "COMMUNES" || std::atoi(std::string(id).c_str()) % 100 == 0)
        database->put(file, id, record);
    });
    database->in_one_change([&] { demo::fill(sink); });
    return base;
  }
  QString url(const std::string& user = "clerk") const {
    return QString::fromStdString(server_.url(base_, user));
  }
  static StoreOptions named(const QString& url) {
    StoreOptions options;
    options.url = url.toStdString();
    return options;
  }
  // The dialog that "Se connecter à un serveur…" opens over a window.
  static ServerDialog& ask(MainWindow& window) {
    for (QAction* action : window.findChildren<QAction*>()) {
      if (action->text().contains("serveur")) action->trigger();
    }
    ServerDialog* dialog = nullptr;
    EXPECT_TRUE(until([&] { return (dialog = window.findChild<ServerDialog*>()) != nullptr; }));
    return *dialog;
  }
  static QLineEdit& line(ServerDialog& dialog, const char* name) {
    return *dialog.findChild<QLineEdit*>(name);
  }
  static std::string failure_in(ServerDialog& dialog) {
    auto* label = dialog.findChild<QLabel*>("failure");
    return label->isHidden() ? "" : label->text().toStdString();
  }
  static void connect(ServerDialog& dialog) { dialog.findChild<QPushButton*>("connect")->click(); }

  QTemporaryDir folder_;
  store::Server& server_ = store::Server::instance();
  std::string base_;
};

TEST_F(ServerWindow, TheDialogKeepsWhatWasTypedTellsWhatFailedAndForgetsThePassword) {
  Program program;
  program.start(named(url()));
  MainWindow& first = *program.windows().front();
  EXPECT_NE(Clerk(first).title().find(base_ + " sur "), std::string::npos) << Clerk(first).title();
  ServerDialog& dialog = ask(first);
  line(dialog, "host").setText(QString::fromStdString(server_.folder()));
  line(dialog, "base").setText("absente");
  line(dialog, "user").setText("guarded");
  dialog.findChild<QComboBox*>("tls")->setCurrentIndex(3);
  const struct {
    const char *field, *text, *told;
  } attempts[] = {
      {"password", "", "il faut un mot de passe"},
      {"password", "wrong", "le mot de passe n'est pas celui de l'utilisateur"},
      {"password", "s3cret word/@", "cette base n'existe pas sur le serveur"},
  };
  for (const auto& [field, text, told] : attempts) {
    SCOPED_TRACE(told);
    line(dialog, field).setText(text);
    connect(dialog);
    EXPECT_NE(failure_in(dialog).find(told), std::string::npos) << failure_in(dialog);
    EXPECT_EQ(failure_in(dialog).find("s3cret"), std::string::npos);
    EXPECT_EQ(line(dialog, "base").text(), "absente");
    EXPECT_EQ(line(dialog, "password").text(), text);
    EXPECT_TRUE(dialog.isVisible() && dialog.isEnabled());
  }
  line(dialog, "base").setText(QString::fromStdString(base_));
  connect(dialog);
  ASSERT_EQ(program.windows().size(), 2u);
  EXPECT_TRUE(until([&] { return Clerk(*program.windows().back()).mode().empty(); }));
  Clerk clerk(*program.windows().back());
  clerk.open_card("00001");
  settle();
  ServerDialog& again = ask(first);
  EXPECT_EQ(line(again, "user").text(), "guarded");
  EXPECT_EQ(line(again, "base").text().toStdString(), base_);
  EXPECT_EQ(line(again, "password").text(), "");
  EXPECT_EQ(again.findChild<QComboBox*>("tls")->currentIndex(), 3);
  const QSettings settings("velanor", "velanor");
  for (const QString& key : settings.allKeys())
    EXPECT_FALSE(settings.value(key).toStringList().join(' ').contains("s3cret")) << key.toStdString();
  EXPECT_TRUE(settings.value("recent").toStringList().first().contains("guarded@"));
}

TEST_F(ServerWindow, TheProgramOpensTheUrlThatItIsGiven) {
  const std::string scenario = folder_.filePath("scenario").toStdString();
  std::ofstream(scenario)
      << "init\ntype Txt_Asso 001\ntype Txt_Aidant 00001\nexpect Txt_NomAidant text \"HUET FABIENNE\"\n";
  const auto played = test::run_program("QT_QPA_PLATFORM=offscreen " VELANOR " '" + url().toStdString() +
                                        "' --play " + scenario);
  EXPECT_EQ(played.status, 0) << played.output;
  const auto refused = test::run_program("QT_QPA_PLATFORM=offscreen " VELANOR " '" +
                                         url("stranger").toStdString() + "' --play " + scenario);
  EXPECT_EQ(refused.status, 1);
  EXPECT_NE(refused.output.find("vous n'en avez pas le droit"), std::string::npos) << refused.output;
}

TEST_F(ServerWindow, OneThatIsOpenAlreadyComesToTheFront) {
  Program program;
  program.start(named(url()));
  emit program.windows().front()->open_asked(ServerAddress::of(url()).url());
  settle();
  EXPECT_EQ(program.windows().size(), 1u);
}

TEST_F(ServerWindow, WhatAnotherClerkSavesIsToldQuietlyUnderWhatIsBeingTyped) {
  Program program;
  program.start(named(url("clerk")));
  MainWindow& window = *program.windows().front();
  Clerk clerk(window);
  clerk.open_card("00001");
  clerk.put("Txt_NomAidant", "HUET FABIENN");
  auto& name = clerk.widget<QLineEdit>("Txt_NomAidant");
  name.setFocus();
  settle();
  name.setSelection(2, 3);
  const int employees = clerk.widget<QComboBox>("Cbo_Aidant").count();

  store::PostgresDatabase anne(server_.url(base_, "anne"));
  const auto cards = anne.OpenFile("VELANORO");
  const std::string id = window.component().card_id().toStdString();
  store::DbRecord card = cards->Read(id);
  card.set(2, "9900");
  cards->write(id, card);
  cards->write("99998" + id.substr(5), card);
  EXPECT_TRUE(until([&] {
    return clerk.status().find("enregistrée sur un autre poste (anne)") != std::string::npos;
  })) << clerk.status();
  EXPECT_TRUE(until([&] { return clerk.widget<QComboBox>("Cbo_Aidant").count() == employees + 1; }));
  EXPECT_EQ(name.text(), "HUET FABIENN");
  EXPECT_EQ(name.selectedText(), "ET ");
  EXPECT_EQ(window.focusWidget(), &name);
  EXPECT_EQ(window.component().open_message(), nullptr);

  clerk.answer_next(screen::Answer::Ok);
  clerk.click("Cmd_OK");
  EXPECT_EQ(clerk.said.size(), 1u) << "the two saves are put together";
  EXPECT_EQ(clerk.status(), "Fiche 00001 HUET FABIENN enregistrée");
  const auto together = cards->Read(id);
  EXPECT_EQ(together(1), "HUET FABIENN");
  EXPECT_EQ(together(2), "9900");
  settle();
  EXPECT_EQ(clerk.status(), "Fiche 00001 HUET FABIENN enregistrée") << "one's own save is no news";
}

TEST_F(ServerWindow, NewsWaitForTheAnswerToAMessage) {
  Program program;
  program.start(named(url("clerk")));
  Clerk clerk(*program.windows().front());
  clerk.open_card("00001");
  store::PostgresDatabase anne(server_.url(base_, "anne"));
  bool quiet = false;
  clerk.at_next_message([&](qt::MessageSheet& sheet) {
    const std::string id = program.windows().front()->component().card_id().toStdString();
    anne.OpenFile("VELANORO")->DeleteRecord(id);
    QDeadlineTimer while_it_waits(600);
    while (!while_it_waits.hasExpired()) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    quiet = clerk.status().empty();
    emit sheet.answered(screen::Answer::No);
  });
  clerk.click("Cmd_Annul");
  EXPECT_TRUE(quiet) << clerk.status();
  EXPECT_TRUE(
      until([&] { return clerk.status().find("supprimée sur un autre poste") != std::string::npos; }));
}

}  // namespace
}  // namespace velanor::app
