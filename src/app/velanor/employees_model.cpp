#include "app/velanor/employees_model.h"

#include <algorithm>

#include "qt/strings.h"

namespace velanor::app {

using office::Column;
using qt::to_qt;

void EmployeesModel::show(const office::Employees* employees) {
  employees_ = employees;
  renew();
}

void EmployeesModel::renew() {
  beginResetModel();
  sorted_ = employees_ ? employees_->sorted(sorting_) : std::vector<int>();
  filter();
  endResetModel();
}

void EmployeesModel::cells_changed() {
  if (shown_.empty()) return;
  emit dataChanged(index(0, static_cast<int>(Column::kHours)),
                   index(rowCount() - 1, static_cast<int>(Column::kState)));
}

void EmployeesModel::filter() {
  filter_ = employees_ ? office::Filter(qt::from_qt(typed_), employees_->today()) : office::Filter();
  shown_ = employees_ ? filter_.filtered(*employees_, sorted_) : std::vector<int>();
}

void EmployeesModel::set_filter(const QString& typed) {
  beginResetModel();
  typed_ = typed;
  filter();
  endResetModel();
}

void EmployeesModel::sort(int column, Qt::SortOrder order) {
  if (column < 0 || column >= columnCount()) return;
  sorting_ = {Column(column), order == Qt::DescendingOrder};
  renew();
}

QString EmployeesModel::id(int row) const {
  if (row < 0 || row >= rowCount()) return {};
  return to_qt(employees_->id(shown_[static_cast<std::size_t>(row)]));
}

QString EmployeesModel::misread() const {
  return filter_.misread().empty() ? QString() : qt::to_qt(filter_.misread().front());
}

int EmployeesModel::row_of(const QString& id) const {
  const std::string wanted = qt::from_qt(id);
  const auto found =
      std::find_if(shown_.begin(), shown_.end(), [&](int row) { return employees_->id(row) == wanted; });
  return found == shown_.end() ? -1 : static_cast<int>(found - shown_.begin());
}

std::string EmployeesModel::cell(int row, int column) const {
  return employees_->at(shown_[static_cast<std::size_t>(row)], Column(column)).shown;
}

bool EmployeesModel::holds_figures(Column column) {
  return office::kTitles[index_of(column)].decimals > 0 || column == Column::kAmendments;
}

int EmployeesModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}

int EmployeesModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(office::kColumns);
}

QVariant EmployeesModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  if (role == Qt::DisplayRole || role == Qt::ToolTipRole) return to_qt(cell(index.row(), index.column()));
  if (role == Qt::TextAlignmentRole && holds_figures(Column(index.column())))
    return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
  return {};
}

QVariant EmployeesModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  return to_qt(office::kTitles[static_cast<std::size_t>(section)].title);
}

}  // namespace velanor::app
