#include "app/velanor/card_steps.h"

#include <QAction>
#include <QMenu>
#include <QMessageBox>

#include "exchange/columns.h"
#include "office/versions.h"
#include "qt/strings.h"
#include "text/failure.h"

namespace velanor::app {
namespace {

using Component = qt::ControleVelanorWidget;
using qt::from_qt, qt::to_qt;

constexpr qsizetype kEmployeeCode = 5, kEntityCode = 3;  // characters of the id of a card

// The menu gives a mnemonic to each "&".
QString named(const char* command, QString step) {
  return step.isEmpty() ? QString(command) : command + QStringLiteral(" : ") + step.replace("&", "&&");
}

void tell_failure(QWidget* window, const std::exception& error) {
  auto* box = new QMessageBox(QMessageBox::Critical, "Fiches du personnel",
                              to_qt(text::failure_sentence(error)), QMessageBox::Ok, window);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->open();
}

}  // namespace

CardSteps::CardSteps(Component& component, store::Database& database, QObject* parent)
    : QObject(parent),
      component_(component),
      database_(database),
      undo_(new QAction("&Annuler", this)),
      redo_(new QAction("&Rétablir", this)) {
  undo_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
  redo_->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_Y), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)});
  connect(undo_, &QAction::triggered, this, &CardSteps::undo);
  connect(redo_, &QAction::triggered, this, &CardSteps::redo);
  connect(&component_, &Component::acted, this, &CardSteps::update);
  connect(&component_, &Component::message_opened, this, &CardSteps::update);
  connect(&component_, &Component::card_opened, this, [this] { deleted_id_.clear(); });
  connect(&component_, &Component::card_deleted, this, &CardSteps::remember_deletion);
  update();
}

void CardSteps::add_to(QMenu& menu) {
  menu.addAction(undo_);
  menu.addAction(redo_);
}

bool CardSteps::can_take_back_deletion() const {
  return !deleted_id_.isEmpty() && component_.state() == control::State::kNone && !component_.open_message();
}

void CardSteps::update() {
  const bool deletion = can_take_back_deletion();
  const QString back = deletion ? "fiche " + deleted_title_ + " supprimée" : component_.undo_name();
  const QString forth = component_.redo_name();
  undo_->setText(named("&Annuler", back));
  redo_->setText(named("&Rétablir", forth));
  undo_->setEnabled(!back.isEmpty());
  redo_->setEnabled(!forth.isEmpty());
}

void CardSteps::undo() try {
  if (can_take_back_deletion()) return take_back_deletion();
  const QString name = component_.undo_name();
  if (component_.undo()) emit told("Annulé : " + name);
} catch (const std::exception& error) {
  tell_failure(component_.window(), error);
}

void CardSteps::redo() try {
  const QString name = component_.redo_name();
  if (component_.redo()) emit told("Rétabli : " + name);
} catch (const std::exception& error) {
  tell_failure(component_.window(), error);
}

// ---- The card that was deleted last.

void CardSteps::remember_deletion(const QString& id, const QString& title) {
  const QString sentence = "Fiche " + title + " supprimée";
  deleted_id_ = database_.history() && !id.isEmpty() ? id : QString();
  deleted_title_ = title;
  update();
  if (deleted_id_.isEmpty()) {
    emit told(sentence);
  } else {
    emit deleted(sentence);
  }
}

// What somebody else has made of the code meanwhile stays.
void CardSteps::take_back_deletion() try {
  if (!can_take_back_deletion()) return;
  const QString id = deleted_id_;
  const auto versions = office::versions_of(database_, exchange::kCardFile, from_qt(id));
  if (versions.size() < 2 || versions.back().record)
    return emit told("La fiche " + deleted_title_ + " existe déjà de nouveau.");
  office::bring_back(database_, exchange::kCardFile, from_qt(id), versions, versions[versions.size() - 2]);
  deleted_id_.clear();
  const control::Opening opening = component_.open(
      id.mid(kEmployeeCode, kEntityCode), id.mid(kEmployeeCode + kEntityCode), id.left(kEmployeeCode));
  const QString done = "Fiche " + deleted_title_ + " rétablie";
  emit told(opening.is_open() ? done : done + ". " + to_qt(opening.why));
} catch (const std::exception& error) {
  tell_failure(component_.window(), error);
}

}  // namespace velanor::app
