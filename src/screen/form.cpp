#include "velanor/form.h"

#include <algorithm>
#include <utility>

#include "screen/scope.h"

namespace velanor::screen {

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
  if (control && abandons(*control)) return postpone_judgement(*control);
  return leave_for([control] { return control; }) == control;
}

namespace {

// Another button of its frame is set.
bool is_no_stop(const Control& control) {
  const auto* option = dynamic_cast<const OptionButton*>(&control);
  if (!option || option->value()) return false;
  const auto& all = option->form().controls();
  return std::any_of(all.begin(), all.end(), [&](const Control* other) {
    const auto* sibling = dynamic_cast<const OptionButton*>(other);
    return sibling && sibling->frame() == option->frame() && sibling->value() && sibling->usable();
  });
}

}  // namespace

bool Form::step_focus(bool forward, const Passes& same_stop) {
  if (leaving_) return false;
  const Passes passes = [&](const Control& control) {
    return is_no_stop(control) || (same_stop && same_stop(control));
  };
  const Control* from = focus_;
  const auto next = [&] { return neighbour(from, forward, passes); };
  Control* target = next();
  if (target && abandons(*target)) {
    stepped_ = postpone_judgement(*target);
  } else {
    // Leaving may open what comes next, or close it.
    stepped_ = target && leave_for(next) == focus_;
  }
  return stepped_;
}

// What the field holds is judged when the focus goes on from there, if the entry is still open then.
bool Form::postpone_judgement(Control& control) {
  if (!can_focus(control)) return false;
  if (focus_ && !abandons(*focus_)) unjudged_ = focus_;
  enter(&control);
  return true;
}

void Form::resume() {
  if (!focus_ || stepped_ || !is_perilous(*focus_) || !before_ || !can_focus(*before_)) return;
  enter(before_);
  settled_ = true;
}

Control* Form::leave_for(const std::function<Control*()>& target_of) {
  wanted_ = nullptr;
  redirected_ = false;
  Control* const left = unjudged_ && unjudged_->usable() && unjudged_ != target_of() ? unjudged_ : focus_;
  if (left) {
    Scope leaving(leaving_);
    left->lost_focus.raise();
  }
  Control* target = redirected_ ? std::exchange(wanted_, nullptr) : target_of();
  if (redirected_ && !in_sight(*target) && tabs_->page_enabled(target->page())) tabs_->show(target->page());
  if (target && !can_focus(*target)) {
    unjudged_ = nullptr;
    settle_focus();
    return nullptr;
  }
  if (target != focus_) enter(target);
  return target;
}

void Form::enter(Control* control) {
  if (focus_ && !is_perilous(*focus_)) before_ = focus_;
  focus_ = control;
  settled_ = stepped_ = false;
  const bool returns = control && control == unjudged_;
  if (!control || !abandons(*control)) unjudged_ = nullptr;
  if (!control) return;
  if (auto* text = dynamic_cast<TextControl*>(control); text && !returns) text->clear_edited();
  control->got_focus.raise();
}

void Form::settle_focus() {
  if (!focus_ || can_focus(*focus_)) return;
  Control* next = neighbour(focus_, true, [this](const Control& control) { return is_perilous(control); });
  enter(next);
  settled_ = focus_ == next;
}

bool Form::abandons(const Control& control) const {
  return std::find(cancel_buttons.begin(), cancel_buttons.end(), &control) != cancel_buttons.end();
}

bool Form::is_perilous(const Control& control) const {
  return abandons(control) ||
         std::find(perilous_buttons.begin(), perilous_buttons.end(), &control) != perilous_buttons.end();
}

Control* Form::neighbour(const Control* from, bool forward, const Passes& passes) const {
  const int count = static_cast<int>(controls_.size());
  const auto at = std::find(controls_.begin(), controls_.end(), from);
  int position = at == controls_.end() ? (forward ? -1 : count) : static_cast<int>(at - controls_.begin());
  for (int step = 0; step < count; ++step) {
    position = (position + (forward ? 1 : -1) + count) % count;
    Control* candidate = controls_[static_cast<std::size_t>(position)];
    if (candidate != from && can_focus(*candidate) && !(passes && passes(*candidate))) return candidate;
  }
  return nullptr;
}

}  // namespace velanor::screen
