#include "app/velanor/paper/page.h"

#include <QFontMetricsF>
#include <QPainter>
#include <array>

namespace velanor::app::paper {
namespace {

struct Look {
  double points;
  QFont::Weight weight;
  QColor colour;
};
const Look& look_of(Style style) {
  static const std::array<Look, 6> kLooks{{{8.5, QFont::Normal, Qt::black},
                                           {8.5, QFont::Bold, Qt::black},
                                           {8.5, QFont::Normal, QColor(80, 80, 80)},
                                           {7.5, QFont::Normal, QColor(80, 80, 80)},
                                           {10.5, QFont::Bold, Qt::black},
                                           {13, QFont::Bold, Qt::black}}};
  return kLooks[static_cast<std::size_t>(style)];
}

struct Face {
  explicit Face(Style style) {
    constexpr double kNoLigatures = 0.01;  // a ligature would be copied as a character that nobody types
    font.setFamilies({"Liberation Sans", "Arial", "DejaVu Sans"});
    font.setPixelSize(static_cast<int>(look_of(style).points * kPoint));
    font.setWeight(look_of(style).weight);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setLetterSpacing(QFont::AbsoluteSpacing, kNoLigatures);
    metrics = QFontMetricsF(font);
  }
  QFont font;
  QFontMetricsF metrics{font};
};
const Face& face_of(Style style) {
  static const std::array<Face, 6> kFaces{Face(Style::kText), Face(Style::kStrong),  Face(Style::kLabel),
                                          Face(Style::kNote), Face(Style::kHeading), Face(Style::kTitle)};
  return kFaces[static_cast<std::size_t>(style)];
}

}  // namespace

const QFont& font_of(Style style) { return face_of(style).font; }

double line_height(Style style) { return face_of(style).metrics.height(); }

double width_of(const QString& text, Style style) { return face_of(style).metrics.horizontalAdvance(text); }

void Page::draw(QPainter& painter) const {
  for (const Fill& fill : fills) painter.fillRect(fill.place, fill.colour);
  for (const Text& text : texts) {
    const Face& face = face_of(text.style);
    const double room = text.side == Side::kRight ? text.place.width() - width_of(text.text, text.style) : 0;
    painter.setFont(face.font);
    painter.setPen(look_of(text.style).colour);
    painter.drawText(QPointF(text.place.left() + room, text.place.top() + face.metrics.ascent()), text.text);
  }
}

}  // namespace velanor::app::paper
