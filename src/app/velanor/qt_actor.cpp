#include "app/velanor/qt_actor.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QCursor>
#include <QDir>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPointer>
#include <QScrollBar>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>

#include "qt/message_sheet.h"
#include "qt/sheet.h"
#include "qt/strings.h"

namespace velanor::app {

void send_key(QWidget& widget, int key, const QString& text, Qt::KeyboardModifiers with) {
  const QPointer<QWidget> still(&widget);
  QKeyEvent press(QEvent::KeyPress, key, with, text);
  QCoreApplication::sendEvent(&widget, &press);
  if (!still) return;
  QKeyEvent release(QEvent::KeyRelease, key, with, text);
  QCoreApplication::sendEvent(&widget, &release);
}

namespace {

using play::Actor;
using qt::to_qt;
using screen::Key;

constexpr int kActiveTimeout = 2000;

void mouse(QEvent::Type type, QWidget& widget, const QPoint& at, Qt::MouseButton button = Qt::LeftButton) {
  const Qt::MouseButtons down = type == QEvent::MouseButtonRelease ? Qt::NoButton : button;
  QMouseEvent event(type, at, widget.mapToGlobal(at), button, down, Qt::NoModifier);
  QCoreApplication::sendEvent(&widget, &event);
}

void click_at(QWidget& widget, const QPoint& at) {
  const QPointer<QWidget> still(&widget);
  mouse(QEvent::MouseButtonPress, widget, at);
  if (still) mouse(QEvent::MouseButtonRelease, widget, at);
}

// The widget that has the keyboard in the window of another.
QWidget* with_focus(const QWidget& widget) { return widget.window()->focusWidget(); }

struct NamedKey {
  char32_t code;
  int key;
  const char* text;
};
constexpr NamedKey kNamedKeys[]{{Key::kEnter, Qt::Key_Return, "\r"},
                                {Key::kBackspace, Qt::Key_Backspace, "\b"},
                                {Key::kTab, Qt::Key_Tab, "\t"},
                                {Key::kEscape, Qt::Key_Escape, "\x1b"},
                                {Key::kDelete, Qt::Key_Delete, "\x7f"}};

void press_key(QWidget& widget, char32_t code) {
  for (const NamedKey& named : kNamedKeys) {
    if (named.code == code) return send_key(widget, named.key, QString::fromLatin1(named.text));
  }
  const QString text = QString::fromUcs4(&code, 1);
  send_key(widget, code < 128 ? text.toUpper().at(0).unicode() : int(Qt::Key_unknown), text);
}

// Lists that hang over the window go away, as they do when the user clicks elsewhere. On a platform
// without a window manager they take the activity of the window with them.
void close_lists(QWidget& widget) {
  for (QWidget* popup = QApplication::activePopupWidget(); popup && !qobject_cast<QMenu*>(popup);
       popup = QApplication::activePopupWidget())
    popup->hide();
  QWidget& window = *widget.window();
  if (window.isActiveWindow() || QApplication::activePopupWidget()) return;
  window.activateWindow();
  QElapsedTimer waited;
  waited.start();
  while (!window.isActiveWindow() && waited.elapsed() < kActiveTimeout) QCoreApplication::processEvents();
}

}  // namespace

void click_on(QWidget& widget) { click_at(widget, widget.rect().center()); }

QtActor::QtActor(qt::ControleVelanorWidget& widget, QString shots)
    : widget_(widget), shots_(std::move(shots)) {
  widget_.set_failure_handler([this](std::exception_ptr failure) { failure_ = std::move(failure); });
}

Actor::Refusal QtActor::done(Refusal why) {
  QCoreApplication::sendPostedEvents();
  if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
  return why;
}

// The columns of a table have one widget.
QWidget* QtActor::widget_of(const screen::Control& control) const { return widget_.widget_of(control); }

QtActor::Reached QtActor::reach(screen::Control& control) {
  close_lists(widget_);
  if (widget_.screen().finished()) return {nullptr, "the component was left"};
  QWidget* widget = widget_of(control);
  if (!widget) return {nullptr, control.name() + " is not on the window"};
  if (&control.form() != &widget_.screen().top())
    return {nullptr, control.name() + " stands behind another form"};
  if (!control.form().in_sight(control)) {
    if (Refusal why = tab(control.page()); !why.empty()) return {nullptr, why};
    if (!control.form().in_sight(control)) return {};
  }
  if (!widget->isVisible()) return {nullptr, control.name() + " is hidden"};
  if (!widget->isEnabled()) return {nullptr, control.name() + " is disabled"};
  return {widget, {}};
}

Actor::Refusal QtActor::focus(screen::Control& control) {
  const auto [widget, why] = reach(control);
  if (!widget) return done(why);
  if (!control.takes_focus()) return control.name() + " takes no focus";
  if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
    click_on(*edit);
  } else if (auto* combo = qobject_cast<QComboBox*>(widget); combo && combo->lineEdit()) {
    click_on(*combo->lineEdit());
  } else if (auto* tabs = qobject_cast<QTabWidget*>(widget)) {
    tabs->tabBar()->setFocus(Qt::TabFocusReason);
  } else {
    widget->setFocus(Qt::TabFocusReason);
  }
  return done();
}

