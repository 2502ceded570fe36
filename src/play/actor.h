// Who carries out what a scenario says that the user does.
#pragma once

#include <string>
#include <string_view>

#include "velanor/hand.h"

namespace velanor::play {

// One call per action of the user's; each returns why it could not be made, empty when it was.
// The player plays the same scenario through the screen model (HandActor) or through the events
// of a real window. Controls belong to open forms of the screen that the actor acts on.
class Actor {
 public:
  using Refusal = screen::Refusal;
  virtual ~Actor() = default;

  virtual Refusal focus(screen::Control& control) = 0;
  virtual Refusal leave() = 0;
  virtual Refusal type(screen::TextControl& control, std::string_view text) = 0;
  virtual Refusal press(screen::Control& control, screen::Key key) = 0;
  virtual Refusal clear(screen::TextControl& control) = 0;
  // In a combo box after opening it, in a list box by a click on the line.
  virtual Refusal pick(screen::ComboBox& box, std::string_view text) = 0;
  virtual Refusal pick(screen::ComboBox& box, int index) = 0;
  virtual Refusal pick(screen::ListBox& list, std::string_view text) = 0;
  virtual Refusal pick(screen::ListBox& list, int index) = 0;
  virtual Refusal double_click(screen::ListBox& list, int index) = 0;
  virtual Refusal click(screen::Control& control) = 0;
  virtual Refusal scroll(screen::ScrollBar& bar, int value) = 0;
  virtual Refusal tab(int page) = 0;
  virtual Refusal right_click() = 0;
  virtual Refusal close() = 0;
  virtual Refusal shot(std::string_view name) = 0;
};

// Acts on the screen model itself, without a window. The screen must outlive it.
class HandActor : public Actor {
 public:
  explicit HandActor(screen::Screen& screen) : screen_(screen), hand_(screen) {}

  Refusal focus(screen::Control& control) override { return hand_.focus(control); }
  Refusal leave() override { return hand_.leave(); }
  Refusal type(screen::TextControl& control, std::string_view text) override {
    return hand_.type(control, text);
  }
  Refusal press(screen::Control& control, screen::Key key) override { return hand_.press(control, key); }
  Refusal clear(screen::TextControl& control) override { return hand_.replace_text(control, {}); }
  Refusal pick(screen::ComboBox& box, std::string_view text) override;
  Refusal pick(screen::ComboBox& box, int index) override;
  Refusal pick(screen::ListBox& list, std::string_view text) override;
  Refusal pick(screen::ListBox& list, int index) override { return hand_.pick(list, index); }
  Refusal double_click(screen::ListBox& list, int index) override { return hand_.double_click(list, index); }
  Refusal click(screen::Control& control) override { return hand_.click(control); }
  Refusal scroll(screen::ScrollBar& bar, int value) override { return hand_.scroll(bar, value); }
  Refusal tab(int page) override { return hand_.show_page(page); }
  Refusal right_click() override { return hand_.right_press(); }
  Refusal close() override { return hand_.close(); }
  // There is no window to take a picture of.
  Refusal shot(std::string_view) override { return {}; }

 private:
  // Whether the focus came to the control without a message on its way: else the click was lost.
  bool arrived(const screen::Control& control, int messages_before) const;

  screen::Screen& screen_;
  screen::Hand hand_;
};

}  // namespace velanor::play
