// Writes a file of the base as a table.
#pragma once

#include <QDialog>

#include "app/velanor/connection.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;

namespace velanor::app {

class TaskRunner;

class TableExportDialog : public QDialog {
  Q_OBJECT

 public:
  // The database is asked for its files alone; both outlive this.
  TableExportDialog(BaseWork base, store::Database& database, QWidget* parent);

  void reject() override;
  void export_to(const QString& path);

 private:
  void ask_path();
  void update();

  BaseWork base_;
  QComboBox* file_;
  QCheckBox* names_;
  QLabel* told_;
  TaskRunner* work_;
  QPushButton *go_on_, *close_;
};

}  // namespace velanor::app
