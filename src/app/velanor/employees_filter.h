// The line above the table of the employees, in which somebody is looked for, and the keys of both.
#pragma once

#include <QLineEdit>

namespace velanor::app {

class EmployeesReading;
class EmployeesTable;

// What is typed in the table goes into the line, and the arrows of the line move in the table.
class EmployeesFilter : public QLineEdit {
  Q_OBJECT

 public:
  // Both outlive its keys.
  EmployeesFilter(EmployeesTable& table, const EmployeesReading& reading);

 signals:
  void open_asked(int row);
  // Escape, and nothing was looked for.
  void left();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool key_here(const QKeyEvent& key);
  bool key_in_table(QKeyEvent& key);
  bool move(int by);
  void escape();
  void open_chosen();

  EmployeesTable& table_;
  const EmployeesReading& reading_;
  bool opens_when_read_ = false;  // Enter was pressed while the table was being read
};

}  // namespace velanor::app
