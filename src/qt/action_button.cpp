#include "qt/action_button.h"

#include <QKeyEvent>
#include <QShortcutEvent>

namespace velanor::qt {

bool ActionButton::event(QEvent* event) {
  if (event->type() != QEvent::Shortcut) return QPushButton::event(event);
  if (isEnabled() && !static_cast<QShortcutEvent*>(event)->isAmbiguous()) click();
  return true;
}

void ActionButton::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
      if (!event->isAutoRepeat()) click();
      return;
    default:
      QPushButton::keyPressEvent(event);
  }
}

}  // namespace velanor::qt
