#include "app/velanor/employees_dock.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QScopeGuard>
#include <QScrollBar>
#include <QSet>
#include <QSocketNotifier>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>
#include <climits>
#include <utility>

#include "app/velanor/busy.h"
#include "app/velanor/file_dialogs.h"
#include "app/velanorctl/employees_sheet.h"
#include "exchange/columns.h"
#include "qt/strings.h"
#include "text/failure.h"
#include "text/utf8.h"

namespace velanor::app {
namespace {

using office::Column;
using qt::from_qt, qt::to_qt;

constexpr int kLeastWidth = 300, kNarrowest = 200;
constexpr int kEmployee = 5, kEntity = 3;  // characters of the id of a card, before those of the year
constexpr int kLater = 200;                // milliseconds until what the component is at may be over
constexpr int kAtOnce = 8;                 // milliseconds of looking at cards between two keys
constexpr int kFirst = 100, kSlice = 15;   // milliseconds of reading, at first and between two keys
constexpr Column kFirstShown[] = {Column::kCode, Column::kName,  Column::kContract,
                                  Column::kEnd,  Column::kHours, Column::kState};

const QString kWorkbooks = QStringLiteral("Classeurs (*.xlsx)");

// Of which there are no cards: nothing is chosen on the screen.
const office::Employees::Reach kNobody{"-", "-"};

constexpr int number(Column column) { return static_cast<int>(column); }

int first_width(Column column) {
  switch (column) {
    case Column::kCode:
    case Column::kContract:
      return 54;
    case Column::kHours:
    case Column::kFullTime:
    case Column::kAmendments:
    case Column::kEntity:
    case Column::kYear:
      return 60;
    case Column::kName:
      return 146;
    case Column::kStart:
    case Column::kEnd:
    case Column::kState:
      return 78;
    default:
      return 120;
  }
}

std::string text_of(screen::Form& form, const char* name) {
  const auto* control = dynamic_cast<const screen::TextControl*>(form.find(name));
  return control ? std::string(text::trim(control->text())) : std::string();
}

bool is_enter(const QKeyEvent& key) { return key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter; }

bool is_character(const QKeyEvent& key) {
  const bool chord = key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
  return !chord && !key.text().isEmpty() && key.text().front().isPrint();
}

QString on_one_line(const std::string& text) {
  return to_qt(text).replace(u'\t', u' ').replace(u'\n', u' ').replace(u'\r', u' ');
}

QAction* add(QMenu& menu, const QString& text, const QKeySequence& keys) {
  QAction* action = menu.addAction(text);
  action->setShortcut(keys);
  return action;
}

}  // namespace

EmployeesDock::EmployeesDock(qt::ControleVelanorWidget& component, store::Database& database, QWidget* parent)
    : QDockWidget("Employés", parent),
      component_(component),
      database_(database),
      model_(new EmployeesModel(this)),
      filter_(new QLineEdit),
      table_(new QTableView),
      count_(new QLabel),
      all_(new QCheckBox("Tous les employés, toutes les entités et années")),
      columns_(new QMenu("&Colonnes du tableau", this)) {
  setObjectName("employees");
  setAllowedAreas(Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
  make_content();
  make_columns();
  look_.setSingleShot(true);
  examine_.setSingleShot(true);
  read_on_.setSingleShot(true);
  connect(&look_, &QTimer::timeout, this, [this] { look(Look::kIfElsewhere); });
  connect(&examine_, &QTimer::timeout, this, &EmployeesDock::examine);
  connect(&read_on_, &QTimer::timeout, this, [this] { read_further(kSlice); });
  hide();
}

EmployeesDock::~EmployeesDock() { model_->show(nullptr); }

// ---- What it is made of.

void EmployeesDock::make_content() {
  filter_->setObjectName("employees_filter");
  filter_->setAccessibleName("Chercher un employé");
  filter_->setPlaceholderText("Chercher : nom, secteur:nord, fin<01/09, -cdd");
  filter_->setToolTip(
      "Une partie de n'importe quelle colonne ; plusieurs mots se cumulent.\nsecteur:nord dans une colonne, "
      "fin<01/09 pour comparer, -cdd pour ceux qui ne l'ont pas");
  filter_->setClearButtonEnabled(true);
  filter_->installEventFilter(this);
  connect(filter_, &QLineEdit::textChanged, this, &EmployeesDock::typed);
  table_->setObjectName("employees_table");
  table_->setAccessibleName("Employés");
  table_->setModel(model_);
  table_->setSelectionBehavior(QTableView::SelectRows);
  table_->setSelectionMode(QTableView::ExtendedSelection);
  table_->setEditTriggers(QTableView::NoEditTriggers);
  table_->setTabKeyNavigation(false);
  table_->setAlternatingRowColors(true);
  table_->setShowGrid(false);
  table_->setWordWrap(false);
  table_->verticalHeader()->hide();
  constexpr int kAir = 6;
  table_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  table_->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kAir);
  table_->installEventFilter(this);
  connect(table_, &QTableView::doubleClicked, this, [this](const QModelIndex& at) { open_row(at.row()); });
  count_->setObjectName("employees_count");
  connect(all_, &QCheckBox::toggled, this, [this] {
    show_reach();
    look(Look::kIfElsewhere);
  });
  auto* content = new QWidget;
  auto* column = new QVBoxLayout(content);
  column->setContentsMargins(4, 4, 4, 4);
  column->addWidget(filter_);
  column->addWidget(table_, 1);
  column->addWidget(all_);
  column->addWidget(count_);
  // A narrow window keeps its own width, and cuts off what is known.
  all_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  all_->setToolTip(all_->text());
  content->setMinimumWidth(kNarrowest);
  setWidget(content);
}

void EmployeesDock::make_columns() {
  QHeaderView* header = table_->horizontalHeader();
  header->setSectionsMovable(true);
  header->setHighlightSections(false);
  header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  header->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(header, &QWidget::customContextMenuRequested, this,
          [this, header](const QPoint& at) { columns_->popup(header->mapToGlobal(at)); });
  for (int c = 0; c < number(Column::kEntity); ++c) {
    const auto column = static_cast<Column>(c);
    const bool shown =
        std::find(std::begin(kFirstShown), std::end(kFirstShown), column) != std::end(kFirstShown);
    header->resizeSection(c, first_width(column));
    header->setSectionHidden(c, !shown);
    QAction* action = columns_->addAction(model_->headerData(c, Qt::Horizontal, Qt::DisplayRole).toString());
    action->setCheckable(true);
    action->setChecked(shown);
    // By it everybody is known.
    action->setEnabled(column != Column::kName);
    connect(action, &QAction::toggled, this, [header, c](bool on) { header->setSectionHidden(c, !on); });
  }
  for (const Column column : {Column::kEntity, Column::kYear})
    header->resizeSection(number(column), first_width(column));
  show_reach();
  table_->setSortingEnabled(true);
  table_->sortByColumn(number(Column::kName), Qt::AscendingOrder);
  // A header that was clicked keeps no selection in its place.
  connect(header, &QHeaderView::sortIndicatorChanged, this, [this] { choose(model_->row_of(last_id_)); });
}

// What tells the cards apart only where there are several of them.
void EmployeesDock::show_reach() {
  for (const Column column : {Column::kEntity, Column::kYear})
    table_->horizontalHeader()->setSectionHidden(number(column), !all_->isChecked());
}

QByteArray EmployeesDock::columns() const { return table_->horizontalHeader()->saveState(); }

void EmployeesDock::set_columns(const QByteArray& columns) {
  QHeaderView* header = table_->horizontalHeader();
  if (columns.isEmpty() || !header->restoreState(columns)) return;
  header->setSectionHidden(number(Column::kName), false);
  for (int c = 0; c < number(Column::kEntity); ++c)
    columns_->actions()[c]->setChecked(!header->isSectionHidden(c));
  show_reach();
  model_->sort(header->sortIndicatorSection(), header->sortIndicatorOrder());
}

void EmployeesDock::add_search_to(QMenu& menu) {
  connect(add(menu, "&Rechercher un employé", QKeySequence(Qt::CTRL | Qt::Key_F)), &QAction::triggered, this,
          &EmployeesDock::search);
}

void EmployeesDock::add_steps_to(QMenu& menu) {
  connect(add(menu, "Fiche sui&vante", QKeySequence(Qt::ALT | Qt::Key_Down)), &QAction::triggered, this,
          [this] { step(Step::kNext); });
  connect(add(menu, "Fiche &précédente", QKeySequence(Qt::ALT | Qt::Key_Up)), &QAction::triggered, this,
          [this] { step(Step::kPrevious); });
}

void EmployeesDock::add_view_to(QMenu& menu) {
  QAction* shown = toggleViewAction();
  shown->setText("&Tableau des employés");
  shown->setShortcut(QKeySequence(Qt::Key_F9));
  menu.addAction(shown);
  menu.addMenu(columns_);
}

void EmployeesDock::add_export_to(QMenu& menu) {
  const QKeySequence keys(Qt::CTRL | Qt::SHIFT | Qt::Key_L);
  connect(add(menu, "&Exporter le tableau des employés…", keys), &QAction::triggered, this,
          &EmployeesDock::ask_export);
}

// ---- What it follows.

void EmployeesDock::start() {
  employees_ = std::make_unique<office::Employees>(database_);
  model_->show(employees_.get());
  follow_component();
  listen_to_others();
  look(Look::kIfElsewhere);
}

// Entity and year have no signal of their own; their fields have.
void EmployeesDock::follow_component() {
  using Component = qt::ControleVelanorWidget;
  const auto soon = [this] { look_.start(0); };
  if (auto* entity = component_.findChild<QLineEdit*>("Txt_Asso"))
    connect(entity, &QLineEdit::textChanged, this, soon);
  if (auto* year = component_.findChild<QComboBox*>("Cbo_Periode"))
    connect(year, &QComboBox::currentIndexChanged, this, soon);
  connect(&component_, &Component::state_changed, this, soon);
  connect(&component_, &Component::message_closed, this, soon);
  connect(&component_, &Component::card_saved, this, &EmployeesDock::renew_card);
  connect(&component_, &Component::card_deleted, this, &EmployeesDock::renew_card);
  connect(&component_, &Component::card_copied, this,
          [this](const QString&, const QString&, const QString& copy) { renew_card(copy); });
  connect(&component_, &Component::card_opened, this, [this](const QString& id) {
    if (id.isEmpty()) return;
    last_id_ = id;
    const int row = model_->row_of(id);
    if (row >= 0) last_row_ = row;
    choose(row);
  });
  window()->installEventFilter(this);
}

void EmployeesDock::listen_to_others() {
  news_ = database_.news();
  if (!news_) return;
  others_ = new QSocketNotifier(news_->descriptor(), QSocketNotifier::Read, this);
  connect(others_, &QSocketNotifier::activated, this, &EmployeesDock::hear_others);
}

// Not while the component is in the midst of something: what is heard is read.
void EmployeesDock::hear_others() {
  others_->setEnabled(false);
  QTimer::singleShot(is_busy() ? kLater : 0, others_, [this] { others_->setEnabled(true); });
  if (is_busy() || !employees_) return;
  for (const store::Change& change : news_->take()) {
    if (!change.file.empty() && change.file != exchange::kCardFile) continue;
    change.id.empty() ? look(Look::kAnew) : renew_card(to_qt(change.id));
  }
}

office::Employees::Reach EmployeesDock::reach() const {
  if (all_->isChecked()) return {};
  screen::Form& form = component_.screen().base();
  const auto* years = dynamic_cast<const screen::ComboBox*>(form.find("Cbo_Periode"));
  office::Employees::Reach chosen{text_of(form, "Txt_Asso"), text_of(form, "Cbo_Periode")};
  const bool is_chosen = years && years->index() >= 0 && !chosen.entity.empty() && !chosen.year.empty();
  return is_chosen ? chosen : kNobody;
}

bool EmployeesDock::reach_is_chosen() const { return reach() != kNobody; }

void EmployeesDock::look(Look look) {
  if (!employees_ || !isVisible()) return;
  if (is_busy()) return look_.start(kLater);
  read(look);
}

void EmployeesDock::read(Look look) try {
  const auto wanted = reach();
  const bool same = read_once_ && wanted == employees_->reach();
  if (same && look == Look::kIfElsewhere) return;
  if (!reading_) reading_ = place_now();
  examine_.stop();
  // Where it fails half way nothing is shown of what was read.
  model_->show(nullptr);
  const bool long_work = wanted.is_all();
  if (long_work) QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  const auto restore = qScopeGuard([long_work] {
    if (long_work) QGuiApplication::restoreOverrideCursor();
  });
  employees_->begin(wanted);
  read_once_ = true;
  emit counted();
  read_further(kFirst);
} catch (const std::exception& error) {
  end_reading();
  emit told(to_qt(text::failure_sentence(error)));
}

// Needs the store no more, so it goes on whatever the component is at.
void EmployeesDock::read_further(int milliseconds) {
  QElapsedTimer since;
  since.start();
  constexpr int kRows = 64;
  bool more = employees_->read_on(kRows);
  while (more && since.elapsed() < milliseconds) more = employees_->read_on(kRows);
  if (!more) return end_reading();
  const double part = employees_->part_read();
  count_->setText(QString("Lecture : %1 %").arg(static_cast<int>(part * 100)));
  if (work_bar_) work_bar_->show_part(*this, "Lecture des fiches", part, [this] { end_reading(); });
  read_on_.start(0);
}

// Also where not all was read: the rows that there are can be worked with.
void EmployeesDock::end_reading() {
  read_on_.stop();
  if (work_bar_) work_bar_->done(*this);
  model_->show(employees_.get());
  if (const auto place = std::exchange(reading_, std::nullopt)) put_back(*place);
  examine_.start(0);
  emit counted();
  if (std::exchange(opens_when_read_, false)) open_row(std::max(table_->currentIndex().row(), 0));
}

// What is asked for needs all rows now.
void EmployeesDock::complete_reading() {
  if (!reading_) return;
  while (employees_->read_on(INT_MAX)) {
  }
  end_reading();
}

void EmployeesDock::renew_card(const QString& id) try {
  if (!employees_ || !read_once_) return;
  complete_reading();
  bool renewed = false;
  keeping_place([&] {
    renewed = employees_->renew(from_qt(id));
    model_->renew();
  });
  emit counted();
  if (renewed) examine_.start(0);
} catch (const std::exception& error) {
  emit told(to_qt(text::failure_sentence(error)));
}

// Between two keys, so that nobody waits for it.
void EmployeesDock::examine() try {
  if (!employees_ || reading_) return;
  if (is_busy()) return examine_.start(kLater);
  QElapsedTimer since;
  since.start();
  bool more = true;
  while (more && since.elapsed() < kAtOnce) more = employees_->examine(1);
  if (more) {
    model_->cells_changed();
    if (work_bar_) {
      work_bar_->show_part(*this, "Heures et fautes des fiches", employees_->part_examined(), [this] {
        examine_.stop();
        when_examined_ = nullptr;
        work_bar_->done(*this);
      });
    }
    examine_.start(0);
  } else {
    if (work_bar_) work_bar_->done(*this);
    keeping_place([this] { model_->renew(); });
  }
  update_count();
  if (const auto then = more ? nullptr : std::exchange(when_examined_, nullptr)) then();
} catch (const std::exception& error) {
  when_examined_ = nullptr;
  emit told(to_qt(text::failure_sentence(error)));
}

void EmployeesDock::when_examined(std::function<void()> then) {
  read(Look::kIfElsewhere);
  when_examined_ = std::move(then);
  if (!reading_) examine_.start(0);
}

EmployeesDock::Place EmployeesDock::place_now() const {
  Place place;
  for (const QModelIndex& row : table_->selectionModel()->selectedRows())
    place.chosen.insert(model_->id(row.row()));
  place.current = model_->id(table_->currentIndex().row());
  place.scrolled = table_->verticalScrollBar()->value();
  return place;
}

void EmployeesDock::put_back(Place place) {
  QItemSelection again;
  for (int row = 0; !place.chosen.isEmpty() && row < model_->rowCount(); ++row) {
    if (place.chosen.remove(model_->id(row))) again.select(model_->index(row, 0), model_->index(row, 0));
  }
  using Selection = QItemSelectionModel;
  if (const int row = model_->row_of(place.current); row >= 0)
    table_->selectionModel()->setCurrentIndex(model_->index(row, number(Column::kName)), Selection::NoUpdate);
  table_->selectionModel()->select(again, Selection::ClearAndSelect | Selection::Rows);
  table_->verticalScrollBar()->setValue(place.scrolled);
  update_count();
}

void EmployeesDock::keeping_place(const std::function<void()>& change) {
  const Place place = place_now();
  change();
  put_back(place);
}

int EmployeesDock::cards_of(const ShownYear& at) const {
  const bool read =
      employees_ && read_once_ && employees_->reach() == office::Employees::Reach{at.entity, at.year};
  return read ? employees_->count() : -1;
}

void EmployeesDock::update_count() {
  if (reading_) return;
  if (!employees_ || !read_once_) return count_->clear();
  if (employees_->reach() == kNobody)
    return count_->setText("Choisissez une entité et une année budgétaire.");
  count_->setText(QString("%1 sur %2").arg(model_->rowCount()).arg(model_->total()));
}

void EmployeesDock::showEvent(QShowEvent* event) {
  QDockWidget::showEvent(event);
  look(Look::kAnew);
}

// ---- Keys.

bool EmployeesDock::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::WindowActivate && !news_) look(Look::kAnew);
  if (event->type() == QEvent::ShortcutOverride && (watched == filter_ || watched == table_)) {
    auto& key = static_cast<QKeyEvent&>(*event);
    if (key.key() == Qt::Key_Escape || is_enter(key)) return key.accept(), true;
  }
  if (event->type() == QEvent::KeyPress) {
    auto& key = static_cast<QKeyEvent&>(*event);
    if (watched == filter_ && key_in_filter(key)) return true;
    if (watched == table_ && key_in_table(key)) return true;
  }
  return QDockWidget::eventFilter(watched, event);
}

