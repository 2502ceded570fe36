#include "qt/boards.h"

#include <QFocusEvent>
#include <QHideEvent>
#include <QKeyEvent>
#include <QVBoxLayout>

namespace velanor::qt {

Boards::Boards(QWidget& host) : QWidget(&host) {
  auto* whole = new QVBoxLayout(&host);
  whole->setContentsMargins(0, 0, 0, 0);
  whole->addWidget(this);
  host.setFocusProxy(this);
}

bool Boards::focusNextPrevChild(bool next) { return on_step(next); }

void Boards::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) return on_escape();
  if (event->key() == Qt::Key_C && event->modifiers() == (Qt::ControlModifier | Qt::ShiftModifier))
    return on_copy();
  QWidget::keyPressEvent(event);
}

void Boards::focusInEvent(QFocusEvent* event) {
  QWidget::focusInEvent(event);
  if (event->reason() == Qt::OtherFocusReason) on_focus();
}

void Boards::showEvent(QShowEvent*) { on_closed(false); }

// A window that is iconified comes back, and so does a page of the host's.
void Boards::hideEvent(QHideEvent* event) {
  if (!event->spontaneous() && !window()->isVisible()) on_closed(true);
}

}  // namespace velanor::qt
