#include "app/velanor/checks_dock.h"

#include <pwd.h>
#include <unistd.h>

#include <QApplication>
#include <QCheckBox>
#include <QElapsedTimer>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QMainWindow>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "app/velanor/busy.h"
#include "app/velanor/card_news.h"
#include "app/velanor/plain_table.h"
#include "exchange/columns.h"
#include "qt/strings.h"
#include "store/sqlite/failure.h"
#include "text/failure.h"
#include "velanor/hand.h"

namespace velanor::app {
namespace {

using office::Finding;
using qt::to_qt;
using Component = qt::ControleVelanorWidget;

constexpr qsizetype kCodeLength = 5;      // with which the id of a card begins
constexpr int kSlice = 15, kFirst = 100;  // milliseconds

// As the base notes who writes.
std::string clerk(store::Database& database) {
  std::string name = database.history() ? database.history()->author() : std::string();
  if (!name.empty()) return name;
  const passwd* user = getpwuid(geteuid());
  return user ? user->pw_name : std::to_string(geteuid());
}

QString shown(int day) { return QString::fromStdString(entry::date_text(entry::date_of(day))); }

QString nature(const Finding& finding) {
  if (finding.is_fault()) return "Faute";
  if (!finding.aside) return "Avertissement";
  return "De côté (" + to_qt(finding.aside->who) + ", " + shown(finding.aside->day) + ")";
}

QString counted(std::ptrdiff_t count, const QString& noun) {
  return QString::number(count) + " " + noun + (count > 1 ? "s" : "");
}

}  // namespace

ChecksDock::ChecksDock(Component& component, store::Database& database, QWidget* parent)
    : QDockWidget("Contrôles", parent),
      component_(component),
      database_(database),
      heading_(new QLabel),
      days_(new QSpinBox),
      table_(new PlainTable({"Fiche", "Nom", "Nature", "Remarque"}, "Contrôles")),
      aside_(new QPushButton),
      stop_(new QPushButton("Arrêter")),
      with_asides_(new QCheckBox("Montrer ce qui est de côté")) {
  setObjectName("checks");
  lay_out();
  go_on_.setSingleShot(true);
  follow_.setSingleShot(true);
  connect(&go_on_, &QTimer::timeout, this, &ChecksDock::look_on);
  connect(&follow_, &QTimer::timeout, this, &ChecksDock::follow);
  connect(table_, &QTableWidget::itemSelectionChanged, this, &ChecksDock::show_choice);
  connect(table_, &QTableWidget::doubleClicked, this, &ChecksDock::open_chosen);
  connect(aside_, &QPushButton::clicked, this, &ChecksDock::change_aside);
  connect(stop_, &QPushButton::clicked, this, &ChecksDock::stop);
  connect(with_asides_, &QCheckBox::toggled, this, &ChecksDock::show_findings);
  connect(days_, &QSpinBox::valueChanged, this, &ChecksDock::renew_all);
  follow_component();
  show_choice();
}

void ChecksDock::follow_component() {
  // When the act is over, so that the card is looked at as it stands then.
  const auto renew = [this](const QString& id) { renew_card(id); };
  connect(&component_, &Component::card_saved, this, renew, Qt::QueuedConnection);
  connect(&component_, &Component::card_deleted, this, renew, Qt::QueuedConnection);
  connect(
      &component_, &Component::card_copied, this,
      [renew](const QString&, const QString&, const QString& copy) { renew(copy); }, Qt::QueuedConnection);
  app::follow_year(component_, *this, [this] { follow_.start(0); });
  connect(&component_, &Component::message_closed, this, [this] { follow_.start(0); });
}

// What is found stands on the reference files as well.
void ChecksDock::follow_others() {
  if (news_) return;
  news_ = new CardNews(component_, database_, this);
  connect(news_, &CardNews::may_be_written, this, &ChecksDock::renew_if_stale);
  connect(news_, &CardNews::written, this, [this](const QString& file, const QString& id) {
    const std::string name = qt::from_qt(file);
    const bool of_cards = name == exchange::kCardFile || name == office::kAsidesFile;
    of_cards && !id.isEmpty() ? renew_card(id) : renew_all();
  });
}

// No letters are underlined: those of the component are pressed all day.
void ChecksDock::lay_out() {
  auto* body = new QWidget;
  auto* column = new QVBoxLayout(body);
  column->addLayout(make_head());
  column->addWidget(table_, 1);
  column->setContentsMargins(6, 2, 6, 4);
  setWidget(body);
  table_->setMinimumHeight(2 * table_->verticalHeader()->defaultSectionSize());
  table_->installEventFilter(this);
  days_->installEventFilter(this);
}

QLayout* ChecksDock::make_head() {
  heading_->setObjectName("completeness");
  heading_->setTextFormat(Qt::PlainText);
  heading_->setWordWrap(true);
  auto* soon = new QLabel("Fin de CDD proche :");
  soon->setBuddy(days_);
  days_->setObjectName("days_ahead");
  days_->setAccessibleName("Fin de CDD proche, en jours");
  days_->setRange(office::Warnings::kLeastAhead, office::Warnings::kMostAhead);
  days_->setValue(office::Warnings::kDaysAhead);
  days_->setSuffix(" jours");
  days_->setKeyboardTracking(false);
  days_->setToolTip("Avertit des contrats à durée déterminée qui finissent dans ce délai : de 1 à 366 jours");
  aside_->setObjectName("aside");
  aside_->setToolTip(
      "Ctrl+Suppr dans le tableau : ce genre d'avertissement n'est plus compté pour cette fiche");
  with_asides_->setObjectName("with_asides");
  stop_->setVisible(false);
  auto* line = new QHBoxLayout;
  line->addWidget(heading_, 1);
  for (QWidget* part : std::initializer_list<QWidget*>{stop_, soon, days_, with_asides_, aside_})
    line->addWidget(part);
  return line;
}

int ChecksDock::days_ahead() const { return days_->value(); }

void ChecksDock::set_days_ahead(int days) { days_->setValue(days); }

bool ChecksDock::is_free() {
  const bool free = !app::is_busy(component_);
  if (!free) emit told(kFinishFirst);
  return free;
}

void ChecksDock::check() {
  if (!is_free()) return;
  if (!shown_year(component_).is_chosen())
    return emit told("Choisissez d'abord l'entité et l'année dont vous contrôlez les fiches.");
  if (QWidget* focus = QApplication::focusWidget(); focus && !isAncestorOf(focus)) came_from_ = focus;
  show_at_first();
  raise();
  table_->setFocus();
  renew();
}

// The card keeps the place; who wants more lines draws the dock up.
void ChecksDock::show_at_first() {
  if (std::exchange(placed_, true)) return show();
  show();
  constexpr int kLines = 9;  // title, heading and headings among them
  if (auto* host = qobject_cast<QMainWindow*>(parentWidget()))
    host->resizeDocks({this}, {kLines * table_->verticalHeader()->defaultSectionSize()}, Qt::Vertical);
}

// ---- Looking at the cards.

void ChecksDock::renew() try {
  stop();
  follow_others();
  all_anew_ = false;
  written_.clear();
  year_ = shown_year(component_);
  if (!year_.is_chosen()) return empty("Choisissez une entité et une année budgétaire.");
  checking_ = std::make_unique<office::Checking>(database_, year_.entity + year_.year, entry::system_clock(),
                                                 days_ahead());
  stop_->setVisible(true);
  look_on();
} catch (const std::exception& error) {
  fail(to_qt(text::failure_sentence(error)));
}

// One that goes on is brought to its end first: who writes all the time would keep it from ever ending.
void ChecksDock::follow() {
  if (!isVisible()) return;
  if (waits(component_) || component_.screen().acting()) return follow_.start(kPatience);
  if (shown_year(component_) != year_) return renew();
  if (all_anew_ && !is_at_work()) renew();
}

void ChecksDock::showEvent(QShowEvent* event) {
  QDockWidget::showEvent(event);
  follow_.start(0);
}

void ChecksDock::renew_all() {
  all_anew_ = true;
  follow_.start(kPatience);
}

void ChecksDock::renew_if_stale() try {
  if (all_anew_ || !checking_ || waits(component_) || component_.screen().acting()) return;
  if (checking_->is_stale()) renew_all();
} catch (const std::exception& error) {
  fail(to_qt(text::failure_sentence(error)));
}

void ChecksDock::renew_card(const QString& id) {
  if (!checking_) return renew_all();
  written_ << id;
  if (isVisible()) go_on_.start(0);
}

// A message may wait within a change of the base.
void ChecksDock::look_on() try {
  if (!checking_) return;
  if (waits(component_) || component_.screen().acting()) return go_on_.start(kPatience);
  look_at_written();
  look_at_more();
  if (checking_->done()) return finish();
  heading_->setText("Contrôle en cours : " + QString::number(checking_->looked_at()) + " sur " +
                    counted(checking_->cards(), "fiche"));
  go_on_.start(0);
} catch (const std::exception& error) {
  fail(to_qt(text::failure_sentence(error)));
}

// A damaged card is counted.
void ChecksDock::look_at_written() {
  for (const QString& id : std::exchange(written_, {})) {
    try {
      checking_->renew(qt::from_qt(id));
    } catch (const store::sqlite::DamagedRecord&) {
    }
  }
}

void ChecksDock::look_at_more() {
  QElapsedTimer time;
  time.start();
  const int enough = checking_->looked_at() == 0 ? kFirst : kSlice;
  while (!checking_->done() && time.elapsed() < enough) {
    try {
      checking_->step();
    } catch (const store::sqlite::DamagedRecord&) {
    }
  }
}

void ChecksDock::stop() {
  go_on_.stop();
  stop_->setVisible(false);
  if (!is_at_work()) return;
  checking_.reset();
  all_anew_ = false;
  heading_->setText("Contrôle arrêté : F8 le recommence");
}

void ChecksDock::empty(const QString& why) {
  checking_.reset();
  findings_.clear();
  show_findings();
  heading_->setText(why);
}

void ChecksDock::finish() {
  heading_of_all_ = to_qt(office::completeness(checking_->complete(), checking_->cards()));
  for (const card::Fault& fault : checking_->faults_of_references())
    heading_of_all_ += " – " + to_qt(fault.sentence());
  if (checking_->unread() > 0)
    heading_of_all_ += " – " + counted(checking_->unread(), "fiche") + " à réparer : « velanorctl check »";
  findings_ = checking_->findings();
  stop_->setVisible(false);
  show_findings();
  if (all_anew_) follow_.start(kPatience);
}

void ChecksDock::fail(const QString& sentence) {
  stop();
  checking_.reset();
  written_.clear();
  heading_->setText(sentence);
}

// ---- What was found.

// The line that was chosen stays so, or the one that has come in its place.
void ChecksDock::show_findings() {
  const Finding* const was = chosen();
  const std::string id = was ? was->id : "", sentence = was ? was->fault.sentence() : "";
  const int row = table_->currentRow();
  lines_.clear();
  std::ptrdiff_t faults = 0, asides = 0;
  int keep = -1;
  table_->setRowCount(0);
  for (std::size_t i = 0; i < findings_.size(); ++i) {
    const Finding& finding = findings_[i];
    faults += finding.is_fault() ? 1 : 0;
    asides += finding.aside ? 1 : 0;
    if (finding.aside && !with_asides_->isChecked()) continue;
    if (finding.id == id && finding.fault.sentence() == sentence) keep = static_cast<int>(lines_.size());
    lines_.push_back(i);
    table_->add({to_qt(finding.id).left(kCodeLength), to_qt(finding.name), nature(finding),
                 to_qt(finding.fault.sentence())});
  }
  table_->fit();
  table_->choose(keep >= 0 ? keep : std::clamp(row, 0, std::max(0, table_->rowCount() - 1)));
  const auto warnings = static_cast<std::ptrdiff_t>(findings_.size()) - faults - asides;
  heading_->setText(heading_of_all_ + " – " + counted(faults, "faute") + ", " +
                    counted(warnings, "avertissement") + ", " + QString::number(asides) + " de côté");
  show_choice();
}

Finding* ChecksDock::chosen() {
  const int line = table_->chosen();
  return line < 0 || line >= static_cast<int>(lines_.size())
             ? nullptr
             : &findings_[lines_[static_cast<std::size_t>(line)]];
}

void ChecksDock::show_choice() {
  const Finding* finding = chosen();
  aside_->setText(finding && finding->aside ? "Ne plus mettre de côté" : "Mettre de côté");
  aside_->setEnabled(finding && !finding->is_fault() && !database_.read_only());
}

bool ChecksDock::eventFilter(QObject* watched, QEvent* event) {
  if (watched == days_ && event->type() == QEvent::KeyPress &&
      static_cast<const QKeyEvent&>(*event).key() == Qt::Key_Escape)
    return table_->setFocus(), true;
  if (watched != table_ || event->type() != QEvent::KeyPress) return QDockWidget::eventFilter(watched, event);
  const auto& key = static_cast<const QKeyEvent&>(*event);
  switch (key.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      // One that is held down would go on into the card.
      if (!key.isAutoRepeat()) open_chosen();
      return true;
    case Qt::Key_Delete:
      if (key.modifiers() == Qt::ControlModifier && !key.isAutoRepeat()) change_aside();
      return true;
    case Qt::Key_Escape:
      if (came_from_) came_from_->setFocus();
      return true;
    default:
      return false;
  }
}

// ---- Acting on them.

void ChecksDock::open_chosen() try {
  const Finding* finding = chosen();
  if (!finding || !is_free()) return;
  if (would_lose_line(component_)) return emit told(kEndLineFirst);
  // A copy: while the component asks, the cards may be looked at anew.
  const Finding wanted = *finding;
  const ShownYear at = year_;
  const QPointer<ChecksDock> alive(this);
  const control::Opening opening =
      component_.open(to_qt(at.entity), to_qt(at.year), to_qt(wanted.id).left(kCodeLength));
  if (!alive) return;
  if (!opening.is_open()) return emit told(to_qt(opening.why));
  lead_to(wanted.fault);
} catch (const std::exception& error) {
  QMessageBox::critical(window(), "Contrôles", to_qt(text::failure_sentence(error)));
}

// Where nothing can be entered, as in a year that is over, the page is shown all the same.
void ChecksDock::lead_to(const card::Fault& fault) {
  screen::Control* const control = component_.place_of(fault.field.number);
  if (!control) return component_.setFocus();
  screen::Hand hand(component_.screen());
  auto* const list = dynamic_cast<screen::ListBox*>(control);
  const bool line = list && fault.line > 0 && fault.line <= list->count();
  const screen::Refusal refusal = line ? hand.pick(*list, fault.line - 1) : hand.focus(*control);
  if (!refusal.empty()) {
    const int page = control->page() < 0 && control->frame() ? control->frame()->page() : control->page();
    if (page >= 0 && !hand.show_page(page).empty()) return;
  }
  QWidget* const widget = component_.widget_of(*control);
  (refusal.empty() && widget ? widget : &component_)->setFocus(Qt::OtherFocusReason);
}

void ChecksDock::change_aside() try {
  const Finding* finding = chosen();
  if (!finding || finding->is_fault() || !is_free()) return;
  if (database_.read_only())
    return emit told("Cette base est protégée en écriture : rien ne peut être mis de côté.");
  const std::string id = finding->id;
  const office::WarningKind kind = *finding->warning;
  std::optional<office::Aside> aside;
  if (finding->aside) {
    office::take_back(database_, id, kind);
  } else {
    aside = office::Aside{kind, clerk(database_), *entry::day_number(entry::system_clock()())};
    office::set_aside(database_, id, *aside);
  }
  renew_card(to_qt(id));
  look_on();
  emit told((aside ? "Mis de côté : " : "N'est plus de côté : ") +
            to_qt(std::string(office::name_of(kind).title)));
} catch (const std::exception& error) {
  QMessageBox::critical(window(), "Contrôles", to_qt(text::failure_sentence(error)));
}

}  // namespace velanor::app