bool EmployeesDock::key_in_filter(const QKeyEvent& key) {
  const auto move = [&](int by) {
    choose(std::clamp(table_->currentIndex().row() + by, 0, model_->rowCount() - 1));
  };
  constexpr int kPage = 10;
  if (is_enter(key)) {
    // While the table is being read it is meant for what will stand there.
    if (reading_) return opens_when_read_ = true;
    return open_row(std::max(table_->currentIndex().row(), 0)), true;
  }
  opens_when_read_ = false;
  if (key.key() == Qt::Key_Escape) {
    filter_->text().isEmpty() ? go_back() : filter_->clear();
    return true;
  }
  if (key.modifiers() & Qt::AltModifier || model_->rowCount() == 0) return false;
  if (key.key() == Qt::Key_Down) return move(1), true;
  if (key.key() == Qt::Key_Up) return move(-1), true;
  if (key.key() == Qt::Key_PageDown) return move(kPage), true;
  if (key.key() == Qt::Key_PageUp) return move(-kPage), true;
  return false;
}

// What is typed there is looked for.
bool EmployeesDock::key_in_table(QKeyEvent& key) {
  if (is_enter(key)) return open_row(table_->currentIndex().row()), true;
  if (key.key() == Qt::Key_Escape) {
    filter_->text().isEmpty() ? go_back() : filter_->clear();
    return true;
  }
  if (key.matches(QKeySequence::Copy)) return copy(), true;
  if (!is_character(key)) return false;
  filter_->setFocus();
  QCoreApplication::sendEvent(filter_, &key);
  return true;
}

