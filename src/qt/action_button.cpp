#include "qt/action_button.h"

#include <QKeyEvent>
#include <QShortcutEvent>
#include <QStyleOptionButton>

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

void ActionButton::initStyleOption(QStyleOptionButton* option) const {
  QPushButton::initStyleOption(option);
  if (hasFocus()) option->state |= QStyle::State_KeyboardFocusChange;
}

}  // namespace velanor::qt
