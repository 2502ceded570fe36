#include "app/velanor/employees_table.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QScrollBar>
#include <algorithm>

#include "qt/strings.h"

namespace velanor::app {
namespace {

using office::Column;
using qt::to_qt;

constexpr Column kFirstShown[] = {Column::kCode, Column::kName,  Column::kContract,
                                  Column::kEnd,  Column::kHours, Column::kState};

constexpr int number(Column column) { return static_cast<int>(column); }

int first_width(Column column) {
  switch (column) {
    case Column::kCode:
    case Column::kContract:
      return 54;
    case Column::kHours:
    case Column::kFullTime:
    case Column::kAmendments:
    case Column::kEntity:
    case Column::kYear:
      return 60;
    case Column::kName:
      return 146;
    case Column::kStart:
    case Column::kEnd:
    case Column::kState:
      return 78;
    default:
      return 120;
  }
}

QString on_one_line(const std::string& text) {
  return to_qt(text).replace(u'\t', u' ').replace(u'\n', u' ').replace(u'\r', u' ');
}

}  // namespace

EmployeesTable::EmployeesTable()
    : model_(new EmployeesModel(this)), columns_(new QMenu("&Colonnes du tableau", this)) {
  setObjectName("employees_table");
  setAccessibleName("Employés");
  setModel(model_);
  setSelectionBehavior(SelectRows);
  setSelectionMode(ExtendedSelection);
  setEditTriggers(NoEditTriggers);
  setTabKeyNavigation(false);
  setAlternatingRowColors(true);
  setShowGrid(false);
  setWordWrap(false);
  constexpr int kAir = 6;
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kAir);
  make_columns();
}

// ---- Columns.

void EmployeesTable::make_columns() {
  QHeaderView* header = horizontalHeader();
  header->setSectionsMovable(true);
  header->setHighlightSections(false);
  header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  header->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(header, &QWidget::customContextMenuRequested, this,
          [this, header](const QPoint& at) { columns_->popup(header->mapToGlobal(at)); });
  for (int c = 0; c < number(Column::kEntity); ++c) {
    const auto column = static_cast<Column>(c);
    const bool shown =
        std::find(std::begin(kFirstShown), std::end(kFirstShown), column) != std::end(kFirstShown);
    header->resizeSection(c, first_width(column));
    header->setSectionHidden(c, !shown);
    QAction* action = columns_->addAction(model_->headerData(c, Qt::Horizontal, Qt::DisplayRole).toString());
    action->setCheckable(true);
    action->setChecked(shown);
    // By it everybody is known.
    action->setEnabled(column != Column::kName);
    connect(action, &QAction::toggled, this, [header, c](bool on) { header->setSectionHidden(c, !on); });
  }
  for (const Column column : {Column::kEntity, Column::kYear})
    header->resizeSection(number(column), first_width(column));
  show_entity_and_year();
  setSortingEnabled(true);
  sortByColumn(number(Column::kName), Qt::AscendingOrder);
}

void EmployeesTable::set_of(Of of) {
  of_ = of;
  show_entity_and_year();
}

void EmployeesTable::show_entity_and_year() {
  for (const Column column : {Column::kEntity, Column::kYear})
    horizontalHeader()->setSectionHidden(number(column), of_ == Of::kOneYear);
}

QByteArray EmployeesTable::columns() const { return horizontalHeader()->saveState(); }

void EmployeesTable::set_columns(const QByteArray& columns) {
  QHeaderView* header = horizontalHeader();
  if (columns.isEmpty() || !header->restoreState(columns)) return;
  header->setSectionHidden(number(Column::kName), false);
  for (int c = 0; c < number(Column::kEntity); ++c)
    columns_->actions()[c]->setChecked(!header->isSectionHidden(c));
  show_entity_and_year();
  model_->sort(header->sortIndicatorSection(), header->sortIndicatorOrder());
}

std::vector<int> EmployeesTable::shown_columns() const {
  const QHeaderView* header = horizontalHeader();
  std::vector<int> columns;
  for (int at = 0; at < header->count(); ++at) {
    const int column = header->logicalIndex(at);
    if (!header->isSectionHidden(column)) columns.push_back(column);
  }
  return columns;
}

// ---- Where the clerk is.

void EmployeesTable::choose(int row) {
  if (row < 0 || row >= model_->rowCount()) return;
  const QModelIndex at = model_->index(row, number(Column::kName));
  selectionModel()->setCurrentIndex(at, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  scrollTo(at);
}

EmployeesTable::Place EmployeesTable::place_now() const {
  Place place;
  for (const QModelIndex& row : selectionModel()->selectedRows()) place.chosen.insert(model_->id(row.row()));
  place.current = model_->id(currentIndex().row());
  place.scrolled = verticalScrollBar()->value();
  return place;
}

void EmployeesTable::put_back(Place place) {
  QItemSelection again;
  for (int row = 0; !place.chosen.isEmpty() && row < model_->rowCount(); ++row) {
    if (place.chosen.remove(model_->id(row))) again.select(model_->index(row, 0), model_->index(row, 0));
  }
  using Selection = QItemSelectionModel;
  if (const int row = model_->row_of(place.current); row >= 0)
    selectionModel()->setCurrentIndex(model_->index(row, number(Column::kName)), Selection::NoUpdate);
  selectionModel()->select(again, Selection::ClearAndSelect | Selection::Rows);
  verticalScrollBar()->setValue(place.scrolled);
}

void EmployeesTable::keeping_place(const std::function<void()>& change) {
  const Place place = place_now();
  change();
  put_back(place);
}

// ---- Copies.

office::SheetTable EmployeesTable::sheet() const {
  using office::SheetTable;
  SheetTable sheet;
  const auto columns = shown_columns();
  for (const int column : columns)
    sheet.columns.push_back({std::string(office::kTitles[static_cast<std::size_t>(column)].title),
                             EmployeesModel::holds_figures(Column(column)) ? SheetTable::Holds::kFigures
                                                                           : SheetTable::Holds::kText});
  for (int row = 0; row < model_->rowCount(); ++row) {
    sheet.rows.emplace_back();
    for (const int column : columns) sheet.rows.back().push_back(model_->cell(row, column));
  }
  return sheet;
}

void EmployeesTable::copy() const {
  std::vector<int> rows;
  for (const QModelIndex& row : selectionModel()->selectedRows()) rows.push_back(row.row());
  std::sort(rows.begin(), rows.end());
  const auto columns = shown_columns();
  QStringList cells;
  for (const int column : columns) cells << to_qt(office::kTitles[static_cast<std::size_t>(column)].title);
  QString text = cells.join(u'\t') + u'\n';
  for (const int row : rows) {
    cells.clear();
    for (const int column : columns) cells << on_one_line(model_->cell(row, column));
    text += cells.join(u'\t') + u'\n';
  }
  QGuiApplication::clipboard()->setText(text);
}

}  // namespace velanor::app
