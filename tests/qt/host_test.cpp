// The widget in the hands of its host: what it tells, how it is led, what it shows of what the host does.
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMetaProperty>
#include <QTimer>
#include <QVariant>

#include "qt/action_button.h"
#include "velanor/hand.h"
#include "window_test.h"

namespace velanor::qt {
namespace {

using control::State;
using Outcome = control::Opening::Outcome;
using Told = std::vector<std::string>;

const QString kMartin = QStringLiteral("00010 MARTIN JEANNE");
const QString kMartinId = QStringLiteral("000100012026");

class HostTest : public WindowTest {
 protected:
  screen::Hand hand() { return screen::Hand(widget_.screen()); }
  template <typename Control>
  Control& control(const char* name) {
    return dynamic_cast<Control&>(*widget_.screen().base().find(name));
  }
  QString shown_text(const char* name) { return widget<QLineEdit>(name).text(); }
  // What the widget tells from now on, a line a signal.
  void hear() {
    using Widget = ControleVelanorWidget;
    const auto note = [this](const QString& line) { told_.push_back(line.toStdString()); };
    QObject::connect(&widget_, &Widget::card_opened,
                     [=](auto id, auto title) { note("opened " + id + " " + title); });
    QObject::connect(&widget_, &Widget::card_saved,
                     [=](auto id, auto title) { note("saved " + id + " " + title); });
    QObject::connect(&widget_, &Widget::card_deleted,
                     [=](auto id, auto title) { note("deleted " + id + " " + title); });
    QObject::connect(&widget_, &Widget::card_copied, [=](auto id, auto title, auto copy) {
      note("copied " + id + " " + title + " to " + copy);
    });
    QObject::connect(&widget_, &Widget::card_closed,
                     [=](auto id, auto title) { note("closed " + id + " " + title); });
    QObject::connect(&widget_, &Widget::state_changed,
                     [=](State state) { note("state " + QString::number(static_cast<int>(state))); });
    QObject::connect(&widget_, &Widget::card_id_changed, [=](auto id) { note("id " + id); });
    QObject::connect(&widget_, &Widget::card_title_changed, [=](auto title) { note("title " + title); });
    QObject::connect(&widget_, &Widget::modified_changed,
                     [=](bool on) { note(on ? "modified" : "unmodified"); });
  }
  Told take() { return std::exchange(told_, {}); }

