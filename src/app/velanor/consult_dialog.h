// The reference files of a base, to be read.
#pragma once

#include <QDialog>

#include "app/velanor/connection.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QTableView;

namespace velanor::app {

class RecordTableModel;
class TaskRunner;

class ConsultDialog : public QDialog {
  Q_OBJECT

 public:
  // The database is asked for its files alone; both outlive this.
  ConsultDialog(BaseWork base, store::Database& database, QWidget* parent);

  void reject() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QLayout* make_choice();
  void make_table();
  void read();
  void update_count();
  void copy() const;

  BaseWork base_;
  QComboBox* file_;
  QLineEdit* filter_;
  QTableView* table_;
  RecordTableModel* model_;
  QLabel* count_;
  TaskRunner* work_;
};

}  // namespace velanor::app
