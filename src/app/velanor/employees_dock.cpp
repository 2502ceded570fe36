#include "app/velanor/employees_dock.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QVBoxLayout>

#include "app/velanor/busy.h"
#include "app/velanor/card_news.h"
#include "app/velanor/employees_filter.h"
#include "exchange/columns.h"
#include "qt/strings.h"

namespace velanor::app {
namespace {

using qt::from_qt, qt::to_qt;
using Component = qt::ControleVelanorWidget;

constexpr int kLeastWidth = 300, kNarrowest = 200;

QAction* add(QMenu& menu, const QString& text, const QKeySequence& keys) {
  QAction* action = menu.addAction(text);
  action->setShortcut(keys);
  return action;
}

}  // namespace

const EmployeesDock::Reach EmployeesDock::kNobody{"-", "-"};

EmployeesDock::EmployeesDock(Component& component, store::Database& database, QWidget* parent)
    : QDockWidget("Employés", parent),
      component_(component),
      database_(database),
      table_(new EmployeesTable),
      count_(new QLabel),
      all_(new QCheckBox("Tous les employés, toutes les entités et années")),
      reading_(component, *table_, nullptr),
      filter_(new EmployeesFilter(*table_, reading_)),
      steps_(component, *table_, nullptr),
      export_(*table_, reading_, nullptr) {
  setObjectName("employees");
  setAllowedAreas(Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
  make_content();
  join();
  look_.setSingleShot(true);
  connect(&look_, &QTimer::timeout, this, [this] { look(Look::kIfElsewhere); });
  hide();
}

// ---- What it is made of.

void EmployeesDock::make_content() {
  count_->setObjectName("employees_count");
  // A narrow window keeps its own width, and cuts off what is known.
  all_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  all_->setToolTip(all_->text());
  auto* content = new QWidget;
  auto* column = new QVBoxLayout(content);
  column->setContentsMargins(4, 4, 4, 4);
  column->addWidget(filter_);
  column->addWidget(table_, 1);
  column->addWidget(all_);
  column->addWidget(count_);
  content->setMinimumWidth(kNarrowest);
  setWidget(content);
}

void EmployeesDock::join() {
  connect(filter_, &EmployeesFilter::open_asked, &steps_, &EmployeesSteps::open);
  connect(filter_, &EmployeesFilter::left, this, &EmployeesDock::go_back);
  connect(filter_, &QLineEdit::textChanged, this, &EmployeesDock::typed);
  connect(table_, &QTableView::doubleClicked, &steps_,
          [this](const QModelIndex& at) { steps_.open(at.row()); });
  // A header that was clicked keeps no selection in its place.
  connect(table_->horizontalHeader(), &QHeaderView::sortIndicatorChanged, &steps_,
          &EmployeesSteps::choose_last);
  connect(all_, &QCheckBox::toggled, this, [this](bool all) {
    table_->set_of(all ? EmployeesTable::Of::kAll : EmployeesTable::Of::kOneYear);
    look(Look::kIfElsewhere);
  });
  connect(&reading_, &EmployeesReading::told, this, &EmployeesDock::told);
  connect(&reading_, &EmployeesReading::counted, this, [this] {
    update_count();
    emit counted();
  });
  connect(&reading_, &EmployeesReading::examined, this, &EmployeesDock::update_count);
  connect(&reading_, &EmployeesReading::read_part, this, [this](double part) {
    count_->setText(QString("Lecture : %1 %").arg(static_cast<int>(part * 100)));
  });
  connect(&steps_, &EmployeesSteps::told, this, &EmployeesDock::told);
  connect(&steps_, &EmployeesSteps::opened, this, [this] {
    if (!has_room()) hide();
  });
  connect(&export_, &EmployeesExport::told, this, &EmployeesDock::told);
  connect(&export_, &EmployeesExport::chosen, this, &EmployeesDock::export_to);
}

void EmployeesDock::set_work_bar(WorkBar& bar) {
  reading_.set_work_bar(bar);
  export_.set_work_bar(bar);
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
  menu.addMenu(&table_->columns_menu());
}

void EmployeesDock::add_export_to(QMenu& menu) {
  const QKeySequence keys(Qt::CTRL | Qt::SHIFT | Qt::Key_L);
  connect(add(menu, "&Exporter le tableau des employés…", keys), &QAction::triggered, this,
          &EmployeesDock::ask_export);
}

// ---- What it follows.

void EmployeesDock::start() {
  reading_.start(database_);
  follow_component();
  follow_others();
  look(Look::kIfElsewhere);
}

void EmployeesDock::follow_component() {
  const auto soon = [this] { look_.start(0); };
  follow_year(component_, *this, soon);
  connect(&component_, &Component::message_closed, this, soon);
  const auto renew = [this](const QString& id) { reading_.renew_card(id); };
  connect(&component_, &Component::card_saved, this, renew);
  // One that was deleted may have been brought back.
  connect(&component_, &Component::card_opened, this, [this, renew](const QString& id) {
    if (!id.isEmpty() && table_->cards().row_of(id) < 0) renew(id);
  });
  connect(&component_, &Component::card_deleted, this, renew);
  connect(&component_, &Component::card_copied, this,
          [renew](const QString&, const QString&, const QString& copy) { renew(copy); });
}

void EmployeesDock::follow_others() {
  const auto* news = new CardNews(component_, database_, this);
  connect(news, &CardNews::may_be_written, this, [this] { look(Look::kAnew); });
  connect(news, &CardNews::written, this, [this](const QString& file, const QString& id) {
    if (!file.isEmpty() && from_qt(file) != exchange::kCardFile) return;
    id.isEmpty() ? look(Look::kAnew) : reading_.renew_card(id);
  });
}

EmployeesDock::Reach EmployeesDock::reach() const {
  if (all_->isChecked()) return {};
  const ShownYear at = shown_year(component_);
  return at.is_chosen() ? Reach{at.entity, at.year} : kNobody;
}

void EmployeesDock::look(Look look) {
  if (!reading_.is_started() || !isVisible()) return;
  if (waits(component_)) return look_.start(kPatience);
  reading_.read(reach(), look);
}

void EmployeesDock::showEvent(QShowEvent* event) {
  QDockWidget::showEvent(event);
  look(Look::kAnew);
}

void EmployeesDock::update_count() {
  if (reading_.is_reading()) return;
  const auto reach = reading_.reach();
  if (!reach) return count_->clear();
  if (reach == kNobody) return count_->setText("Choisissez une entité et une année budgétaire.");
  QString told = QString("%1 sur %2").arg(table_->cards().rowCount()).arg(table_->cards().total());
  if (const QString word = table_->cards().misread(); !word.isEmpty())
    told += QString(" – « %1 » n'est ni une colonne ni une comparaison").arg(word);
  count_->setText(told);
}

// ---- What it is asked for.

// A menu is alive also where the component waits for an answer.
bool EmployeesDock::is_free() {
  const bool free = !is_busy(component_);
  if (!free) emit told(kFinishFirst);
  return free;
}

void EmployeesDock::search() {
  if (!is_free() || !reading_.is_started()) return;
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
  table_->cards().set_filter(filter_->text());
  table_->choose(filter_->text().isEmpty() ? steps_.last_row() : 0);
  update_count();
}

// A card may be opened as soon as all is read, and whoever hears of it may close the window.
void EmployeesDock::step(Step step) {
  if (!is_free() || !reading_.is_started()) return;
  const QPointer<EmployeesDock> self(this);
  reading_.read(reach(), Look::kIfElsewhere);
  if (self) reading_.complete();
  if (self) steps_.go(step);
}

bool EmployeesDock::has_room() const {
  return isFloating() || window()->width() >= component_.sizeHint().width() + kLeastWidth;
}

bool EmployeesDock::has_cards() {
  const std::string file(exchange::kCardFile);
  return database_.Select(store::DbQuery("SSELECT " + file, file, "0").encoded()).DCount() > 0;
}

int EmployeesDock::cards_of(const ShownYear& at) const {
  return reading_.reach() == Reach{at.entity, at.year} ? reading_.employees().count() : -1;
}

EmployeesDock::Shown EmployeesDock::shown() const {
  Shown all;
  if (!reading_.is_started()) return all;
  const EmployeesModel& cards = table_->cards();
  all.table = table_->sheet();
  for (int row = 0; row < cards.rowCount(); ++row) {
    all.ids.push_back(from_qt(cards.id(row)));
    all.names.push_back(to_qt(cards.cell(row, static_cast<int>(office::Column::kName))));
  }
  all.entity = reading_.employees().reach().entity;
  all.year = reading_.employees().reach().year;
  all.filter = filter_->text();
  all.count = count_->text();
  return all;
}

void EmployeesDock::when_examined(std::function<void()> then) {
  reading_.read(reach(), Look::kIfElsewhere);
  reading_.when_examined(std::move(then));
}

void EmployeesDock::ask_export() {
  if (!is_free() || !reading_.is_started()) return;
  reading_.read(reach(), Look::kIfElsewhere);
  export_.ask(*window());
}

void EmployeesDock::export_to(const QString& path) {
  reading_.complete();
  export_.write(path);
}

}  // namespace velanor::app
