// A clerk at the windows of the program: what is typed, clicked and answered.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>

#include "app/velanor/main_window.h"
#include "qt/action_button.h"
#include "qt/message_sheet.h"

namespace velanor::app {

// Lets the program work until something is the case; false when it does not come to be.
inline bool until(const std::function<bool()>& state) {
  QDeadlineTimer deadline(10'000);
  while (!state() && !deadline.hasExpired()) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  return state();
}

// Everything that is due has been done.
inline void settle() {
  for (int round = 0; round < 4; ++round) {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
}

class Clerk {
 public:
  explicit Clerk(MainWindow& window) : window_(window) {}

  template <typename Widget = QWidget>
  Widget& widget(const char* name) {
    return *window_.component().findChild<Widget*>(name);
  }
  void type(const char* name, const QString& characters) {
    window_.activateWindow();
    widget(name).setFocus(Qt::TabFocusReason);
    for (const QChar character : characters) {
      QKeyEvent key(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(character));
      QCoreApplication::sendEvent(window_.focusWidget(), &key);
    }
  }
  void put(const char* name, const QString& text) { widget<QLineEdit>(name).setText(text); }
  void click(const char* name) { widget<QAbstractButton>(name).click(); }
  void open_card(const QString& code) {
    type("Txt_Asso", "001");
    type("Txt_Aidant", code);
    ASSERT_NE(window_.component().screen().base().find("Cmd_Sortir"), nullptr);
    ASSERT_FALSE(window_.component().screen().base().find("Cmd_Sortir")->enabled()) << "the card is not open";
  }
  std::string title() const {
    QString title = window_.windowTitle();
    return title.replace("[*]", window_.isWindowModified() ? "*" : "").toStdString();
  }
  std::string status() const { return window_.findChild<QLabel*>("told")->text().toStdString(); }
  std::string mode() const { return window_.findChild<QLabel*>("mode")->text().toStdString(); }

  // Runs once while the next message waits.
  void at_next_message(std::function<void(qt::MessageSheet&)> what) {
    auto once = std::make_shared<QMetaObject::Connection>();
    *once = QObject::connect(&window_.component(), &qt::ControleVelanorWidget::message_opened, &window_,
                             [this, once, what = std::move(what)] {
                               QObject::disconnect(*once);
                               QTimer::singleShot(0, &window_, [this, what] {
                                 if (auto* sheet = window_.component().open_message()) what(*sheet);
                               });
                             });
  }
  // Answers the next message; its text is in `said` then.
  void answer_next(screen::Answer answer) {
    at_next_message([this, answer](qt::MessageSheet& sheet) {
      said.push_back(sheet.message().text);
      sheet.button(answer)->click();
    });
  }

  std::vector<std::string> said;

 private:
  MainWindow& window_;
};

}  // namespace velanor::app
