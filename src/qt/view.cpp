#include "qt/view.h"

#include <QFocusEvent>
#include <QMouseEvent>

namespace velanor::qt {

View::View(Acts& acts, screen::Control& control, QWidget& widget, QObject& parent)
    : QObject(&parent), acts_(acts), control_(control), widget_(widget) {
  QSizePolicy policy = widget.sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  widget.setSizePolicy(policy);
}

std::uint64_t View::revision() const {
  std::uint64_t sum = 0;
  for (const screen::Control* control : controls()) sum += control->revision();
  return sum;
}

void View::refresh() {
  const std::uint64_t now = revision();
  if (showing_ || now == shown_) return;
  shown_ = now;
  showing_ = true;
  show();
  showing_ = false;
}

void View::refresh_again() {
  shown_ = 0;
  refresh();
}

void View::show() {
  widget_.setEnabled(control_.enabled());
  widget_.setVisible(control_.visible());
}

// The hint that the form file gives to the pointer is the description for everyone else.
void View::describe(const QString& name) {
  widget_.setAccessibleName(name);
  widget_.setAccessibleDescription(widget_.toolTip());
}

// The mouse moves the focus through the rules, not by itself.
void View::watch(QWidget& widget) {
  if (widget.focusPolicy() != Qt::NoFocus) widget.setFocusPolicy(Qt::TabFocus);
  widget.installEventFilter(this);
}

bool View::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
      return !acts_.press(control());
    case QEvent::FocusIn:
      acts_.focus_came(control(), static_cast<QFocusEvent*>(event)->reason());
      return false;
    default:
      return QObject::eventFilter(watched, event);
  }
}

}  // namespace velanor::qt