Actor::Refusal QtActor::leave() {
  if (widget_.screen().finished()) return "the component was left";
  close_lists(widget_);
  widget_.setFocus(Qt::OtherFocusReason);
  return done();
}

Actor::Refusal QtActor::type(screen::TextControl& control, std::string_view text) {
  if (Refusal why = focus(control); !why.empty()) return why;
  if (control.form().focus() != &control) return done();
  send_key(*with_focus(widget_), Qt::Key_End);
  for (const char32_t character : to_qt(text).toUcs4()) {
    if (QWidget* focus = with_focus(widget_)) press_key(*focus, character);
  }
  close_lists(widget_);
  return done();
}

Actor::Refusal QtActor::press(screen::Control& control, Key key) {
  if (Refusal why = focus(control); !why.empty()) return why;
  if (control.form().focus() != &control) return done();
  QWidget& widget = *with_focus(widget_);
  if (dynamic_cast<screen::TextControl*>(&control)) send_key(widget, Qt::Key_End);
  press_key(widget, key.code);
  close_lists(widget_);
  return done();
}

Actor::Refusal QtActor::clear(screen::TextControl& control) {
  if (Refusal why = focus(control); !why.empty()) return why;
  const auto* combo = dynamic_cast<const screen::ComboBox*>(&control);
  if (combo && !combo->editable()) return control.name() + " cannot be typed into";
  if (control.form().focus() != &control) return done();
  QWidget& widget = *with_focus(widget_);
  send_key(widget, Qt::Key_A, QStringLiteral("\x01"), Qt::ControlModifier);
  press_key(widget, Key::kDelete);
  close_lists(widget_);
  return done();
}

// The arrow of the box; false when the list did not open, because the click was lost.
bool QtActor::open_list(screen::ComboBox& box, QComboBox& combo) {
  const int messages = widget_.screen().messages_shown();
  click_at(combo, QPoint(combo.width() - 8, combo.height() / 2));
  return messages == widget_.screen().messages_shown() && !widget_.screen().finished() &&
         box.form().focus() == &box;
}

Actor::Refusal QtActor::pick(screen::ComboBox& box, std::string_view text) {
  const auto [widget, why] = reach(box);
  if (!widget) return done(why);
  auto& combo = static_cast<QComboBox&>(*widget);
  if (!open_list(box, combo)) return done();
  for (int line = 0; line < combo.count(); ++line) {
    if (combo.itemText(line) == to_qt(text)) {
      combo.view()->setCurrentIndex(combo.model()->index(line, 0));
      send_key(*combo.view(), Qt::Key_Return, QStringLiteral("\r"));
      return done();
    }
  }
  combo.hidePopup();
  return done(box.name() + " has no line \"" + std::string(text) + "\"");
}

Actor::Refusal QtActor::pick(screen::ComboBox& box, int index) {
  const auto [widget, why] = reach(box);
  if (!widget) return done(why);
  auto& combo = static_cast<QComboBox&>(*widget);
  if (!open_list(box, combo)) return done();
  if (index < 0 || index >= combo.count()) {
    combo.hidePopup();
    return done(box.name() + " has no line " + std::to_string(index));
  }
  combo.view()->setCurrentIndex(combo.model()->index(index, 0));
  send_key(*combo.view(), Qt::Key_Return, QStringLiteral("\r"));
  return done();
}

