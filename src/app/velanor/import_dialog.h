// Brings a table into a file of the base: read and judged first, then all of it in one change.
#pragma once

#include <QDialog>
#include <memory>

#include "app/velanor/connection.h"
#include "exchange/import_csv.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace velanor::app {

class TaskRunner;

class ImportDialog : public QDialog {
  Q_OBJECT

 public:
  // The database is asked for its files alone; both outlive this.
  ImportDialog(BaseWork base, store::Database& database, QWidget* parent);

  void reject() override;

 signals:
  // Records were written.
  void imported();

 private:
  QLayout* make_fields(store::Database& database);
  QLayout* make_buttons();
  void browse();
  void choose(const QString& path);
  void forget();
  void update();
  void go_on();
  void rehearse();
  void import();
  void show_report(const exchange::ImportReport& report, bool done);
  void tell(const QString& sentence);

  BaseWork base_;
  std::shared_ptr<const std::string> table_;  // what was judged is what is written
  QLineEdit* path_;
  QComboBox* file_;
  QCheckBox* unknown_;
  QPlainTextEdit* report_;
  QLabel* told_;
  TaskRunner* work_;
  QPushButton *browse_ = nullptr, *go_on_ = nullptr, *close_ = nullptr;
  bool may_be_written_ = false;
};

}  // namespace velanor::app
