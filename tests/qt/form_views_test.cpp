// The views of a small form on a window: what ties them to their controls, and what they make of keys.
#include <gtest/gtest.h>

#include <QClipboard>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QRadioButton>
#include <QScrollBar>
#include <QTabWidget>
#include <QToolTip>
#include <memory>
#include <stdexcept>

#include "qt/action_button.h"
#include "qt/binder.h"
#include "qt/columns_table.h"
#include "qt/combo_edit.h"
#include "qt/strings.h"
#include "qt/text_edit.h"
#include "support/typed_keys.h"
#include "text/utf8.h"

namespace velanor::qt {
namespace {

class SmallWindow : public testing::Test, public Acts, private screen::Toolkit {
 protected:
  SmallWindow() {
    edit_->setObjectName("Txt");
    views_ = std::make_unique<FormViews>(*this, form_, page_);
  }

  void refresh() { views_->refresh(); }
  void show(std::string_view text, screen::Span at) {
    field_.set_text(text);
    refresh();
    const auto units = [&](int characters) {
      return static_cast<int>(to_qt(text::left(text, characters)).length());
    };
    edit_->setCursorPosition(units(at.first));
    if (at.count > 0) edit_->setSelection(units(at.first), units(at.first + at.count) - units(at.first));
  }
  void type(char32_t key) {
    const bool back = key == screen::Key::kBackspace;
    send(back ? Qt::Key_Backspace : Qt::Key_unknown, back ? QString("\b") : QString::fromUcs4(&key, 1));
  }
  void send(int key, const QString& text, Qt::KeyboardModifiers with = Qt::NoModifier) {
    QKeyEvent event(QEvent::KeyPress, key, with, text);
    QCoreApplication::sendEvent(edit_, &event);
  }
  void expect_shown(std::string_view text) {
    EXPECT_EQ(field_.text(), text);
    EXPECT_EQ(from_qt(edit_->text()), text);
  }

  screen::Form form_{"Frm", ""};
  test::SmallField field_{form_};
  QWidget page_;
  TextEdit* edit_ = new TextEdit(&page_);

 private:
  bool open_to(const screen::Control& control) const override { return control.usable(); }
  void act(const std::function<void(screen::Hand&)>& what) override {
    screen::Hand hand(screen_);
    what(hand);
    views_->refresh();
  }
  bool press(screen::Control&) override { return true; }
  void focus_came(screen::Control&, Qt::FocusReason) override {}
  screen::Answer message(const screen::Message&) override { return screen::Answer::Ok; }

  screen::Screen screen_{form_, *this};
  std::unique_ptr<FormViews> views_;
};

TEST_F(SmallWindow, AKeyIsJudgedWhereItFallsAndCanBeTakenBack) {
  for (const auto& [what, text, at, key, left] : test::kTypedKeys) {
    SCOPED_TRACE(what);
    show(text, at);
    type(key);
    expect_shown(left);
    send(Qt::Key_Z, "\x1a", Qt::ControlModifier);
    expect_shown(text);
  }
}

TEST_F(SmallWindow, APastedValueIsJudgedAsTheHandJudgesIt) {
  for (const auto& [value, left] : test::kWholeValues) {
    SCOPED_TRACE(value);
    QGuiApplication::clipboard()->setText(to_qt(value));
    edit_->selectAll();
    edit_->paste();
    expect_shown(left);
  }
}

TEST_F(SmallWindow, TheCaretStandsBehindWhatWasTyped) {
  show("𝒜c", {1, 0});
  type(U'b');
  type(U'e');
  expect_shown("𝒜bec");
  EXPECT_EQ(edit_->cursorPosition(), 4);
  type(screen::Key::kBackspace);
  expect_shown("𝒜bc");
}

// One control of each kind, two lists as the columns of a table, and a menu.
struct EveryKind : screen::Form {
  EveryKind() : Form("Frm", "") { tables = {{{&list, &heading, &text}, {&second, &label}}}; }

