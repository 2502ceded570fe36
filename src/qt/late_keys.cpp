#include "qt/late_keys.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWindow>

namespace velanor::qt {

LateKeys::LateKeys(QObject* parent) : QObject(parent), owner_(QApplication::activeWindow()) {
  QCoreApplication::instance()->installEventFilter(this);
}

bool LateKeys::are_late() const {
  const QWindow* window = QGuiApplication::focusWindow();
  return window && !window->isVisible() && owner_ && owner_->isVisible();
}

bool LateKeys::is_owners(const QObject* receiver) const {
  const auto* widget = qobject_cast<const QWidget*>(receiver);
  return widget ? widget->window() == owner_ : receiver == owner_->windowHandle();
}

// Shortcuts are those of the active window.
bool LateKeys::take_back(QEvent* event) {
  if (QApplication::activeWindow() != owner_) QApplication::setActiveWindow(owner_);
  const bool key = event->type() != QEvent::ShortcutOverride;
  QObject* receiver = key ? static_cast<QObject*>(owner_->windowHandle()) : owner_->focusWidget();
  if (receiver) QCoreApplication::sendEvent(receiver, event);
  return receiver != nullptr;
}

bool LateKeys::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::WindowActivate:
      if (auto* widget = qobject_cast<QWidget*>(watched);
          widget && widget->isWindow() && widget->windowType() != Qt::Popup)
        owner_ = widget;
      return false;
    case QEvent::ShortcutOverride:
      if (!are_late()) heard_ = static_cast<QKeyEvent*>(event)->timestamp();
      return are_late() && !is_owners(watched) && take_back(event);
    case QEvent::KeyPress:
      // The list went by this very key (Escape): it has had it.
      if (heard_ != 0 && watched->isWindowType() && are_late() &&
          static_cast<QKeyEvent*>(event)->timestamp() == heard_)
        return true;
      [[fallthrough]];
    case QEvent::KeyRelease:
      return watched->isWindowType() && are_late() && !is_owners(watched) && take_back(event);
    default:
      return false;
  }
}

}  // namespace velanor::qt
