#include "qt/stage.h"

#include <QApplication>
#include <QCursor>
#include <QEventLoop>
#include <QMenu>
#include <QMenuBar>
#include <QVBoxLayout>

#include "qt/strings.h"
#include "ui_card_pages.h"
#include "ui_hours_form.h"
#include "ui_item_form.h"

namespace velanor::qt {
namespace {

class Flag {
 public:
  explicit Flag(bool& flag) : flag_(flag), before_(flag) { flag_ = true; }
  ~Flag() { flag_ = before_; }
  Flag(const Flag&) = delete;
  Flag& operator=(const Flag&) = delete;

 private:
  bool& flag_;
  bool before_;
};

// A menu bar gives the focus back to where it took it.
bool is_borrower(const QWidget& widget) { return qobject_cast<const QMenuBar*>(&widget) != nullptr; }

template <typename Pages>
QWidget* make() {
  auto* widget = new QWidget;
  Pages().setupUi(widget);
  return widget;
}

}  // namespace

ControleVelanorWidget::Stage::Stage(ControleVelanorWidget& widget)
    : widget_(widget), component_({*this, *this, *this}) {
  screen::Form& base = component_.screen().base();
  QWidget* pages = make_pages(base);
  auto* column = new QVBoxLayout(&widget);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(pages);
  forms_.push_back({&base, nullptr, std::make_unique<FormViews>(*this, base, *pages)});
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget* before, QWidget* now) {
    const bool ours = before && (before == &widget_ || widget_.isAncestorOf(before));
    const bool same_window = now && now->window() == widget_.window();
    if (ours && same_window && now != &widget_ && !widget_.isAncestorOf(now) && !is_borrower(*now))
      focus_left();
  });
}

QWidget* ControleVelanorWidget::Stage::make_pages(const screen::Form& form) const {
  if (form.name() == "Frm_RubSaisie") return make<Ui::ItemPages>();
  if (form.name() == "Frm_SaisieHres") return make<Ui::HoursPages>();
  return make<Ui::CardPages>();
}

void ControleVelanorWidget::Stage::start() {
  component_.init();
  refresh();
  place_focus();
}

View* ControleVelanorWidget::Stage::view_of(const screen::Control& control) const {
  for (const OpenForm& open : forms_) {
    if (open.form == &control.form()) return open.views->view_of(control);
  }
  return nullptr;
}

// ---- Acts.

bool ControleVelanorWidget::Stage::open_to(const screen::Control& control) const {
  return idle() && &control.form() == &screen().top() && control.usable();
}

void ControleVelanorWidget::Stage::act(const std::function<void(screen::Hand&)>& what) {
  if (!idle()) return;
  std::exception_ptr failure;
  {
    Flag acting(acting_);
    try {
      screen::Hand hand(screen());
      what(hand);
      if (!screen().finished()) screen().top().settle_focus();
    } catch (...) {
      failure = std::current_exception();
    }
    refresh();
    place_focus();
  }
  gate_.release();
  if (failure) report(failure);
  emit widget_.acted();
}

bool ControleVelanorWidget::Stage::press(screen::Control& control) {
  if (!open_to(control)) return false;
  const int messages = screen().messages_shown();
  act([&](screen::Hand& hand) {
    if (control.takes_focus()) hand.focus(control);
  });
  const bool arrived = !control.takes_focus() || control.form().focus() == &control;
  return arrived && screen().messages_shown() == messages && open_to(control);
}

// Menus, lists that open and other windows borrow the focus; they do not move it.
void ControleVelanorWidget::Stage::focus_came(screen::Control& control, Qt::FocusReason reason) {
  if (placing_ || acting_ || screen().finished()) return;
  if (reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason ||
      reason == Qt::MenuBarFocusReason)
    return keep_focus();
  // The toolkit turns a page before the rules have heard of it, and puts the focus somewhere on the new one.
  if (!control.form().in_sight(control)) return;
  if (open_to(control)) {
    if (control.form().focus() != &control) act([&](screen::Hand& hand) { hand.focus(control); });
  } else {
    place_focus();
  }
}

void ControleVelanorWidget::Stage::focus_left() {
  if (!placing_ && idle() && screen().top().focus()) act([](screen::Hand& hand) { hand.leave(); });
}

// Columns of one table are one stop.
bool ControleVelanorWidget::Stage::step_focus(bool forward) {
  if (placing_ || screen().finished()) return false;
  if (message_) return message_->move_focus(forward), true;
  if (!idle()) return false;
  if (const QWidget* focus = QApplication::focusWidget(); focus && !focus->isVisible())
    return true;  // likewise
  act([&](screen::Hand&) {
    screen::Form& form = screen().top();
    const View* here = form.focus() ? view_of(*form.focus()) : nullptr;
    screen::Control* next = form.neighbour(form.focus(), forward);
    for (int stops = 0; next && here && view_of(*next) == here && stops < 8; ++stops)
      next = form.neighbour(next, forward);
    if (next) form.move_focus(next);
  });
  return true;
}

void ControleVelanorWidget::Stage::escape() {
  act([](screen::Hand& hand) { hand.cancel(); });
}

void ControleVelanorWidget::Stage::right_press() {
  act([](screen::Hand& hand) { hand.right_press(); });
}

void ControleVelanorWidget::Stage::report(const std::exception_ptr& failure) {
  if (failed) return failed(failure);
  try {
    std::rethrow_exception(failure);
  } catch (const std::exception& error) {
    widget_.ask({.title = "Fiches du personnel", .text = error.what()});
  } catch (...) {
    widget_.ask({.title = "Fiches du personnel", .text = "L'opération a échoué pour une raison inconnue."});
  }
}

