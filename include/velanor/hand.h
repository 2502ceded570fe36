// What a user can do to a screen, judged as it would be under a hand: whatever is disabled, hidden or behind
// another form does not answer. A scenario, a window and a host all act through it.
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <utility>

#include "velanor/screen.h"

namespace velanor::screen {

// Why an action could not be made, in English, for the programmer; empty when it was. A click that is lost on
// its way, because the control left keeps the focus or speaks up, was made all the same.
class [[nodiscard]] Refusal {
 public:
  Refusal() = default;
  Refusal(std::string why) : why_(std::move(why)) {}
  Refusal(const char* why) : why_(why) {}

  bool empty() const { return why_.empty(); }
  const std::string& why() const { return why_; }
  friend bool operator==(const Refusal& a, std::string_view b) { return a.why_ == b; }
  friend std::ostream& operator<<(std::ostream& out, const Refusal& refusal) { return out << refusal.why_; }

 private:
  std::string why_;
};

// Everything that it does is one act of the screen (see Screen::act), and throws what the rules throw, such
// as store::DbError. It keeps nothing but the screen, which must outlive it; a component that was destroyed
// by what it did has no screen any more. Not used while a message waits.
class Hand {
 public:
  explicit Hand(Screen& screen) : screen_(screen) {}

  // Puts the focus on a control, showing its page first. The control left may keep it.
  Refusal focus(Control& control);
  // Takes the focus away to none.
  Refusal leave();
  // One key into a control, after putting the focus there; into a text, behind its last character.
  Refusal press(Control& control, Key key);
  // One key into a text, where the caret stands or in the place of what is selected.
  Refusal press(TextControl& control, Key key, Span at);
  // The characters of a text, one key each. Keys follow the focus where a handler moves it.
  Refusal type(TextControl& control, std::string_view text);
  // Replaces the whole text, as select-all and paste do; "" as select-all and Delete.
  Refusal replace_text(TextControl& control, std::string_view text);
  // Tab, or Shift and Tab. Those that `passes` names belong to the same stop.
  void step(bool forward, const Form::Passes& passes = {});

  Refusal click(Control& button);
  // Opens the list of a combo box, as its arrow does.
  Refusal drop_down(ComboBox& box);
  // Chooses a line of an opened combo box, or clicks a line of a list box.
  Refusal choose(ComboBox& box, int index);
  Refusal pick(ListBox& list, int index);
  Refusal double_click(ListBox& list, int index);
  Refusal scroll(ScrollBar& bar, int value);
  Refusal show_page(int page);
  Refusal right_press();
  // Escape: the first usable one of the topmost form's cancel buttons.
  Refusal cancel();
  // The close box of the topmost form.
  Refusal close();

 private:
  // Puts the focus on a control about to be used, showing its page first.
  Refusal reach(Control& control);
  Refusal check(const Control& control) const;
  template <typename Act>
  Refusal as_one(Act act);
  template <typename Act>
  Refusal act(Control& control, Act act);
  void key_into_focus(Key key);
  void settle();

  Screen& screen_;
};

}  // namespace velanor::screen
