#include "play/actor.h"

namespace velanor::play {
namespace {

screen::Refusal no_line(const screen::Control& control, std::string_view text) {
  return control.name() + " has no line \"" + std::string(text) + "\"";
}

}  // namespace

bool HandActor::arrived(const screen::Control& control, int messages_before) const {
  return !screen_.finished() && &control.form() == &screen_.top() && control.form().focus() == &control &&
         screen_.messages_shown() == messages_before;
}

Actor::Refusal HandActor::pick(screen::ComboBox& box, std::string_view text) {
  const int messages = screen_.messages_shown();
  if (Refusal why = hand_.drop_down(box); !why.empty() || !arrived(box, messages)) return why;
  const int line = box.find(text);
  return line < 0 ? no_line(box, text) : hand_.choose(box, line);
}

Actor::Refusal HandActor::pick(screen::ComboBox& box, int index) {
  const int messages = screen_.messages_shown();
  if (Refusal why = hand_.drop_down(box); !why.empty() || !arrived(box, messages)) return why;
  return hand_.choose(box, index);
}

// The line is looked for when the focus is there: leaving the control before may fill the list.
Actor::Refusal HandActor::pick(screen::ListBox& list, std::string_view text) {
  const int messages = screen_.messages_shown();
  if (Refusal why = hand_.focus(list); !why.empty() || !arrived(list, messages)) return why;
  const int line = list.find(text);
  return line < 0 ? no_line(list, text) : hand_.pick(list, line);
}

}  // namespace velanor::play
