#include "app/velanor/year_table.h"

#include <QApplication>
#include <QClipboard>
#include <QEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QStyledItemDelegate>
#include <algorithm>

#include "qt/strings.h"

namespace velanor::app {
namespace {

using office::CardYear, office::YearLine;
using qt::to_qt;

constexpr int kYear = office::kMonths;      // the column of the sums
constexpr int kHatchedRole = Qt::UserRole;  // parts of the month, from 0 to 1, each from and to
constexpr int kAir = 3;

// The days that have nothing, and a text that is made smaller before it is cut.
class MonthDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    constexpr double kSmallest = 0.7, kRounding = 0.95;
    const int wide = option->fontMetrics.horizontalAdvance(option->text),
              room = option->rect.width() - 2 * kAir;
    if (wide > room && wide > 0) {
      option->font.setPointSizeF(option->font.pointSizeF() * std::max(kSmallest, kRounding * room / wide));
      option->fontMetrics = QFontMetrics(option->font);
    }
    // What a month ends with says more, and grids differ at both ends.
    option->textElideMode =
        index.row() == static_cast<int>(YearLine::kAmendment) ? Qt::ElideLeft : Qt::ElideMiddle;
  }

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    constexpr int kFaint = 90;
    QColor hatch = option.palette.color(QPalette::Text);
    hatch.setAlpha(kFaint);
    const QList<QVariant> parts = index.data(kHatchedRole).toList();
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
      const double from = parts[i].toDouble(), to = parts[i + 1].toDouble();
      QRectF part = option.rect;
      part.setLeft(option.rect.left() + from * option.rect.width());
      part.setWidth((to - from) * option.rect.width());
      painter->fillRect(part, QBrush(hatch, Qt::BDiagPattern));
    }
    QStyledItemDelegate::paint(painter, option, index);
  }
};

QList<QVariant> hatched(const CardYear::Month& month) {
  QList<QVariant> parts;
  for (const CardYear::Stretch& stretch : month.stretches) {
    if (stretch.standing == CardYear::Standing::kInForce) continue;
    parts << double(stretch.first - 1) / month.days << double(stretch.last) / month.days;
  }
  return parts;
}

QTableWidgetItem* cell(const QString& text, const QString& said) {
  auto* item = new QTableWidgetItem(text);
  item->setTextAlignment(Qt::AlignCenter);
  item->setToolTip(said);
  item->setData(Qt::AccessibleDescriptionRole, said);
  return item;
}

}  // namespace

YearTable::YearTable(QWidget* parent)
    : QTableWidget(static_cast<int>(office::kYearLines.size()), kYear + 1, parent) {
  setObjectName("year_table");
  setAccessibleName("Année de la fiche, mois par mois");
  QStringList months, lines;
  for (int month = 0; month < office::kMonths; ++month) months << to_qt(office::month_name(month));
  for (const std::string_view line : office::kYearLines) lines << to_qt(line);
  setHorizontalHeaderLabels(months << "Année");
  setVerticalHeaderLabels(lines);
  setItemDelegate(new MonthDelegate(this));
  setEditTriggers(NoEditTriggers);
  setTabKeyNavigation(false);
  setWordWrap(false);
  setCornerButtonEnabled(false);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  connect(horizontalScrollBar(), &QScrollBar::rangeChanged, this, [this] { updateGeometry(); });
  horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  horizontalHeader()->setHighlightSections(false);
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setHighlightSections(false);
  fit_lines();
}

void YearTable::fit_lines() {
  const int narrowest = fontMetrics().horizontalAdvance("Septembre") + 2 * kAir;
  horizontalHeader()->setMinimumSectionSize(narrowest);
  horizontalHeader()->setFixedHeight(fontMetrics().height() + kAir);
  verticalHeader()->setMinimumSectionSize(1);
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kAir);
  updateGeometry();
}

void YearTable::changeEvent(QEvent* event) {
  QTableWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange) fit_lines();
}

QSize YearTable::sizeHint() const {
  const int lines = rowCount() * verticalHeader()->defaultSectionSize();
  const int bar = horizontalScrollBar()->maximum() > 0 ? horizontalScrollBar()->sizeHint().height() : 0;
  return {QTableWidget::sizeHint().width(), lines + horizontalHeader()->height() + bar + 2 * frameWidth()};
}

void YearTable::show_year(const CardYear& year) {
  const bool first = !item(0, 0);
  for (int month = 0; month < office::kMonths; ++month) show_month(year, month);
  const QString remark = to_qt(office::remark(year));
  for (int line = 0; line < rowCount(); ++line) {
    const QString total = to_qt(office::total_of(year, YearLine(line)));
    // A sum that lacks days says so.
    setItem(line, kYear, cell(total.isEmpty() || remark.isEmpty() ? total : total + " *", remark));
    QFont bold = font();
    bold.setBold(true);
    item(line, kYear)->setFont(bold);
  }
  if (first) setCurrentCell(0, 0, QItemSelectionModel::NoUpdate);
}

void YearTable::show_month(const CardYear& year, int month) {
  const QString said = to_qt(office::said(year, month));
  const QList<QVariant> without = hatched(year.months[static_cast<std::size_t>(month)]);
  for (int line = 0; line < rowCount(); ++line) {
    auto* shown = cell(to_qt(office::text_of(year, YearLine(line), month)), said);
    shown->setData(kHatchedRole, without);
    setItem(line, month, shown);
  }
}

void YearTable::clear_year() { clearContents(); }

void YearTable::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) return copy();
  QTableWidget::keyPressEvent(event);
}

// What is chosen, and all of it where that is a single cell or none; with its headings.
void YearTable::copy() const {
  QList<QTableWidgetSelectionRange> ranges = selectedRanges();
  const bool part = ranges.size() == 1 && ranges[0].rowCount() * ranges[0].columnCount() > 1;
  const QTableWidgetSelectionRange range =
      part ? ranges[0] : QTableWidgetSelectionRange(0, 0, rowCount() - 1, columnCount() - 1);
  QString text;
  for (int column = range.leftColumn(); column <= range.rightColumn(); ++column)
    text += u'\t' + horizontalHeaderItem(column)->text();
  for (int line = range.topRow(); line <= range.bottomRow(); ++line) {
    text += u'\n' + verticalHeaderItem(line)->text();
    for (int column = range.leftColumn(); column <= range.rightColumn(); ++column)
      text += u'\t' + (item(line, column) ? item(line, column)->text() : QString());
  }
  QGuiApplication::clipboard()->setText(text + u'\n');
}

}  // namespace velanor::app
