// The views of a small form on a window: what ties them to their controls, and what they make of keys.
#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <memory>

#include "qt/binder.h"
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

}  // namespace
}  // namespace velanor::qt
