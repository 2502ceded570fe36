#include "app/velanor/turns.h"

#include <QCoreApplication>
#include <QEvent>
#include <QWindow>
#include <algorithm>

#include "app/velanor/main_window.h"

namespace velanor::app {
namespace {

bool is_asking(MainWindow* window) { return window && window->component().open_message(); }

void drop(std::vector<MainWindow*>& windows, const MainWindow& window) {
  windows.erase(std::remove(windows.begin(), windows.end(), &window), windows.end());
}

bool is_input(QEvent::Type type) {
  switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::KeyPress:
    case QEvent::ShortcutOverride:
    case QEvent::TouchBegin:
    case QEvent::Close:
      return true;
    default:
      return false;
  }
}

}  // namespace

Turns::Turns() { QCoreApplication::instance()->installEventFilter(this); }

void Turns::add(MainWindow& window) {
  windows_.push_back(&window);
  connect(&window.component(), &qt::ControleVelanorWidget::message_opened, this,
          [this, asking = &window] { asking_.push_back(asking); });
}

void Turns::remove(MainWindow& window) {
  window.component().disconnect(this);
  drop(windows_, window);
  drop(asking_, window);
}

MainWindow* Turns::newest() {
  while (!asking_.empty() && !is_asking(asking_.back())) asking_.pop_back();
  return asking_.empty() ? nullptr : asking_.back();
}

MainWindow* Turns::window_of(const QObject& receiver) const {
  const auto* widget = qobject_cast<const QWidget*>(&receiver);
  for (MainWindow* window : windows_) {
    if (widget ? widget->window() == window : &receiver == window->windowHandle()) return window;
  }
  return nullptr;
}

bool Turns::eventFilter(QObject* watched, QEvent* event) {
  if (!is_input(event->type())) return false;
  MainWindow* turn = newest();
  MainWindow* window = turn ? window_of(*watched) : nullptr;
  if (!is_asking(window) || window == turn) return false;
  event->setAccepted(event->type() == QEvent::ShortcutOverride);
  turn->bring_forward();
  return true;
}

}  // namespace velanor::app
