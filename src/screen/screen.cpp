#include "velanor/screen.h"

#include <algorithm>
#include <exception>

#include "screen/scope.h"

namespace velanor::screen {
namespace {

constexpr std::string_view kTitle = "Message TALVERINE";

}  // namespace

bool Screen::is_open(const Form& form) const {
  return std::any_of(stack_.begin(), stack_.end(), [&](const Open& open) { return open.form == &form; });
}

std::vector<Form*> Screen::open_forms() const {
  std::vector<Form*> forms;
  for (const Open& open : stack_) forms.push_back(open.form);
  return forms;
}

namespace {

std::exception_ptr failure_of(const std::function<void()>& what) {
  try {
    what();
  } catch (const Gone&) {
  } catch (...) {
    return std::current_exception();
  }
  return nullptr;
}

}  // namespace

void Screen::act(const std::function<void()>& what) {
  if (acting_) return what();
  std::exception_ptr failure;
  {
    const Scope acting(acting_);
    failure = failure_of(what);
  }
  const auto over = over_;
  toolkit_.acted();
  const std::exception_ptr unheard = over ? failure_of(over) : nullptr;
  if (failure || unheard) std::rethrow_exception(failure ? failure : unheard);
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

Answer Screen::keep_or_drop(std::string_view text, Icon icon) {
  return say(text, icon, Buttons::YesNo, Answer::Yes, Answer::Cancel);
}

Answer Screen::say(std::string_view text, Icon icon, Buttons buttons, Answer preset,
                   std::optional<Answer> closing) {
  ++messages_shown_;
  return toolkit_.message({std::string(kTitle), std::string(text), icon, buttons, preset, closing});
}

std::optional<std::vector<Answer>> Screen::compare(std::string_view text,
                                                   std::vector<Comparison::Line> lines) {
  ++messages_shown_;
  return toolkit_.compare({std::string(kTitle), std::string(text), std::move(lines)});
}

}  // namespace velanor::screen
