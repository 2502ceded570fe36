#include "app/velanor/plain_table.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <algorithm>

namespace velanor::app {

PlainTable::PlainTable(const QStringList& headings, const QString& name, QWidget* parent)
    : QTableWidget(0, static_cast<int>(headings.size()), parent) {
  setAccessibleName(name);
  setHorizontalHeaderLabels(headings);
  setEditTriggers(NoEditTriggers);
  setSelectionBehavior(SelectRows);
  setSelectionMode(SingleSelection);
  setTabKeyNavigation(false);
  setAlternatingRowColors(true);
  setShowGrid(false);
  setWordWrap(false);
  verticalHeader()->hide();
  constexpr int kAir = 6;
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kAir);
  horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setStretchLastSection(true);
}

void PlainTable::add(const QStringList& cells) {
  const int line = rowCount();
  insertRow(line);
  for (int c = 0; c < cells.size(); ++c) {
    auto* item = new QTableWidgetItem(cells[c]);
    item->setToolTip(cells[c]);
    setItem(line, c, item);
  }
}

int PlainTable::chosen() const { return selectionModel()->hasSelection() ? currentRow() : -1; }

void PlainTable::choose(int line) {
  if (line >= 0 && line < rowCount()) selectRow(line);
}

void PlainTable::fit() {
  constexpr int kWidest = 320, kRoom = 16;
  resizeColumnsToContents();
  for (int c = 0; c + 1 < columnCount(); ++c) setColumnWidth(c, std::min(columnWidth(c) + kRoom, kWidest));
}

void PlainTable::keyPressEvent(QKeyEvent* event) {
  if (!event->matches(QKeySequence::Copy)) return QTableWidget::keyPressEvent(event);
  if (chosen() < 0) return;
  QStringList titles, cells;
  for (int c = 0; c < columnCount(); ++c) {
    titles << horizontalHeaderItem(c)->text();
    cells << item(chosen(), c)->text().replace('\t', ' ').replace('\n', ' ');
  }
  QGuiApplication::clipboard()->setText(titles.join('\t') + "\n" + cells.join('\t') + "\n");
}

}  // namespace velanor::app
