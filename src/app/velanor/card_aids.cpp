#include "app/velanor/card_aids.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QMenu>

#include "card/record/named_fields.h"
#include "office/field_history.h"
#include "qt/strings.h"
#include "text/failure.h"

namespace velanor::app {

using qt::from_qt, qt::to_qt;
using Component = qt::ControleVelanorWidget;

CardAids::CardAids(Component& component, store::Database& database, QObject* parent)
    : QObject(parent),
      component_(component),
      database_(database),
      remainder_(make("Rest&e de la répartition", QKeySequence(Qt::Key_F6),
                      "Met ce qui reste à répartir sur l'activité en cours", &CardAids::put_remainder)),
      items_(make("Rubriques de l'avenant &précédent", QKeySequence(Qt::CTRL | Qt::Key_R),
                  "Reprend les rubriques de l'avenant précédent sur celui qui est choisi",
                  &CardAids::repeat_items)),
      history_(make("&Historique du champ", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_H),
                    "Ce que le champ en cours contenait auparavant", &CardAids::show_field_history)) {
  connect(&component_, &Component::acted, this, &CardAids::update);
  connect(&component_, &Component::message_opened, this, &CardAids::update);
  update();
}

QAction* CardAids::make(const QString& text, const QKeySequence& keys, const QString& hint,
                        void (CardAids::*act)()) {
  auto* action = new QAction(text, this);
  action->setShortcut(keys);
  action->setToolTip(hint);
  connect(action, &QAction::triggered, this, [this, act] {
    try {
      (this->*act)();
    } catch (const std::exception& error) {
      emit told(to_qt(text::failure_sentence(error)));
    }
  });
  return action;
}

void CardAids::add_to(QMenu& menu) {
  for (QAction* action : {remainder_, items_, history_}) menu.addAction(action);
}

void CardAids::update() {
  using control::State;
  const State state = component_.state();
  const bool waits = component_.open_message() != nullptr;
  const bool entered = !waits && (state == State::kEditing || state == State::kCreating);
  remainder_->setEnabled(entered);
  items_->setEnabled(entered);
  history_->setEnabled(!waits && database_.history() && !component_.card_id().isEmpty());
}

void CardAids::put_remainder() { emit told(component_.put_remainder()); }

void CardAids::repeat_items() {
  const QString why = component_.repeat_items();
  emit told(why.isEmpty() ? "Rubriques de l'avenant précédent reprises" : why);
}

// ---- What a field was.

void CardAids::show_field_history() {
  if (component_.open_message()) return;
  const auto field = component_.field_in_hand();
  const card::Field* const named = field ? card::card_field(field->attribute) : nullptr;
  if (!named) return emit refused("Placez-vous d'abord sur un champ enregistré de la fiche.");
  const QString name = to_qt(named->name);
  const auto past =
      office::field_history(database_, from_qt(component_.card_id()), {field->attribute, field->line});
  if (past.empty()) return emit told(name + " : n'a pas changé depuis que la fiche est gardée.");
  QStringList lines, values;
  for (const office::FieldWas& was : past) {
    lines << name + " : " + to_qt(was.text());
    values << to_qt(was.value);
  }
  emit told(lines.front());
  pop_up(lines, values);
}

// A line that is chosen is at hand to be pasted.
void CardAids::pop_up(const QStringList& lines, const QStringList& values) {
  constexpr qsizetype kLines = 20;
  auto* menu = new QMenu(component_.window());
  menu->setAttribute(Qt::WA_DeleteOnClose);
  menu->setAccessibleName("Historique du champ");
  for (qsizetype i = 0; i < std::min(lines.size(), kLines); ++i) {
    QAction* line = menu->addAction(QString(lines[i]).replace('&', "&&"));
    connect(line, &QAction::triggered, this, [this, value = values[i]] {
      QGuiApplication::clipboard()->setText(value);
      emit told("« " + value + " » est copié.");
    });
  }
  const QWidget* at = QApplication::focusWidget();
  if (!at || !component_.isAncestorOf(at)) at = &component_;
  menu->popup(at->mapToGlobal(QPoint(0, at->height())));
}

}  // namespace velanor::app