  Told told_;
};

TEST_F(HostTest, WhatBecomesOfCardsIsToldAndEachPropertyOnceWhereItChanges) {
  start();
  hear();
  type("Txt_Asso", "001");
  EXPECT_EQ(take(), Told());
  type("Txt_Aidant", "00010");
  EXPECT_EQ(take(), (Told{"opened 000100012026 00010 MARTIN JEANNE", "state 2", "id 000100012026",
                          "title 00010 MARTIN JEANNE"}));
  type("Txt_NomAidant", "X");
  EXPECT_EQ(take(), (Told{"title 00010 MARTIN JEANNEX", "modified"}));
  click("Cmd_Copier");
  EXPECT_EQ(take(), Told{"copied 000100012026 00010 MARTIN JEANNE to 999990012026"});
  click("Cmd_OK");
  EXPECT_EQ(take(),
            (Told{"saved 000100012026 00010 MARTIN JEANNEX", "closed 000100012026 00010 MARTIN JEANNEX",
                  "state 0", "id ", "title ", "unmodified"}));
}

TEST_F(HostTest, ThePropertiesReadAsTheyAreTold) {
  open_card();
  EXPECT_EQ(widget_.property("state").value<State>(), State::kEditing);
  EXPECT_EQ(widget_.property("cardId").toString(), kMartinId);
  EXPECT_EQ(widget_.property("cardTitle").toString(), kMartin);
  EXPECT_FALSE(widget_.property("modified").toBool());
  EXPECT_EQ(hand().replace_text(control<screen::TextBox>("Txt_HorMensEtab"), "140"), "");
  EXPECT_TRUE(widget_.property("modified").toBool());
  const QMetaObject* meta = widget_.metaObject();
  for (const char* name : {"state", "cardId", "cardTitle", "modified"})
    EXPECT_TRUE(meta->property(meta->indexOfProperty(name)).hasNotifySignal()) << name;
}

// ---- What the host does.

TEST_F(HostTest, AnActOfTheHostsShowsWhenItIsOver) {
  start();
  hear();
  EXPECT_EQ(hand().type(control<screen::TextBox>("Txt_Asso"), "001"), "");
  EXPECT_EQ(shown_text("Txt_Asso"), "001");
  EXPECT_EQ(hand().type(control<screen::TextBox>("Txt_Aidant"), "00010"), "");
  EXPECT_EQ(shown_text("Txt_HorMensEtab"), "151,67");
  EXPECT_EQ(take().size(), 4U);
  EXPECT_EQ(hand().show_page(1), "");
  EXPECT_EQ(hand().pick(control<screen::ListBox>("Lst_DatEffet"), 0), "");
  EXPECT_EQ(hand().click(control<screen::CommandButton>("Cmd_Detail")), "");
  ASSERT_NE(widget_.open_sheet(), nullptr);
  EXPECT_TRUE(widget_.open_sheet()->isAncestorOf(widget_.window()->focusWidget()));
  // The user goes on from there.
  click("Cmd_Retour");
  EXPECT_EQ(widget_.open_sheet(), nullptr);
}

TEST_F(HostTest, WhatTheHostWritesIntoAControlShowsByItself) {
  open_card();
  hear();
  control<screen::TextBox>("Txt_HorMensEtab").set_text("140,00");
  control<screen::TextBox>("Txt_PlafSecu").set_text("1,00");
  QCoreApplication::processEvents();
  EXPECT_EQ(shown_text("Txt_HorMensEtab"), "140,00");
  EXPECT_EQ(shown_text("Txt_PlafSecu"), "1,00");
  EXPECT_EQ(take(), Told{"modified"});
}

TEST_F(HostTest, AFailureOfAnActOfTheHostsReachesTheHostAlone) {
  open_card();
  EXPECT_EQ(hand().replace_text(control<screen::TextBox>("Txt_PlafSecu"), "1,00"), "");
  database_.fail_writes(true);
  int failures = 0;
  widget_.set_failure_handler([&](auto) { ++failures; });
  EXPECT_THROW(hand().click(control<screen::CommandButton>("Cmd_OK")), store::DbError);
  EXPECT_EQ(failures, 0);
  EXPECT_EQ(shown_text("Txt_HorMensEtab"), "151,67");
}

TEST_F(HostTest, ACardIsOpenedAndItsQuestionIsAMessage) {
  start();
  EXPECT_TRUE(widget_.open("001", "2026", "00010").is_open());
  EXPECT_EQ(shown_text("Txt_NomAidant"), "MARTIN JEANNE");
  type("Txt_HorMensEtab", "1");
  screen::Answer answer = screen::Answer::No;
  const auto look = [&](MessageSheet& sheet) {
    EXPECT_EQ(sheet.message().text, "Voulez-vous quitter cette création ?");
    EXPECT_EQ(widget_.open("001", "2026", "00010").outcome, Outcome::kBusy);
    sheet.button(answer)->click();
  };
  at_next_message(look);
  EXPECT_EQ(widget_.open("001", "2026", "00020").outcome, Outcome::kKept);
  EXPECT_EQ(widget_.card_id(), kMartinId);
  answer = screen::Answer::Yes;
  at_next_message(look);
  EXPECT_TRUE(widget_.open("001", "2026", "00020").is_open());
  EXPECT_EQ(shown_text("Txt_NomAidant"), "DURAND PAUL");
  EXPECT_EQ(widget_.open("001", "2026", "00099").why,
            "L'entité 001 n'a pas de fiche « 00099 » pour l'année 2026.");
}

TEST_F(HostTest, NothingIsOpenedWhileAMessageOfTheHostsWaits) {
  start();
  at_next_message(
      [&](MessageSheet&) { EXPECT_EQ(widget_.open("001", "2026", "00010").outcome, Outcome::kBusy); });
  widget_.ask({.title = "Hôte", .text = "Oui ?", .buttons = screen::Buttons::YesNo});
  EXPECT_EQ(widget_.state(), State::kNone);
}

TEST_F(HostTest, ASlotMayOpenTheNextCard) {
  open_card();
  QObject::connect(&widget_, &ControleVelanorWidget::card_saved, &widget_,
                   [&] { EXPECT_TRUE(widget_.open("001", "2026", "00020").is_open()); });
  click("Cmd_OK");
  EXPECT_EQ(widget_.card_title(), "00020 DURAND PAUL");
  EXPECT_EQ(shown_text("Txt_NomAidant"), "DURAND PAUL");
  EXPECT_EQ(told(), Told());
}

TEST_F(HostTest, AMessageIsOpenedAndClosed) {
  open_card();
  int waiting = 0;
  QObject::connect(&widget_, &ControleVelanorWidget::message_opened, [&] { ++waiting; });
  QObject::connect(&widget_, &ControleVelanorWidget::message_closed, [&] {
    --waiting;
    EXPECT_EQ(widget_.open_message(), nullptr);
  });
  at_next_message([&](MessageSheet&) { EXPECT_EQ(waiting, 1); });
  click("Cmd_Supp");
  EXPECT_EQ(waiting, 0);
}

TEST_F(HostTest, AClockOfTheHostsCompletesDates) {
  widget_.set_clock([] { return entry::Date{15, 3, 2031}; });
  open_card();
  EXPECT_EQ(hand().type(control<screen::TextBox>("Txt_DatFin"), "7"), "");
  EXPECT_EQ(hand().leave(), "");
  EXPECT_EQ(shown_text("Txt_DatFin"), "07/03/2031");
}

// ---- A start that fails.

class NoStartTest : public HostTest {
 protected:
  QLabel* sentence() {
    auto* label = widget_.findChild<QLabel*>("no_start");
    return label && label->isVisible() ? label : nullptr;
  }
};

TEST_F(NoStartTest, IsSaidOnTheWidgetWhichTakesNoInputThen) {
  memory_.remove("TABLES", "QUALIF");
  EXPECT_THROW(start(), store::DbError);
  ASSERT_NE(sentence(), nullptr);
  EXPECT_EQ(
      sentence()->text().toStdString().find("Les fiches du personnel ne peuvent pas être affichées.\n\n"),
      0U);
  EXPECT_NE(sentence()->text().toStdString().find("QUALIF"), std::string::npos)
      << sentence()->text().toStdString();
  EXPECT_EQ(told(), Told()) << "a message box";
  EXPECT_FALSE(widget<QLineEdit>("Txt_Asso").isVisible());
  EXPECT_EQ(widget_.state(), State::kNone);
  EXPECT_EQ(widget_.open("001", "2026", "00010").outcome, Outcome::kNotStarted);
  type("Txt_Asso", "001");
  press(Qt::Key_Escape);
  press(Qt::Key_Tab);
  EXPECT_EQ(text("Txt_Asso"), "");
  EXPECT_THROW(widget_.init(), std::logic_error);
  EXPECT_NE(sentence(), nullptr);
}

TEST_F(NoStartTest, AHostThatForgotItsDatabaseMayBringIt) {
  widget_.show();
  EXPECT_THROW(widget_.init(), std::logic_error);
  ASSERT_NE(sentence(), nullptr);
  start();
  EXPECT_EQ(sentence(), nullptr);
  type("Txt_Asso", "001");
  EXPECT_EQ(shown_text("Txt_Asso"), "001");
}

TEST_F(NoStartTest, ASecondStartOfAWidgetAtWorkDisturbsNothing) {
  open_card();
  EXPECT_THROW(widget_.init(), std::logic_error);
  EXPECT_EQ(sentence(), nullptr);
  EXPECT_EQ(widget_.card_id(), kMartinId);
  type("Txt_HorMensEtab", "1");
  EXPECT_TRUE(widget_.modified());
}

}  // namespace
}  // namespace velanor::qt
