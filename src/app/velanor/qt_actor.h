// Plays what the user of a scenario does as key and mouse events of the real widgets.
#pragma once

#include <QString>
#include <exception>

#include "play/actor.h"
#include "velanor/controle_velanor_widget.h"

class QComboBox;

namespace velanor::app {

// Looks at the widgets, not at the controls behind them, to judge whether a hand could act. The widget
// must outlive it, and its window be shown.
class QtActor : public play::Actor {
 public:
  // Pictures go into `shots`; none are taken when it is empty.
  QtActor(qt::ControleVelanorWidget& widget, QString shots);

  Refusal focus(screen::Control& control) override;
  Refusal leave() override;
  Refusal type(screen::TextControl& control, std::string_view text) override;
  Refusal press(screen::Control& control, screen::Key key) override;
  Refusal clear(screen::TextControl& control) override;
  Refusal pick(screen::ComboBox& box, std::string_view text) override;
  Refusal pick(screen::ComboBox& box, int index) override;
  Refusal pick(screen::ListBox& list, std::string_view text) override;
  Refusal pick(screen::ListBox& list, int index) override;
  Refusal double_click(screen::ListBox& list, int index) override;
  Refusal click(screen::Control& control) override;
  Refusal scroll(screen::ScrollBar& bar, int value) override;
  Refusal tab(int page) override;
  Refusal right_click() override;
  Refusal close() override;
  Refusal shot(std::string_view name) override;

 private:
  // The widget of the control, ready for a hand, its page shown; or why it is not.
  struct Reached {
    QWidget* widget = nullptr;
    Refusal why;
  };
  Reached reach(screen::Control& control);
  QWidget* widget_of(const screen::Control& control) const;
  Refusal click_menu(const screen::Menu& menu);
  bool open_list(screen::ComboBox& box, QComboBox& combo);
  Refusal click_cell(screen::ListBox& list, int index, int clicks);
  // Lets out what a handler let out.
  Refusal done(Refusal why = {});

  qt::ControleVelanorWidget& widget_;
  QString shots_;
  std::exception_ptr failure_;
};

// A left click in the middle of a widget, or at a point of it.
void click_on(QWidget& widget);
// A key pressed and released.
void send_key(QWidget& widget, int key, const QString& text = {},
              Qt::KeyboardModifiers with = Qt::NoModifier);

}  // namespace velanor::app
