#include "qt/stage.h"

#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QScrollArea>
#include <QVBoxLayout>

#include "qt/stage_life.h"
#include "qt/strings.h"
#include "screen/scope.h"
#include "text/failure.h"
#include "ui_card_pages.h"
#include "ui_hours_form.h"
#include "ui_item_form.h"

namespace velanor::qt {
namespace {

using screen::Scope;

// A menu bar gives the focus back to where it took it.
bool is_borrower(const QWidget& widget) { return qobject_cast<const QMenuBar*>(&widget) != nullptr; }

// A page that is higher than its window has scrolled.
void bring_in_sight(QWidget& widget) {
  constexpr int kAround = 12;
  for (QWidget* around = widget.parentWidget(); around; around = around->parentWidget()) {
    auto* area = qobject_cast<QScrollArea*>(around);
    if (area && area->isVisible()) area->ensureWidgetVisible(&widget, kAround, kAround);
  }
}

template <typename Pages>
QWidget* make() {
  auto* widget = new QWidget;
  Pages().setupUi(widget);
  // What scrolls stands on the ground of its page.
  for (QScrollArea* area : widget->template findChildren<QScrollArea*>()) {
    area->viewport()->setAutoFillBackground(false);
    area->widget()->setAutoFillBackground(false);
  }
  return widget;
}

}  // namespace

ControleVelanorWidget::Stage::Stage(ControleVelanorWidget& widget)
    : widget_(&widget), boards_(new Boards(widget)), component_({*this, *this, *this}) {
  boards_->on_step = [this](bool forward) { return step_focus(forward); };
  boards_->on_escape = [this] { escape(); };
  boards_->on_copy = [this] { forms_.back().views->copy_table(); };
  boards_->on_focus = [this] { focus_left(); };
  boards_->on_closed = [this](bool closed) { window_closed(closed); };
  screen::Form& base = component_.screen().base();
  QWidget* pages = make_pages(base);
  auto* column = new QVBoxLayout(boards_);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(pages);
  add_form(base, nullptr, *pages);
  component_.listen(*this);
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget* before, QWidget* now) {
    const bool ours = before && (before == boards_ || boards_->isAncestorOf(before));
    const bool same_window = now && now->window() == boards_->window();
    if (ours && same_window && now != boards_ && !boards_->isAncestorOf(now) && !is_borrower(*now))
      focus_left();
  });
}

// The views stand on the stage, and go first.
ControleVelanorWidget::Stage::~Stage() {
  placing_ = true;
  delete boards_;
}

QWidget* ControleVelanorWidget::Stage::make_pages(const screen::Form& form) const {
  if (form.name() == "Frm_RubSaisie") return make<Ui::ItemPages>();
  if (form.name() == "Frm_SaisieHres") return make<Ui::HoursPages>();
  return make<Ui::CardPages>();
}

void ControleVelanorWidget::Stage::add_form(screen::Form& form, Sheet* sheet, QWidget& pages) {
  form.changed = [this] { control_changed(); };
  forms_.push_back({&form, sheet, std::make_unique<FormViews>(*this, form, pages)});
}

View* ControleVelanorWidget::Stage::view_of(const screen::Control& control) const {
  for (const OpenForm& open : forms_) {
    if (open.form == &control.form()) return open.views->view_of(control);
  }
  return nullptr;
}

// ---- The widget comes and goes.

void ControleVelanorWidget::Stage::start() {
  const KeepAlive alive(*this);
  const std::exception_ptr failure = run([this] { screen().act([this] { component_.init(); }); });
  if (!widget_) return;
  show_start(component_.closed() ? failure : nullptr);
  listen_to_others();
  if (failure) std::rethrow_exception(failure);
}

// Taken off the widget, the boards stay for as long as there are frames that stand on them.
void ControleVelanorWidget::Stage::widget_goes() {
  widget_ = nullptr;
  stop_listening();
  if (frames_ == 0) return;
  for (QWidget* child : boards_->findChildren<QWidget*>()) {
    if (child->isWindow()) child->hide();
  }
  boards_->hide();
  boards_->setParent(nullptr);
  answer_messages();
  gate_.drop();
  // Where the store itself is at work, its files are still in use.
  if (!in_rules_ || called_out_) component_.abandon();
}

// A message cannot wait on a window that nobody sees.
void ControleVelanorWidget::Stage::window_closed(bool closed) {
  closed_ = closed;
  if (closed) answer_messages();
}

void ControleVelanorWidget::Stage::answer_messages() {
  const auto waiting = messages_;
  for (MessageSheet* sheet : waiting) emit sheet->answered(sheet->closing_answer());
}

