#include "qt/text_edit.h"

#include <QKeyEvent>

namespace velanor::qt {

void TextEdit::keyPressEvent(QKeyEvent* event) {
  if (!on_key || !on_key(*event)) QLineEdit::keyPressEvent(event);
}

}  // namespace velanor::qt
