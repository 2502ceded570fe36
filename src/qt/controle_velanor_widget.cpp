#include "velanor/controle_velanor_widget.h"

#include <QMouseEvent>
#include <QPalette>

#include "qt/stage.h"
#include "qt/strings.h"

namespace velanor::qt {

namespace {

// What cannot be changed now is still to be read: the entity, the year, the state of the card.
QPalette readable(QPalette palette) {
  const QColor text = palette.color(QPalette::Active, QPalette::Text);
  const QColor base = palette.color(QPalette::Active, QPalette::Base);
  const auto mix = [](int a, int b) { return (a * 62 + b * 38) / 100; };
  const QColor dim(mix(text.red(), base.red()), mix(text.green(), base.green()),
                   mix(text.blue(), base.blue()));
  for (const auto role : {QPalette::Text, QPalette::WindowText})
    palette.setColor(QPalette::Disabled, role, dim);
  return palette;
}

}  // namespace

ControleVelanorWidget::ControleVelanorWidget(QWidget* parent) : QWidget(parent) {
  setPalette(readable(palette()));
  stage_ = std::make_shared<Stage>(*this);
  setAccessibleName(QStringLiteral("Fiches du personnel"));
}

ControleVelanorWidget::~ControleVelanorWidget() { stage_->widget_goes(); }

void ControleVelanorWidget::DroitsUtilisateur(control::UserRights& rights) {
  stage_->component().DroitsUtilisateur(rights);
}
void ControleVelanorWidget::TheClient(control::Client& client) { stage_->component().TheClient(client); }
void ControleVelanorWidget::TheDatabase(store::Database& database) {
  stage_->component().TheDatabase(database);
}
void ControleVelanorWidget::set_entry(entry::UtilSaisie& entry) { stage_->component().set_entry(entry); }
void ControleVelanorWidget::set_clock(entry::Clock clock) { stage_->component().set_clock(std::move(clock)); }
void ControleVelanorWidget::set_help(control::HelpViewer& help) { stage_->help = &help; }
void ControleVelanorWidget::init() { stage_->start(); }
screen::Screen& ControleVelanorWidget::screen() { return stage_->screen(); }
const store::DbRecord& ControleVelanorWidget::card_in_hand() const {
  return stage_->component().card_in_hand();
}
store::DbRecord ControleVelanorWidget::card_as_entered() const {
  return stage_->component().card_as_entered();
}

control::State ControleVelanorWidget::state() const { return stage_->component().state(); }
QString ControleVelanorWidget::card_id() const { return to_qt(stage_->component().card_id()); }
QString ControleVelanorWidget::card_title() const { return to_qt(stage_->component().card_title()); }
bool ControleVelanorWidget::modified() const { return stage_->component().modified(); }

control::Opening ControleVelanorWidget::open(const QString& entity, const QString& year,
                                             const QString& employee) {
  return stage_->lead([&](ControleVelanor& component) {
    return component.open(from_qt(entity), from_qt(year), from_qt(employee));
  });
}

control::Opening ControleVelanorWidget::reload() {
  return stage_->lead([](ControleVelanor& component) { return component.reload(); });
}

QString ControleVelanorWidget::undo_name() const {
  return stage_->idle() ? to_qt(stage_->component().undo_name()) : QString();
}
QString ControleVelanorWidget::redo_name() const {
  return stage_->idle() ? to_qt(stage_->component().redo_name()) : QString();
}
bool ControleVelanorWidget::undo() {
  return stage_->step([](ControleVelanor& component) { return component.undo(); });
}
bool ControleVelanorWidget::redo() {
  return stage_->step([](ControleVelanor& component) { return component.redo(); });
}

QString ControleVelanorWidget::put_remainder() {
  return stage_->aid([](ControleVelanor& component) { return component.put_remainder(); });
}
QString ControleVelanorWidget::repeat_items() {
  return stage_->aid([](ControleVelanor& component) { return component.repeat_items(); });
}
std::optional<control::FieldPlace> ControleVelanorWidget::field_in_hand() const {
  return stage_->component().field_in_hand();
}

screen::Control* ControleVelanorWidget::place_of(int attribute) {
  return stage_->component().place_of(attribute);
}

QWidget* ControleVelanorWidget::widget_of(const screen::Control& control) const {
  View* view = stage_->view_of(control);
  return view ? &view->widget() : nullptr;
}

MessageSheet* ControleVelanorWidget::open_message() const { return stage_->open_message(); }
QWidget* ControleVelanorWidget::open_sheet() const { return stage_->open_sheet(); }

screen::Answer ControleVelanorWidget::ask(const screen::Message& message) { return stage_->ask(message); }

void ControleVelanorWidget::set_failure_handler(std::function<void(std::exception_ptr)> handler) {
  stage_->failed = std::move(handler);
}

void ControleVelanorWidget::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::RightButton) stage_->right_press();
}

// The host may change its colours while the component is on the window.
void ControleVelanorWidget::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() != QEvent::PaletteChange) return;
  if (const QPalette now = readable(palette()); now != palette()) setPalette(now);
}

}  // namespace velanor::qt
