// What stands behind the widget: the component, its open forms on the window, and the acts of the user.
#pragma once

#include <memory>
#include <vector>

#include "qt/acts.h"
#include "qt/binder.h"
#include "qt/boards.h"
#include "qt/input_gate.h"
#include "qt/late_keys.h"
#include "qt/message_sheet.h"
#include "velanor/controle_velanor_widget.h"

namespace velanor::qt {

// The host may destroy the widget at any time, also while a message waits for its answer deep in the rules.
// The stage and all that stands on its boards then live on until the last frame of theirs has unwound.
class ControleVelanorWidget::Stage : public QObject,
                                     public std::enable_shared_from_this<Stage>,
                                     public screen::Toolkit,
                                     public control::HelpViewer,
                                     public control::HostWindow,
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
  void form_opened(screen::Form& form) override;
  void form_closed(screen::Form& form) override;
  void pop_up(screen::Menu& menu) override;
  void beep() override;
  void set_busy(bool busy) override;

  // What surrounds the component.
  void show(control::Client* client, store::Database& database, std::string_view page, std::string_view title,
            std::string_view section) override;
  void unload() override;

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
  bool idle() const { return widget_ && !acting_ && messages_.empty() && !screen().finished(); }
  QWidget* make_pages(const screen::Form& form) const;
  std::exception_ptr run(const std::function<void()>& rules);
  void refresh();
  void place_focus();
  Arrival arrival_at(const screen::Control& control) const;
  void keep_focus();
  void set_mnemonics();
  void window_closed(bool closed);
  void answer_messages();
  void report(const std::exception_ptr& failure);

  ControleVelanorWidget* widget_;  // null when it has gone
  Boards* boards_;
  mutable ControleVelanor component_;
  std::vector<OpenForm> forms_;
  std::vector<MessageSheet*> messages_;  // that wait, the topmost last
  InputGate gate_;
  LateKeys late_keys_;
  const screen::Control* placed_ = nullptr;   // had the focus last
  const screen::Control* stepped_ = nullptr;  // where the user's step goes to
  int frames_ = 0;
  bool acting_ = false;
  bool placing_ = false;
  bool in_rules_ = false;
  bool called_out_ = false;  // by the rules
  bool refused_ = false;     // the act under way
  bool closed_ = false;      // the window is
};

}  // namespace velanor::qt
