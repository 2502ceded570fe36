// The table of the employees as a file: a workbook, or CSV by its name.
#pragma once

#include <QObject>
#include <memory>

#include "app/velanor/task.h"

class QWidget;

namespace velanor::app {

class EmployeesReading;
class EmployeesTable;
class WorkBar;

// Writes beside the window, one file at a time, what the table shows when it is asked; tells what came of it.
class EmployeesExport : public QObject {
  Q_OBJECT

 public:
  // Both outlive it. All rows are read, whenever it is asked for something.
  EmployeesExport(const EmployeesTable& table, const EmployeesReading& reading, QObject* parent);
  void set_work_bar(WorkBar& bar) { work_bar_ = &bar; }

  // Asks for the file.
  void ask(QWidget& window);
  void write(const QString& path);

 signals:
  void told(const QString& sentence);
  // The file that was asked for.
  void chosen(const QString& path);

 private:
  void follow(Task& task, std::size_t rows, const QString& path);

  const EmployeesTable& table_;
  const EmployeesReading& reading_;
  std::unique_ptr<Task> task_;  // while it goes on
  WorkBar* work_bar_ = nullptr;
};

}  // namespace velanor::app
