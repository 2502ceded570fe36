// The component on a window: a widget that a host places where it likes.
#pragma once

#include <QWidget>
#include <exception>
#include <functional>
#include <memory>

#include "velanor/controle_velanor.h"

namespace velanor::qt {

class MessageSheet;

// Owns the component and shows its screen. The host hands in its three objects, which must outlive the
// widget, and calls `init`; when the user leaves, `left` tells it, and the widget is of no use any more.
// Modal forms and messages appear as sheets over the widget. Needs about 1250 by 620 pixels.
// It may be destroyed at any time, also while a message waits, which is then answered as if it had been
// closed, and so it is when the host's window is closed. The host's objects are not used any more then.
class ControleVelanorWidget : public QWidget {
  Q_OBJECT

 public:
  explicit ControleVelanorWidget(QWidget* parent = nullptr);
  ~ControleVelanorWidget() override;

  void DroitsUtilisateur(control::UserRights& rights);
  void TheClient(control::Client& client);
  void TheDatabase(store::Database& database);
  // Who shows the help page; without one `help_asked` tells it.
  void set_help(control::HelpViewer& help);
  // Throws store::DbError as the component does; the widget is then of no use.
  void init();

  screen::Screen& screen();
  // The working record of the card that is open.
  const store::DbRecord& card_in_hand() const;
  // The widget that shows a control, and null where there is none.
  QWidget* widget_of(const screen::Control& control) const;
  // The message box that waits for its answer, or null.
  MessageSheet* open_message() const;
  // The sheet of the topmost modal form, or null.
  QWidget* open_sheet() const;
  // A message of the host's own, drawn as the component's are.
  screen::Answer ask(const screen::Message& message);

  // Gets what a handler let out, after the act; without one the sentence is shown as a message.
  void set_failure_handler(std::function<void(std::exception_ptr)> handler);

  QSize sizeHint() const override { return {1250, 620}; }

 signals:
  void left();
  void help_asked(const QString& page, const QString& title);
  // A message is on the screen and waits.
  void message_opened();
  // The user did something, and the rules and the views have answered it. Not from within a message.
  void acted();

 protected:
  void mousePressEvent(QMouseEvent* event) override;

 private:
  class Stage;
  std::shared_ptr<Stage> stage_;
};

}  // namespace velanor::qt
