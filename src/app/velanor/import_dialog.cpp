#include "app/velanor/import_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>

#include "app/velanor/file_dialogs.h"
#include "app/velanor/import_report.h"
#include "app/velanor/table_files.h"
#include "app/velanor/task_runner.h"
#include "qt/strings.h"

namespace velanor::app {
namespace {

using qt::from_qt, qt::to_qt;

std::string text_of(const QString& path) {
  std::ifstream in(from_qt(path), std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// Rows that are read now; progress by lines.
exchange::ImportReport bring_in(const std::string& table, store::Database& database, const std::string& file,
                                const exchange::ImportOptions& options,
                                const std::function<void(double)>& progressed) {
  constexpr int kStep = 64;
  const auto lines = std::count(table.begin(), table.end(), '\n') + 1;
  std::ptrdiff_t read = 0;
  std::istringstream in(table);
  return exchange::import_csv(in, database, file, options, [&] {
    const double part = static_cast<double>(++read) / static_cast<double>(lines);
    if (read % kStep == 0) progressed(std::min(1.0, part));
  });
}

}  // namespace

ImportDialog::ImportDialog(BaseWork base, store::Database& database, QWidget* parent)
    : QDialog(parent),
      base_(std::move(base)),
      path_(new QLineEdit),
      file_(new QComboBox),
      unknown_(new QCheckBox("Ad&mettre les codes qu'aucun fichier de référence ne contient")),
      report_(new QPlainTextEdit),
      told_(new QLabel),
      work_(new TaskRunner) {
  setWindowTitle("Importer une table");
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowModality(Qt::WindowModal);
  auto* column = new QVBoxLayout(this);
  column->addLayout(make_fields(database));
  report_->setObjectName("import_report");
  report_->setAccessibleName("Ce que l'importation ferait");
  report_->setReadOnly(true);
  report_->setTabChangesFocus(true);
  report_->setPlaceholderText("La vérification dit ici ce qui serait créé ou modifié, et ce qui est faux.");
  column->addWidget(report_, 1);
  told_->setObjectName("import_told");
  told_->setTextFormat(Qt::PlainText);
  told_->setWordWrap(true);
  column->addWidget(told_);
  column->addWidget(work_);
  column->addLayout(make_buttons());
  connect(work_, &TaskRunner::changed, this, &ImportDialog::update);
  connect(work_, &TaskRunner::ended, this, &ImportDialog::tell);
  update();
  resize(700, 480);
  path_->setFocus();
}

QLayout* ImportDialog::make_fields(store::Database& database) {
  path_->setObjectName("import_path");
  browse_ = new QPushButton("Parcourir…");
  browse_->setAccessibleName("Choisir le tableau");
  browse_->setAutoDefault(false);
  connect(browse_, &QPushButton::clicked, this, &ImportDialog::browse);
  connect(path_, &QLineEdit::textChanged, this, &ImportDialog::choose);
  auto* row = new QHBoxLayout;
  row->addWidget(path_, 1);
  row->addWidget(browse_);
  file_->setObjectName("import_file");
  offer_files(*file_, database, OfferCards::kYes);
  connect(file_, &QComboBox::currentIndexChanged, this, &ImportDialog::forget);
  unknown_->setObjectName("import_unknown");
  unknown_->setToolTip("Dans les fiches : ces codes sont signalés, et ne sont plus des fautes");
  connect(unknown_, &QCheckBox::toggled, this, &ImportDialog::forget);
  auto* form = new QFormLayout;
  auto* label = new QLabel("&Tableau (CSV)");
  label->setBuddy(path_);
  form->addRow(label, row);
  form->addRow("&Dans la table", file_);
  form->addRow({}, unknown_);
  return form;
}

QLayout* ImportDialog::make_buttons() {
  go_on_ = new QPushButton;
  go_on_->setObjectName("import_go_on");
  go_on_->setDefault(true);
  close_ = new QPushButton("Fermer");
  close_->setObjectName("import_close");
  close_->setAutoDefault(false);
  connect(go_on_, &QPushButton::clicked, this, &ImportDialog::go_on);
  connect(close_, &QPushButton::clicked, this, &ImportDialog::reject);
  auto* row = new QHBoxLayout;
  row->addStretch(1);
  row->addWidget(go_on_);
  row->addWidget(close_);
  return row;
}

void ImportDialog::browse() {
  auto* dialog = open_dialog(*this, "Importer une table", QFileInfo(path_->text()).path(),
                             "Tableaux (*.csv);;Tous les fichiers (*)");
  connect(dialog, &QFileDialog::fileSelected, path_, &QLineEdit::setText);
  dialog->open();
}

// A table named as a file of the base is meant for it.
void ImportDialog::choose(const QString& path) {
  const int file = file_->findData(QFileInfo(path).completeBaseName().toUpper());
  if (file >= 0) file_->setCurrentIndex(file);
  forget();
}

void ImportDialog::forget() {
  may_be_written_ = false;
  table_.reset();
  report_->clear();
  tell({});
  update();
}

void ImportDialog::update() {
  const bool free = !work_->is_running();
  go_on_->setText(may_be_written_ ? "&Importer" : "&Vérifier");
  for (QWidget* widget : std::initializer_list<QWidget*>{path_, browse_, file_, go_on_})
    widget->setEnabled(free);
  unknown_->setEnabled(free && file_->currentData() == QLatin1String("VELANORO"));
  close_->setText(free ? "Fermer" : "Annuler");
}

void ImportDialog::go_on() {
  if (work_->is_running()) return;
  may_be_written_ ? import() : rehearse();
}

void ImportDialog::rehearse() {
  const QFileInfo chosen(path_->text());
  if (!chosen.isFile()) return tell("Donnez le tableau à importer : ce fichier n'existe pas.");
  if (!chosen.isReadable()) return tell("Ce tableau ne peut pas être lu. Vérifiez votre droit de le lire.");
  const auto report = std::make_shared<exchange::ImportReport>();
  const auto table = std::make_shared<std::string>();
  exchange::ImportOptions options;
  options.rehearsal = true;
  options.accept_unknown = unknown_->isEnabled() && unknown_->isChecked();
  tell({});
  work_->run(
      "Vérification", base_,
      [=, path = path_->text(), file = from_qt(file_->currentData().toString())](
          store::Database& database, const std::function<void(double)>& progressed) {
        *table = text_of(path);
        *report = bring_in(*table, database, file, options, progressed);
      },
      [this, report, table] {
        table_ = table;
        may_be_written_ = report->faults.empty() && !(report->created.empty() && report->changed.empty());
        show_report(*report, false);
        update();
      });
}

void ImportDialog::import() {
  const auto report = std::make_shared<exchange::ImportReport>();
  exchange::ImportOptions options;
  options.accept_unknown = unknown_->isEnabled() && unknown_->isChecked();
  tell({});
  work_->run(
      "Importation", base_,
      [report, options, table = table_, file = from_qt(file_->currentData().toString())](
          store::Database& database, const std::function<void(double)>& progressed) {
        *report = bring_in(*table, database, file, options, progressed);
      },
      [this, report] {
        may_be_written_ = false;
        table_.reset();
        show_report(*report, true);
        update();
        if (report->faults.empty()) emit imported();
      });
}

void ImportDialog::show_report(const exchange::ImportReport& report, bool done) {
  const QString name = QFileInfo(path_->text()).fileName();
  QStringList lines = import_lines(name, report, done ? ImportVerb::kDid : ImportVerb::kWould);
  if (!done && report.faults.empty()) lines += record_lines(report);
  report_->setPlainText(lines.join('\n'));
  if (!report.faults.empty())
    return tell("Rien n'a été importé. Corrigez le tableau, puis vérifiez à nouveau.");
  if (done) return tell("Le tableau est importé.");
  tell(may_be_written_ ? "Rien n'est encore écrit. « Importer » le fait, en une seule fois."
                       : "La table contient déjà tout ce que dit ce tableau.");
}

// Escape and "Annuler" stop the work first, and then the dialog.
void ImportDialog::reject() { work_->is_running() ? work_->cancel() : QDialog::reject(); }

void ImportDialog::tell(const QString& sentence) { told_->setText(sentence); }

}  // namespace velanor::app