void EmployeesDock::search() {
  if (!is_free() || !employees_) return;
  QWidget* focus = QApplication::focusWidget();
  if (focus && component_.isAncestorOf(focus)) before_ = focus;
  show();
  raise();
  if (isFloating()) activateWindow();
  filter_->setFocus(Qt::ShortcutFocusReason);
  filter_->selectAll();
}

// To where the clerk was on the card.
void EmployeesDock::go_back() {
  if (before_ && before_->isEnabled() && before_->isVisible()) {
    before_->setFocus(Qt::OtherFocusReason);
  } else {
    component_.setFocus();
  }
  if (!has_room()) hide();
}

void EmployeesDock::typed() {
  model_->set_filter(filter_->text());
  const int open = filter_->text().isEmpty() ? model_->row_of(last_id_) : 0;
  choose(open);
  update_count();
}

// ---- Cards.

bool EmployeesDock::is_busy() const { return component_.open_message() != nullptr; }

// A menu is alive also where the component waits for an answer.
bool EmployeesDock::is_free() {
  const bool free = !app::is_busy(component_);
  if (!free) emit told(kFinishFirst);
  return free;
}

void EmployeesDock::choose(int row) {
  if (row < 0 || row >= model_->rowCount()) return;
  const QModelIndex at = model_->index(row, number(Column::kName));
  table_->selectionModel()->setCurrentIndex(at,
                                            QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  table_->scrollTo(at);
}

// Whoever hears of it may close the window.
void EmployeesDock::open_row(int row) try {
  const QString id = model_->id(row);
  if (id.isEmpty() || !is_free()) return;
  const QPointer<EmployeesDock> self(this);
  const auto opening =
      component_.open(id.mid(kEmployee, kEntity), id.mid(kEmployee + kEntity), id.left(kEmployee));
  if (!self) return;
  if (!opening.is_open()) return emit told(to_qt(opening.why));
  if (!component_.isAncestorOf(QApplication::focusWidget())) component_.setFocus();
  if (!has_room()) hide();
} catch (const std::exception& error) {
  emit told(to_qt(text::failure_sentence(error)));
}

// From the card opened last; where it has left the table, from where it stood.
void EmployeesDock::step(Step step) {
  if (!is_free() || !employees_) return;
  read(Look::kIfElsewhere);
  complete_reading();
  const bool next = step == Step::kNext;
  if (model_->rowCount() == 0) return emit told("Le tableau des employés ne montre aucune fiche.");
  const int here = model_->row_of(last_id_);
  int row = here >= 0 ? here + (next ? 1 : -1) : next ? std::max(last_row_, 0) : last_row_ - 1;
  if (row < 0) return emit told("C'est la première fiche du tableau.");
  if (row >= model_->rowCount()) return emit told("C'est la dernière fiche du tableau.");
  open_row(row);
}

bool EmployeesDock::has_room() const {
  return isFloating() || window()->width() >= component_.sizeHint().width() + kLeastWidth;
}

bool EmployeesDock::has_cards() {
  const std::string file(exchange::kCardFile);
  return database_.Select(store::DbQuery("SSELECT " + file, file, "0").encoded()).DCount() > 0;
}

// ---- Copies.

std::vector<int> EmployeesDock::shown_columns() const {
  const QHeaderView* header = table_->horizontalHeader();
  std::vector<int> columns;
  for (int at = 0; at < header->count(); ++at) {
    const int column = header->logicalIndex(at);
    if (!header->isSectionHidden(column)) columns.push_back(column);
  }
  return columns;
}

EmployeesDock::Shown EmployeesDock::shown() const {
  using office::SheetTable;
  Shown all;
  if (!employees_) return all;
  const auto columns = shown_columns();
  for (const int column : columns)
    all.table.columns.push_back({std::string(office::kTitles[static_cast<std::size_t>(column)].title),
                                 EmployeesModel::holds_figures(Column(column)) ? SheetTable::Holds::kFigures
                                                                               : SheetTable::Holds::kText});
  for (int row = 0; row < model_->rowCount(); ++row) {
    all.table.rows.emplace_back();
    for (const int column : columns) all.table.rows.back().push_back(model_->cell(row, column));
    all.ids.push_back(from_qt(model_->id(row)));
    all.names.push_back(to_qt(model_->cell(row, number(Column::kName))));
  }
  all.entity = employees_->reach().entity;
  all.year = employees_->reach().year;
  all.filter = filter_->text();
  all.count = count_->text();
  return all;
}

void EmployeesDock::copy() const {
  std::vector<int> rows;
  for (const QModelIndex& row : table_->selectionModel()->selectedRows()) rows.push_back(row.row());
  std::sort(rows.begin(), rows.end());
  const auto columns = shown_columns();
  QStringList cells;
  for (const int column : columns) cells << to_qt(office::kTitles[static_cast<std::size_t>(column)].title);
  QString text = cells.join(u'\t') + u'\n';
  for (const int row : rows) {
    cells.clear();
    for (const int column : columns) cells << on_one_line(model_->cell(row, column));
    text += cells.join(u'\t') + u'\n';
  }
  QGuiApplication::clipboard()->setText(text);
}

void EmployeesDock::ask_export() {
  if (!is_free() || !employees_) return;
  read(Look::kIfElsewhere);
  auto* dialog =
      save_dialog(*window(), "Exporter le tableau des employés", QDir::home().filePath("employes.xlsx"),
                  kWorkbooks + ";;Tableaux (*.csv)", "xlsx");
  connect(dialog, &QFileDialog::filterSelected, dialog,
          [dialog](const QString& kind) { dialog->setDefaultSuffix(kind == kWorkbooks ? "xlsx" : "csv"); });
  connect(dialog, &QFileDialog::fileSelected, this, &EmployeesDock::export_to);
  dialog->open();
}

// The table as it stands now is written beside the window; what is done to it meanwhile is not in it.
void EmployeesDock::export_to(const QString& path) {
  if (export_) return emit told("Une exportation est en cours : attendez-la, ou annulez-la.");
  complete_reading();
  std::vector<Column> columns;
  for (const int column : shown_columns()) columns.push_back(Column(column));
  auto sheet = std::make_shared<EmployeesSheet>(sheet_of(*employees_, model_->rows(), columns));
  const auto rows = sheet->rows.size();
  export_ = std::make_unique<Task>([sheet, file = from_qt(path)](Task::Report& report) {
    write_sheet(file, *sheet, [&](double part) { report.part(part); });
  });
  Task* task = export_.get();
  const auto end = [this, task](const QString& sentence) {
    if (work_bar_) work_bar_->done(*task);
    export_.reset();
    emit told(sentence);
  };
  connect(task, &Task::progressed, this, [this, task](double part) {
    if (work_bar_) work_bar_->show_part(*task, "Exportation", part, [task] { task->cancel(); });
  });
  connect(task, &Task::done, this,
          [end, rows, path] { end(QString("%1 lignes écrites dans « %2 »").arg(rows).arg(path)); });
  connect(task, &Task::cancelled, this, [end] { end("Exportation arrêtée : rien n'a été écrit."); });
  connect(task, &Task::failed, this, end);
  task->start();
}

}  // namespace velanor::app
