// A line of a list with the note beside it.
#pragma once

#include <QStyledItemDelegate>

namespace velanor::qt {

// The note stands at the right, in a dimmer ink, and what does not fit is cut from the line.
class NotedLine : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  // What a line and its note take in width.
  static int width_of(const QFont& font, const QString& line, const QString& note);
};

}  // namespace velanor::qt
