#include "app/velanor/card_history.h"

#include <QAction>
#include <QMenu>
#include <QMessageBox>

#include "app/velanor/busy.h"
#include "app/velanor/deleted_cards_dialog.h"
#include "app/velanor/shown_year.h"
#include "app/velanor/versions_dialog.h"
#include "qt/strings.h"
#include "text/failure.h"

namespace velanor::app {
namespace {

using control::State;
using qt::from_qt, qt::to_qt;

}  // namespace

CardHistory::CardHistory(qt::ControleVelanorWidget& component, store::Database& database, QObject* parent)
    : QObject(parent),
      component_(component),
      database_(database),
      versions_(new QAction("&Historique de la fiche…", this)),
      deleted_(new QAction("Fiches suppri&mées…", this)) {
  versions_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_H));
  connect(versions_, &QAction::triggered, this, &CardHistory::show_versions);
  deleted_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_G));
  connect(deleted_, &QAction::triggered, this, &CardHistory::show_deleted);
  connect(&component_, &qt::ControleVelanorWidget::card_id_changed, this, &CardHistory::update);
  update();
}

void CardHistory::add_to(QMenu& menu) {
  menu.setToolTipsVisible(true);
  menu.addAction(versions_);
  menu.addAction(deleted_);
}

void CardHistory::update() {
  const bool kept = database_.history() != nullptr;
  versions_->setEnabled(kept && !component_.card_id().isEmpty());
  deleted_->setEnabled(kept);
  const QString why = kept ? "Aucune fiche enregistrée n'est ouverte"
                           : "Ces données ne sont qu'en mémoire : elles n'ont pas d'historique";
  versions_->setToolTip(versions_->isEnabled() ? "Les versions de la fiche ouverte" : why);
  deleted_->setToolTip(kept ? "Les fiches supprimées de l'entité et de l'année" : why);
}

// Why nothing can be brought back now; "" where it can.
QString CardHistory::locked(bool for_open_card) const {
  if (database_.read_only()) return "Cette base est protégée en écriture : rien ne peut être repris.";
  const State state = component_.state();
  const auto* const add = component_.screen().base().find("Cmd_Ajout");
  const bool closed = state == State::kNone ? !add || !add->enabled() : state == State::kReading;
  if (closed) return "L'année est close : ses fiches se consultent seulement.";
  if (for_open_card && component_.modified()) {
    return "La fiche a des modifications qui ne sont pas enregistrées. Enregistrez-les ou annulez-les pour "
           "reprendre une version.";
  }
  return {};
}

// A menu is alive also where the component waits for an answer.
bool CardHistory::is_free() {
  const bool free = !app::is_busy(component_);
  if (!free) emit told(kFinishFirst);
  return free;
}

void CardHistory::show_versions() try {
  if (component_.card_id().isEmpty() || !is_free()) return;
  auto* dialog = new VersionsDialog(database_, from_qt(component_.card_id()), component_.card_title(),
                                    locked(true), component_.window());
  // When the dialog is gone, and the window is itself again.
  connect(dialog, &VersionsDialog::brought_back, this, &CardHistory::reread, Qt::QueuedConnection);
  dialog->open();
} catch (const std::exception& error) {
  QMessageBox::critical(component_.window(), "Historique de la fiche", to_qt(text::failure_sentence(error)));
}

void CardHistory::show_deleted() try {
  if (!is_free()) return;
  const ShownYear at = shown_year(component_);
  if (!at.is_chosen())
    return emit told("Choisissez d'abord l'entité et l'année dont vous cherchez une fiche supprimée.");
  auto* dialog = new DeletedCardsDialog(database_, at.entity, at.year, locked(false), component_.window());
  connect(dialog, &DeletedCardsDialog::brought_back, this, &CardHistory::open_again, Qt::QueuedConnection);
  dialog->open();
} catch (const std::exception& error) {
  QMessageBox::critical(component_.window(), "Fiches supprimées", to_qt(text::failure_sentence(error)));
}

void CardHistory::reread(const QString& moment) try {
  const control::Opening opening = component_.reload();
  const QString done = "Version du " + moment + " reprise";
  emit told(opening.is_open() ? done + " : fiche " + component_.card_title()
                              : done + ". " + to_qt(opening.why));
} catch (const std::exception& error) {
  QMessageBox::critical(component_.window(), "Historique de la fiche", to_qt(text::failure_sentence(error)));
}

void CardHistory::open_again(const QString& entity, const QString& year, const QString& employee,
                             const QString& name) try {
  const control::Opening opening = component_.open(entity, year, employee);
  const QString done = "Fiche " + employee + " " + name + " rétablie";
  emit told(opening.is_open() ? done : done + ". " + to_qt(opening.why));
} catch (const std::exception& error) {
  QMessageBox::critical(component_.window(), "Fiches supprimées", to_qt(text::failure_sentence(error)));
}

}  // namespace velanor::app