// ---- Acts.

// What the rules throw; nothing where they were only left.
std::exception_ptr ControleVelanorWidget::Stage::run(const std::function<void()>& rules) {
  const Scope in_rules(in_rules_);
  try {
    rules();
  } catch (const screen::Gone&) {
  } catch (...) {
    return std::current_exception();
  }
  return nullptr;
}

bool ControleVelanorWidget::Stage::open_to(const screen::Control& control) const {
  return idle() && &control.form() == &screen().top() && control.usable();
}

void ControleVelanorWidget::Stage::act(const std::function<void(screen::Hand&)>& what) {
  if (!idle()) return;
  const KeepAlive alive(*this);
  const std::exception_ptr failure = run([&] {
    screen().act([&] {
      screen::Hand hand(screen());
      what(hand);
    });
  });
  if (failure) report(failure);
}

// Also where the rules failed half way: the control that has the focus may be locked by now.
void ControleVelanorWidget::Stage::acted() {
  const KeepAlive alive(*this);
  if (!widget_) return;
  {
    const Scope following(following_);
    if (!screen().finished()) run([&] { screen().top().settle_focus(); });
    refresh();
    place_focus();
  }
  refused_ = false;
  gate_.release();
}

// The host wrote into it itself. Many at a time are one.
void ControleVelanorWidget::Stage::control_changed() {
  if (!widget_ || at_work() || std::exchange(written_, true)) return;
  const auto follow = [this] {
    written_ = false;
    act([](screen::Hand&) {});
  };
  QMetaObject::invokeMethod(this, follow, Qt::QueuedConnection);
}

control::Opening ControleVelanorWidget::Stage::lead(
    const std::function<control::Opening(ControleVelanor&)>& to) {
  if (component_.closed()) return control::Opening::not_started();
  if (!idle()) return control::Opening::busy();
  control::Opening opening = control::Opening::not_started();
  run_for_host([&] { opening = to(component_); });
  return opening;
}

bool ControleVelanorWidget::Stage::step(const std::function<bool(ControleVelanor&)>& to) {
  bool done = false;
  if (idle()) run_for_host([&] { done = to(component_); });
  return done;
}

QString ControleVelanorWidget::Stage::aid(const std::function<std::string(ControleVelanor&)>& what) {
  if (!idle()) return to_qt(control::Opening::busy().why);
  std::string why;
  run_for_host([&] { why = what(component_); });
  return to_qt(why);
}

void ControleVelanorWidget::Stage::run_for_host(const std::function<void()>& rules) {
  const KeepAlive alive(*this);
  const auto failure = run(rules);
  if (failure) std::rethrow_exception(failure);
}

bool ControleVelanorWidget::Stage::press(screen::Control& control) {
  if (!open_to(control)) return false;
  const KeepAlive alive(*this);
  const int messages = screen().messages_shown();
  act([&](screen::Hand& hand) {
    if (control.takes_focus()) (void)hand.focus(control);
  });
  const bool arrived = !control.takes_focus() || control.form().focus() == &control;
  return arrived && screen().messages_shown() == messages && open_to(control);
}

// Menus, lists that open and other windows borrow the focus; they do not move it.
void ControleVelanorWidget::Stage::focus_came(screen::Control& control, Qt::FocusReason reason) {
  if (!widget_ || placing_ || at_work() || screen().finished()) return;
  const KeepAlive alive(*this);
  if (reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason ||
      reason == Qt::MenuBarFocusReason)
    return keep_focus();
  // The toolkit turns a page before the rules have heard of it, and puts the focus somewhere on the new one.
  if (!control.form().in_sight(control)) return;
  if (open_to(control)) {
    if (control.form().focus() != &control) act([&](screen::Hand& hand) { return hand.focus(control); });
  } else {
    place_focus();
  }
}

void ControleVelanorWidget::Stage::focus_left() {
  if (!placing_ && idle() && screen().top().focus()) act([](screen::Hand& hand) { return hand.leave(); });
}

// Columns of one table are one stop.
bool ControleVelanorWidget::Stage::step_focus(bool forward) {
  if (!widget_ || placing_ || screen().finished()) return false;
  if (MessageSheet* message = open_message()) return message->move_focus(forward), true;
  if (!idle()) return false;
  // A page that is being turned has hidden what has the focus.
  if (const QWidget* focus = QApplication::focusWidget(); focus && !focus->isVisible()) return true;
  screen::Form& form = screen().top();
  const screen::Control* const from = form.focus();
  View* here = from ? view_of(*from) : nullptr;
  // What that opens has the focus then.
  if (here && here->take_line_under_bar() && form.focus() != from) return true;
  const auto same_stop = [&](const screen::Control& control) { return here && view_of(control) == here; };
  stepped_ = form.neighbour(form.focus(), forward, same_stop);
  act([&](screen::Hand& hand) { hand.step(forward, same_stop); });
  stepped_ = nullptr;
  return true;
}

