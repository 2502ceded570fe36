#include "qt/noted_line.h"

#include <QApplication>
#include <QPainter>

#include "qt/lines_model.h"

namespace velanor::qt {
namespace {

constexpr int kMargin = 6;
constexpr int kGap = 18;

// Half way to the ground it stands on.
QColor dimmed(const QColor& ink, const QColor& ground) {
  const auto mix = [](int a, int b) { return (a * 66 + b * 34) / 100; };
  return QColor(mix(ink.red(), ground.red()), mix(ink.green(), ground.green()),
                mix(ink.blue(), ground.blue()));
}

}  // namespace

int NotedLine::width_of(const QFont& font, const QString& line, const QString& note) {
  const QFontMetrics metrics(font);
  const int beside = note.isEmpty() ? 0 : metrics.horizontalAdvance(note) + kGap;
  return metrics.horizontalAdvance(line) + beside + 2 * kMargin;
}

void NotedLine::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
  QStyleOptionViewItem drawn(option);
  initStyleOption(&drawn, index);
  const QString line = drawn.text;
  const QString note = index.data(LinesModel::kNoteRole).toString();
  drawn.text.clear();
  QApplication::style()->drawControl(QStyle::CE_ItemViewItem, &drawn, painter, drawn.widget);
  const bool selected = drawn.state & QStyle::State_Selected;
  const QColor ink = drawn.palette.color(selected ? QPalette::HighlightedText : QPalette::Text);
  const QColor ground = drawn.palette.color(selected ? QPalette::Highlight : QPalette::Base);
  const QFontMetrics metrics(drawn.font);
  QRect place = drawn.rect.adjusted(kMargin, 0, -kMargin, 0);
  painter->save();
  painter->setFont(drawn.font);
  if (!note.isEmpty()) {
    const QString shown = metrics.elidedText(note, Qt::ElideRight, place.width() * 2 / 3);
    painter->setPen(dimmed(ink, ground));
    painter->drawText(place, Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine, shown);
    place.setRight(place.right() - metrics.horizontalAdvance(shown) - kGap);
  }
  painter->setPen(ink);
  painter->drawText(place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                    metrics.elidedText(line, Qt::ElideRight, place.width()));
  painter->restore();
}

}  // namespace velanor::qt
