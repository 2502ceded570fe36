// Asks where a new base is to be and what it begins with, and makes it.
#pragma once

#include <QDialog>
#include <memory>

#include "app/velanor/task_runner.h"
#include "app/velanorctl/new_base.h"

class QButtonGroup;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace velanor::app {

// Tables of a folder are read and judged before anything is written. The base appears complete, and never in
// the place of another file.
class NewBaseDialog : public QDialog {
  Q_OBJECT

 public:
  // `folder`: where it is proposed.
  NewBaseDialog(const QString& folder, QWidget* parent);

  void reject() override;

 signals:
  void made(const QString& path);

 private:
  enum class Contents { kReferenceFiles, kExample, kTables, kEmpty };
  QLayout* make_place(const QString& folder);
  QLayout* make_contents();
  QLayout* make_buttons();
  QPushButton* browse_button(const char* name, const QString& spoken);
  Contents contents() const;
  void browse_file();
  void browse_folder();
  // What was read of the folder holds no longer.
  void forget_tables();
  void update();
  void go_on();
  void read_tables();
  void show_tables();
  void make_base();
  void tell(const QString& sentence);

  // What a folder held, as the task that read it hands it over.
  struct Tables {
    store::MemoryDatabase contents;
    FolderReport report;
  };
  // On the thread of the task.
  static void make_file(const std::string& file, Contents what, Tables* tables, const Progressed& progressed);

  std::shared_ptr<Tables> tables_;
  QLineEdit *path_, *folder_;
  QButtonGroup* choice_;
  QPushButton *browse_ = nullptr, *browse_folder_ = nullptr, *go_on_ = nullptr, *close_ = nullptr;
  QLabel* told_;
  QPlainTextEdit* report_;
  TaskRunner* work_;
};

}  // namespace velanor::app