void ControleVelanorWidget::Stage::escape() {
  act([](screen::Hand& hand) { return hand.cancel(); });
}

void ControleVelanorWidget::Stage::right_press() {
  act([](screen::Hand& hand) { return hand.right_press(); });
}

void ControleVelanorWidget::Stage::report(const std::exception_ptr& failure) {
  if (!widget_) return;
  if (failed) return failed(failure);
  try {
    std::rethrow_exception(failure);
  } catch (const std::exception& error) {
    ask({.title = "Fiches du personnel", .text = text::failure_sentence(error)});
  } catch (...) {
    ask({.title = "Fiches du personnel", .text = "L'opération a échoué pour une raison inconnue."});
  }
}

// ---- The window follows.

void ControleVelanorWidget::Stage::refresh() {
  const Scope placing(placing_);
  for (const OpenForm& open : forms_) open.views->refresh();
  show_asides();
}

// What the controls do not hold: it stands beside them where their page has a place for it. What cannot be
// read is not told.
void ControleVelanorWidget::Stage::show_asides() {
  const auto told = [&](const auto& tell) {
    std::string text;
    run([&] { text = tell(); });
    return to_qt(text);
  };
  const std::pair<const char*, QString> kAsides[] = {
      {"split_told", told([&] { return component_.split_told(); })},
      {"hours_told", told([&] { return component_.hours_told(); })},
  };
  for (const auto& [name, text] : kAsides) {
    for (QLabel* label : boards_->findChildren<QLabel*>(name)) label->setText(text);
  }
}

// A form that was just opened has the focus on its first control.
void ControleVelanorWidget::Stage::place_focus() {
  if (!widget_ || open_message() || screen().finished()) return;
  const Scope placing(placing_);
  screen::Form& form = screen().top();
  OpenForm& open = forms_.back();
  if (!form.focus() && open.sheet && !open.sheet->isAncestorOf(QApplication::focusWidget()))
    form.move_focus(form.neighbour(nullptr, true));
  View* view = form.focus() ? view_of(*form.focus()) : nullptr;
  const Arrival arrival = view ? arrival_at(*form.focus()) : Arrival::kSettled;
  placed_ = form.focus();
  open.views->leave_all_but(view);
  QWidget* target = view ? &view->focus_widget() : boards_;
  bring_in_sight(*target);
  QWidget* window = boards_->window();
  const QWidget* now = window->focusWidget();
  if (now == target) return;
  // Whoever else on the window has it keeps it, where nothing here is to have it.
  if (!view && !open.sheet && now && now->isVisible() && !boards_->isAncestorOf(now) && !is_borrower(*now))
    return;
  window->setAttribute(Qt::WA_KeyboardFocusChange);
  target->setFocus(Qt::OtherFocusReason);
  if (view) view->focus_placed(arrival);
}

// A step that opened a card on its way has gone elsewhere than the user saw.
Arrival ControleVelanorWidget::Stage::arrival_at(const screen::Control& control) const {
  if (&control != placed_ && stepped_) return &control == stepped_ ? Arrival::kMeant : Arrival::kSettled;
  if (&control != placed_) return control.form().focus_settled() ? Arrival::kSettled : Arrival::kMeant;
  const auto* text = dynamic_cast<const screen::TextControl*>(&control);
  return refused_ && text && text->edited() ? Arrival::kRefused : Arrival::kBack;
}

// What had borrowed the focus gives it back to where it was then; the keys may have moved it since. What
// was typed so far is left unselected, for the next key to go on.
void ControleVelanorWidget::Stage::keep_focus() {
  const screen::Control* focus = screen().top().focus();
  const View* view = focus ? view_of(*focus) : nullptr;
  if (!view || !idle() || boards_->window()->focusWidget() == &view->focus_widget()) return;
  const Scope placing(placing_);
  view->focus_widget().setFocus(Qt::OtherFocusReason);
}

void ControleVelanorWidget::Stage::set_mnemonics() {
  for (const OpenForm& open : forms_) open.views->set_mnemonics(!open_message() && &open == &forms_.back());
}

}  // namespace velanor::qt