  screen::Menu menu{*this, {.name = "Mnu"}};
  screen::Label heading{*this, {.name = "Etq_Liste"}};
  screen::ListBox list{*this, {.name = "Lst"}};
  screen::ListBox second{*this, {.name = "Lst_Suite"}};
  screen::Label alone{*this, {.name = "Etq"}};
  screen::Frame frame{*this, {.name = "Cdr"}};
  screen::TextBox text{*this, {.name = "Txt"}};
  screen::ComboBox combo{*this, {.name = "Cbo"}};
  screen::CommandButton button{*this, {.name = "Cmd"}};
  screen::OptionButton option{*this, {.name = "Opt"}};
  screen::ScrollBar bar{*this, {.name = "Bdv"}};
  screen::Tabs pages{*this, {.name = "Ong"}, {"Un", "Deux"}};
  screen::Label label{*this, {.name = "Etq_Suite"}};
};

// With a widget for each; the form outlives its views, which stand on the page.
struct PageOfEveryKind {
  PageOfEveryKind() {
    add(new ColumnsTable, "Lst");
    add(new QLabel, "Etq");
    add(new QGroupBox, "Cdr");
    add(new TextEdit, "Txt");
    add(new ComboEdit, "Cbo");
    add(new ActionButton, "Cmd");
    add(new QRadioButton, "Opt");
    add(new QScrollBar, "Bdv");
    auto* pages = new QTabWidget;
    pages->addTab(new QWidget, "Un");
    pages->addTab(new QWidget, "Deux");
    add(pages, "Ong");
  }
  void add(QWidget* widget, const char* name) {
    widget->setParent(&page);
    widget->setObjectName(name);
  }
  // Why the form cannot be shown on the page; empty where it can.
  std::string lack(Acts& acts) {
    try {
      FormViews views(acts, form, page);
    } catch (const std::logic_error& error) {
      return error.what();
    }
    return {};
  }

  EveryKind form;
  QWidget page;
};

// A page file that forgets a control, or gives it another kind of widget, is found out at the start.
TEST_F(SmallWindow, EveryControlHasAWidgetOfItsKind) {
  EXPECT_EQ(PageOfEveryKind().lack(*this), "");
  for (const char* name : {"Lst", "Etq", "Cdr", "Txt", "Cbo", "Cmd", "Opt", "Bdv", "Ong"}) {
    SCOPED_TRACE(name);
    PageOfEveryKind shown;
    shown.page.findChild<QWidget*>(name)->setObjectName("autre");
    EXPECT_EQ(shown.lack(*this), std::string("La page de Frm n'a pas de contrôle ") + name + ".");
    shown.add(new QWidget, name);
    EXPECT_EQ(shown.lack(*this), std::string("La page fait de ") + name + " un QWidget.");
  }
}

TEST_F(SmallWindow, ATabWidgetHasThePagesOfItsControl) {
  PageOfEveryKind shown;
  shown.page.findChild<QTabWidget*>("Ong")->addTab(new QWidget, "Trois");
  EXPECT_EQ(shown.lack(*this), "Ong a 3 pages au lieu de 2.");
}

TEST_F(SmallWindow, WhatABoxCannotShowIsInItsHint) {
  edit_->setToolTip("Le nom");
  edit_->resize(40, 20);
  const auto hint = [&](std::string_view text) {
    show(text, {});
    QToolTip::hideText();
    QHelpEvent asked(QEvent::ToolTip, {2, 2}, edit_->mapToGlobal(QPoint(2, 2)));
    QCoreApplication::sendEvent(edit_, &asked);
    return QToolTip::text().toStdString();
  };
  EXPECT_EQ(hint("Wi"), "Le nom");
  EXPECT_EQ(hint("WWWWW"), "WWWWW\nLe nom");
}

TEST_F(SmallWindow, HeadingsAreAsHighAsTheyNeedToBe) {
  const char* const kHeading = "Durée du travail mensuelle";
  PageOfEveryKind shown;
  shown.form.heading.set_caption(kHeading);
  FormViews views(*this, shown.form, shown.page);
  shown.page.show();
  auto& table = *shown.page.findChild<ColumnsTable*>("Lst");
  const QHeaderView& header = *table.horizontalHeader();
  for (const int width : {400, 120, 80}) {
    SCOPED_TRACE(width);
    table.setColumnWidth(0, width);
    table.resize(500 + width, 200);
    const QRect room(0, 0, width - 4, 1000);
    EXPECT_GE(header.height(),
              QFontMetrics(header.font()).boundingRect(room, Qt::TextWordWrap, kHeading).height());
    EXPECT_GE(table.minimumSizeHint().height(),
              header.height() + 3 * table.verticalHeader()->defaultSectionSize());
  }
}

}  // namespace
}  // namespace velanor::qt
