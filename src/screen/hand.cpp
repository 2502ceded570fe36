#include "velanor/hand.h"

#include "text/utf8.h"

namespace velanor::screen {
namespace {

const Refusal kDone;

}  // namespace

Refusal Hand::check(const Control& control) const {
  const std::string& name = control.name();
  if (screen_.finished()) return name + " is gone: the component was left";
  if (&control.form() != &screen_.top()) return name + " stands behind the form " + screen_.top().name();
  for (const Control* c = &control; c; c = c->frame()) {
    if (!c->visible()) return c->name() + " is hidden";
    if (!c->enabled()) return c->name() + " is disabled";
  }
  return kDone;
}

template <typename Act>
Refusal Hand::as_one(Act act) {
  Refusal why;
  screen_.act([&] { why = act(); });
  return why;
}

Refusal Hand::show_page(int page) {
  return as_one([&]() -> Refusal {
    if (screen_.finished()) return "the component was left";
    Form& form = screen_.top();
    Tabs* tabs = form.tabs();
    if (!tabs || page < 0 || page >= tabs->count()) return "there is no page " + std::to_string(page);
    if (Refusal why = check(*tabs); !why.empty()) return why;
    if (!tabs->page_enabled(page)) return "page " + std::to_string(page) + " is disabled";
    const int messages = screen_.messages_shown();
    if (form.move_focus(tabs) && screen_.messages_shown() == messages) tabs->show(page);
    settle();
    return kDone;
  });
}

Refusal Hand::reach(Control& control) {
  Form& form = control.form();
  // A hand shows the page before it finds what stands there; leaving a field may change that.
  if (&form == &screen_.top() && !form.in_sight(control)) {
    if (Refusal why = show_page(control.page()); !why.empty()) return why;
    if (!form.in_sight(control)) return kDone;
  }
  if (Refusal why = check(control); !why.empty()) return why;
  if (control.takes_focus()) form.move_focus(&control);
  return kDone;
}

Refusal Hand::focus(Control& control) {
  return as_one([&]() -> Refusal {
    if (!control.takes_focus()) return control.name() + " takes no focus";
    Refusal why = reach(control);
    settle();
    return why;
  });
}

Refusal Hand::leave() {
  return as_one([&]() -> Refusal {
    if (screen_.finished()) return "the component was left";
    screen_.top().move_focus(nullptr);
    settle();
    return kDone;
  });
}

Refusal Hand::press(Control& control, Key key) {
  return as_one([&]() -> Refusal {
    if (Refusal why = focus(control); !why.empty()) return why;
    if (control.form().focus() == &control) key_into_focus(key);
    settle();
    return kDone;
  });
}

Refusal Hand::press(TextControl& control, Key key, Span at) {
  return as_one([&]() -> Refusal {
    if (Refusal why = focus(control); !why.empty()) return why;
    if (control.form().focus() == &control && control.editable()) control.type(key, at);
    settle();
    return kDone;
  });
}

Refusal Hand::type(TextControl& control, std::string_view text) {
  return as_one([&]() -> Refusal {
    if (Refusal why = focus(control); !why.empty()) return why;
    if (control.form().focus() != &control) return kDone;
    for (std::size_t at = 0; at < text.size();) {
      key_into_focus(Key{text::next(text, at)});
      settle();
    }
    return kDone;
  });
}

// A key that nothing takes is no refusal.
void Hand::key_into_focus(Key key) {
  Control* control = screen_.top().focus();
  if (!control) return;
  if (key.code == Key::kTab) {
    step(true);
  } else if (key.code == Key::kEscape) {
    (void)cancel();
  } else if (auto* text = dynamic_cast<TextControl*>(control)) {
    if (text->editable()) text->type(key, {text::length(text->text()), 0});
  } else if (key.code == U' ' || (key.code == Key::kEnter && dynamic_cast<CommandButton*>(control))) {
    (void)click(*control);
  }
}

void Hand::step(bool forward, const Form::Passes& passes) {
  if (screen_.finished()) return;
  screen_.top().step_focus(forward, passes);
  settle();
}

Refusal Hand::cancel() {
  for (CommandButton* button : screen_.top().cancel_buttons) {
    if (button->usable()) return click(*button);
  }
  return "nothing to cancel";
}

Refusal Hand::replace_text(TextControl& control, std::string_view text) {
  return as_one([&]() -> Refusal {
    if (Refusal why = focus(control); !why.empty()) return why;
    if (!control.editable()) return control.name() + " cannot be typed into";
    if (control.form().focus() == &control) control.replace(text);
    settle();
    return kDone;
  });
}

// Reaches the control and, unless the click was lost on the way, carries out what it does.
template <typename Act>
Refusal Hand::act(Control& control, Act act) {
  return as_one([&]() -> Refusal {
    const int messages = screen_.messages_shown();
    if (Refusal why = reach(control); !why.empty()) {
      settle();
      return why;
    }
    const Form& form = control.form();
    const bool arrived = form.in_sight(control) && (!control.takes_focus() || form.focus() == &control);
    Refusal why;
    if (arrived && screen_.messages_shown() == messages && check(control).empty()) why = act();
    settle();
    return why;
  });
}

Refusal Hand::click(Control& control) {
  return act(control, [&]() -> Refusal {
    if (auto* button = dynamic_cast<CommandButton*>(&control)) {
      button->clicked.raise();
      if (!screen_.finished()) screen_.top().resume();
      return kDone;
    }
    if (auto* option = dynamic_cast<OptionButton*>(&control)) return option->set_value(true), kDone;
    if (auto* menu = dynamic_cast<Menu*>(&control)) return menu->clicked.raise(), kDone;
    return control.name() + " is no button";
  });
}

Refusal Hand::drop_down(ComboBox& box) {
  return act(box, [&] { return box.drop_down.raise(), kDone; });
}

Refusal Hand::choose(ComboBox& box, int index) {
  return act(box, [&]() -> Refusal {
    if (index < 0 || index >= box.count()) return box.name() + " has no line " + std::to_string(index);
    return box.choose(index), kDone;
  });
}

Refusal Hand::pick(ListBox& list, int index) {
  return act(list, [&]() -> Refusal {
    if (index < 0 || index >= list.count()) return list.name() + " has no line " + std::to_string(index);
    return list.set_index(index), kDone;
  });
}

Refusal Hand::double_click(ListBox& list, int index) {
  return act(list, [&]() -> Refusal {
    if (index < 0 || index >= list.count()) return list.name() + " has no line " + std::to_string(index);
    const int messages = screen_.messages_shown();
    list.set_index(index);
    // The first click may have put the list out of reach of the second.
    if (screen_.messages_shown() == messages && check(list).empty()) list.double_clicked.raise();
    return kDone;
  });
}

Refusal Hand::scroll(ScrollBar& bar, int value) {
  return act(bar, [&]() -> Refusal {
    if (value < 0 || value > bar.max()) return bar.name() + " goes from 0 to " + std::to_string(bar.max());
    return bar.set_value(value), kDone;
  });
}

Refusal Hand::right_press() {
  return as_one([&]() -> Refusal {
    if (screen_.finished()) return "the component was left";
    screen_.top().right_pressed.raise();
    return kDone;
  });
}

Refusal Hand::close() {
  return as_one([&]() -> Refusal {
    if (screen_.finished()) return "the component was left";
    screen_.request_close();
    settle();
    return kDone;
  });
}

void Hand::settle() {
  if (!screen_.finished()) screen_.top().settle_focus();
}

}  // namespace velanor::screen
