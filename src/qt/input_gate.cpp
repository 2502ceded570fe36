#include "qt/input_gate.h"

#include <QApplication>
#include <QPointer>
#include <QWidget>
#include <QWindow>

// Exported by the toolkit for those who play keys, without a header.
QT_BEGIN_NAMESPACE
Q_GUI_EXPORT bool qt_sendShortcutOverrideEvent(QObject* object, ulong timestamp, int key,
                                               Qt::KeyboardModifiers modifiers,
                                               const QString& text = QString(), bool repeated = false,
                                               ushort count = 1);
QT_END_NAMESPACE

namespace velanor::qt {

InputGate::InputGate(QObject* parent) : QObject(parent) {
  QCoreApplication::instance()->installEventFilter(this);
}

InputGate::~InputGate() = default;

void InputGate::release() {
  holding_ = false;
  if (kept_.empty() || scheduled_) return;
  scheduled_ = true;
  QMetaObject::invokeMethod(
      this, [this] { play_next(); }, Qt::QueuedConnection);
}

void InputGate::drop() {
  holding_ = false;
  kept_.clear();
}

bool InputGate::eventFilter(QObject* watched, QEvent* event) {
  if (!holding_ && kept_.empty()) return false;
  switch (event->type()) {
    case QEvent::ShortcutOverride:
      // One event goes from the widget up through its parents.
      if (pass_override_) passing_ = event;
      pass_override_ = false;
      if (event == passing_) return false;
      // Accepted: it is no shortcut now, and comes again as a key.
      event->accept();
      return true;
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
      if (event == passing_ || !watched->isWindowType()) return false;
      kept_.emplace_back(static_cast<QKeyEvent*>(event)->clone());
      return true;
    default:
      return false;
  }
}

// The next one is due before this one is played: this one may open a message, whose keys follow.
void InputGate::play_next() {
  scheduled_ = false;
  if (holding_ || kept_.empty()) return;
  const auto event = std::move(kept_.front());
  kept_.pop_front();
  release();
  play(*event);
}

void InputGate::play(QKeyEvent& event) {
  QWidget* focus = QApplication::focusWidget();
  const QPointer<QWindow> window(QGuiApplication::focusWindow());
  if (!focus || !window) return;
  if (event.type() == QEvent::KeyPress) {
    pass_override_ = true;
    const bool shortcut =
        qt_sendShortcutOverrideEvent(focus, 0, event.key(), event.modifiers(), event.text());
    pass_override_ = false;
    if (shortcut) return;
    if (!window) return;
  }
  passing_ = &event;
  event.accept();
  QCoreApplication::sendEvent(window, &event);
}

}  // namespace velanor::qt
