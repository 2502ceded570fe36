#include "qt/text_edit.h"

#include <QKeyEvent>

namespace velanor::qt {

bool TextEdit::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    const auto& key = static_cast<const QKeyEvent&>(*event);
    const bool nothing = (key.matches(QKeySequence::Undo) && !isUndoAvailable()) ||
                         (key.matches(QKeySequence::Redo) && !isRedoAvailable());
    if (nothing) return event->ignore(), false;
  }
  return QLineEdit::event(event);
}

void TextEdit::keyPressEvent(QKeyEvent* event) {
  if (!on_key || !on_key(*event)) QLineEdit::keyPressEvent(event);
}

}  // namespace velanor::qt
