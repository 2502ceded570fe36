#include "app/velanor/year_dock.h"

#include <QAction>
#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <algorithm>

#include "app/velanor/busy.h"
#include "app/velanor/hours_calculator.h"
#include "app/velanor/shown_year.h"
#include "app/velanor/year_table.h"
#include "card/record/element.h"
#include "office/card_year.h"
#include "qt/strings.h"
#include "text/failure.h"

namespace velanor::app {
namespace {

using qt::to_qt;
using Component = qt::ControleVelanorWidget;

}  // namespace

YearDock::YearDock(Component& component, store::Database& database, QWidget* parent)
    : QDockWidget("Année", parent),
      component_(component),
      database_(database),
      action_(new QAction("&Année de la fiche", this)),
      none_(new QLabel),
      table_(new YearTable),
      calculator_(new HoursCalculator) {
  setObjectName("year");
  setAllowedAreas(Qt::BottomDockWidgetArea | Qt::TopDockWidgetArea);
  // Beside it the title takes no height.
  setFeatures(features() | DockWidgetVerticalTitleBar);
  lay_out();
  action_->setShortcut(QKeySequence(Qt::Key_F7));
  action_->setToolTip("Les heures, l'ETP et les avenants de la fiche ouverte, mois par mois");
  connect(action_, &QAction::triggered, this, &YearDock::toggle);
  soon_.setSingleShot(true);
  connect(&soon_, &QTimer::timeout, this, &YearDock::renew);
  const auto later = [this] { soon_.start(0); };
  connect(&component_, &Component::acted, this, later);
  connect(&component_, &Component::state_changed, this, later);
  connect(&component_, &Component::card_id_changed, this, later);
  hide();
}

// No letters are underlined: those of the component are pressed all day.
void YearDock::lay_out() {
  auto* body = new QWidget;
  auto* line = new QHBoxLayout(body);
  none_->setObjectName("year_none");
  none_->setTextFormat(Qt::PlainText);
  none_->setAlignment(Qt::AlignCenter);
  line->addWidget(table_, 1);
  line->addWidget(none_, 1);
  line->addWidget(calculator_);
  line->setContentsMargins(4, 2, 6, 2);
  setWidget(body);
  fit();
  connect(table_->horizontalScrollBar(), &QScrollBar::rangeChanged, this, &YearDock::fit);
  table_->installEventFilter(this);
  for (QLineEdit* box : calculator_->findChildren<QLineEdit*>()) box->installEventFilter(this);
  show_none();
}

// No higher than what it shows.
void YearDock::fit() {
  const QMargins around = widget()->layout()->contentsMargins();
  const int high = std::max(table_->sizeHint().height(), calculator_->sizeHint().height());
  widget()->setFixedHeight(high + around.top() + around.bottom());
}

bool YearDock::has_room() const {
  constexpr int kAround = 70;  // menus and status bar
  return window()->height() >= component_.sizeHint().height() + sizeHint().height() + kAround;
}

// ---- The keyboard.

void YearDock::toggle() {
  QWidget* focus = QApplication::focusWidget();
  if (isVisible() && focus && isAncestorOf(focus)) {
    go_back();
    return hide();
  }
  if (focus && !isAncestorOf(focus)) came_from_ = focus;
  show();
  raise();
  renew();
  (table_->isHidden() ? calculator_->findChild<QLineEdit*>("calculator_hours")
                      : static_cast<QWidget*>(table_))
      ->setFocus(Qt::ShortcutFocusReason);
}

// To where the clerk was on the card.
void YearDock::go_back() {
  const bool there = came_from_ && came_from_->isEnabled() && came_from_->isVisible();
  (there ? came_from_.data() : &component_)->setFocus(Qt::OtherFocusReason);
}

bool YearDock::eventFilter(QObject* watched, QEvent* event) {
  const bool key = event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride;
  if (!key || static_cast<QKeyEvent*>(event)->key() != Qt::Key_Escape)
    return QDockWidget::eventFilter(watched, event);
  if (event->type() == QEvent::KeyPress) go_back();
  event->accept();
  return true;
}

void YearDock::showEvent(QShowEvent* event) {
  QDockWidget::showEvent(event);
  soon_.start(0);
}

// ---- What it shows.

// Within an act its end is still to come.
void YearDock::renew() try {
  if (!isVisible()) return;
  if (component_.screen().acting()) return soon_.start(kPatience);
  const store::DbRecord card = component_.card_as_entered();
  if (component_.state() == control::State::kNone || card.empty()) return show_none();
  show_card(card);
} catch (const std::exception& error) {
  show_none();
  none_->setText(to_qt(text::failure_sentence(error)));
}

void YearDock::show_card(const store::DbRecord& card) {
  if (!reading_) reading_ = std::make_unique<office::CardReading>(database_);
  const auto year = office::budget_year(shown_year(component_).year);
  if (!year) return show_none();
  const std::int64_t full = figure(card, card::kEstablishmentHours);
  calculator_->set_full(full > 0 ? std::optional(full) : std::nullopt);
  table_->show_year(office::year_of(reading_->draft(card), *year));
  table_->show();
  none_->hide();
}

void YearDock::show_none() {
  calculator_->set_full(std::nullopt);
  none_->setText("Aucune fiche n'est ouverte.");
  none_->show();
  const bool had_focus = table_->hasFocus();
  table_->hide();
  table_->clear_year();
  if (had_focus) go_back();
}

}  // namespace velanor::app
