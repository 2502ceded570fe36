#include "velanor/screen.h"

#include <algorithm>

namespace velanor::screen {

bool Screen::is_open(const Form& form) const {
  return std::any_of(stack_.begin(), stack_.end(), [&](const Open& open) { return open.form == &form; });
}

std::vector<Form*> Screen::open_forms() const {
  std::vector<Form*> forms;
  for (const Open& open : stack_) forms.push_back(open.form);
  return forms;
}

void Screen::open(Form& form, std::function<void()> closed) {
  if (is_open(form)) return;
  stack_.push_back({&form, std::move(closed)});
  form.forget_focus();
  toolkit_.form_opened(form);
}

void Screen::close(Form& form) {
  if (stack_.size() < 2 || &top() != &form) return;
  const auto closed = std::move(stack_.back().closed);
  stack_.pop_back();
  toolkit_.form_closed(form);
  if (closed) closed();
}

bool Screen::request_close() {
  Form& form = top();
  if (form.may_close && !form.may_close()) return false;
  close(form);
  return !is_open(form);
}

Answer Screen::say(std::string_view text, Icon icon, Buttons buttons, Answer preset) {
  ++messages_shown_;
  return toolkit_.message({"Message TALVERINE", std::string(text), icon, buttons, preset});
}

}  // namespace velanor::screen
