#include "app/velanor/consult_dialog.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "app/velanor/record_table.h"
#include "app/velanor/table_files.h"
#include "app/velanor/task_runner.h"
#include "qt/strings.h"

namespace velanor::app {

ConsultDialog::ConsultDialog(BaseWork base, store::Database& database, QWidget* parent)
    : QDialog(parent),
      base_(std::move(base)),
      file_(new QComboBox),
      filter_(new QLineEdit),
      table_(new QTableView),
      model_(new RecordTableModel(this)),
      count_(new QLabel),
      work_(new TaskRunner) {
  setWindowTitle("Tables de la base");
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowModality(Qt::WindowModal);
  auto* column = new QVBoxLayout(this);
  column->addLayout(make_choice());
  make_table();
  column->addWidget(table_, 1);
  auto* row = new QHBoxLayout;
  count_->setObjectName("table_count");
  row->addWidget(count_, 1);
  row->addWidget(work_);
  auto* close = new QPushButton("Fermer");
  close->setAutoDefault(false);
  connect(close, &QPushButton::clicked, this, &QDialog::close);
  row->addWidget(close);
  column->addLayout(row);
  offer_files(*file_, database, OfferCards::kNo);
  connect(file_, &QComboBox::currentIndexChanged, this, &ConsultDialog::read);
  connect(filter_, &QLineEdit::textChanged, this, [this](const QString& typed) {
    model_->set_filter(typed);
    update_count();
  });
  connect(work_, &TaskRunner::ended, count_, &QLabel::setText);
  resize(980, 560);
  file_->setFocus();
  read();
}

QLayout* ConsultDialog::make_choice() {
  auto* row = new QHBoxLayout;
  const auto add = [&](const QString& text, QWidget* field, const char* name, int stretch) {
    auto* label = new QLabel(text);
    label->setBuddy(field);
    field->setObjectName(name);
    row->addWidget(label);
    row->addWidget(field, stretch);
  };
  add("&Table", file_, "table_file", 0);
  add("&Chercher", filter_, "table_filter", 1);
  filter_->setClearButtonEnabled(true);
  filter_->setPlaceholderText("Une partie de n'importe quelle colonne");
  return row;
}

void ConsultDialog::make_table() {
  table_->setObjectName("table_rows");
  table_->setAccessibleName("Enregistrements de la table");
  table_->setModel(model_);
  table_->setSelectionBehavior(QTableView::SelectRows);
  table_->setTabKeyNavigation(false);
  table_->setAlternatingRowColors(true);
  table_->setShowGrid(false);
  table_->setWordWrap(false);
  table_->horizontalHeader()->setHighlightSections(false);
  table_->horizontalHeader()->setStretchLastSection(true);
  table_->verticalHeader()->hide();
  constexpr int kAir = 6;
  table_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  table_->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kAir);
  table_->installEventFilter(this);
}

// A table that is still being read is not waited for.
void ConsultDialog::read() {
  model_->show({});
  filter_->clear();
  const auto table = std::make_shared<RecordTable>();
  count_->clear();
  work_->run(
      "Lecture", base_,
      [table, file = qt::from_qt(file_->currentData().toString())](
          store::Database& database, const std::function<void(double)>& progressed) {
        *table = read_table(database, file, progressed);
      },
      [this, table] {
        model_->show(std::move(*table));
        table_->resizeColumnsToContents();
        constexpr int kWidest = 360;
        for (int c = 0; c < model_->columnCount(); ++c)
          table_->setColumnWidth(c, std::min(table_->columnWidth(c) + 12, kWidest));
        update_count();
      });
}

void ConsultDialog::update_count() {
  count_->setText(model_->total() == 0 ? QStringLiteral("Cette table est vide.")
                                       : QString("%1 sur %2").arg(model_->rowCount()).arg(model_->total()));
}

// With their headings, as a spreadsheet takes them.
void ConsultDialog::copy() const {
  QStringList lines, cells;
  const auto cell = [](QString text) { return text.replace('\t', ' ').replace('\n', ' '); };
  for (int c = 0; c < model_->columnCount(); ++c)
    cells << cell(model_->headerData(c, Qt::Horizontal, Qt::DisplayRole).toString());
  lines << cells.join('\t');
  QModelIndexList rows = table_->selectionModel()->selectedRows();
  std::sort(rows.begin(), rows.end());
  for (const QModelIndex& row : rows) {
    cells.clear();
    for (int c = 0; c < model_->columnCount(); ++c) cells << cell(row.siblingAtColumn(c).data().toString());
    lines << cells.join('\t');
  }
  QGuiApplication::clipboard()->setText(lines.join('\n') + '\n');
}

bool ConsultDialog::eventFilter(QObject* watched, QEvent* event) {
  if (watched == table_ && event->type() == QEvent::KeyPress &&
      static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy))
    return copy(), true;
  return QDialog::eventFilter(watched, event);
}

// Escape gives up the reading, then the words that are searched, then the dialog.
void ConsultDialog::reject() {
  if (work_->is_running()) return work_->cancel();
  filter_->text().isEmpty() ? QDialog::reject() : filter_->clear();
}

}  // namespace velanor::app
