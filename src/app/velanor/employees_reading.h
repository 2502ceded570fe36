// Reads the cards that the table of the employees shows, and looks at them, some milliseconds at a time
// between two keys.
#pragma once

#include <QObject>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>

#include "app/velanor/employees_table.h"
#include "office/employees.h"
#include "velanor/controle_velanor_widget.h"

namespace velanor::app {

class WorkBar;

// Reads nothing before `start`. What fails in the store is told.
class EmployeesReading : public QObject {
  Q_OBJECT

 public:
  // Both outlive it; the table shows nothing of it once it is gone.
  EmployeesReading(qt::ControleVelanorWidget& component, EmployeesTable& table, QObject* parent);
  ~EmployeesReading() override;
  // Throws store::DbError.
  void start(store::Database& database);
  // Shows there what takes long.
  void set_work_bar(WorkBar& bar) { work_bar_ = &bar; }

  using Reach = office::Employees::Reach;
  // What is read already is read again only where `kAnew` says that others may have written.
  enum class Look { kIfElsewhere, kAnew };
  void read(const Reach& wanted, Look look);
  // A card was written or deleted.
  void renew_card(const QString& id);
  // What is asked for needs all rows at once.
  void complete();
  // Calls back when all cells are filled in, once; the last who asks.
  void when_examined(std::function<void()> then);

  bool is_started() const { return employees_ != nullptr; }
  bool is_reading() const { return reading_.has_value(); }
  // After `start`.
  const office::Employees& employees() const { return *employees_; }
  // What was asked for last; nothing before.
  std::optional<Reach> reach() const;

 signals:
  // What stands in the way, in a sentence.
  void told(const QString& sentence);
  // Rows have come or gone; `part` of them is read, from 0 to 1.
  void counted();
  void read_part(double part);
  void all_read();
  // Cells were filled in.
  void examined();

 private:
  void read_on(int milliseconds);
  void end();
  void examine();
  void stop_examining();
  void fail(const std::exception& error);

  qt::ControleVelanorWidget& component_;
  EmployeesTable& table_;
  std::unique_ptr<office::Employees> employees_;
  QTimer read_on_, examine_;
  std::optional<EmployeesTable::Place> reading_;  // while it goes on: where to go back to
  std::function<void()> when_examined_;
  WorkBar* work_bar_ = nullptr;
  bool read_once_ = false;
};

}  // namespace velanor::app
