// What stands behind the widget: the component, its open forms on the window, and the acts of the user.
#pragma once

#include <QPointer>
#include <memory>
#include <vector>

#include "qt/acts.h"
#include "qt/binder.h"
#include "qt/controle_velanor_widget.h"
#include "qt/input_gate.h"
#include "qt/late_keys.h"
#include "qt/message_sheet.h"

namespace velanor::qt {

class ControleVelanorWidget::Stage : public QObject,
                                     public screen::Toolkit,
                                     public control::HelpViewer,
                                     public control::HostWindow,
                                     public Acts {
 public:
  explicit Stage(ControleVelanorWidget& widget);

  ControleVelanor& component() { return component_; }
  screen::Screen& screen() const { return component_.screen(); }
  void start();
  // The widgets are about to go: nothing that happens to the focus is the user's.
  void shut() { placing_ = true; }
  MessageSheet* open_message() const { return message_; }
  Sheet* open_sheet() const { return forms_.back().sheet; }
  View* view_of(const screen::Control& control) const;

  // False while the program itself moves the focus.
  bool step_focus(bool forward);
  void escape();
  void right_press();
  void focus_left();
  // A message that no act opened has been answered.
  void ask_is_over() { gate_.release(); }

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
  bool idle() const { return !acting_ && !message_ && !screen().finished(); }
  QWidget* make_pages(const screen::Form& form) const;
  void refresh();
  void place_focus();
  void keep_focus();
  void set_mnemonics();
  void report(const std::exception_ptr& failure);

  ControleVelanorWidget& widget_;
  mutable ControleVelanor component_;
  std::vector<OpenForm> forms_;
  InputGate gate_;
  LateKeys late_keys_;
  QPointer<MessageSheet> message_;
  bool acting_ = false;
  bool placing_ = false;
};

}  // namespace velanor::qt
