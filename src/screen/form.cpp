#include "screen/form.h"

#include <algorithm>

namespace velanor::screen {
namespace {

// Raised again on every way out, so that a failing handler does not leave the form mid-move.
class Scope {
 public:
  explicit Scope(bool& flag) : flag_(flag) { flag_ = true; }
  ~Scope() { flag_ = false; }
  Scope(const Scope&) = delete;
  Scope& operator=(const Scope&) = delete;

 private:
  bool& flag_;
};

}  // namespace

Control* Form::find(std::string_view name) const {
  const auto at =
      std::find_if(controls_.begin(), controls_.end(), [&](Control* c) { return c->name() == name; });
  return at == controls_.end() ? nullptr : *at;
}

bool Form::in_sight(const Control& control) const {
  return control.page() < 0 || !tabs_ || control.page() == tabs_->current();
}

bool Form::can_focus(const Control& control) const {
  return control.takes_focus() && control.usable() && in_sight(control);
}

void Form::set_focus(Control& control) {
  if (!control.takes_focus() || !control.usable()) return;
  if (leaving_) {
    wanted_ = &control;
    redirected_ = true;
    return;
  }
  if (!in_sight(control) && tabs_->page_enabled(control.page())) tabs_->show(control.page());
  // Showing the page may have disabled the control or its frame.
  if (can_focus(control)) move_focus(&control);
}

bool Form::move_focus(Control* control) {
  if (control == focus_ || leaving_) return control == focus_;
  wanted_ = control;
  redirected_ = false;
  if (focus_) {
    Scope leaving(leaving_);
    focus_->lost_focus.raise();
  }
  Control* target = wanted_;
  wanted_ = nullptr;
  if (redirected_ && !in_sight(*target) && tabs_->page_enabled(target->page())) tabs_->show(target->page());
  if (target && !can_focus(*target)) {
    settle_focus();
    return false;
  }
  if (target != focus_) enter(target);
  return target == control;
}

void Form::enter(Control* control) {
  focus_ = control;
  if (!control) return;
  if (auto* text = dynamic_cast<TextControl*>(control)) text->clear_edited();
  control->got_focus.raise();
}

void Form::settle_focus() {
  if (focus_ && !can_focus(*focus_)) enter(neighbour(focus_, true));
}

Control* Form::neighbour(const Control* from, bool forward) const {
  const int count = static_cast<int>(controls_.size());
  const auto at = std::find(controls_.begin(), controls_.end(), from);
  int position = at == controls_.end() ? (forward ? -1 : count) : static_cast<int>(at - controls_.begin());
  for (int step = 0; step < count; ++step) {
    position = (position + (forward ? 1 : -1) + count) % count;
    Control* candidate = controls_[static_cast<std::size_t>(position)];
    if (candidate != from && can_focus(*candidate)) return candidate;
  }
  return nullptr;
}

}  // namespace velanor::screen
