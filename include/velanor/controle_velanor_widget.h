// The component on a window: a widget that a host places where it likes.
#pragma once

#include <QWidget>
#include <exception>
#include <functional>
#include <memory>
#include <optional>

#include "velanor/controle_velanor.h"

namespace velanor::qt {

class MessageSheet;

// Owns the component and shows its screen. The host hands in its three objects, which must outlive the
// widget, and calls `init`; when the user leaves, `left` tells it, and the widget is of no use any more.
// Modal forms and messages appear as sheets over the widget. Needs about 1250 by 620 pixels.
//
// Everything happens on the thread of the application object. What the host does to the controls, as an act
// (see screen::Hand) or by writing into them, shows on the window: an act when it is over, the rest as soon
// as the event loop is back. Neither needs the host's help.
//
// It may be destroyed at any time, also by whoever hears one of its signals and while a message waits, which
// is then answered as if it had been closed, and so it is when the host's window is closed. The host's
// objects are not used any more then.
class ControleVelanorWidget : public QWidget {
  Q_OBJECT
  // What is open, as ControleVelanor tells it.
  Q_PROPERTY(velanor::control::State state READ state NOTIFY state_changed)
  Q_PROPERTY(QString cardId READ card_id NOTIFY card_id_changed)
  Q_PROPERTY(QString cardTitle READ card_title NOTIFY card_title_changed)
  Q_PROPERTY(bool modified READ modified NOTIFY modified_changed)

 public:
  explicit ControleVelanorWidget(QWidget* parent = nullptr);
  ~ControleVelanorWidget() override;

  // ---- Before `init`. What is handed in must outlive the widget.
  void DroitsUtilisateur(control::UserRights& rights);
  void TheClient(control::Client& client);
  void TheDatabase(store::Database& database);
  // An entry utility of the host's own; without one the default is made, on this clock or the system's.
  void set_entry(entry::UtilSaisie& entry);
  void set_clock(entry::Clock clock);
  // Who shows the help page; without one `help_asked` tells it.
  void set_help(control::HelpViewer& help);
  // Throws as the component's does. The widget then says so in a sentence in place of its pages, and takes no
  // input.
  void init();

  // ---- What is open.
  control::State state() const;
  QString card_id() const;
  QString card_title() const;
  bool modified() const;
  // As the component's, whose question appears as a message. Busy also while a message of the host's waits.
  control::Opening open(const QString& entity, const QString& year, const QString& employee);
  control::Opening reload();

  // ---- Steps back and forth, as the component's; none while a message of the host's waits.
  QString undo_name() const;
  QString redo_name() const;
  bool undo();
  bool redo();

  // ---- What helps while entering, as the component's; the pages show by themselves what it tells.
  QString put_remainder();
  QString repeat_items();
  std::optional<control::FieldPlace> field_in_hand() const;

  // ---- The screen.
  screen::Screen& screen();
  // The working record of the card that is open.
  const store::DbRecord& card_in_hand() const;
  // The card that is open as it reads now, as ControleVelanor tells it.
  store::DbRecord card_as_entered() const;
  // Where an attribute of a card is entered or shown, as ControleVelanor tells it.
  screen::Control* place_of(int attribute);
  // The widget that shows a control, and null where there is none.
  QWidget* widget_of(const screen::Control& control) const;
  // The message box that waits for its answer, or null. What it is made of is the widget's own affair.
  MessageSheet* open_message() const;
  // The sheet of the topmost modal form, or null.
  QWidget* open_sheet() const;
  // A message of the host's own, drawn as the component's are. Runs an event loop until it is answered.
  screen::Answer ask(const screen::Message& message);

  // Gets what an act of the user's let out (see store::DbError), when it is over; without one the sentence is
  // shown as a message. What the host does itself throws to the host.
  void set_failure_handler(std::function<void(std::exception_ptr)> handler);

  QSize sizeHint() const override { return {1250, 620}; }

 Q_SIGNALS:
  // What becomes of cards; when each is told see control::CardListener. A slot may call the widget, and
  // destroy it.
  void card_opened(const QString& id, const QString& title);
  void card_saved(const QString& id, const QString& title);
  void card_deleted(const QString& id, const QString& title);
  void card_copied(const QString& id, const QString& title, const QString& copy_id);
  void card_closed(const QString& id, const QString& title);
  // Somebody else has saved or deleted the card that is open; told between two acts.
  void card_saved_elsewhere(const QString& id, const QString& title, const QString& author);
  void card_deleted_elsewhere(const QString& id, const QString& title, const QString& author);
  // The properties, each where it is otherwise than it was told last.
  void state_changed(velanor::control::State state);
  void card_id_changed(const QString& id);
  void card_title_changed(const QString& title);
  void modified_changed(bool modified);

  // An act is over, and all that came of it has been told.
  void acted();

  // The user has left. The widget may be destroyed at once.
  void left();
  void help_asked(const QString& page, const QString& title);
  // A message is on the screen and waits.
  void message_opened();
  // It has its answer; what waited for it goes on when this has been heard.
  void message_closed();

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  class Stage;
  std::shared_ptr<Stage> stage_;
};

}  // namespace velanor::qt
