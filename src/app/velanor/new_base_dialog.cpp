#include "app/velanor/new_base_dialog.h"

#include <QButtonGroup>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <utility>

#include "app/velanor/file_dialogs.h"
#include "app/velanor/import_report.h"
#include "qt/strings.h"

namespace velanor::app {
namespace {

using qt::from_qt, qt::to_qt;

constexpr int kWidth = 640, kReportHeight = 160;

QString free_name(const QString& folder) {
  const QDir dir(folder);
  for (int number = 1;; ++number) {
    const QString name = number == 1 ? QString("fiches.db") : QString("fiches-%1.db").arg(number);
    if (!dir.exists(name)) return dir.filePath(name);
  }
}

}  // namespace

NewBaseDialog::NewBaseDialog(const QString& folder, QWidget* parent)
    : QDialog(parent),
      path_(new QLineEdit),
      folder_(new QLineEdit),
      choice_(new QButtonGroup(this)),
      told_(new QLabel),
      report_(new QPlainTextEdit),
      work_(new TaskRunner) {
  setWindowTitle("Nouvelle base");
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowModality(Qt::WindowModal);
  auto* column = new QVBoxLayout(this);
  column->addLayout(make_place(QFileInfo(folder).isDir() ? folder : QDir::homePath()));
  column->addLayout(make_contents());
  report_->setReadOnly(true);
  report_->setObjectName("new_base_report");
  report_->setAccessibleName("Tableaux du dossier");
  report_->setTabChangesFocus(true);
  report_->setMinimumHeight(kReportHeight);
  report_->hide();
  column->addWidget(report_, 1);
  told_->setObjectName("new_base_told");
  told_->setTextFormat(Qt::PlainText);
  told_->setWordWrap(true);
  told_->hide();
  column->addWidget(told_);
  column->addWidget(work_);
  connect(work_, &TaskRunner::changed, this, &NewBaseDialog::update);
  connect(work_, &TaskRunner::ended, this, [this](const QString& sentence) {
    tell(sentence);
    if (!sentence.isEmpty()) path_->setFocus();
  });
  column->addLayout(make_buttons());
  update();
  resize(kWidth, 1);
  path_->setFocus();
  path_->selectAll();
}

QPushButton* NewBaseDialog::browse_button(const char* name, const QString& spoken) {
  auto* button = new QPushButton("Parcourir…");
  button->setObjectName(name);
  button->setAccessibleName(spoken);
  button->setAutoDefault(false);
  return button;
}

QLayout* NewBaseDialog::make_place(const QString& folder) {
  path_->setObjectName("new_base_path");
  path_->setText(QDir::toNativeSeparators(free_name(folder)));
  browse_ = browse_button("new_base_browse", "Choisir le fichier");
  connect(browse_, &QPushButton::clicked, this, &NewBaseDialog::browse_file);
  connect(path_, &QLineEdit::textChanged, this, [this] { tell({}); });
  auto* row = new QHBoxLayout;
  row->addWidget(path_, 1);
  row->addWidget(browse_);
  auto* form = new QFormLayout;
  auto* label = new QLabel("&Fichier de la base");
  label->setBuddy(path_);
  form->addRow(label, row);
  return form;
}

QLayout* NewBaseDialog::make_contents() {
  auto* column = new QVBoxLayout;
  auto* group = new QGroupBox("Elle contient");
  auto* lines = new QVBoxLayout(group);
  const auto add = [&](Contents which, const char* name, const QString& text, const QString& hint) {
    auto* button = new QRadioButton(text);
    button->setObjectName(name);
    button->setAccessibleDescription(hint);
    choice_->addButton(button, static_cast<int>(which));
    auto* told = new QLabel(hint);
    told->setIndent(24);
    lines->addWidget(button);
    lines->addWidget(told);
  };
  add(Contents::kReferenceFiles, "new_reference", "Les &tables de l'exemple, sans fiches",
      "Conventions, grilles, rubriques, communes… Les fiches s'importent ensuite.");
  add(Contents::kExample, "new_example", "L'&exemple entier",
      "Les mêmes tables, et le personnel des trois entités.");
  add(Contents::kTables, "new_tables", "Les ta&bleaux CSV d'un dossier",
      "Un tableau par fichier de la base, à son nom : TABLES.csv, SECTEUR.csv, VELANORO.csv…");
  folder_->setObjectName("new_base_folder");
  folder_->setAccessibleName("Dossier des tableaux");
  folder_->setPlaceholderText("Dossier des tableaux");
  browse_folder_ = browse_button("new_base_browse_folder", "Choisir le dossier");
  connect(browse_folder_, &QPushButton::clicked, this, &NewBaseDialog::browse_folder);
  connect(folder_, &QLineEdit::textChanged, this, &NewBaseDialog::forget_tables);
  auto* row = new QHBoxLayout;
  constexpr int kIndent = 24;
  row->setContentsMargins(kIndent, 0, 0, 0);
  row->addWidget(folder_, 1);
  row->addWidget(browse_folder_);
  lines->addLayout(row);
  add(Contents::kEmpty, "new_empty", "&Rien",
      "Ni entité, ni code : les tables s'importent ensuite (menu Tables).");
  choice_->button(static_cast<int>(Contents::kReferenceFiles))->setChecked(true);
  connect(choice_, &QButtonGroup::idToggled, this, [this] { forget_tables(); });
  column->addWidget(group);
  return column;
}

QLayout* NewBaseDialog::make_buttons() {
  auto* row = new QHBoxLayout;
  go_on_ = new QPushButton;
  go_on_->setObjectName("new_base_go_on");
  go_on_->setDefault(true);
  close_ = new QPushButton("Annuler");
  close_->setObjectName("new_base_cancel");
  close_->setAutoDefault(false);
  connect(go_on_, &QPushButton::clicked, this, &NewBaseDialog::go_on);
  connect(close_, &QPushButton::clicked, this, &NewBaseDialog::reject);
  row->addStretch(1);
  row->addWidget(go_on_);
  row->addWidget(close_);
  return row;
}

NewBaseDialog::Contents NewBaseDialog::contents() const {
  return static_cast<Contents>(choice_->checkedId());
}

void NewBaseDialog::browse_file() {
  auto* dialog = save_dialog(*this, "Nouvelle base", path_->text(), "Bases (*.db)", "db");
  // A file that is there is told of here, and never replaced.
  dialog->setOption(QFileDialog::DontConfirmOverwrite);
  connect(dialog, &QFileDialog::fileSelected, path_, &QLineEdit::setText);
  dialog->open();
}

void NewBaseDialog::browse_folder() {
  auto* dialog = folder_dialog(*this, "Dossier des tableaux", folder_->text());
  connect(dialog, &QFileDialog::fileSelected, folder_, &QLineEdit::setText);
  dialog->open();
}

void NewBaseDialog::forget_tables() {
  tables_.reset();
  report_->hide();
  tell({});
  update();
}

void NewBaseDialog::update() {
  const bool of_tables = contents() == Contents::kTables, free = !work_->is_running();
  const bool read = tables_ && !tables_->report.has_faults();
  go_on_->setText(of_tables && !read ? "&Vérifier les tableaux" : "C&réer la base");
  go_on_->setEnabled(free);
  path_->setEnabled(free);
  browse_->setEnabled(free);
  for (QAbstractButton* button : choice_->buttons()) button->setEnabled(free);
  folder_->setEnabled(free && of_tables);
  browse_folder_->setEnabled(free && of_tables);
}

// ---- The work.

void NewBaseDialog::go_on() {
  if (work_->is_running()) return;
  if (path_->text().trimmed().isEmpty()) return tell("Donnez le nom du fichier de la base.");
  if (QFileInfo(path_->text()).isSymLink() || QFileInfo::exists(path_->text()))
    return tell("Ce fichier existe déjà, et n'est pas remplacé. Donnez un autre nom.");
  const bool unread = contents() == Contents::kTables && (!tables_ || tables_->report.has_faults());
  unread ? read_tables() : make_base();
}

void NewBaseDialog::read_tables() {
  if (folder_->text().trimmed().isEmpty()) return tell("Donnez le dossier des tableaux.");
  auto read = std::make_shared<Tables>();
  const std::string folder = from_qt(folder_->text());
  tell({});
  work_->run("Lecture des tableaux", std::make_unique<Task>([read, folder](Task::Report& report) {
               read->report = import_folder(folder, read->contents, [&](double part) { report.part(part); });
             }),
             [this, read] {
               tables_ = read;
               show_tables();
               update();
             });
}

void NewBaseDialog::show_tables() {
  const FolderReport& report = tables_->report;
  QStringList lines;
  for (const FolderTable& table : report.tables)
    lines += import_lines(to_qt(table.name), table.report, ImportVerb::kWould);
  for (const std::string& list : report.empty_lists)
    lines << "TABLES : la liste " + to_qt(list) + " n'est dans aucun tableau ; elle sera vide.";
  for (const std::string& name : report.passed_over)
    lines << to_qt(name) + " : ce nom n'est pas celui d'un fichier de la base ; laissé de côté.";
  report_->setPlainText(lines.join('\n'));
  report_->show();
  tell(report.has_faults()
           ? "Des tableaux ont des fautes : rien n'a été écrit. Corrigez-les, puis vérifiez à nouveau."
           : "Les tableaux sont justes. « Créer la base » l'écrit avec ce qui vient d'être lu.");
  resize(width(), std::max(height(), sizeHint().height()));
}

void NewBaseDialog::make_base() {
  const QString typed = path_->text().trimmed();
  const QString path = QFileInfo(typed).suffix().isEmpty() ? typed + ".db" : typed;
  const std::string file = from_qt(path);
  const Contents what = contents();
  tell({});
  work_->run("Création de la base",
             std::make_unique<Task>([file, what, tables = tables_](Task::Report& report) {
               make_file(file, what, tables.get(), [&](double part) { report.part(part); });
             }),
             [this, path] {
               emit made(QFileInfo(path).absoluteFilePath());
               accept();
             });
}

void NewBaseDialog::make_file(const std::string& file, Contents what, Tables* tables,
                              const Progressed& progressed) {
  if (what == Contents::kTables) return build_from(file, tables->contents, progressed);
  store::SqliteDatabase::build(file, [&](store::SqliteDatabase& database) {
    if (what == Contents::kEmpty) {
      put_missing_lists(database);
    } else {
      put_example(database, what == Contents::kExample ? Example::kWhole : Example::kReferenceFiles,
                  progressed);
    }
    return true;
  });
}

// Escape and "Annuler" stop the work first, and then the dialog.
void NewBaseDialog::reject() { work_->is_running() ? work_->cancel() : QDialog::reject(); }

void NewBaseDialog::tell(const QString& sentence) {
  told_->setText(sentence);
  told_->setVisible(!sentence.isEmpty());
}

}  // namespace velanor::app
