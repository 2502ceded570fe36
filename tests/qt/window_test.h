// The component on a window without a server, with a few cards; what a user does to it is sent as events.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <functional>
#include <memory>
#include <string>

#include "qt/message_sheet.h"
#include "support/failing_database.h"
#include "velanor/controle_velanor_widget.h"
#include "velanor/memory_database.h"

namespace velanor::qt {

class WindowTest : public testing::Test, private control::UserRights {
 protected:
  WindowTest();

  void start();
  void open_card();
  void open_items_of_first_amendment();
  screen::Form& top() { return widget_.screen().top(); }

  template <typename Widget>
  Widget& widget(const char* name) {
    return *widget_.findChild<Widget*>(name);
  }
  // Of the topmost form.
  QWidget& shown(const char* name) { return *widget_.widget_of(*top().find(name)); }
  std::string text(const char* name) {
    return static_cast<screen::TextControl*>(widget_.screen().base().find(name))->text();
  }
  void press(QWidget& on, int key, Qt::KeyboardModifiers with = Qt::NoModifier, const QString& text = {});
  // To whoever has the focus.
  void press(int key, Qt::KeyboardModifiers with = Qt::NoModifier, const QString& text = {});
  void type(const char* name, const QString& characters);
  void type_on(const QString& characters);
  void paste(const char* name, const QString& value);
  void click(const char* name) { static_cast<QAbstractButton&>(shown(name)).click(); }

  using Look = std::function<void(MessageSheet&)>;
  // Runs while the next message waits, then gives its closing answer, if it has none by then.
  void at_next_message(Look look);
  // What the messages said since; each is closed.
  const std::vector<std::string>& told() const { return told_; }

  store::MemoryDatabase memory_;
  store::FailingDatabase database_{memory_};
  std::unique_ptr<ControleVelanorWidget> owned_;
  ControleVelanorWidget& widget_;

 private:
  std::string rights(std::string_view) override { return {}; }
  void message_opened();

  std::vector<Look> looks_;
  std::vector<std::string> told_;
};

}  // namespace velanor::qt
