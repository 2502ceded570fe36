#include "app/velanor/place.h"

#include <QDir>
#include <QScreen>
#include <QStandardPaths>
#include <QWidget>

namespace velanor::app {
namespace {

constexpr int kWindows = 8;
constexpr int kStep = 30;
// What a window manager draws around a window, about.
constexpr QMargins kFrame(2, 28, 2, 4);

QString lock_folder() {
  const QString own = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
  return own.isEmpty() ? QDir::tempPath() : own;
}

std::unique_ptr<QLockFile> lock_of(int number) {
  auto lock = std::make_unique<QLockFile>(
      QDir(lock_folder()).filePath(QStringLiteral("velanor-window-%1.lock").arg(number)));
  lock->setStaleLockTime(0);  // a window may stand for days
  return lock;
}

// Down and to the right, so that the title of the window below stays in sight; smaller where the screen ends.
void step_aside(QWidget& window, int steps) {
  const QRect room = window.screen()->availableGeometry().marginsRemoved(kFrame);
  QRect place = window.geometry().translated(steps * kStep, steps * kStep);
  const QSize least = window.minimumSizeHint().boundedTo(place.size());
  place.setRight(std::max(std::min(place.right(), room.right()), place.left() + least.width()));
  place.setBottom(std::max(std::min(place.bottom(), room.bottom()), place.top() + least.height()));
  window.setGeometry(place);
}

}  // namespace

Place::Place() {
  for (number_ = 0; number_ < kWindows; ++number_) {
    auto lock = lock_of(number_);
    if (!lock->tryLock(0)) continue;
    lock_ = std::move(lock);
    return;
  }
}

void Place::give_to(QWidget& window, const QByteArray& kept) const {
  if (kept.isEmpty() || !window.restoreGeometry(kept) || number_ == 0) return;
  window.setWindowState(Qt::WindowNoState);
  step_aside(window, number_);
}

}  // namespace velanor::app
