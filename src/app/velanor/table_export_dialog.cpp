#include "app/velanor/table_export_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "app/velanor/file_dialogs.h"
#include "app/velanor/table_files.h"
#include "app/velanor/task_runner.h"
#include "app/velanorctl/export_target.h"
#include "exchange/csv.h"
#include "exchange/export_csv.h"
#include "qt/strings.h"

namespace velanor::app {

using qt::from_qt;

TableExportDialog::TableExportDialog(BaseWork base, store::Database& database, QWidget* parent)
    : QDialog(parent),
      base_(std::move(base)),
      file_(new QComboBox),
      names_(new QCheckBox("&Noms de colonnes, dates et montants comme à l'écran")),
      told_(new QLabel),
      work_(new TaskRunner),
      go_on_(new QPushButton("&Exporter…")),
      close_(new QPushButton("Fermer")) {
  setWindowTitle("Exporter une table");
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowModality(Qt::WindowModal);
  file_->setObjectName("export_file");
  offer_files(*file_, database, OfferCards::kYes);
  names_->setChecked(true);
  names_->setToolTip("Sans cela, les colonnes portent leurs positions ; l'importation lit les deux.");
  told_->setObjectName("export_told");
  told_->setTextFormat(Qt::PlainText);
  told_->setWordWrap(true);
  go_on_->setObjectName("export_go_on");
  go_on_->setDefault(true);
  close_->setAutoDefault(false);
  auto* form = new QFormLayout;
  form->addRow("&Table", file_);
  form->addRow({}, names_);
  auto* row = new QHBoxLayout;
  row->addStretch(1);
  row->addWidget(go_on_);
  row->addWidget(close_);
  auto* column = new QVBoxLayout(this);
  column->addLayout(form);
  column->addWidget(told_, 1);
  column->addWidget(work_);
  column->addLayout(row);
  connect(go_on_, &QPushButton::clicked, this, &TableExportDialog::ask_path);
  connect(close_, &QPushButton::clicked, this, &TableExportDialog::reject);
  connect(work_, &TaskRunner::changed, this, &TableExportDialog::update);
  connect(work_, &TaskRunner::ended, told_, &QLabel::setText);
  resize(560, 200);
}

void TableExportDialog::update() {
  const bool free = !work_->is_running();
  for (QWidget* widget : std::initializer_list<QWidget*>{file_, names_, go_on_}) widget->setEnabled(free);
  close_->setText(free ? "Fermer" : "Annuler");
}

void TableExportDialog::ask_path() {
  if (work_->is_running()) return;
  auto* dialog = save_dialog(*this, "Exporter une table",
                             QDir::home().filePath(file_->currentData().toString() + ".csv"),
                             "Tableaux (*.csv);;Tous les fichiers (*)", "csv");
  connect(dialog, &QFileDialog::fileSelected, this, &TableExportDialog::export_to);
  dialog->open();
}

void TableExportDialog::export_to(const QString& path) {
  const auto written = std::make_shared<int>(0);
  exchange::ExportOptions options;
  options.headings = names_->isChecked() ? exchange::Headings::kNames : exchange::Headings::kPositions;
  told_->clear();
  work_->run(
      "Exportation", base_,
      [written, options, target = from_qt(path), file = from_qt(file_->currentData().toString())](
          store::Database& database, const std::function<void(double)>& progressed) {
        constexpr int kStep = 64;
        int read = 0;
        write_export(target, [&](std::ostream& out) {
          out << exchange::kByteOrderMark;
          database.in_one_view([&] {
            *written = exchange::export_csv(out, database, file, options, [&] {
              if (++read % kStep == 0) progressed(-1);
            });
          });
        });
      },
      [this, written, path] {
        told_->setText(QString("%1 lignes écrites dans « %2 »").arg(*written).arg(path));
      });
}

void TableExportDialog::reject() { work_->is_running() ? work_->cancel() : QDialog::reject(); }

}  // namespace velanor::app
