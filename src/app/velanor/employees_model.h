// The rows of the table of the employees that are shown, filtered and sorted.
#pragma once

#include <QAbstractTableModel>
#include <QString>
#include <optional>
#include <vector>

#include "office/employee_filter.h"
#include "office/employees.h"

namespace velanor::app {

// Of the employees, which are read elsewhere and outlive it, it keeps row numbers alone: whoever reads them
// anew calls `renew` at once.
class EmployeesModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  explicit EmployeesModel(QObject* parent) : QAbstractTableModel(parent) {}

  void show(const office::Employees* employees);
  // The rows were read anew, or examined.
  void renew();
  // Cells were filled in; where the rows stand may wait.
  void cells_changed();
  void set_filter(const QString& typed);
  bool is_filtered() const { return !filter_.is_empty(); }

  // The id of a card that is shown; "" for no row. And back, -1 where it is not shown.
  QString id(int row) const;
  // The first word of the filter that asked for a column, as it seems, and was taken for a text; "" for none.
  QString misread() const;
  int row_of(const QString& id) const;
  int total() const { return employees_ ? employees_->count() : 0; }
  std::string cell(int row, int column) const;
  // Of the employees, as they are shown.
  const std::vector<int>& rows() const { return shown_; }
  // Whether a column is one of figures, which stand under each other.
  static bool holds_figures(office::Column column);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  void sort(int column, Qt::SortOrder order) override;

 private:
  void filter();

  const office::Employees* employees_ = nullptr;
  QString typed_;
  office::Filter filter_;
  office::Sorting sorting_;
  std::vector<int> sorted_, shown_;
};

}  // namespace velanor::app
