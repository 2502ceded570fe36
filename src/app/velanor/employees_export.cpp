#include "app/velanor/employees_export.h"

#include <QDir>
#include <QFileDialog>

#include "app/velanor/employees_reading.h"
#include "app/velanor/employees_table.h"
#include "app/velanor/file_dialogs.h"
#include "app/velanor/work_bar.h"
#include "app/velanorctl/employees_sheet.h"
#include "qt/strings.h"

namespace velanor::app {
namespace {

const QString kWorkbooks = QStringLiteral("Classeurs (*.xlsx)");

}  // namespace

EmployeesExport::EmployeesExport(const EmployeesTable& table, const EmployeesReading& reading,
                                 QObject* parent)
    : QObject(parent), table_(table), reading_(reading) {}

void EmployeesExport::ask(QWidget& window) {
  auto* dialog =
      save_dialog(window, "Exporter le tableau des employés", QDir::home().filePath("employes.xlsx"),
                  kWorkbooks + ";;Tableaux (*.csv)", "xlsx");
  connect(dialog, &QFileDialog::filterSelected, dialog,
          [dialog](const QString& kind) { dialog->setDefaultSuffix(kind == kWorkbooks ? "xlsx" : "csv"); });
  connect(dialog, &QFileDialog::fileSelected, this, &EmployeesExport::chosen);
  dialog->open();
}

// What is done to the table meanwhile is not in it.
void EmployeesExport::write(const QString& path) {
  if (task_) return emit told("Une exportation est en cours : attendez-la, ou annulez-la.");
  std::vector<office::Column> columns;
  for (const int column : table_.shown_columns()) columns.push_back(office::Column(column));
  auto sheet =
      std::make_shared<EmployeesSheet>(sheet_of(reading_.employees(), table_.cards().rows(), columns));
  const auto rows = sheet->rows.size();
  task_ = std::make_unique<Task>([sheet, file = qt::from_qt(path)](Task::Report& report) {
    write_sheet(file, *sheet, [&](double part) { report.part(part); });
  });
  follow(*task_, rows, path);
  task_->start();
}

void EmployeesExport::follow(Task& task, std::size_t rows, const QString& path) {
  const auto end = [this, &task](const QString& sentence) {
    if (work_bar_) work_bar_->done(task);
    task_.reset();
    emit told(sentence);
  };
  connect(&task, &Task::progressed, this, [this, &task](double part) {
    if (work_bar_) work_bar_->show_part(task, "Exportation", part, [&task] { task.cancel(); });
  });
  connect(&task, &Task::done, this,
          [end, rows, path] { end(QString("%1 lignes écrites dans « %2 »").arg(rows).arg(path)); });
  connect(&task, &Task::cancelled, this, [end] { end("Exportation arrêtée : rien n'a été écrit."); });
  connect(&task, &Task::failed, this, end);
}

}  // namespace velanor::app
