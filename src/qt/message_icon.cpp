#include "qt/message_icon.h"

#include <QPainter>
#include <QPainterPath>

namespace velanor::qt {
namespace {

constexpr int kSize = 40;

struct Look {
  QColor light, dark;  // the ground, on a light and on a dark window
  char mark;
};

Look look_of(screen::Icon icon) {
  switch (icon) {
    case screen::Icon::Question:
      return {QColor(47, 103, 177), QColor(92, 150, 226), '?'};
    case screen::Icon::Information:
      return {QColor(52, 128, 98), QColor(84, 176, 140), 'i'};
    default:
      return {QColor(196, 110, 12), QColor(232, 158, 62), '!'};
  }
}

QPainterPath ground_of(screen::Icon icon) {
  QPainterPath path;
  if (icon != screen::Icon::Exclamation) {
    path.addEllipse(QRectF(2, 2, kSize - 4, kSize - 4));
    return path;
  }
  path.moveTo(kSize / 2.0, 4);
  path.lineTo(kSize - 3, kSize - 5);
  path.lineTo(3, kSize - 5);
  path.closeSubpath();
  return path;
}

}  // namespace

MessageIcon::MessageIcon(screen::Icon icon, QWidget* parent) : QWidget(parent), icon_(icon) {
  setFixedSize(kSize, kSize);
}

QSize MessageIcon::sizeHint() const { return {kSize, kSize}; }

void MessageIcon::paintEvent(QPaintEvent*) {
  const Look look = look_of(icon_);
  const bool on_dark = palette().color(QPalette::Window).lightness() < 128;
  const QColor ground = on_dark ? look.dark : look.light;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  // A triangle with round corners is one with a thick pen of its own colour.
  painter.setPen(
      QPen(ground, icon_ == screen::Icon::Exclamation ? 4 : 0.1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(ground);
  painter.drawPath(ground_of(icon_));
  QFont font(painter.font());
  font.setPixelSize(24);
  font.setBold(true);
  painter.setFont(font);
  painter.setPen(on_dark ? QColor(24, 26, 28) : Qt::white);
  const int down = icon_ == screen::Icon::Exclamation ? 4 : 0;
  painter.drawText(QRect(0, down, kSize, kSize), Qt::AlignCenter, QChar::fromLatin1(look.mark));
}

}  // namespace velanor::qt