// ---- The window follows.

void ControleVelanorWidget::Stage::refresh() {
  Flag placing(placing_);
  for (const OpenForm& open : forms_) open.views->refresh();
}

// A form that was just opened has the focus on its first control.
void ControleVelanorWidget::Stage::place_focus() {
  if (message_ || screen().finished()) return;
  Flag placing(placing_);
  screen::Form& form = screen().top();
  OpenForm& open = forms_.back();
  if (!form.focus() && open.sheet && !open.sheet->isAncestorOf(QApplication::focusWidget()))
    form.move_focus(form.neighbour(nullptr, true));
  View* view = form.focus() ? view_of(*form.focus()) : nullptr;
  open.views->leave_all_but(view);
  QWidget* target = view ? &view->focus_widget() : &widget_;
  if (widget_.window()->focusWidget() == target) return;
  widget_.window()->setAttribute(Qt::WA_KeyboardFocusChange);
  target->setFocus(Qt::OtherFocusReason);
  if (view) view->focus_placed();
}

// What had borrowed the focus gives it back to where it was then; the keys may have moved it since. What
// was typed so far is left unselected, for the next key to go on.
void ControleVelanorWidget::Stage::keep_focus() {
  const screen::Control* focus = screen().top().focus();
  const View* view = focus ? view_of(*focus) : nullptr;
  if (!view || !idle() || widget_.window()->focusWidget() == &view->focus_widget()) return;
  Flag placing(placing_);
  view->focus_widget().setFocus(Qt::OtherFocusReason);
}

void ControleVelanorWidget::Stage::set_mnemonics() {
  for (const OpenForm& open : forms_) open.views->set_mnemonics(!message_ && &open == &forms_.back());
}

// ---- Toolkit.

screen::Answer ControleVelanorWidget::Stage::message(const screen::Message& message) {
  refresh();
  screen::Answer answer = MessageSheet::closing_answer(message.buttons);
  QEventLoop loop;
  const auto sheet = std::make_unique<MessageSheet>(message, widget_);
  message_ = sheet.get();
  set_mnemonics();
  forms_.back().views->leave_all_but(nullptr);
  connect(message_, &MessageSheet::answered, &loop, [&](screen::Answer given) {
    answer = given;
    // What is typed from here on belongs to whoever the rules give the focus to.
    gate_.hold();
    Flag placing(placing_);
    sheet->hide();
    loop.quit();
  });
  {
    Flag placing(placing_);
    sheet->show();
    sheet->raise();
    sheet->focus_first();
  }
  emit widget_.message_opened();
  loop.exec();
  message_ = nullptr;
  set_mnemonics();
  place_focus();
  return answer;
}

void ControleVelanorWidget::Stage::form_opened(screen::Form& form) {
  auto* sheet = new Sheet(to_qt(form.caption()), widget_);
  QWidget* pages = make_pages(form);
  sheet->set_contents(pages);
  forms_.back().views->leave_all_but(nullptr);
  forms_.push_back({&form, sheet, std::make_unique<FormViews>(*this, form, *pages)});
  connect(sheet, &Sheet::close_asked, this, [this] { act([](screen::Hand& hand) { hand.close(); }); });
  set_mnemonics();
  refresh();
  Flag placing(placing_);
  sheet->show();
  sheet->raise();
}

void ControleVelanorWidget::Stage::form_closed(screen::Form& form) {
  if (forms_.size() < 2 || forms_.back().form != &form) return;
  Flag placing(placing_);
  Sheet* sheet = forms_.back().sheet;
  forms_.pop_back();
  sheet->hide();
  sheet->deleteLater();
  set_mnemonics();
}

void ControleVelanorWidget::Stage::pop_up(screen::Menu& menu) {
  auto* popup = new QMenu(&widget_);
  popup->setObjectName(to_qt(menu.name()));
  popup->setAttribute(Qt::WA_DeleteOnClose);
  popup->setTitle(to_qt(menu.caption()));
  for (screen::Control* control : menu.form().controls()) {
    auto* entry = dynamic_cast<screen::Menu*>(control);
    if (!entry || entry->parent() != &menu) continue;
    QAction* action = popup->addAction(to_qt(entry->caption()));
    action->setObjectName(to_qt(entry->name()));
    action->setEnabled(entry->enabled());
    connect(action, &QAction::triggered, this,
            [this, entry] { act([&](screen::Hand& hand) { hand.click(*entry); }); });
  }
  popup->popup(QCursor::pos());
}

void ControleVelanorWidget::Stage::beep() { QApplication::beep(); }

void ControleVelanorWidget::Stage::set_busy(bool busy) {
  if (busy) {
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  } else {
    QGuiApplication::restoreOverrideCursor();
  }
}

// ---- What surrounds the component.

void ControleVelanorWidget::Stage::show(control::Client* client, store::Database& database,
                                        std::string_view page, std::string_view title,
                                        std::string_view section) {
  if (help) return help->show(client, database, page, title, section);
  emit widget_.help_asked(to_qt(page), to_qt(title));
}

// The host may destroy the widget when it hears of it, so not before the component's call is over.
void ControleVelanorWidget::Stage::unload() {
  QMetaObject::invokeMethod(&widget_, &ControleVelanorWidget::left, Qt::QueuedConnection);
}

}  // namespace velanor::qt
