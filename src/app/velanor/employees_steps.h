// Opens the cards of the table of the employees, one after another.
#pragma once

#include <QObject>
#include <QString>

#include "velanor/controle_velanor_widget.h"

namespace velanor::app {

class EmployeesTable;

// Opens nothing while the component waits for an answer. In the table the card opened last is chosen.
class EmployeesSteps : public QObject {
  Q_OBJECT

 public:
  // Both outlive it.
  EmployeesSteps(qt::ControleVelanorWidget& component, EmployeesTable& table, QObject* parent);

  void open(int row);
  enum class Step { kNext, kPrevious };
  // From the card opened last; where it has left the table, from where it stood. All rows are read.
  void go(Step step);
  // In the table, again.
  void choose_last();
  // In the table as it is filtered; -1: it is not shown.
  int last_row() const;

 signals:
  // What stands in the way, in a sentence.
  void told(const QString& sentence);
  void opened();

 private:
  void note(const QString& id);

  qt::ControleVelanorWidget& component_;
  EmployeesTable& table_;
  QString last_id_;    // the card opened last
  int last_row_ = -1;  // where it stood
};

}  // namespace velanor::app