Actor::Refusal QtActor::click_cell(screen::ListBox& list, int index, int clicks) {
  const auto [widget, why] = reach(list);
  if (!widget) return done(why);
  auto& table = static_cast<QTableView&>(*widget);
  int column = 0;
  for (const screen::Control* other : list.form().controls()) {
    if (other == &list) break;
    if (widget_of(*other) == &table) ++column;
  }
  if (index < 0 || index >= table.model()->rowCount()) {
    // The click on the empty part of the list still moves the focus.
    click_at(*table.viewport(),
             QPoint(table.columnViewportPosition(column) + 4, table.viewport()->height() - 2));
    if (list.form().focus() == &list) return done(list.name() + " has no line " + std::to_string(index));
    return done();
  }
  const QModelIndex cell = table.model()->index(index, column);
  table.scrollTo(cell);
  const QPoint at = table.visualRect(cell).center();
  click_at(*table.viewport(), at);
  if (clicks == 2 && widget_of(list) && list.form().focus() == &list && table.isVisible()) {
    mouse(QEvent::MouseButtonDblClick, *table.viewport(), at);
    if (widget_of(list)) mouse(QEvent::MouseButtonRelease, *table.viewport(), at);
  }
  return done();
}

Actor::Refusal QtActor::pick(screen::ListBox& list, std::string_view text) {
  if (Refusal why = focus(list); !why.empty()) return why;
  const int line = list.find(text);
  return line < 0 ? list.name() + " has no line \"" + std::string(text) + "\"" : pick(list, line);
}

Actor::Refusal QtActor::pick(screen::ListBox& list, int index) { return click_cell(list, index, 1); }
Actor::Refusal QtActor::double_click(screen::ListBox& list, int index) { return click_cell(list, index, 2); }

Actor::Refusal QtActor::click_menu(const screen::Menu& menu) {
  if (!menu.enabled() || !menu.visible()) return menu.name() + " is disabled or hidden";
  // The menu bar of no window shows it: the menu comes with the right button.
  if (!widget_.findChild<QMenu*>()) {
    if (Refusal why = right_click(); !why.empty()) return why;
  }
  auto* entry = widget_.findChild<QAction*>(to_qt(menu.name()));
  auto* popup = widget_.findChild<QMenu*>();
  if (!popup || !entry) return done();
  click_at(*popup, popup->actionGeometry(entry).center());
  return done();
}

Actor::Refusal QtActor::click(screen::Control& control) {
  if (auto* menu = dynamic_cast<screen::Menu*>(&control)) return click_menu(*menu);
  const auto [widget, why] = reach(control);
  if (!widget) return done(why);
  auto* button = qobject_cast<QAbstractButton*>(widget);
  if (!button) return control.name() + " is no button";
  click_on(*button);
  return done();
}

Actor::Refusal QtActor::scroll(screen::ScrollBar& bar, int value) {
  const auto [widget, why] = reach(bar);
  if (!widget) return done(why);
  auto& scroll_bar = static_cast<QScrollBar&>(*widget);
  if (value < 0 || value > scroll_bar.maximum())
    return bar.name() + " goes from 0 to " + std::to_string(scroll_bar.maximum());
  scroll_bar.setValue(value);
  return done();
}

Actor::Refusal QtActor::tab(int page) {
  close_lists(widget_);
  if (widget_.screen().finished()) return "the component was left";
  screen::Tabs* control = widget_.screen().top().tabs();
  auto* tabs = control ? static_cast<QTabWidget*>(widget_of(*control)) : nullptr;
  if (!tabs || page < 0 || page >= tabs->count()) return "there is no page " + std::to_string(page);
  if (!tabs->isTabEnabled(page)) return "page " + std::to_string(page) + " is disabled";
  click_at(*tabs->tabBar(), tabs->tabBar()->tabRect(page).center());
  return done();
}

Actor::Refusal QtActor::right_click() {
  if (widget_.screen().finished()) return "the component was left";
  mouse(QEvent::MouseButtonPress, widget_, QPoint(3, 3), Qt::RightButton);
  mouse(QEvent::MouseButtonRelease, widget_, QPoint(3, 3), Qt::RightButton);
  return done();
}

Actor::Refusal QtActor::close() {
  if (widget_.screen().finished()) return "the component was left";
  close_lists(widget_);
  if (auto* sheet = qobject_cast<qt::Sheet*>(widget_.open_sheet())) click_on(sheet->close_box());
  return done();
}

Actor::Refusal QtActor::shot(std::string_view name) {
  if (shots_.isEmpty()) return {};
  QCoreApplication::processEvents();
  const QString path = QDir(shots_).filePath(to_qt(name) + ".png");
  return widget_.window()->grab().save(path) ? ""
                                             : "the picture " + path.toStdString() + " cannot be written";
}

}  // namespace velanor::app
