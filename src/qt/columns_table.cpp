#include "qt/columns_table.h"

#include <QEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>
#include <algorithm>

namespace velanor::qt {

ColumnsTable::ColumnsTable(QWidget* parent) : QTableView(parent) {
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setSelectionMode(QAbstractItemView::SingleSelection);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  setTabKeyNavigation(false);
  setWordWrap(false);
  setShowGrid(false);
  setAlternatingRowColors(true);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);

  horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  horizontalHeader()->setSectionsClickable(false);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setMinimumSectionSize(10);
}

void ColumnsTable::keyPressEvent(QKeyEvent* event) {
  if (!on_key || !on_key(*event)) QTableView::keyPressEvent(event);
}

QSize ColumnsTable::sizeHint() const {
  const QSize asked = property("preferredSize").toSize();
  return asked.isValid() ? asked : QTableView::sizeHint();
}

QSize ColumnsTable::minimumSizeHint() const {
  constexpr int kLines = 3;
  const QSize least = QTableView::minimumSizeHint();
  const int headings = horizontalHeader()->isHidden() ? 0 : horizontalHeader()->height();
  return {least.width(), headings + kLines * verticalHeader()->defaultSectionSize() + 2 * frameWidth()};
}

void ColumnsTable::stand_over(std::vector<QWidget*> widgets) {
  below_ = std::move(widgets);
  for (QWidget* widget : below_) widget->installEventFilter(this);
  align();
}

bool ColumnsTable::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Move || event->type() == QEvent::Resize) align();
  // The headings name these widgets too.
  if (event->type() == QEvent::EnabledChange) horizontalHeader()->viewport()->update();
  return QTableView::eventFilter(watched, event);
}

void ColumnsTable::resizeEvent(QResizeEvent* event) {
  QTableView::resizeEvent(event);
  align();
}

void ColumnsTable::paintEvent(QPaintEvent* event) {
  QTableView::paintEvent(event);
  if (!hasFocus()) return;
  QPainter painter(viewport());
  painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
  painter.drawRect(viewport()->rect().adjusted(1, 1, -1, -1));
}

void ColumnsTable::align() {
  int left = viewport()->mapToGlobal(QPoint()).x();
  for (std::size_t c = 0; c + 1 < below_.size(); ++c) {
    const int right = below_[c + 1]->mapToGlobal(QPoint()).x();
    setColumnWidth(static_cast<int>(c), right - left);
    left = right;
  }
  const int last = model() ? model()->columnCount() - 1 : -1;
  if (last >= 0) setColumnWidth(last, std::max(10, viewport()->width() - columnViewportPosition(last)));
  fit_headings();
}

// As high as they need to be over columns of this width, two lines at least.
void ColumnsTable::fit_headings() {
  QHeaderView& header = *horizontalHeader();
  if (header.isHidden() || !model()) return;
  const QFontMetrics metrics(header.font());
  const int margins = 2 * style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, &header) + 2;
  int height = 2 * metrics.height();
  for (int c = 0; c < model()->columnCount(); ++c) {
    const QRect room(0, 0, columnWidth(c) - margins, QWIDGETSIZE_MAX);
    const QString heading = model()->headerData(c, Qt::Horizontal).toString();
    height = std::max(height, metrics.boundingRect(room, Qt::TextWordWrap, heading).height());
  }
  header.setFixedHeight(height + 6);
  updateGeometry();
}

}  // namespace velanor::qt
