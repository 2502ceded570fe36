// What reaches the widgets past the keyboard: pasted and assistive values, sheets, long lists.
#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QCompleter>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QTabWidget>
#include <set>

#include "qt/action_button.h"
#include "qt/strings.h"
#include "velanor/hand.h"
#include "window_test.h"

namespace velanor::qt {
namespace {

using WidgetTest = WindowTest;

TEST_F(WidgetTest, PastedValueIsJudgedAsIfItWereTyped) {
  open_card();
  paste("Txt_HorMensEtab", "1a5x0.5");
  EXPECT_EQ(text("Txt_HorMensEtab"), "150,5");
  EXPECT_EQ(widget<QLineEdit>("Txt_HorMensEtab").text().toStdString(), "150,5");
}

TEST_F(WidgetTest, AssistiveValueIsJudgedToo) {
  open_card();
  widget<QLineEdit>("Txt_HorMensEtab").setText("12b,3,4");
  EXPECT_EQ(text("Txt_HorMensEtab"), "12,34");
  EXPECT_EQ(top().focus()->name(), "Txt_HorMensEtab") << "or nobody would judge it when it is left";
}

TEST_F(WidgetTest, KeyReplacesTheSelectionOfAFieldEnteredByTab) {
  open_card();
  type("Txt_HorMensEtab", ",5");
  EXPECT_EQ(text("Txt_HorMensEtab"), ",5");
}

TEST_F(WidgetTest, AStrayKeyReplacesNothingOnACardThatHasJustOpened) {
  open_card();
  ASSERT_EQ(text("Txt_NomAidant"), "MARTIN JEANNE");
  auto& name = widget<QLineEdit>("Txt_NomAidant");
  ASSERT_TRUE(name.hasFocus());
  EXPECT_FALSE(name.hasSelectedText());
  EXPECT_EQ(name.cursorPosition(), 13);
  press(Qt::Key_Tab);
  press(Qt::Key_Backtab);
  EXPECT_EQ(name.selectedText(), "MARTIN JEANNE");
}

// Chosen by her name, and gone on from there: the same.
TEST_F(WidgetTest, AStepThatOpensACardSelectsNothing) {
  start();
  type("Txt_Asso", "001");
  type("Cbo_Aidant", "MARTIN JEANNE");
  press(Qt::Key_Tab);
  ASSERT_EQ(text("Txt_Etat"), "Modification");
  const auto* field = qobject_cast<QLineEdit*>(widget_.window()->focusWidget());
  EXPECT_TRUE(!field || !field->hasSelectedText());
}

TEST_F(WidgetTest, WhatWasRefusedIsThereToBeTypedOver) {
  open_card();
  type("Txt_DatNais", "320126");
  press(Qt::Key_Tab);
  auto& date = widget<QLineEdit>("Txt_DatNais");
  EXPECT_EQ(told().size(), 1U);
  ASSERT_TRUE(date.hasFocus());
  EXPECT_EQ(date.selectedText(), date.text());
}

TEST_F(WidgetTest, AQuestionGivesTheFieldBackAsItWas) {
  open_card();
  widget<QLineEdit>("Txt_NomAidant").selectAll();
  type("Txt_NomAidant", "DUP");
  press(Qt::Key_Escape);
  ASSERT_EQ(told().size(), 1U);
  type_on("ONT");
  EXPECT_EQ(text("Txt_NomAidant"), "DUPONT");
}

TEST_F(WidgetTest, WhatWasTypedOverASelectionCanBeTakenBack) {
  open_card();
  const auto expect_back = [&](const char* name, const char* typed, const char* stood, QLineEdit& edit) {
    SCOPED_TRACE(name);
    ASSERT_EQ(text(name), stood);
    edit.selectAll();
    type(name, typed);
    EXPECT_NE(text(name), stood);
    press(Qt::Key_Z, Qt::ControlModifier, "\x1a");
    EXPECT_EQ(text(name), stood);
    EXPECT_EQ(edit.text().toStdString(), stood);
    press(Qt::Key_Tab);
    EXPECT_EQ(told().size(), 0U);
  };
  expect_back("Txt_NomAidant", "x", "MARTIN JEANNE", widget<QLineEdit>("Txt_NomAidant"));
  expect_back("Txt_HorMensEtab", "12,5", "151,67", widget<QLineEdit>("Txt_HorMensEtab"));
  expect_back("Txt_DatNais", "5", "01/01/1988", widget<QLineEdit>("Txt_DatNais"));
  expect_back("Cbo_Com", "Eze", "Albi", *widget<QComboBox>("Cbo_Com").lineEdit());
}

// The history of a field is that of one visit: behind it stands another card.
TEST_F(WidgetTest, NothingIsTakenBackFromTheCardBefore) {
  open_card();
  widget<QLineEdit>("Txt_NomAidant").selectAll();
  type("Txt_NomAidant", "DUPONT");
  press(Qt::Key_Tab);
  widget<QLineEdit>("Txt_NomAidant").setFocus(Qt::TabFocusReason);
  press(Qt::Key_Z, Qt::ControlModifier, "\x1a");
  EXPECT_EQ(text("Txt_NomAidant"), "DUPONT");
}

TEST_F(WidgetTest, LongTextsShowTheirBeginningWhereNobodyWorks) {
  open_card();
  widget<QLineEdit>("Txt_NomAidant").selectAll();
  type("Txt_NomAidant", "Un nom qui est bien trop long pour sa zone");
  EXPECT_EQ(widget<QLineEdit>("Txt_NomAidant").cursorPosition(), 42);
  press(Qt::Key_Tab);
  EXPECT_EQ(widget<QLineEdit>("Txt_NomAidant").cursorPosition(), 0);
  EXPECT_EQ(widget<QComboBox>("Cbo_Etab").lineEdit()->cursorPosition(), 0);
}

TEST_F(WidgetTest, APageTurnedByTheKeyboardOpensWhereTheRulesPutTheFocus) {
  open_card();
  auto& pages = widget<QTabWidget>("Ong_FichPers");
  widget<QWidget>("Opt_CDI").setFocus(Qt::TabFocusReason);
  pages.setCurrentIndex(1);
  EXPECT_EQ(QApplication::focusWidget(), &widget<QWidget>("Cmd_AjDetail"));
  pages.setCurrentIndex(0);
  EXPECT_EQ(QApplication::focusWidget(), &widget<QWidget>("Cmd_AjAct"));
  std::string told;
  at_next_message([&](MessageSheet& sheet) { told = sheet.message().text; });
  type("Txt_DatNais", "320126");
  pages.setCurrentIndex(1);
  EXPECT_NE(told, "");
  EXPECT_EQ(pages.currentIndex(), 0);
  EXPECT_EQ(QApplication::focusWidget(), &widget<QWidget>("Txt_DatNais"));
}

// The window of a list that hangs over ours comes and goes later than the keys do.
TEST_F(WidgetTest, AWindowThatComesBackLateDoesNotTakeTheFocusBack) {
  open_card();
  auto& left = widget<QLineEdit>("Txt_CodEtab");
  left.setFocus(Qt::TabFocusReason);
  auto& field = widget<QLineEdit>("Txt_HorMensEtab");
  type("Txt_HorMensEtab", "1");
  left.setFocus(Qt::ActiveWindowFocusReason);
  EXPECT_EQ(QApplication::focusWidget(), &field);
  type_on("5");
  EXPECT_EQ(text("Txt_HorMensEtab"), "15");
}

TEST_F(WidgetTest, NothingBehindAMessageAnswers) {
  open_card();
  int buttons = 0;
  at_next_message([&](MessageSheet& sheet) {
    widget<QLineEdit>("Txt_HorMensEtab").setText("1");
    widget<QAbstractButton>("Cmd_Annul").click();
    widget<QAbstractButton>("Cmd_Supp").click();
    widget<QLineEdit>("Txt_HorMensEtab").setFocus(Qt::OtherFocusReason);
    buttons = static_cast<int>(sheet.findChildren<ActionButton*>().size());
  });
  widget<QAbstractButton>("Cmd_Supp").click();
  EXPECT_EQ(buttons, 2);
  EXPECT_EQ(text("Txt_HorMensEtab"), "151,67");
  EXPECT_EQ(widget<QLineEdit>("Txt_HorMensEtab").text().toStdString(), "151,67");
  EXPECT_EQ(text("Txt_Etat"), "Modification");
}

TEST_F(WidgetTest, FailureOfTheStoreIsToldAndTheCardStays) {
  open_card();
  std::string told;
  at_next_message([&](MessageSheet& sheet) { told = sheet.message().text; });
  database_.fail_writes(true);
  type("Txt_HorMensEtab", "150");
  widget<QAbstractButton>("Cmd_OK").click();
  EXPECT_EQ(told, store::kPlannedFailure);
  EXPECT_EQ(text("Txt_Etat"), "Modification");
  EXPECT_EQ(text("Txt_NomAidant"), "MARTIN JEANNE");
  database_.fail_writes(false);
  widget<QAbstractButton>("Cmd_OK").click();
  EXPECT_EQ(memory_.OpenFile("VELANORO")->find("000100012026").value()(2), "15000");
}

// How long it takes is measured in bench/window_bench.cpp.
TEST_F(WidgetTest, ListOfThirtyFiveThousandTownsOpensAndIsTypedInto) {
  open_card();
  auto& towns = static_cast<screen::ComboBox&>(*widget_.screen().base().find("Cbo_Com"));
  std::vector<std::string> many;
  many.reserve(35000);
  for (int i = 0; i < 35000; ++i) many.push_back("Commune " + std::to_string(i));
  towns.refill(many);
  auto& box = widget<QComboBox>("Cbo_Com");
  box.setFocus(Qt::TabFocusReason);
  box.showPopup();
  EXPECT_EQ(box.count(), 35000);
  EXPECT_TRUE(box.view()->isVisible());
  box.hidePopup();
  widget_.activateWindow();
  QCoreApplication::processEvents();
  box.lineEdit()->selectAll();
  type("Cbo_Com", "Commune 3");
  EXPECT_EQ(text("Cbo_Com"), "Commune 3");
}

std::vector<std::string> offered(QComboBox& box) {
  std::vector<std::string> lines;
  const QAbstractItemView* list = box.completer()->popup();
  for (int row = 0; list->isVisible() && row < list->model()->rowCount(); ++row)
    lines.push_back(list->model()->index(row, 0).data(Qt::AccessibleTextRole).toString().toStdString());
  return lines;
}

TEST_F(WidgetTest, EveryEditableListOffersWhatHoldsTheTypedTextAtAnyPlace) {
  open_card();
  auto& towns = static_cast<screen::ComboBox&>(*top().find("Cbo_Com"));
  towns.refill({"Saint-Étienne", "Nœux", "L'Étang", "Albi"});
  auto& box = widget<QComboBox>("Cbo_Com");
  using Texts = std::vector<std::string>;
  const std::vector<std::pair<const char*, Texts>> kTyped{
      {"etan", {"L'Étang"}}, {"ST ETIENNE", {"Saint-Étienne"}},
      {"noeux", {"Nœux"}},   {"e", {"Saint-Étienne", "Nœux", "L'Étang"}},
      {"xyz", {}},           {"-", {}}};
  for (const auto& [typed, lines] : kTyped) {
    SCOPED_TRACE(typed);
    box.setFocus(Qt::TabFocusReason);
    box.lineEdit()->selectAll();
    type_on(typed);
    EXPECT_EQ(offered(box), lines);
    box.completer()->popup()->hide();
    widget_.activateWindow();
    QCoreApplication::processEvents();
  }
}

TEST_F(WidgetTest, EnterTakesTheOnlyOneThatIsOffered) {
  open_card();
  type("Cbo_Secteur", "agglo");
  press(*widget<QComboBox>("Cbo_Secteur").lineEdit(), Qt::Key_Return, Qt::NoModifier, "\r");
  EXPECT_EQ(text("Cbo_Secteur"), "Agglomération");
  EXPECT_EQ(text("Txt_Secteur"), "007");
}

// Two lines that read the same are told apart by their notes, for eyes and ears, and each can be chosen.
TEST_F(WidgetTest, LinesThatReadTheSameAreToldApart) {
  open_card();
  auto& towns = static_cast<screen::ComboBox&>(*top().find("Cbo_Com"));
  towns.refill({"Saint-Denis", "Saint-Denis", ""});
  towns.annotate({"93066", "97411", "00000"});
  auto& box = widget<QComboBox>("Cbo_Com");
  box.setFocus(Qt::TabFocusReason);
  box.lineEdit()->selectAll();
  type_on("denis");
  EXPECT_EQ(offered(box), (std::vector<std::string>{"Saint-Denis, 93066", "Saint-Denis, 97411"}));
  QAbstractItemView& list = *box.completer()->popup();
  list.setCurrentIndex(list.model()->index(1, 0));
  press(list, Qt::Key_Return);
  EXPECT_EQ(towns.index(), 1);
  EXPECT_EQ(text("Cbo_Com"), "Saint-Denis");
  box.lineEdit()->selectAll();
  type_on("97411");
  EXPECT_EQ(offered(box), std::vector<std::string>{"Saint-Denis, 97411"});
  list.hide();
  box.showPopup();
  EXPECT_EQ(box.itemText(2), "");
  box.view()->setCurrentIndex(box.model()->index(2, 0));
  press(*box.view(), Qt::Key_Return);
  EXPECT_EQ(towns.index(), 2);
  EXPECT_EQ(text("Cbo_Com"), "");
}

// Down and Tab: the line under the bar is meant, and not what its text reads, which another line reads too.
TEST_F(WidgetTest, TabTakesTheLineUnderTheBar) {
  memory_.put("VELANORO", "000300012026", *memory_.find("VELANORO", "000100012026"));
  for (const bool forward : {true, false}) {
    SCOPED_TRACE(forward);
    if (forward) start();
    if (forward) type("Txt_Asso", "001");
    type("Cbo_Aidant", "martin");
    auto& box = widget<QComboBox>("Cbo_Aidant");
    ASSERT_EQ(offered(box), (std::vector<std::string>{"MARTIN JEANNE, 00010", "MARTIN JEANNE, 00030"}));
    QAbstractItemView& list = *box.completer()->popup();
    press(list, Qt::Key_Down);
    press(list, Qt::Key_Down);
    press(list, forward ? Qt::Key_Tab : Qt::Key_Backtab, forward ? Qt::NoModifier : Qt::ShiftModifier);
    EXPECT_EQ(widget_.card_id(), "000300012026");
    EXPECT_EQ(widget_.screen().base().focus()->name(), "Txt_NomAidant");
    EXPECT_EQ(told(), std::vector<std::string>());
    click("Cmd_OK");
  }
}

TEST_F(WidgetTest, TabGoesToTheOptionThatIsSetAndTheArrowsToTheOthers) {
  open_card();
  ASSERT_TRUE(widget<QAbstractButton>("Opt_CDI").isChecked());
  const auto focus = [&] { return widget_.screen().base().focus()->name(); };
  shown("Cbo_Com").setFocus(Qt::TabFocusReason);
  press(Qt::Key_Tab);
  EXPECT_EQ(focus(), "Opt_CDI");
  press(Qt::Key_Tab);
  EXPECT_EQ(focus(), "Opt_Prod");
  press(Qt::Key_Backtab, Qt::ShiftModifier);
  press(Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_EQ(focus(), "Cbo_Com");
  press(Qt::Key_Tab);
  press(Qt::Key_Left);
  EXPECT_EQ(focus(), "Opt_CDD");
  EXPECT_TRUE(widget<QAbstractButton>("Opt_CDD").isChecked());
  EXPECT_TRUE(widget_.modified());
}

std::string copied() { return QGuiApplication::clipboard()->text().toStdString(); }

TEST_F(WidgetTest, TablesAreCopiedAsCellsWithTheirHeadings) {
  open_card();
  press(Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier, "\x3");
  EXPECT_EQ(copied(), "Activité\t%\nAide ménagère\t66,67\nSoins à domicile des personnes\t33,33\n");
  open_items_of_first_amendment();
  press(Qt::Key_Home);
  press(Qt::Key_C, Qt::ControlModifier, "\x3");
  EXPECT_EQ(copied(), "Code\tLibellé rubrique\tBase\tTaux\tMontant\n001\tHeures contrat\t104,00\t\t\n");
}

// In a year that can only be read the lists are out of use, and still there to be copied.
TEST_F(WidgetTest, ATableOfAClosedYearIsCopiedByTheKeyboardAndByItsMenu) {
  start();
  type("Txt_Asso", "001");
  auto& years = widget<QComboBox>("Cbo_Periode");
  emit years.activated(1);
  type("Txt_Aidant", "00010");
  ASSERT_EQ(text("Txt_Etat"), "Consultation");
  widget<QTabWidget>("Ong_FichPers").setCurrentIndex(1);
  auto& table = widget<QAbstractItemView>("Lst_DatEffet");
  ASSERT_FALSE(table.isEnabled());
  QWidget* focus = widget_.window()->focusWidget();
  press(focus ? *focus : widget_, Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier, "\x3");
  const std::string by_key = copied();
  EXPECT_NE(by_key.find("\n01/01/2024\t"), by_key.npos) << by_key;
  QGuiApplication::clipboard()->clear();
  const QPoint at(5, 5);
  QContextMenuEvent asked(QContextMenuEvent::Mouse, at, table.viewport()->mapToGlobal(at));
  QCoreApplication::sendEvent(table.viewport(), &asked);
  auto* menu = table.findChild<QMenu*>();
  ASSERT_NE(menu, nullptr);
  menu->actions().last()->trigger();
  EXPECT_EQ(copied(), by_key);
}

// What a screen reader says of a control that the user can reach; empty when it could not be told from
// another, or said nothing of what it is for.
std::string fault_of(const screen::Control& control, QWidget& shown, std::set<QString>& said) {
  const QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&shown);
  const QString name = accessible->text(QAccessible::Name);
  const QString description = accessible->text(QAccessible::Description);
  if (name.isEmpty()) return control.name() + " has no name";
  if (description.isEmpty()) return control.name() + " has no description";
  return said.insert(name + ", " + description).second ? "" : control.name() + " is named as another is";
}

void expect_named(ControleVelanorWidget& widget, const screen::Form& form) {
  std::set<QString> said;
  for (const screen::Control* control : form.controls()) {
    QWidget* shown = widget.widget_of(*control);
    if (!control->takes_focus() || !shown || qobject_cast<QTabWidget*>(shown)) continue;
    if (const auto* list = dynamic_cast<const screen::ListBox*>(control);
        list && shown->objectName() != to_qt(list->name()))
      continue;  // a column of a table that is named by its first
    auto* combo = qobject_cast<QComboBox*>(shown);
    EXPECT_EQ(fault_of(*control, combo && combo->lineEdit() ? *combo->lineEdit() : *shown, said), "");
  }
}

TEST_F(WidgetTest, EveryControlOfEveryFormTellsAssistiveToolsWhatItIs) {
  // The hours are asked for an amendment without items.
  store::DbRecord card = memory_.OpenFile("VELANORO")->find("000100012026").value();
  for (int attribute = 30; attribute <= 33; ++attribute) card.set(attribute, 1, "");
  memory_.OpenFile("VELANORO")->write("000100012026", card);
  open_card();
  expect_named(widget_, widget_.screen().base());
  open_items_of_first_amendment();
  expect_named(widget_, widget_.screen().top());
  widget<QAbstractButton>("Cmd_SaisieAuto").click();
  ASSERT_EQ(widget_.screen().top().name(), "Frm_SaisieHres");
  expect_named(widget_, widget_.screen().top());
}

TEST_F(WidgetTest, EnterGivesTheAnswerThatTheMessageNames) {
  using screen::Answer;
  using screen::Buttons;
  start();
  const struct {
    Buttons buttons;
    Answer preset, given;
  } kCases[]{{Buttons::Ok, Answer::Ok, Answer::Ok},
             {Buttons::YesNo, Answer::Yes, Answer::Yes},
             {Buttons::YesNo, Answer::No, Answer::No},
             {Buttons::YesNo, Answer::Ok, Answer::No},  // named none of its own
             {Buttons::OkCancel, Answer::Ok, Answer::Ok},
             {Buttons::OkCancel, Answer::Cancel, Answer::Cancel}};
  for (const auto& [buttons, preset, given] : kCases) {
    at_next_message([this](MessageSheet&) { press(Qt::Key_Return); });
    EXPECT_EQ(widget_.ask({.title = "T", .text = "?", .buttons = buttons, .preset = preset}), given);
    at_next_message([this](MessageSheet&) { press(Qt::Key_Escape); });
    const Answer last = buttons == Buttons::Ok      ? Answer::Ok
                        : buttons == Buttons::YesNo ? Answer::No
                                                    : Answer::Cancel;
    EXPECT_EQ(widget_.ask({.title = "T", .text = "?", .buttons = buttons, .preset = preset}), last);
  }
}

// "Non" would drop what was entered, and closing the question is no answer to it.
TEST_F(WidgetTest, EscapeAtTheQuestionOfTheItemFormStaysThere) {
  open_card();
  open_items_of_first_amendment();
  EXPECT_EQ(
      screen::Hand(widget_.screen()).double_click(dynamic_cast<screen::ListBox&>(*top().find("Lst_Code")), 0),
      "");
  paste("Txt_Base", "9");
  click("Cmd_OK");
  at_next_message([this](MessageSheet&) { press(Qt::Key_Escape); });
  click("Cmd_Retour");
  EXPECT_EQ(top().name(), "Frm_RubSaisie");
  EXPECT_TRUE(widget_.modified());
  at_next_message([this](MessageSheet&) { press(Qt::Key_Return); });
  click("Cmd_Retour");
  EXPECT_EQ(top().name(), "ControleVelanor");
  EXPECT_EQ(widget_.card_in_hand()(31, 1, 1), "900");
  EXPECT_EQ(told().size(), 2U);
}

TEST_F(WidgetTest, SheetsAreDialogsThatSayWhatTheyAsk) {
  open_card();
  std::string role, name, description;
  at_next_message([&](MessageSheet& sheet) {
    const QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&sheet);
    EXPECT_EQ(accessible->role(), QAccessible::Dialog);
    name = accessible->text(QAccessible::Name).toStdString();
    description = accessible->text(QAccessible::Description).toStdString();
  });
  widget<QAbstractButton>("Cmd_Supp").click();
  EXPECT_EQ(name, "Message TALVERINE");
  EXPECT_EQ(description, "Voulez-vous supprimer cette fiche ?");
  open_items_of_first_amendment();
  const QAccessibleInterface* form = QAccessible::queryAccessibleInterface(widget_.open_sheet());
  ASSERT_TRUE(form);
  EXPECT_EQ(form->role(), QAccessible::Dialog);
  EXPECT_EQ(form->text(QAccessible::Name).toStdString(), "Détails des rubriques de saisie");
}

}  // namespace
}  // namespace velanor::qt
