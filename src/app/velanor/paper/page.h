// A page that is laid out: texts in the order in which they are read, and what is drawn under them.
#pragma once

#include <QColor>
#include <QFont>
#include <QRectF>
#include <QString>
#include <vector>

class QPainter;

namespace velanor::app::paper {

// Lengths are in twentieths of a point, whatever the device, so one layout serves all of them.
inline constexpr double kPoint = 20;
inline constexpr int kPerInch = 1440;
constexpr double millimetres(double length) { return length * kPerInch / 25.4; }

enum class Style { kText, kStrong, kLabel, kNote, kHeading, kTitle };
const QFont& font_of(Style style);
double line_height(Style style);
double width_of(const QString& text, Style style);

struct Page {
  // On one line; it stands at the left end of its place, or against the right one.
  enum class Side { kLeft, kRight };
  struct Text {
    QRectF place;
    QString text;
    Style style;
    Side side;
  };
  struct Fill {
    QRectF place;
    QColor colour;
  };
  std::vector<Text> texts = {};
  std::vector<Fill> fills = {};

  // Onto a device whose origin is the corner of the paper.
  void draw(QPainter& painter) const;
};

}  // namespace velanor::app::paper
