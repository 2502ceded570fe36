// The view of the table of the employees: its columns and their menu, the place that a clerk has in it, and
// copies of what it shows.
#pragma once

#include <QMenu>
#include <QSet>
#include <QTableView>
#include <functional>
#include <string>
#include <vector>

#include "app/velanor/employees_model.h"
#include "office/card_sheet.h"

namespace velanor::app {

class EmployeesTable : public QTableView {
  Q_OBJECT

 public:
  EmployeesTable();

  EmployeesModel& cards() { return *model_; }
  const EmployeesModel& cards() const { return *model_; }

  // A box for each column.
  QMenu& columns_menu() { return *columns_; }
  // Which columns are shown, how wide, and what sorts them, as the toolkit puts it down.
  QByteArray columns() const;
  void set_columns(const QByteArray& columns);
  // In their order.
  std::vector<int> shown_columns() const;
  // What tells the cards apart is shown only where there are several of them.
  enum class Of { kOneYear, kAll };
  void set_of(Of of);

  // Nothing for a row that is not there.
  void choose(int row);
  // Selection and scroll, by the cards they stand on.
  struct Place {
    QSet<QString> chosen;
    QString current;
    int scrolled = 0;
  };
  Place place_now() const;
  void put_back(Place place);
  void keeping_place(const std::function<void()>& change);

  // What is shown, rows and columns in their order.
  office::SheetTable sheet() const;
  // The chosen rows with their headings, to the clipboard.
  void copy() const;

 private:
  void make_columns();
  void show_entity_and_year();

  EmployeesModel* model_;
  QMenu* columns_;
  Of of_ = Of::kOneYear;
};

}  // namespace velanor::app
