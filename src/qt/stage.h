// What stands behind the widget: the component, its open forms on the window, and the acts of the user.
#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "qt/acts.h"
#include "qt/binder.h"
#include "qt/boards.h"
#include "qt/input_gate.h"
#include "qt/late_keys.h"
#include "qt/message_sheet.h"
#include "velanor/controle_velanor_widget.h"

class QLabel;

namespace velanor::qt {

// The host may destroy the widget at any time, also while a message waits for its answer deep in the rules.
// The stage and all that stands on its boards then live on until the last frame of theirs has unwound.
class ControleVelanorWidget::Stage : public QObject,
                                     public std::enable_shared_from_this<Stage>,
                                     public screen::Toolkit,
                                     public control::HelpViewer,
                                     public control::HostWindow,
                                     public control::CardListener,
                                     public Acts {
 public:
  explicit Stage(ControleVelanorWidget& widget);
  ~Stage() override;

  ControleVelanor& component() { return component_; }
  screen::Screen& screen() const { return component_.screen(); }
  void start();
  // The widget is being destroyed: every message gets its closing answer, and the rules are left where they
  // stand.
  void widget_goes();
  MessageSheet* open_message() const { return messages_.empty() ? nullptr : messages_.back(); }
  Sheet* open_sheet() const { return forms_.back().sheet; }
  View* view_of(const screen::Control& control) const;

  // An act of the host's, which opens a card.
  control::Opening lead(const std::function<control::Opening(ControleVelanor&)>& to);
  // One that takes a step back or forth; false where nobody acts now.
  bool step(const std::function<bool(ControleVelanor&)>& to);
  // One that helps the user to enter something; why not, or "".
  QString aid(const std::function<std::string(ControleVelanor&)>& what);
  // Nothing waits, and nothing is under way.
  bool idle() const {
    return widget_ && !at_work() && messages_.empty() && !component_.closed() && !screen().finished();
  }

  // False while the program itself moves the focus.
  bool step_focus(bool forward);
  void escape();
  void right_press();
  void focus_left();
  // A message of the host's, or of the component's.
  screen::Answer ask(const screen::Message& message);

  // Acts.
  bool open_to(const screen::Control& control) const override;
  void act(const std::function<void(screen::Hand&)>& what) override;
  bool press(screen::Control& control) override;
  void focus_came(screen::Control& control, Qt::FocusReason reason) override;

  // Toolkit.
  screen::Answer message(const screen::Message& message) override;
  std::optional<std::vector<screen::Answer>> compare(const screen::Comparison& comparison) override;
  void form_opened(screen::Form& form) override;
  void form_closed(screen::Form& form) override;
  void acted() override;
  void pop_up(screen::Menu& menu) override;
  void beep() override;
  void set_busy(bool busy) override;

  // What surrounds the component.
  void show(control::Client* client, store::Database& database, std::string_view page, std::string_view title,
            std::string_view section) override;
  void unload() override;

  // What the component tells of the cards.
  void card_opened(const control::Card& card) override;
  void card_saved(const control::Card& card) override;
  void card_deleted(const control::Card& card) override;
  void card_copied(const control::Card& card, const std::string& copy) override;
  void card_closed(const control::Card& card) override;
  void card_saved_elsewhere(const control::Card& card, const std::string& author) override;
  void card_deleted_elsewhere(const control::Card& card, const std::string& author) override;
  void state_changed() override;
  void act_over() override;

  control::HelpViewer* help = nullptr;
  std::function<void(std::exception_ptr)> failed;

 private:
  // A form on the window; the base has no sheet.
  struct OpenForm {
    screen::Form* form;
    Sheet* sheet;
    std::unique_ptr<FormViews> views;
  };
  class KeepAlive;
  class CallOut;
  class OpenMessage;
  template <typename Asked>
  std::optional<screen::Answer> put(const Asked& asked, const std::function<void(const MessageSheet&)>& read);
  // The rules are at work, or what is shown follows them.
  bool at_work() const { return screen().acting() || following_; }
  void run_for_host(const std::function<void()>& rules);
  QWidget* make_pages(const screen::Form& form) const;
  void add_form(screen::Form& form, Sheet* sheet, QWidget& pages);
  void control_changed();
  template <typename Signal, typename... Values>
  void tell(Signal signal, const Values&... values);
  std::exception_ptr run(const std::function<void()>& rules);
  void refresh();
  void show_asides();
  void place_focus();
  Arrival arrival_at(const screen::Control& control) const;
  void keep_focus();
  void set_mnemonics();
  void window_closed(bool closed);
  void answer_messages();
  void report(const std::exception_ptr& failure);
  void show_start(const std::exception_ptr& failure);
  void listen_to_others();
  void hear_others();
  void stop_listening();

  ControleVelanorWidget* widget_;  // null when it has gone
  Boards* boards_;
  QLabel* no_start_ = nullptr;  // in place of the pages when the component has not started
  mutable ControleVelanor component_;
  std::vector<OpenForm> forms_;
  std::vector<MessageSheet*> messages_;  // that wait, the topmost last
  InputGate gate_;
  LateKeys late_keys_;
  std::unique_ptr<QSocketNotifier> others_;   // what they write; null where nobody hears of it
  const screen::Control* placed_ = nullptr;   // had the focus last
  const screen::Control* stepped_ = nullptr;  // where the user's step goes to
  int frames_ = 0;
  control::State told_state_ = control::State::kNone;
  QString told_id_, told_title_;
  bool told_modified_ = false;
  bool following_ = false;
  bool written_ = false;  // by the host, into a control; what is shown follows soon
  bool placing_ = false;
  bool in_rules_ = false;
  bool called_out_ = false;  // by the rules
  bool refused_ = false;     // the act under way
  bool closed_ = false;      // the window is
};

}  // namespace velanor::qt
